// Buffer, vertex array, shader and program objects against a recording fake driver.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "gl_objects/GLBufferObjects.h"
#include "gl_objects/uGLHandleObj.h"
#include "tests/support/GlRecorder.h"
#include "tests/support/MessageCapture.h"

namespace orvane {
namespace {

using namespace dglOpenGL;
using testing::Raised;
using Texts = std::vector<std::string>;

// Names count up from 3 for vertex arrays and buffers, from 10 for shaders; the program is 5.
// Compiling succeeds unless told otherwise.
struct FakeDriver {
    testing::GlRecorder Rec;
    GLuint NextName = 3, NextShader = 10, ProgramName = 5;
    GLint CompileStatus = 1;
    bool WriteStatus = true;
    std::string Log;
    Texts Sources;
    std::vector<GLuint> Deleted;

    FakeDriver()
    {
        Rec.RecordAll<&glBindVertexArray, &glBindBuffer, &glBufferData, &glBufferSubData, &glDeleteShader,
                      &glCompileShader, &glDeleteProgram, &glAttachShader, &glDetachShader, &glLinkProgram,
                      &glUseProgram>();
        Rec.Record<&glGenVertexArrays>([this](GLsizei, GLuint* names) { names[0] = NextName++; });
        Rec.Record<&glGenBuffers>([this](GLsizei, GLuint* names) { names[0] = NextName++; });
        Rec.Record<&glDeleteVertexArrays>([this](GLsizei, const GLuint* names) { Deleted.push_back(names[0]); });
        Rec.Record<&glDeleteBuffers>([this](GLsizei, const GLuint* names) { Deleted.push_back(names[0]); });
        Rec.Record<&glCreateShader>([this](GLenum) { return NextShader++; });
        Rec.Record<&glShaderSource>([this](GLuint, GLsizei, const GLchar* const* text, const GLint*) { Sources.emplace_back(text[0]); });
        Rec.Record<&glGetShaderiv>([this](GLuint, GLenum, GLint* status) { if (WriteStatus) *status = CompileStatus; });
        Rec.Record<&glGetShaderInfoLog>([this](GLuint, GLsizei limit, GLsizei*, GLchar* buffer) {
            const std::size_t n = std::min(Log.size(), static_cast<std::size_t>(limit - 1));
            std::memcpy(buffer, Log.data(), n);
            buffer[n] = 0;
        });
        Rec.Record<&glCreateProgram>([this] { return ProgramName; });
        Rec.Record<&glGetProgramiv>([this](GLuint, GLenum, GLint* status) { if (WriteStatus) *status = 1; });
    }
};

TEST(GLBufferObjects, BindUploadAndDeleteEachNameOnce)
{
    FakeDriver gl;
    {
        TGLVAOObject vao;
        TGLVBOObject vbo;
        TGLEBOObject unused;
        vao.Bind(), unused.UnBind();  // no name needed to bind or unbind
        EXPECT_EQ(vbo.Size(), 0);
        vao.AllocateHandle(), vbo.AllocateHandle(), vbo.Bind();
        const float data[6] = {};
        vbo.BufferData(data, 24, GL_STATIC_DRAW);
        vbo.BufferData(nullptr, 0, GL_STATIC_DRAW);
        EXPECT_EQ(vbo.Size(), 0);
        vbo.BufferData(data, 12, GL_STATIC_DRAW);
        vbo.BufferSubData(data, 8, 16);  // beyond the store: GL's business, the size stays
        EXPECT_EQ(vbo.Size(), 12);
        vbo.UnBind();
        vao.DestroyHandle();
    }
    EXPECT_EQ(gl.Rec.Texts(),
              (Texts{"glBindVertexArray(0)", "glBindBuffer(34963, 0)", "glGenVertexArrays(1, ptr)",
                     "glGenBuffers(1, ptr)", "glBindBuffer(34962, 4)", "glBufferData(34962, 24, ptr, 35044)",
                     "glBufferData(34962, 0, nil, 35044)", "glBufferData(34962, 12, ptr, 35044)",
                     "glBufferSubData(34962, 8, 16, ptr)", "glBindBuffer(34962, 0)", "glDeleteVertexArrays(1, ptr)", "glDeleteBuffers(1, ptr)"}));
    EXPECT_EQ(gl.Deleted, (std::vector<GLuint>{3, 4}));
}

TEST(GLHandleObject, ANameOfZeroOrAMissingEntryIsTheAllocationFailure)
{
    FakeDriver gl;
    gl.NextName = gl.NextShader = gl.ProgramName = 0;
    TGLVAOObject vao;
    TGLVertexShaderHandle shader;
    {
        TGLProgramHandle program;
        for (TGLHandleObject* object : std::vector<TGLHandleObject*>{&vao, &shader, &program}) {
            try {
                object->AllocateHandle();
                ADD_FAILURE() << "no exception";
            } catch (const Exception& e) {
                EXPECT_EQ(dynamic_cast<const EGLSLException*>(&e), nullptr) << "an allocation failure is not a shader failure";
                EXPECT_STREQ(e.what(), "Allocate Resource Failure!");
            }
            EXPECT_EQ(object->Handle(), 0u);
        }
    }
    // An entry point that is not loaded is not called.
    const auto loaded = glGenVertexArrays;
    glGenVertexArrays = nullptr;
    EXPECT_EQ(Raised([&] { vao.AllocateHandle(); }), "Allocate Resource Failure!");
    glGenVertexArrays = loaded;
    shader.DestroyHandle();  // nothing to delete
    EXPECT_EQ(gl.Rec.Texts(), (Texts{"glGenVertexArrays(1, ptr)", "glCreateShader(35633)", "glCreateProgram()"}));
}

TEST(GLShaderHandle, AllocatesOnceCompilesOneTextAndReadsTheStatus)
{
    FakeDriver gl;
    TGLFragmentShaderHandle shader;
    shader.AllocateHandle(), shader.AllocateHandle();
    shader.ShaderSource("void main() {}\r\n");
    EXPECT_TRUE(shader.CompileShader());
    shader.DestroyHandle(), shader.DestroyHandle();
    EXPECT_EQ(shader.Handle(), 0u);
    shader.AllocateHandle();  // an emptied handle takes a new name
    EXPECT_EQ(shader.Handle(), 11u);
    EXPECT_EQ(gl.Sources, (Texts{"void main() {}\r\n"}));
    EXPECT_EQ(gl.Rec.Texts(), (Texts{"glCreateShader(35632)", "glShaderSource(10, 1, ptr, nil)", "glCompileShader(10)",
                                     "glGetShaderiv(10, 35713, ptr)", "glDeleteShader(10)", "glCreateShader(35632)"}));
    // A driver that leaves the status unwritten means failure, for compiling and linking.
    gl.WriteStatus = false;
    EXPECT_FALSE(shader.CompileShader());
    TGLProgramHandle program;
    program.AllocateHandle();
    EXPECT_FALSE(program.LinkProgram());
}

TEST(GLProgramHandle, OwnsItsShadersDeletesThemFirstUsesOnceAndDetachesAtMost256)
{
    FakeDriver gl;
    {
        TGLProgramHandle program;
        program.DetachAllObject();  // no name: no call
        EXPECT_TRUE(gl.Rec.Calls().empty());
        program.AllocateHandle();
        const auto vertex = TGLShaderHandleClass::Of<TGLVertexShaderHandle>();
        program.AddShader(vertex, "vertex text");
        program.AddShader(TGLShaderHandleClass::Of<TGLFragmentShaderHandle>(), "fragment text");
        EXPECT_EQ(gl.Sources, (Texts{"vertex text", "fragment text"}));
        EXPECT_EQ(gl.Rec.CallsOf("glAttachShader")[1].Text(), "glAttachShader(5, 11)");
        // The same class twice fails in the dictionary after attaching; that shader goes at once.
        EXPECT_THROW(program.AddShader(vertex, "b"), EListError);
        EXPECT_EQ(gl.Rec.Count("glAttachShader"), 3u);
        EXPECT_EQ(gl.Rec.Calls().back().Text(), "glDeleteShader(12)");
        gl.Rec.Clear();
        program.UseProg(), program.UseProg();
        EXPECT_TRUE(program.Using());
        program.UnUseProg(), program.UnUseProg();
        EXPECT_FALSE(program.Using());
    }
    // The shaders go first, in either order, while still attached; then the program.
    Texts texts = gl.Rec.Texts();
    std::sort(texts.begin() + 3, texts.end() - 1);
    EXPECT_EQ(texts, (Texts{"glUseProgram(5)", "glUseProgram(5)", "glUseProgram(0)", "glDeleteShader(10)",
                            "glDeleteShader(11)", "glDeleteProgram(5)"}));

    gl.Rec.Record<&glGetAttachedShaders>([](GLuint, GLsizei maxCount, GLsizei* count, GLuint* names) {
        for (GLsizei i = 0; i < maxCount; ++i) names[i] = static_cast<GLuint>(1000 + i);
        *count = 300;
    });
    TGLProgramHandle crowded;
    crowded.AllocateHandle(), crowded.DetachAllObject();
    const auto detached = gl.Rec.CallsOf("glDetachShader");  // in the driver's order
    ASSERT_EQ(detached.size(), 256u);
    EXPECT_EQ(detached.front().Text(), "glDetachShader(5, 1000)");
    EXPECT_EQ(detached.back().Text(), "glDetachShader(5, 1255)");
    EXPECT_EQ(gl.Rec.CallsOf("glGetAttachedShaders")[0].Text(), "glGetAttachedShaders(5, 256, ptr, ptr)");
}

TEST(GLProgramHandle, AFailedCompileIsShownOnceRaisedAndReleasedWithTheLogCutAt511Bytes)
{
    for (const std::string& log : {std::string("0:1(1): error: syntax error"), std::string(600, 'x')}) {
        FakeDriver gl;
        gl.CompileStatus = 0;
        gl.Log = log;
        testing::MessageCapture messages;
        TGLProgramHandle program;
        program.AllocateHandle();
        const std::string expected = "Cannot Compile Shader" + log.substr(0, 511);
        EXPECT_EQ(Raised<EGLSLException>([&] { program.AddShader(TGLShaderHandleClass::Of<TGLFragmentShaderHandle>(), "bad"); }),
                  expected);
        ASSERT_EQ(messages.Messages().size(), 1u);
        EXPECT_EQ(messages.Texts()[0], expected);
        EXPECT_EQ(messages.Messages()[0].Kind, 0);
        EXPECT_EQ(gl.Rec.CallsOf("glGetShaderInfoLog")[0].Text(), "glGetShaderInfoLog(10, 512, nil, ptr)");
        EXPECT_EQ(gl.Rec.Count("glAttachShader"), 0u);
        EXPECT_EQ(gl.Rec.Calls().back().Text(), "glDeleteShader(10)");  // in no dictionary: freed here
    }
}

}  // namespace
}  // namespace orvane
