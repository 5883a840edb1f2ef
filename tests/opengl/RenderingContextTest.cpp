// Rendering contexts: the pixel format request and its mapping onto EGL, contexts made and
// switched on the machine's Mesa, and every failure with its message.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "opengl/PixelFormatMap.h"
#include "opengl/Platform.h"
#include "opengl/dglOpenGL.h"
#include "tests/support/GlRecorder.h"
#include "tests/support/GlTableSnapshot.h"
#include "tests/support/MessageCapture.h"
#include "tests/support/OffscreenGL.h"

namespace orvane {
namespace {

using namespace dglOpenGL;
using ::testing::StartsWith;
using testing::GlRecorder;
using testing::Raised;

HGLRC CreateVersion(HDC dc, int major = 3, bool forward = false)
{
    return CreateRenderingContextVersion(dc, {}, major, 3, forward, 32, 24, 8, 0, 0, 0);
}

TEST(PixelFormat, FieldsAreComputedAsTheRequestSaysAndEglIgnoresTheExtras)
{
    TOffscreenDC dc(4, 4);
    const auto pfd = RenderingPixelFormat(dc.Handle(), {opDoubleBuffered, opStereo}, 32 + 256, 24, 8, 64, 2, 0);
    EXPECT_EQ(pfd.dwFlags, PFD_SUPPORT_OPENGL | PFD_DRAW_TO_WINDOW | PFD_DOUBLEBUFFER | PFD_STEREO);
    // The colour bits cut to a byte.
    EXPECT_EQ((std::vector<int>{pfd.nSize, pfd.nVersion, pfd.iPixelType, pfd.cColorBits, pfd.cDepthBits, pfd.cStencilBits, pfd.cAccumBits, pfd.cAuxBuffers}),
              (std::vector<int>{40, 1, PFD_TYPE_RGBA, 32, 24, 8, 64, 2}));
    EXPECT_EQ(pfd.cRedBits + pfd.cAlphaBits + pfd.dwLayerMask, 0u);
    EXPECT_EQ(RenderingPixelFormat(dc.Handle(), {opGDI}, 24, 0, 0, 0, 0, 0).dwFlags,
              PFD_SUPPORT_OPENGL | PFD_DRAW_TO_WINDOW | PFD_SUPPORT_GDI);
    for (const auto& [layer, type] : {std::pair{0, PFD_MAIN_PLANE}, {7, PFD_OVERLAY_PLANE}, {-3, 0xFF}})
        EXPECT_EQ(RenderingPixelFormat(dc.Handle(), {}, 32, 24, 8, 0, 0, layer).iLayerType, type) << layer;

    // EGL has no double buffering, stereo, GDI, accumulation, auxiliary buffers or layers.
    PIXELFORMATDESCRIPTOR plain{};
    plain.dwFlags = PFD_SUPPORT_OPENGL | PFD_DRAW_TO_WINDOW, plain.cColorBits = 32, plain.cDepthBits = 24;
    auto extras = plain;
    extras.dwFlags |= PFD_DOUBLEBUFFER | PFD_STEREO | PFD_SUPPORT_GDI;
    extras.cAccumBits = 64, extras.cAuxBuffers = 4, extras.iLayerType = PFD_UNDERLAY_PLANE;
    EXPECT_EQ(ConfigRequest(extras).Attributes, ConfigRequest(plain).Attributes);
    EXPECT_TRUE(ConfigRequest(plain).ExactChannelBits == 8 && ConfigRequest(plain).ExactAlpha);
    plain.cColorBits = 24;
    EXPECT_FALSE(ConfigRequest(plain).ExactAlpha);
}

TEST(RenderingContext, ChosenFormatHasEightBitsAChannelAndIsSetOnce)
{
    testing::GlTableSnapshot snapshot;
    TOffscreenDC dc(4, 4);
    LastPixelFormat = 5;
    HGLRC rc = CreateRenderingContext(dc.Handle(), {}, 32, 24, 8, 0, 0, 0);
    ASSERT_NE(rc, nullptr);
    EXPECT_EQ(LastPixelFormat, 0);
    EXPECT_EQ(wglGetCurrentContext(), nullptr);  // created, not made current
    PIXELFORMATDESCRIPTOR pfd{};
    ASSERT_GT(DescribePixelFormat(dc.Handle(), GetPixelFormat(dc.Handle()), sizeof pfd, &pfd), 0);
    EXPECT_EQ((std::vector<int>{pfd.cRedBits, pfd.cGreenBits, pfd.cBlueBits, pfd.cAlphaBits}),
              (std::vector<int>{8, 8, 8, 8}));
    EXPECT_TRUE(pfd.cDepthBits >= 24 && pfd.cStencilBits >= 8);
    EXPECT_EQ(SetPixelFormat(dc.Handle(), GetPixelFormat(dc.Handle()) + 1, &pfd), 0);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PIXEL_FORMAT);

    ActivateRenderingContext(dc.Handle(), rc, false);
    EXPECT_TRUE(GL_VERSION_2_1);
    EXPECT_EQ(DestroyRenderingContext(rc), 1);
    EXPECT_EQ(wglGetCurrentContext(), nullptr);  // deleted while current: released first

    // A forward-compatible request gets a forward-compatible core profile, a plain one the
    // compatibility profile.
    for (const auto& [forward, profile, flags] : {std::tuple{true, GL_CONTEXT_CORE_PROFILE_BIT, GL_CONTEXT_FLAG_FORWARD_COMPATIBLE_BIT},
                                                  {false, GL_CONTEXT_COMPATIBILITY_PROFILE_BIT, 0u}}) {
        rc = CreateVersion(dc.Handle(), 3, forward);
        ActivateRenderingContext(dc.Handle(), rc, false);
        GLint mask = 0, flagBits = 0;
        glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &mask);
        glGetIntegerv(GL_CONTEXT_FLAGS, &flagBits);
        EXPECT_EQ(static_cast<GLuint>(mask), profile) << forward;
        EXPECT_EQ(static_cast<GLuint>(flagBits) & GL_CONTEXT_FLAG_FORWARD_COMPATIBLE_BIT, flags) << forward;
        DeactivateRenderingContext();
        DestroyRenderingContext(rc);
    }
}

TEST(RenderingContext, FailuresAreReportedWithTheirMessages)
{
    testing::GlTableSnapshot snapshot;
    TOffscreenDC dc(4, 4), unformatted(4, 4);
    EXPECT_EQ(Raised<Exception>([&] { CreateVersion(dc.Handle(), 9); }),
              "Could not create the desired OpenGL rendering context!");
    EXPECT_EQ(wglGetCurrentContext(), nullptr);
    EXPECT_EQ(Raised<EOSError>([&] { CreateRenderingContext(dc.Handle(), {}, 32, 200, 8, 0, 0, 0); }),
              "System Error. Code: 2000.\nNo EGL config of the display offers 32 colour bits, 200 "
              "depth bits and 8 stencil bits");
    EXPECT_EQ(Raised<EOSError>([&] { CreateRenderingContext(nullptr, {}, 32, 24, 8, 0, 0, 0); }),
              "System Error. Code: 6.\nThe handle is not a device context of this platform layer");
    int something = 0;
    EXPECT_THAT(Raised<EAssertionFailed>([&] { ActivateRenderingContext(nullptr, &something, true); }),
                StartsWith("DC must not be 0 (dglOpenGL, line "));
    EXPECT_THAT(Raised<EAssertionFailed>([&] { ActivateRenderingContext(dc.Handle(), nullptr, true); }),
                StartsWith("RC must not be 0 (dglOpenGL, line "));
    EXPECT_EQ(wglCreateContext(unformatted.Handle()), nullptr);
    EXPECT_EQ(LastErrorText(), "The device context has no pixel format");
    EXPECT_EQ(GetPixelFormat(unformatted.Handle()), 0);
    testing::OffscreenGL gl(4, 4);
    int notADeviceContext = 0;
    EXPECT_EQ(wglMakeCurrent(reinterpret_cast<HDC>(&notADeviceContext), gl.RC()), 0);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_EQ(wglGetCurrentContext(), gl.RC());  // still current
    const int unknown[] = {0x1234, 1, 0};
    EXPECT_EQ(wglCreateContextAttribsARB(dc.Handle(), nullptr, unknown), nullptr);
    EXPECT_EQ(LastErrorText(), "Unknown context attribute 4660");

    ASSERT_TRUE(InitOpenGL("libGL.so.1", "libGLU.so.1"));
    GlRecorder rec;
    rec.Record<&dglOpenGL::wglCreateContext>([](HDC) -> HGLRC {
        SetLastError(5, "Access is denied.");
        return nullptr;
    });
    EXPECT_EQ(Raised<EOSError>([&] { CreateRenderingContext(unformatted.Handle(), {}, 32, 24, 8, 0, 0, 0); }),
              "System Error. Code: 5.\nAccess is denied.");
    // Without its temporary context a versioned request goes on and still makes its context.
    HGLRC rc = nullptr;
    EXPECT_NO_THROW(rc = CreateVersion(dc.Handle()));
    EXPECT_NE(rc, nullptr);
    DestroyRenderingContext(rc);
}

TEST(RenderingContext, MissingLibraryIsReported)
{
    testing::GlTableSnapshot snapshot;
    const auto saved = DefaultLibraryNames();
    SetDefaultLibraryNames({"libNoSuchGL.so.1", "libNoSuchGLU.so.1"});
    EXPECT_FALSE(InitOpenGL("libNoSuchGL.so.1", "libNoSuchGLU.so.1"));
    TOffscreenDC dc(4, 4);
    const auto plain = Raised<Exception>([&] { CreateRenderingContext(dc.Handle(), {}, 32, 24, 8, 0, 0, 0); });
    const auto version = Raised<Exception>([&] { CreateVersion(dc.Handle()); });
    SetDefaultLibraryNames(saved);
    EXPECT_EQ(plain, "GL_LibHandle is NIL. Could not load OpenGL library!");
    EXPECT_EQ(version, plain);
    EXPECT_EQ(GL_LibHandle, nullptr);
}

TEST(RenderingContext, MissingCreateContextAttribsDeletesTheTemporaryContextFirst)
{
    testing::GlTableSnapshot snapshot;
    ASSERT_TRUE(InitOpenGL("libGL.so.1", "libGLU.so.1"));
    TOffscreenDC dc(4, 4);
    static TwglCreateContext realCreate;
    static TwglDeleteContext realDelete;
    static HGLRC temporary;
    realCreate = dglOpenGL::wglCreateContext;
    realDelete = dglOpenGL::wglDeleteContext;
    GlRecorder rec;
    rec.Record<&dglOpenGL::wglCreateContext>([](HDC dc) { return temporary = realCreate(dc); });
    rec.Record<&dglOpenGL::wglDeleteContext>([](HGLRC rc) { return realDelete(rc); });
    rec.Record<&dglOpenGL::wglGetProcAddress>();  // answers nil for every name
    EXPECT_EQ(Raised<Exception>([&] { CreateVersion(dc.Handle()); }),
              "Could not get function pointer adress for wglCreateContextAttribsARB - OpenGL 3.x "
              "and above not supported!");
    ASSERT_EQ(rec.Count("wglDeleteContext"), 1u);
    EXPECT_NE(temporary, nullptr);
    EXPECT_TRUE(rec.Calls().back().Name == "wglDeleteContext" && rec.Calls().back().Pointer(0) == temporary);
    EXPECT_EQ(wglGetCurrentContext(), nullptr);
}

}  // namespace
}  // namespace orvane
