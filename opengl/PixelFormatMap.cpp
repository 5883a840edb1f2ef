// The table that maps the pixel format request onto EGL config attributes.
#include "opengl/PixelFormatMap.h"

#include "opengl/dglOpenGL.h"

namespace orvane {

using namespace dglOpenGL;

namespace {

void Add(TConfigRequest& request, EGLint attribute, EGLint value)
{
    request.Attributes.push_back(attribute);
    request.Attributes.push_back(value);
}

void ApplyFlags(const PIXELFORMATDESCRIPTOR& pfd, TConfigRequest& request)
{
    if (pfd.dwFlags & PFD_SUPPORT_OPENGL)
        Add(request, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT);
    // Every device context of this layer draws into a pbuffer, whatever the request says about
    // window or bitmap; double buffering, stereo and GDI have no EGL counterpart for a pbuffer.
    Add(request, EGL_SURFACE_TYPE, EGL_PBUFFER_BIT);
}

void ApplyPixelType(const PIXELFORMATDESCRIPTOR& pfd, TConfigRequest& request)
{
    if (pfd.iPixelType == PFD_TYPE_RGBA)
        Add(request, EGL_COLOR_BUFFER_TYPE, EGL_RGB_BUFFER);
}

// 8 bits a channel, matched exactly afterwards: EGL takes sizes as minimums and puts the
// deepest first, so a bare buffer size would pick RGB10_A2 or RGB565.
void ApplyColorBits(const PIXELFORMATDESCRIPTOR& pfd, TConfigRequest& request)
{
    if (pfd.cColorBits == 0)
        return;
    request.ExactChannelBits = 8;
    Add(request, EGL_RED_SIZE, 8);
    Add(request, EGL_GREEN_SIZE, 8);
    Add(request, EGL_BLUE_SIZE, 8);
    if (pfd.cColorBits >= 32) {
        request.ExactAlpha = true;
        Add(request, EGL_ALPHA_SIZE, 8);
    }
}

void ApplyDepthBits(const PIXELFORMATDESCRIPTOR& pfd, TConfigRequest& request)
{
    Add(request, EGL_DEPTH_SIZE, pfd.cDepthBits);
}

void ApplyStencilBits(const PIXELFORMATDESCRIPTOR& pfd, TConfigRequest& request)
{
    Add(request, EGL_STENCIL_SIZE, pfd.cStencilBits);
}

constexpr const char* kChannel = "computed, ignored: the channels follow cColorBits";
constexpr const char* kAccum = "computed, ignored: EGL has no accumulation buffer";

constexpr TPixelFormatField kFields[] = {
    {"nSize", "computed, ignored: the size of the record", nullptr},
    {"nVersion", "computed, ignored: the version of the record", nullptr},
    {"dwFlags", "PFD_SUPPORT_OPENGL: EGL_RENDERABLE_TYPE EGL_OPENGL_BIT; always EGL_SURFACE_TYPE "
                "EGL_PBUFFER_BIT; PFD_DRAW_TO_WINDOW, PFD_DRAW_TO_BITMAP (no window on a surfaceless "
                "display), PFD_DOUBLEBUFFER, PFD_STEREO, PFD_SUPPORT_GDI: computed, ignored",
     &ApplyFlags},
    {"iPixelType", "EGL_COLOR_BUFFER_TYPE EGL_RGB_BUFFER", &ApplyPixelType},
    {"cColorBits", "EGL_RED_SIZE, EGL_GREEN_SIZE, EGL_BLUE_SIZE 8, and EGL_ALPHA_SIZE 8 from 32 "
                   "bits on, matched exactly", &ApplyColorBits},
    {"cRedBits", kChannel, nullptr},
    {"cRedShift", kChannel, nullptr},
    {"cGreenBits", kChannel, nullptr},
    {"cGreenShift", kChannel, nullptr},
    {"cBlueBits", kChannel, nullptr},
    {"cBlueShift", kChannel, nullptr},
    {"cAlphaBits", kChannel, nullptr},
    {"cAlphaShift", kChannel, nullptr},
    {"cAccumBits", kAccum, nullptr},
    {"cAccumRedBits", kAccum, nullptr},
    {"cAccumGreenBits", kAccum, nullptr},
    {"cAccumBlueBits", kAccum, nullptr},
    {"cAccumAlphaBits", kAccum, nullptr},
    {"cDepthBits", "EGL_DEPTH_SIZE, at least", &ApplyDepthBits},
    {"cStencilBits", "EGL_STENCIL_SIZE, at least", &ApplyStencilBits},
    {"cAuxBuffers", "computed, ignored: EGL has no auxiliary buffers", nullptr},
    {"iLayerType", "computed, ignored: EGL has no overlay or underlay planes", nullptr},
    {"bReserved", "computed, ignored: reserved", nullptr},
    {"dwLayerMask", "computed, ignored: EGL has no layers", nullptr},
    {"dwVisibleMask", "computed, ignored: EGL has no layers", nullptr},
    {"dwDamageMask", "computed, ignored: EGL has no layers", nullptr},
};

}  // namespace

std::span<const TPixelFormatField> PixelFormatFields()
{
    return kFields;
}

TConfigRequest ConfigRequest(const PIXELFORMATDESCRIPTOR& pfd)
{
    TConfigRequest request;
    for (const auto& field : kFields)
        if (field.Apply)
            field.Apply(pfd, request);
    return request;
}

}  // namespace orvane
