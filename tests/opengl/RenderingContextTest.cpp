// Creating rendering contexts: the pixel format request, its mapping onto EGL, and every
// failure with its message.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "opengl/PixelFormatMap.h"
#include "opengl/Platform.h"
#include "opengl/dglOpenGL.h"
#include "tests/support/GlRecorder.h"
#include "tests/support/GlTableSnapshot.h"

namespace orvane {
namespace {

using namespace dglOpenGL;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using testing::GlRecorder;

template <typename E, typename F>
std::string MessageOf(F action)
{
    try {
        action();
    } catch (const E& e) {
        return e.what();
    }
    return "(nothing raised)";
}

TEST(PixelFormat, FieldsAreComputedAsTheRequestSays)
{
    TOffscreenDC dc(4, 4);
    const auto pfd = RenderingPixelFormat(dc.Handle(), {opDoubleBuffered, opStereo}, 32 + 256, 24,
                                          8, 64, 2, 0);
    EXPECT_EQ(pfd.nSize, 40);
    EXPECT_EQ(pfd.nVersion, 1);
    EXPECT_EQ(pfd.dwFlags, PFD_SUPPORT_OPENGL | PFD_DRAW_TO_WINDOW | PFD_DOUBLEBUFFER | PFD_STEREO);
    EXPECT_EQ(pfd.iPixelType, PFD_TYPE_RGBA);
    EXPECT_EQ(pfd.cColorBits, 32);  // cut to a byte
    EXPECT_EQ(pfd.cDepthBits, 24);
    EXPECT_EQ(pfd.cStencilBits, 8);
    EXPECT_EQ(pfd.cAccumBits, 64);
    EXPECT_EQ(pfd.cAuxBuffers, 2);
    EXPECT_EQ(pfd.cRedBits + pfd.cAlphaBits + pfd.dwLayerMask, 0u);
    EXPECT_EQ(RenderingPixelFormat(dc.Handle(), {opGDI}, 24, 0, 0, 0, 0, 0).dwFlags,
              PFD_SUPPORT_OPENGL | PFD_DRAW_TO_WINDOW | PFD_SUPPORT_GDI);
}

TEST(PixelFormat, LayerSignGivesTheLayerType)
{
    TOffscreenDC dc(4, 4);
    const auto layerType = [&](int layer) {
        return RenderingPixelFormat(dc.Handle(), {}, 32, 24, 8, 0, 0, layer).iLayerType;
    };
    EXPECT_EQ(layerType(0), PFD_MAIN_PLANE);
    EXPECT_EQ(layerType(7), PFD_OVERLAY_PLANE);
    EXPECT_EQ(layerType(-3), 0xFF);
}

TEST(PixelFormat, MappingNamesEveryFieldAndIgnoresWhatEglLacks)
{
    const char* fields[] = {"nSize", "nVersion", "dwFlags", "iPixelType", "cColorBits",
        "cRedBits", "cRedShift", "cGreenBits", "cGreenShift", "cBlueBits", "cBlueShift",
        "cAlphaBits", "cAlphaShift", "cAccumBits", "cAccumRedBits", "cAccumGreenBits",
        "cAccumBlueBits", "cAccumAlphaBits", "cDepthBits", "cStencilBits", "cAuxBuffers",
        "iLayerType", "bReserved", "dwLayerMask", "dwVisibleMask", "dwDamageMask"};
    const auto table = PixelFormatFields();
    ASSERT_EQ(table.size(), std::size(fields));
    for (std::size_t i = 0; i < table.size(); ++i) {
        EXPECT_STREQ(table[i].Field, fields[i]);
        if (!table[i].Apply) {
            EXPECT_THAT(table[i].Fate, StartsWith("computed, ignored: ")) << fields[i];
        }
    }

    PIXELFORMATDESCRIPTOR plain{};
    plain.dwFlags = PFD_SUPPORT_OPENGL | PFD_DRAW_TO_WINDOW;
    plain.cColorBits = 32;
    plain.cDepthBits = 24;
    auto extras = plain;
    extras.dwFlags |= PFD_DOUBLEBUFFER | PFD_STEREO | PFD_SUPPORT_GDI;
    extras.cAccumBits = 64;
    extras.cAuxBuffers = 4;
    extras.iLayerType = PFD_UNDERLAY_PLANE;
    EXPECT_EQ(ConfigRequest(extras).Attributes, ConfigRequest(plain).Attributes);
    const auto request = ConfigRequest(plain);
    EXPECT_EQ(request.ExactChannelBits, 8);
    EXPECT_TRUE(request.ExactAlpha);
    plain.cColorBits = 24;
    EXPECT_FALSE(ConfigRequest(plain).ExactAlpha);
}

TEST(RenderingContext, ChosenFormatHasEightBitsAChannelAndTheDepthAskedFor)
{
    testing::GlTableSnapshot snapshot;
    TOffscreenDC dc(4, 4);
    LastPixelFormat = 5;
    HGLRC rc = CreateRenderingContext(dc.Handle(), {}, 32, 24, 8, 0, 0, 0);
    ASSERT_NE(rc, nullptr);
    EXPECT_EQ(LastPixelFormat, 0);
    EXPECT_EQ(wglGetCurrentContext(), nullptr);
    PIXELFORMATDESCRIPTOR pfd{};
    ASSERT_GT(DescribePixelFormat(dc.Handle(), GetPixelFormat(dc.Handle()), sizeof pfd, &pfd), 0);
    EXPECT_EQ(pfd.cRedBits, 8);
    EXPECT_EQ(pfd.cGreenBits, 8);
    EXPECT_EQ(pfd.cBlueBits, 8);
    EXPECT_EQ(pfd.cAlphaBits, 8);
    EXPECT_GE(pfd.cDepthBits, 24);
    EXPECT_GE(pfd.cStencilBits, 8);
    // The pixel format of a device context is set once.
    EXPECT_EQ(SetPixelFormat(dc.Handle(), GetPixelFormat(dc.Handle()) + 1, &pfd), 0);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PIXEL_FORMAT);

    ActivateRenderingContext(dc.Handle(), rc, false);
    EXPECT_TRUE(GL_VERSION_2_1);
    EXPECT_EQ(DestroyRenderingContext(rc), 1);
    EXPECT_EQ(wglGetCurrentContext(), nullptr);  // deleted while current: released first
}

TEST(RenderingContext, MissingLibraryIsReported)
{
    testing::GlTableSnapshot snapshot;
    const auto saved = DefaultLibraryNames();
    SetDefaultLibraryNames({"libNoSuchGL.so.1", "libNoSuchGLU.so.1"});
    EXPECT_FALSE(InitOpenGL("libNoSuchGL.so.1", "libNoSuchGLU.so.1"));
    TOffscreenDC dc(4, 4);
    const auto plain = MessageOf<Exception>(
        [&] { CreateRenderingContext(dc.Handle(), {}, 32, 24, 8, 0, 0, 0); });
    const auto version = MessageOf<Exception>(
        [&] { CreateRenderingContextVersion(dc.Handle(), {}, 3, 3, false, 32, 24, 8, 0, 0, 0); });
    SetDefaultLibraryNames(saved);
    EXPECT_EQ(plain, "GL_LibHandle is NIL. Could not load OpenGL library!");
    EXPECT_EQ(version, "GL_LibHandle is NIL. Could not load OpenGL library!");
    EXPECT_EQ(GL_LibHandle, nullptr);
}

TEST(RenderingContext, VersionTheDriverLacksIsReportedWithNoContextLeftCurrent)
{
    TOffscreenDC dc(4, 4);
    EXPECT_EQ(MessageOf<Exception>([&] {
                  CreateRenderingContextVersion(dc.Handle(), {}, 9, 9, false, 32, 24, 8, 0, 0, 0);
              }),
              "Could not create the desired OpenGL rendering context!");
    EXPECT_EQ(wglGetCurrentContext(), nullptr);
}

TEST(RenderingContext, ForwardCompatibleRequestStillGetsTheCompatibilityProfile)
{
    testing::GlTableSnapshot snapshot;
    TOffscreenDC dc(4, 4);
    HGLRC rc = CreateRenderingContextVersion(dc.Handle(), {}, 3, 3, true, 32, 24, 8, 0, 0, 0);
    ActivateRenderingContext(dc.Handle(), rc, false);
    GLint profile = 0;
    glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &profile);
    EXPECT_EQ(static_cast<GLuint>(profile), GL_CONTEXT_COMPATIBILITY_PROFILE_BIT);
    DeactivateRenderingContext();
    DestroyRenderingContext(rc);
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
    EXPECT_EQ(MessageOf<Exception>([&] {
                  CreateRenderingContextVersion(dc.Handle(), {}, 3, 3, false, 32, 24, 8, 0, 0, 0);
              }),
              "Could not get function pointer adress for wglCreateContextAttribsARB - OpenGL 3.x "
              "and above not supported!");
    ASSERT_EQ(rec.Count("wglDeleteContext"), 1u);
    EXPECT_NE(temporary, nullptr);
    EXPECT_EQ(rec.CallsOf("wglDeleteContext")[0].Pointer(0), temporary);
    EXPECT_EQ(rec.Names().back(), "wglDeleteContext");
    EXPECT_EQ(wglGetCurrentContext(), nullptr);
}

TEST(RenderingContext, PlatformFailuresRaiseTheLastSystemError)
{
    testing::GlTableSnapshot snapshot;
    TOffscreenDC dc(4, 4);
    EXPECT_EQ(MessageOf<EOSError>([&] { CreateRenderingContext(dc.Handle(), {}, 32, 200, 8, 0, 0, 0); }),
              "System Error. Code: 2000.\nNo EGL config of the display offers 32 colour bits, 200 "
              "depth bits and 8 stencil bits");
    EXPECT_EQ(MessageOf<EOSError>([&] { CreateRenderingContext(nullptr, {}, 32, 24, 8, 0, 0, 0); }),
              "System Error. Code: 6.\nThe handle is not a device context of this platform layer");

    ASSERT_TRUE(InitOpenGL("libGL.so.1", "libGLU.so.1"));
    GlRecorder rec;
    rec.Record<&dglOpenGL::wglCreateContext>([](HDC) -> HGLRC {
        SetLastError(5, "Access is denied.");
        return nullptr;
    });
    TOffscreenDC other(4, 4);
    EXPECT_EQ(MessageOf<EOSError>([&] { CreateRenderingContext(other.Handle(), {}, 32, 24, 8, 0, 0, 0); }),
              "System Error. Code: 5.\nAccess is denied.");
}

TEST(RenderingContext, ActivationAssertsBothHandles)
{
    TOffscreenDC dc(4, 4);
    int something = 0;
    EXPECT_THAT(MessageOf<EAssertionFailed>([&] { ActivateRenderingContext(nullptr, &something, true); }),
                StartsWith("DC must not be 0 (dglOpenGL, line "));
    EXPECT_THAT(MessageOf<EAssertionFailed>([&] { ActivateRenderingContext(dc.Handle(), nullptr, true); }),
                StartsWith("RC must not be 0 (dglOpenGL, line "));
}

}  // namespace
}  // namespace orvane
