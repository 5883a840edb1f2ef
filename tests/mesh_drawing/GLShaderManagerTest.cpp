#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "mesh_drawing/GLShaderManager.h"
#include "opengl/dglOpenGL.h"
#include "shaders/ShaderResources.h"
#include "tests/support/OffscreenGL.h"

namespace orvane {
namespace {

using testing::OffscreenGL;

// Counts the resource reads, and can make one name missing.
struct CountingFinder {
    std::vector<std::string> Reads;
    std::string Missing;
    TResourceFinder Previous;

    CountingFinder()
    {
        Previous = SetResourceFinder([this](const std::string& name, Cardinal type, std::string& bytes) {
            Reads.push_back(name);
            return name != Missing && FindEmbeddedResource(name, type, bytes);
        });
    }
    ~CountingFinder() { SetResourceFinder(Previous); }
};

TEST(GLShaderManager, OneShaderPerContextFilledFromTheResourcesOnce)
{
    CountingFinder finder;
    OffscreenGL a(8, 8);
    OffscreenGL b(8, 8);
    TGLShaderManager manager;
    a.MakeCurrent();
    TGLSLShader* first = manager.GetShader();
    EXPECT_EQ(manager.GetShader(), first);
    EXPECT_EQ(finder.Reads, (std::vector<std::string>{"VertShader", "FragShader"}));
    EXPECT_TRUE(first->Validated());
    EXPECT_TRUE(first->VertexProgram().Enabled() && first->FragmentProgram().Enabled());
    EXPECT_EQ(first->VertexProgram().Code()[0], "#version 330 core");
    std::string bytes;
    ASSERT_TRUE(FindEmbeddedResource("VertShader", RT_RCDATA, bytes));
    EXPECT_EQ(first->VertexProgram().Code().Text(), bytes);
    // No GL work yet: the shader compiles at its first use.
    EXPECT_EQ(first->GLSLProg().Handle(), 0u);

    b.MakeCurrent();
    TGLSLShader* second = manager.GetShader();
    EXPECT_NE(second, first);
    EXPECT_EQ(manager.Count(), 2);
    EXPECT_EQ(finder.Reads.size(), 4u);
}

TEST(GLShaderManager, FreeingGoesIntoTheContextAndComesBack)
{
    OffscreenGL a(8, 8);
    OffscreenGL b(8, 8);
    TGLShaderManager manager;
    a.MakeCurrent();
    manager.GetShader()->ApplyShader();
    manager.GetShader()->UnApplyShader();  // a program in use outlives its deletion
    const Cardinal programA = manager.GetShader()->GLSLProg().Handle();
    b.MakeCurrent();
    TGLSLShader* inB = manager.GetShader();

    // A context without an entry: nothing changes.
    manager.FreeShader(a.DC(), nullptr);
    EXPECT_EQ(manager.Count(), 2);
    EXPECT_EQ(wglGetCurrentContext(), b.RC());

    manager.FreeShader(a.DC(), a.RC());
    EXPECT_EQ(manager.Count(), 1);
    EXPECT_EQ(wglGetCurrentContext(), b.RC());
    EXPECT_EQ(wglGetCurrentDC(), b.DC());
    a.MakeCurrent();
    EXPECT_FALSE(dglOpenGL::glIsProgram(programA));
    // The next request in that context makes a new shader.
    EXPECT_NE(manager.GetShader(), nullptr);
    EXPECT_EQ(manager.Count(), 2);

    // The shader of the current context is freed there, without a switch.
    b.MakeCurrent();
    EXPECT_EQ(manager.GetShader(), inB);
    manager.FreeShader(b.DC(), b.RC());
    EXPECT_EQ(manager.Count(), 1);
    EXPECT_EQ(wglGetCurrentContext(), b.RC());

    // Where the switch fails, the shader stays.
    manager.FreeShader(nullptr, a.RC());
    EXPECT_EQ(manager.Count(), 1);
    EXPECT_EQ(wglGetCurrentContext(), b.RC());
}

TEST(GLShaderManager, AMissingSourceRaisesAndRegistersNothing)
{
    CountingFinder finder;
    finder.Missing = "FragShader";
    OffscreenGL gl(8, 8);
    TGLShaderManager manager;
    try {
        manager.GetShader();
        FAIL() << "no exception";
    } catch (const EResNotFound& e) {
        EXPECT_STREQ(e.what(), "Resource FragShader not found");
    }
    EXPECT_EQ(manager.Count(), 0);
}

TEST(GLShaderManager, NoCurrentContextIsAKeyLikeAnyOther)
{
    TGLShaderManager manager;
    {
        OffscreenGL gl(8, 8);
        dglOpenGL::DeactivateRenderingContext();
        ASSERT_EQ(wglGetCurrentContext(), nullptr);
        TGLSLShader* shader = manager.GetShader();
        EXPECT_EQ(manager.GetShader(), shader);
        EXPECT_EQ(manager.Count(), 1);
    }
}

}  // namespace
}  // namespace orvane
