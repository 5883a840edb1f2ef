// Two contexts, each made current and back: the current context and device context answer
// what was made current, which is what a per-context shader cache relies on.
#include <gtest/gtest.h>

#include "opengl/Platform.h"
#include "opengl/dglOpenGL.h"
#include "tests/support/OffscreenGL.h"

namespace orvane {
namespace {

TEST(ContextSwitch, CurrentContextAndDeviceContextFollowMakeCurrent)
{
    testing::OffscreenGL first(4, 4);
    testing::OffscreenGL second(8, 8);  // current now
    EXPECT_EQ(wglGetCurrentContext(), second.RC());
    EXPECT_EQ(wglGetCurrentDC(), second.DC());

    ASSERT_EQ(wglMakeCurrent(first.DC(), first.RC()), 1);
    EXPECT_EQ(wglGetCurrentContext(), first.RC());
    EXPECT_EQ(wglGetCurrentDC(), first.DC());
    dglOpenGL::GLint viewport[4] = {};
    dglOpenGL::glGetIntegerv(dglOpenGL::GL_VIEWPORT, viewport);
    EXPECT_EQ(viewport[2], 4);  // the state of the first context

    ASSERT_EQ(wglMakeCurrent(second.DC(), second.RC()), 1);
    EXPECT_EQ(wglGetCurrentDC(), second.DC());
    dglOpenGL::glGetIntegerv(dglOpenGL::GL_VIEWPORT, viewport);
    EXPECT_EQ(viewport[2], 8);

    ASSERT_EQ(wglMakeCurrent(nullptr, nullptr), 1);
    EXPECT_EQ(wglGetCurrentContext(), nullptr);
    EXPECT_EQ(wglGetCurrentDC(), nullptr);
    EXPECT_EQ(dglOpenGL::DeactivateRenderingContext(), 1);  // none current: nothing to release
}

TEST(ContextSwitch, BadHandlesFailWithReadableErrors)
{
    testing::OffscreenGL gl(4, 4);
    int notADeviceContext = 0;
    EXPECT_EQ(wglMakeCurrent(reinterpret_cast<HDC>(&notADeviceContext), gl.RC()), 0);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_EQ(wglGetCurrentContext(), gl.RC());  // still current

    TOffscreenDC unformatted(4, 4);
    EXPECT_EQ(wglCreateContext(unformatted.Handle()), nullptr);
    EXPECT_EQ(LastErrorText(), "The device context has no pixel format");
    EXPECT_EQ(GetPixelFormat(unformatted.Handle()), 0);

    const int unknown[] = {0x1234, 1, 0};
    EXPECT_EQ(wglCreateContextAttribsARB(gl.DC(), nullptr, unknown), nullptr);
    EXPECT_EQ(LastErrorText(), "Unknown context attribute 4660");
}

}  // namespace
}  // namespace orvane
