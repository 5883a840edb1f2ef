// Creation, activation and deletion of rendering contexts.
#include <vector>

#include "contracts/SysUtils.h"
#include "opengl/Platform.h"
#include "opengl/dglOpenGL.h"

namespace dglOpenGL {

int LastPixelFormat = 0;

namespace {

constexpr const char* kUnitName = "dglOpenGL";

void EnsureLibrary()
{
    if (!GL_LibHandle)
        InitOpenGL(DefaultLibraryNames().GL, DefaultLibraryNames().GLU);
    if (!GL_LibHandle)
        throw orvane::Exception(SGLLibraryNotLoaded);
}

void SetupPixelFormat(HDC dc, TRCOptions options, int colorBits, int zBits, int stencilBits,
                      int accumBits, int auxBuffers, int layer)
{
    auto pfd = RenderingPixelFormat(dc, options, colorBits, zBits, stencilBits, accumBits,
                                    auxBuffers, layer);
    const int format = orvane::ChoosePixelFormat(dc, &pfd);
    if (format == 0)
        orvane::RaiseLastOSError();
    if (orvane::GetPixelFormat(dc) != format && !orvane::SetPixelFormat(dc, format, &pfd))
        orvane::RaiseLastOSError();
    orvane::DescribePixelFormat(dc, format, sizeof pfd, &pfd);
}

BOOL MakeCurrent(HDC dc, HGLRC rc)
{
    return wglMakeCurrent ? wglMakeCurrent(dc, rc) : orvane::wglMakeCurrent(dc, rc);
}

BOOL DeleteContext(HGLRC rc)
{
    return wglDeleteContext ? wglDeleteContext(rc) : orvane::wglDeleteContext(rc);
}

}  // namespace

orvane::PIXELFORMATDESCRIPTOR RenderingPixelFormat(HDC dc, TRCOptions options, int colorBits,
    int zBits, int stencilBits, int accumBits, int auxBuffers, int layer)
{
    using namespace orvane;
    const auto objectType = GetObjectType(dc);
    if (objectType == 0)
        RaiseLastOSError();
    PIXELFORMATDESCRIPTOR pfd{};
    pfd.nSize = sizeof(PIXELFORMATDESCRIPTOR);
    pfd.nVersion = 1;
    pfd.dwFlags = PFD_SUPPORT_OPENGL;
    const bool bitmap = objectType == OBJ_MEMDC || objectType == OBJ_METADC ||
                        objectType == OBJ_ENHMETADC;
    pfd.dwFlags |= bitmap ? PFD_DRAW_TO_BITMAP : PFD_DRAW_TO_WINDOW;
    if (options.Contains(opDoubleBuffered))
        pfd.dwFlags |= PFD_DOUBLEBUFFER;
    if (options.Contains(opGDI))
        pfd.dwFlags |= PFD_SUPPORT_GDI;
    if (options.Contains(opStereo))
        pfd.dwFlags |= PFD_STEREO;
    pfd.iPixelType = PFD_TYPE_RGBA;
    pfd.cColorBits = static_cast<std::uint8_t>(colorBits);
    pfd.cDepthBits = static_cast<std::uint8_t>(zBits);
    pfd.cStencilBits = static_cast<std::uint8_t>(stencilBits);
    pfd.cAccumBits = static_cast<std::uint8_t>(accumBits);
    pfd.cAuxBuffers = static_cast<std::uint8_t>(auxBuffers);
    pfd.iLayerType = layer == 0 ? PFD_MAIN_PLANE : layer > 0 ? PFD_OVERLAY_PLANE : PFD_UNDERLAY_PLANE;
    return pfd;
}

HGLRC CreateRenderingContext(HDC dc, TRCOptions options, int colorBits, int zBits,
    int stencilBits, int accumBits, int auxBuffers, int layer)
{
    EnsureLibrary();
    SetupPixelFormat(dc, options, colorBits, zBits, stencilBits, accumBits, auxBuffers, layer);
    HGLRC rc = wglCreateContext ? wglCreateContext(dc) : nullptr;
    if (!rc)
        orvane::RaiseLastOSError();
    LastPixelFormat = 0;
    return rc;
}

HGLRC CreateRenderingContextVersion(HDC dc, TRCOptions options, int majorVersion,
    int minorVersion, bool forwardCompatible, int colorBits, int zBits, int stencilBits,
    int accumBits, int auxBuffers, int layer)
{
    using namespace orvane;
    EnsureLibrary();
    SetupPixelFormat(dc, options, colorBits, zBits, stencilBits, accumBits, auxBuffers, layer);
    // Only for wglGetProcAddress; without it the request goes on, as the platform's look-up
    // needs no current context.
    HGLRC temporary = wglCreateContext ? wglCreateContext(dc) : nullptr;
    MakeCurrent(dc, temporary);

    std::vector<int> attributes = {WGL_CONTEXT_MAJOR_VERSION_ARB, majorVersion,
                                   WGL_CONTEXT_MINOR_VERSION_ARB, minorVersion};
    // A forward-compatible context is a core one, WGL's default profile. Otherwise the
    // compatibility profile is asked for, since EGL gives core when none is named and the
    // system needs the matrix stack and immediate mode.
    if (forwardCompatible)
        attributes.insert(attributes.end(), {WGL_CONTEXT_FLAGS_ARB,
                                             WGL_CONTEXT_FORWARD_COMPATIBLE_BIT_ARB});
    else
        attributes.insert(attributes.end(), {WGL_CONTEXT_PROFILE_MASK_ARB,
                                             WGL_CONTEXT_COMPATIBILITY_PROFILE_BIT_ARB});
    attributes.push_back(0);

    const auto createContextAttribs = reinterpret_cast<TwglCreateContextAttribsARB>(
        dglOpenGL::wglGetProcAddress ? dglOpenGL::wglGetProcAddress("wglCreateContextAttribsARB")
                                     : nullptr);
    if (!createContextAttribs) {
        DeleteContext(temporary);
        throw Exception(SNoCreateContextAttribs);
    }
    HGLRC rc = createContextAttribs(dc, nullptr, attributes.data());
    DeleteContext(temporary);
    if (!rc)
        throw Exception(SContextNotCreated);
    LastPixelFormat = 0;
    return rc;
}

BOOL DestroyRenderingContext(HGLRC rc)
{
    return DeleteContext(rc);
}

void ActivateRenderingContext(HDC dc, HGLRC rc, bool loadExtensions)
{
    Assert(dc != nullptr, "DC must not be 0");
    Assert(rc != nullptr, "RC must not be 0");
    MakeCurrent(dc, rc);
    ReadImplementationProperties();
    if (loadExtensions)
        ReadExtensions();
}

BOOL DeactivateRenderingContext()
{
    return MakeCurrent(nullptr, nullptr);
}

}  // namespace dglOpenGL
