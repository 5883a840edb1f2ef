#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "gl_objects/uGLHandleObj.h"
#include "tests/support/GlRecorder.h"
#include "tests/support/MessageCapture.h"

namespace orvane {
namespace {

using namespace dglOpenGL;
using testing::GlRecorder;
using testing::MessageCapture;
using Texts = std::vector<std::string>;

// Fakes for every call a shader or program makes; names count up from 10 for shaders and
// are 5 for the program. Compilation and linking succeed unless told otherwise.
struct FakeDriver {
    GlRecorder Rec;
    GLuint NextShader = 10;
    GLuint ProgramName = 5;
    GLint CompileStatus = 1;
    bool WriteStatus = true;
    std::string Log = "0:1(1): error: syntax error";
    std::vector<std::string> Sources;

    FakeDriver()
    {
        Rec.Record<&glCreateShader>([this](GLenum) { return NextShader++; });
        Rec.Record<&glDeleteShader>();
        Rec.Record<&glShaderSource>([this](GLuint, GLsizei, const GLchar* const* text, const GLint*) {
            Sources.emplace_back(text[0]);
        });
        Rec.Record<&glCompileShader>();
        Rec.Record<&glGetShaderiv>([this](GLuint, GLenum, GLint* status) {
            if (WriteStatus) *status = CompileStatus;
        });
        Rec.Record<&glGetShaderInfoLog>([this](GLuint, GLsizei limit, GLsizei*, GLchar* buffer) {
            const std::size_t n = std::min(Log.size(), static_cast<std::size_t>(limit - 1));
            std::memcpy(buffer, Log.data(), n);
            buffer[n] = 0;
        });
        Rec.Record<&glCreateProgram>([this] { return ProgramName; });
        Rec.Record<&glDeleteProgram>();
        Rec.Record<&glAttachShader>();
        Rec.Record<&glDetachShader>();
        Rec.Record<&glLinkProgram>();
        Rec.Record<&glGetProgramiv>([this](GLuint, GLenum, GLint* status) {
            if (WriteStatus) *status = 1;
        });
        Rec.Record<&glUseProgram>();
    }
};

TEST(GLHandleObject, AllocatesOnceAndDestroysAtMostOnce)
{
    FakeDriver gl;
    {
        TGLVertexShaderHandle never;  // freeing a handle that never had a name makes no call
    }
    EXPECT_TRUE(gl.Rec.Calls().empty());

    TGLFragmentShaderHandle shader;
    EXPECT_EQ(shader.ShaderType(), 0x8B30u);
    shader.AllocateHandle();
    shader.AllocateHandle();
    EXPECT_EQ(shader.Handle(), 10u);
    shader.DestroyHandle();
    shader.DestroyHandle();
    EXPECT_EQ(shader.Handle(), 0u);
    // An emptied handle takes a new name.
    shader.AllocateHandle();
    EXPECT_EQ(shader.Handle(), 11u);
    EXPECT_EQ(gl.Rec.Texts(), (Texts{"glCreateShader(35632)", "glDeleteShader(10)", "glCreateShader(35632)"}));
}

TEST(GLHandleObject, ANameOfZeroRaisesThePlainException)
{
    FakeDriver gl;
    gl.NextShader = 0;
    TGLVertexShaderHandle shader;
    try {
        shader.AllocateHandle();
        FAIL() << "no exception";
    } catch (const EGLSLException&) {
        FAIL() << "an allocation failure is not a shader failure";
    } catch (const Exception& e) {
        EXPECT_STREQ(e.what(), "Allocate Resource Failure!");
    }
    EXPECT_EQ(shader.Handle(), 0u);
    gl.Rec.Clear();
    shader.DestroyHandle();
    EXPECT_TRUE(gl.Rec.Calls().empty());
}

TEST(GLShaderHandle, PassesOneZeroTerminatedTextAndReadsTheStatus)
{
    FakeDriver gl;
    TGLVertexShaderHandle shader;
    shader.AllocateHandle();
    shader.ShaderSource("void main() {}\r\n");
    EXPECT_TRUE(shader.CompileShader());
    EXPECT_EQ(gl.Sources, (Texts{"void main() {}\r\n"}));
    EXPECT_EQ(gl.Rec.Texts(), (Texts{"glCreateShader(35633)", "glShaderSource(10, 1, ptr, nil)", "glCompileShader(10)",
                                     "glGetShaderiv(10, 35713, ptr)"}));
    // A driver that leaves the status unwritten means failure, for compiling and linking.
    gl.WriteStatus = false;
    EXPECT_FALSE(shader.CompileShader());
    TGLProgramHandle program;
    program.AllocateHandle();
    EXPECT_FALSE(program.LinkProgram());
}

TEST(GLProgramHandle, AddShaderCompilesAttachesAndOwns)
{
    FakeDriver gl;
    {
        TGLProgramHandle program;
        program.AllocateHandle();
        program.AddShader(TGLShaderHandleClass::Of<TGLVertexShaderHandle>(), "vertex text");
        program.AddShader(TGLShaderHandleClass::Of<TGLFragmentShaderHandle>(), "fragment text");
        EXPECT_EQ(gl.Sources, (Texts{"vertex text", "fragment text"}));
        EXPECT_EQ(gl.Rec.Count("glAttachShader"), 2u);
        EXPECT_EQ(gl.Rec.CallsOf("glAttachShader")[0].Text(), "glAttachShader(5, 10)");
        gl.Rec.Clear();
    }
    // The shaders go first, while still attached, then the program.
    const Texts names = gl.Rec.Texts();
    ASSERT_EQ(names.size(), 3u);
    EXPECT_EQ(names[2], "glDeleteProgram(5)");
    EXPECT_EQ(gl.Rec.Count("glDeleteShader"), 2u);
}

TEST(GLProgramHandle, AFailedCompileIsShownOnceRaisedAndReleased)
{
    FakeDriver gl;
    gl.CompileStatus = 0;
    MessageCapture messages;
    TGLProgramHandle program;
    program.AllocateHandle();
    try {
        program.AddShader(TGLShaderHandleClass::Of<TGLFragmentShaderHandle>(), "bad");
        FAIL() << "no exception";
    } catch (const EGLSLException& e) {
        EXPECT_EQ(std::string(e.what()), "Cannot Compile Shader0:1(1): error: syntax error");
    }
    ASSERT_EQ(messages.Messages().size(), 1u);
    EXPECT_EQ(messages.Texts()[0], "Cannot Compile Shader0:1(1): error: syntax error");
    EXPECT_EQ(messages.Messages()[0].Kind, 0);
    EXPECT_EQ(gl.Rec.CallsOf("glGetShaderInfoLog")[0].Text(), "glGetShaderInfoLog(10, 512, nil, ptr)");
    EXPECT_EQ(gl.Rec.Count("glAttachShader"), 0u);
    // The failed shader is in no dictionary; it is freed here and its name given back.
    EXPECT_EQ(gl.Rec.CallsOf("glDeleteShader").at(0).Text(), "glDeleteShader(10)");
}

TEST(GLProgramHandle, ALongLogIsCutAt511Bytes)
{
    FakeDriver gl;
    gl.CompileStatus = 0;
    gl.Log = std::string(600, 'x');
    MessageCapture messages;
    TGLProgramHandle program;
    program.AllocateHandle();
    EXPECT_THROW(program.AddShader(TGLShaderHandleClass::Of<TGLVertexShaderHandle>(), ""), EGLSLException);
    EXPECT_EQ(messages.Texts().at(0), "Cannot Compile Shader" + std::string(511, 'x'));
}

TEST(GLProgramHandle, TheSameClassTwiceFailsInTheDictionaryAfterAttaching)
{
    FakeDriver gl;
    TGLProgramHandle program;
    program.AllocateHandle();
    const auto vertex = TGLShaderHandleClass::Of<TGLVertexShaderHandle>();
    program.AddShader(vertex, "a");
    EXPECT_THROW(program.AddShader(vertex, "b"), EListError);
    EXPECT_EQ(gl.Rec.Count("glAttachShader"), 2u);
    // The second shader is not kept: its name goes back at once.
    EXPECT_EQ(gl.Rec.CallsOf("glDeleteShader").at(0).Text(), "glDeleteShader(11)");
}

TEST(GLProgramHandle, DetachesAtMost256InDriverOrder)
{
    FakeDriver gl;
    TGLProgramHandle program;
    program.DetachAllObject();
    EXPECT_TRUE(gl.Rec.Calls().empty());

    gl.Rec.Record<&glGetAttachedShaders>([](GLuint, GLsizei maxCount, GLsizei* count, GLuint* names) {
        for (GLsizei i = 0; i < maxCount; ++i) names[i] = static_cast<GLuint>(1000 + i);
        *count = 300;
    });
    program.AllocateHandle();
    program.DetachAllObject();
    const auto detached = gl.Rec.CallsOf("glDetachShader");
    ASSERT_EQ(detached.size(), 256u);
    EXPECT_EQ(detached.front().Text(), "glDetachShader(5, 1000)");
    EXPECT_EQ(detached.back().Text(), "glDetachShader(5, 1255)");
    EXPECT_EQ(gl.Rec.CallsOf("glGetAttachedShaders")[0].Text(), "glGetAttachedShaders(5, 256, ptr, ptr)");
}

TEST(GLProgramHandle, UseAndUnUseCountTheirCalls)
{
    FakeDriver gl;
    TGLProgramHandle program;
    program.AllocateHandle();
    gl.Rec.Clear();
    program.UseProg();
    program.UseProg();
    EXPECT_TRUE(program.Using());
    program.UnUseProg();
    program.UnUseProg();
    EXPECT_FALSE(program.Using());
    EXPECT_EQ(gl.Rec.Texts(), (Texts{"glUseProgram(5)", "glUseProgram(5)", "glUseProgram(0)"}));
}

TEST(GLProgramHandle, AProgramWithoutANameDeletesNothing)
{
    FakeDriver gl;
    gl.ProgramName = 0;
    {
        TGLProgramHandle program;
        EXPECT_THROW(program.AllocateHandle(), Exception);
    }
    EXPECT_EQ(gl.Rec.Texts(), (Texts{"glCreateProgram()"}));
}

}  // namespace
}  // namespace orvane
