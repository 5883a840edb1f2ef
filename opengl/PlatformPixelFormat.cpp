// Pixel formats over EGL configs: a format number is a config's EGL_CONFIG_ID.
#include <algorithm>
#include <vector>

#include "opengl/PixelFormatMap.h"
#include "opengl/PlatformInternal.h"
#include "opengl/dglOpenGL.h"

namespace orvane {

using namespace dglOpenGL;

namespace {

std::vector<EGLConfig> AllConfigs(EGLDisplay display, const EGLint* attributes)
{
    EGLint count = 0;
    if (!eglChooseConfig(display, attributes, nullptr, 0, &count) || count <= 0)
        return {};
    std::vector<EGLConfig> configs(static_cast<std::size_t>(count));
    eglChooseConfig(display, attributes, configs.data(), count, &count);
    configs.resize(static_cast<std::size_t>(std::max(count, 0)));
    return configs;
}

bool ChannelsExact(EGLDisplay display, EGLConfig config, const TConfigRequest& request)
{
    if (request.ExactChannelBits == 0)
        return true;
    const auto bits = [&](int attribute) { return detail::ConfigAttribute(display, config, attribute); };
    return bits(EGL_RED_SIZE) == request.ExactChannelBits &&
           bits(EGL_GREEN_SIZE) == request.ExactChannelBits &&
           bits(EGL_BLUE_SIZE) == request.ExactChannelBits &&
           (!request.ExactAlpha || bits(EGL_ALPHA_SIZE) == request.ExactChannelBits);
}

std::string Described(const PIXELFORMATDESCRIPTOR& pfd)
{
    return std::to_string(pfd.cColorBits) + " colour bits, " + std::to_string(pfd.cDepthBits) +
           " depth bits and " + std::to_string(pfd.cStencilBits) + " stencil bits";
}

bool CheckDC(HDC dc)
{
    if (detail::KnownDC(dc))
        return true;
    SetLastError(ERROR_INVALID_HANDLE, "The handle is not a device context of this platform layer");
    return false;
}

void NoSuchFormat(int pixelFormat)
{
    SetLastError(ERROR_INVALID_PIXEL_FORMAT,
                 "The display has no pixel format " + std::to_string(pixelFormat));
}

}  // namespace

namespace detail {

void* ConfigById(void* display, int id)
{
    if (id <= 0)
        return nullptr;
    const EGLint attributes[] = {EGL_CONFIG_ID, id, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (!eglChooseConfig(display, attributes, &config, 1, &count) || count != 1)
        return nullptr;
    return config;
}

int ConfigAttribute(void* display, void* config, int attribute)
{
    EGLint value = 0;
    eglGetConfigAttrib(display, config, attribute, &value);
    return value;
}

}  // namespace detail

std::uint32_t GetObjectType(HDC dc)
{
    return CheckDC(dc) ? OBJ_DC : 0;
}

int ChoosePixelFormat(HDC dc, const PIXELFORMATDESCRIPTOR* pfd)
{
    if (!CheckDC(dc))
        return 0;
    if (!pfd) {
        SetLastError(ERROR_INVALID_PARAMETER, "No pixel format descriptor");
        return 0;
    }
    auto request = ConfigRequest(*pfd);
    request.Attributes.push_back(EGL_NONE);
    for (EGLConfig config : AllConfigs(dc->Display, request.Attributes.data()))
        if (ChannelsExact(dc->Display, config, request))
            return detail::ConfigAttribute(dc->Display, config, EGL_CONFIG_ID);
    SetLastError(ERROR_INVALID_PIXEL_FORMAT,
                 "No EGL config of the display offers " + Described(*pfd));
    return 0;
}

int DescribePixelFormat(HDC dc, int pixelFormat, unsigned bytes, PIXELFORMATDESCRIPTOR* pfd)
{
    if (!CheckDC(dc))
        return 0;
    EGLConfig config = detail::ConfigById(dc->Display, pixelFormat);
    if (!config) {
        NoSuchFormat(pixelFormat);
        return 0;
    }
    if (pfd && bytes >= sizeof(PIXELFORMATDESCRIPTOR)) {
        const auto get = [&](int attribute) {
            return static_cast<std::uint8_t>(detail::ConfigAttribute(dc->Display, config, attribute));
        };
        const int surfaces = detail::ConfigAttribute(dc->Display, config, EGL_SURFACE_TYPE);
        *pfd = PIXELFORMATDESCRIPTOR{};
        pfd->nSize = sizeof(PIXELFORMATDESCRIPTOR);
        pfd->nVersion = 1;
        pfd->dwFlags = PFD_SUPPORT_OPENGL | ((surfaces & EGL_WINDOW_BIT) ? PFD_DRAW_TO_WINDOW : 0) |
                       ((surfaces & (EGL_PBUFFER_BIT | EGL_PIXMAP_BIT)) ? PFD_DRAW_TO_BITMAP : 0);
        pfd->iPixelType = PFD_TYPE_RGBA;
        pfd->cColorBits = get(EGL_BUFFER_SIZE);
        pfd->cRedBits = get(EGL_RED_SIZE);
        pfd->cGreenBits = get(EGL_GREEN_SIZE);
        pfd->cBlueBits = get(EGL_BLUE_SIZE);
        pfd->cAlphaBits = get(EGL_ALPHA_SIZE);
        pfd->cDepthBits = get(EGL_DEPTH_SIZE);
        pfd->cStencilBits = get(EGL_STENCIL_SIZE);
        pfd->iLayerType = PFD_MAIN_PLANE;
    }
    // The highest format number, as on Windows.
    EGLint count = 0;
    eglGetConfigs(dc->Display, nullptr, 0, &count);
    std::vector<EGLConfig> configs(static_cast<std::size_t>(std::max(count, 0)));
    eglGetConfigs(dc->Display, configs.data(), count, &count);
    int highest = 0;
    for (EGLConfig each : configs)
        highest = std::max(highest, detail::ConfigAttribute(dc->Display, each, EGL_CONFIG_ID));
    return highest;
}

int GetPixelFormat(HDC dc)
{
    if (!CheckDC(dc))
        return 0;
    if (const auto* record = detail::OffscreenRecord(dc))
        return record->PixelFormat;
    EGLint id = 0;
    if (dc->Surface != EGL_NO_SURFACE)
        eglQuerySurface(dc->Display, dc->Surface, EGL_CONFIG_ID, &id);
    return id;
}

BOOL SetPixelFormat(HDC dc, int pixelFormat, const PIXELFORMATDESCRIPTOR*)
{
    if (!CheckDC(dc))
        return 0;
    auto* record = detail::OffscreenRecord(dc);
    if (record && record->PixelFormat == pixelFormat)
        return 1;
    if (!record || record->PixelFormat != 0) {
        SetLastError(ERROR_INVALID_PIXEL_FORMAT, "The pixel format of a device context is set once");
        return 0;
    }
    EGLConfig config = detail::ConfigById(dc->Display, pixelFormat);
    if (!config) {
        NoSuchFormat(pixelFormat);
        return 0;
    }
    const EGLint attributes[] = {EGL_WIDTH, record->Width, EGL_HEIGHT, record->Height, EGL_NONE};
    EGLSurface surface = eglCreatePbufferSurface(dc->Display, config, attributes);
    if (surface == EGL_NO_SURFACE) {
        detail::SetEGLError("eglCreatePbufferSurface");
        return 0;
    }
    record->Surface = surface;
    record->PixelFormat = pixelFormat;
    return 1;
}

}  // namespace orvane
