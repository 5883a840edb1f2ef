// Rendering contexts on the machine's Mesa: what a created 3.3 context reports, the entry
// points that appear when it is activated, and a triangle read back.
#include <gtest/gtest.h>

#include <string>

#include "opengl/Platform.h"
#include "opengl/dglOpenGL.h"
#include "tests/support/GlTableSnapshot.h"
#include "tests/support/OffscreenGL.h"

namespace orvane {
namespace {

using namespace dglOpenGL;

TEST(MesaContext, VersionContextIsCompatibilityWithLaterEntryPointsOnlyAfterActivation)
{
    testing::GlTableSnapshot snapshot;
    ASSERT_TRUE(InitOpenGL("libGL.so.1", "libGLU.so.1"));
    ReadExtensions();  // no context current: only what OpenGL 1.1 has
    EXPECT_NE(glBegin, nullptr);
    EXPECT_NE(glVertex3d, nullptr);
    for (void* later : {reinterpret_cast<void*>(glGenBuffers), reinterpret_cast<void*>(glGenVertexArrays),
                        reinterpret_cast<void*>(glCreateShader), reinterpret_cast<void*>(glUniformMatrix4fv),
                        reinterpret_cast<void*>(glGenerateMipmap), reinterpret_cast<void*>(glDrawRangeElements)})
        EXPECT_EQ(later, nullptr);

    TOffscreenDC dc(8, 8);
    HGLRC rc = CreateRenderingContextVersion(dc.Handle(), {}, 3, 3, false, 32, 24, 8, 0, 0, 0);
    ASSERT_NE(rc, nullptr);
    EXPECT_EQ(wglGetCurrentContext(), nullptr);  // created, not made current
    EXPECT_EQ(glGenBuffers, nullptr);

    ActivateRenderingContext(dc.Handle(), rc, true);
    EXPECT_EQ(wglGetCurrentContext(), rc);
    EXPECT_TRUE(ImplementationRead);
    EXPECT_TRUE(ExtensionsRead);
    EXPECT_TRUE(GL_VERSION_3_3);
    GLint major = 0, minor = 0, profile = 0;
    glGetIntegerv(GL_MAJOR_VERSION, &major);
    glGetIntegerv(GL_MINOR_VERSION, &minor);
    glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &profile);
    EXPECT_GE(major * 10 + minor, 33);
    EXPECT_TRUE(static_cast<GLuint>(profile) & GL_CONTEXT_COMPATIBILITY_PROFILE_BIT);
    for (void* later : {reinterpret_cast<void*>(glGenBuffers), reinterpret_cast<void*>(glGenVertexArrays),
                        reinterpret_cast<void*>(glCreateShader), reinterpret_cast<void*>(glUniformMatrix4fv),
                        reinterpret_cast<void*>(glGenerateMipmap), reinterpret_cast<void*>(glDrawRangeElements)})
        EXPECT_NE(later, nullptr);

    EXPECT_EQ(DeactivateRenderingContext(), 1);
    EXPECT_EQ(wglGetCurrentContext(), nullptr);
    EXPECT_EQ(DestroyRenderingContext(rc), 1);
}

TEST(MesaContext, FixedFunctionTriangleIsReadBack)
{
    testing::OffscreenGL gl(32, 32);
    glClearColor(0.0f, 0.0f, 1.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glColor3ub(255, 0, 0);
    glBegin(GL_TRIANGLES);
    glVertex2i(-1, -1);
    glVertex2i(1, -1);
    glVertex2i(-1, 1);
    glEnd();
    glFinish();
    const auto inside = gl.Pixel(4, 4);
    const auto outside = gl.Pixel(28, 28);
    EXPECT_EQ((std::array<std::uint8_t, 4>{255, 0, 0, 255}), inside);
    EXPECT_EQ((std::array<std::uint8_t, 4>{0, 0, 255, 255}), outside);
    const auto all = gl.ReadPixels();
    ASSERT_EQ(all.size(), 32u * 32u * 4u);
    EXPECT_EQ(all[0], 255);  // bottom-left corner first
}

}  // namespace
}  // namespace orvane
