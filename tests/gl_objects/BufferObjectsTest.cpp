#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "gl_objects/GLBufferObjects.h"
#include "tests/support/GlRecorder.h"

namespace orvane {
namespace {

using namespace dglOpenGL;
using testing::GlRecorder;
using Texts = std::vector<std::string>;

struct FakeBuffers {
    GlRecorder Rec;
    GLuint NextName = 3;
    std::vector<GLuint> Deleted;

    FakeBuffers()
    {
        Rec.Record<&glGenVertexArrays>([this](GLsizei, GLuint* names) { names[0] = NextName++; });
        Rec.Record<&glGenBuffers>([this](GLsizei, GLuint* names) { names[0] = NextName++; });
        Rec.Record<&glDeleteVertexArrays>([this](GLsizei, const GLuint* names) { Deleted.push_back(names[0]); });
        Rec.Record<&glDeleteBuffers>([this](GLsizei, const GLuint* names) { Deleted.push_back(names[0]); });
        Rec.Record<&glBindVertexArray>();
        Rec.Record<&glBindBuffer>();
        Rec.Record<&glBufferData>();
        Rec.Record<&glBufferSubData>();
    }
};

TEST(GLBufferObjects, BindAndUnBindNeedNoName)
{
    FakeBuffers gl;
    {
        TGLVAOObject vao;
        TGLEBOObject ebo;
        vao.Bind();
        vao.UnBind();
        ebo.Bind();
        ebo.UnBind();
    }
    EXPECT_EQ(gl.Rec.Texts(), (Texts{"glBindVertexArray(0)", "glBindVertexArray(0)", "glBindBuffer(34963, 0)",
                                     "glBindBuffer(34963, 0)"}));
}

TEST(GLBufferObjects, UploadsRecordTheSizeOfTheLatestStore)
{
    FakeBuffers gl;
    TGLVBOObject vbo;
    EXPECT_EQ(vbo.Size(), 0);
    vbo.AllocateHandle();
    vbo.Bind();
    const float data[6] = {};
    vbo.BufferData(data, 24, GL_STATIC_DRAW);
    vbo.BufferData(nullptr, 0, GL_STATIC_DRAW);
    EXPECT_EQ(vbo.Size(), 0);
    vbo.BufferData(data, 12, GL_STATIC_DRAW);
    vbo.BufferSubData(data, 8, 16);  // beyond the store: GL's business, the size stays
    EXPECT_EQ(vbo.Size(), 12);
    EXPECT_EQ(gl.Rec.Texts(),
              (Texts{"glGenBuffers(1, ptr)", "glBindBuffer(34962, 3)", "glBufferData(34962, 24, ptr, 35044)",
                     "glBufferData(34962, 0, nil, 35044)", "glBufferData(34962, 12, ptr, 35044)",
                     "glBufferSubData(34962, 8, 16, ptr)"}));
}

TEST(GLBufferObjects, EachNameIsDeletedOnceWithItsObject)
{
    FakeBuffers gl;
    {
        TGLVAOObject vao;
        TGLVBOObject vbo;
        TGLEBOObject unused;
        vao.AllocateHandle();
        vbo.AllocateHandle();
        vao.DestroyHandle();
    }
    EXPECT_EQ(gl.Deleted, (std::vector<GLuint>{3, 4}));
    EXPECT_EQ(gl.Rec.Count("glDeleteVertexArrays") + gl.Rec.Count("glDeleteBuffers"), 2u);
}

TEST(GLBufferObjects, NoVertexArraysMeansAllocationFailure)
{
    FakeBuffers gl;
    TGLVAOObject vao;
    gl.NextName = 0;
    EXPECT_THROW(vao.AllocateHandle(), Exception);
    // An entry point that is not loaded is not called.
    const auto loaded = glGenVertexArrays;
    glGenVertexArrays = nullptr;
    try {
        vao.AllocateHandle();
        ADD_FAILURE() << "no exception";
    } catch (const Exception& e) {
        EXPECT_STREQ(e.what(), "Allocate Resource Failure!");
    }
    glGenVertexArrays = loaded;
    EXPECT_EQ(vao.Handle(), 0u);
    EXPECT_EQ(gl.Rec.Count("glGenVertexArrays"), 1u);
}

}  // namespace
}  // namespace orvane
