// The window-system layer over EGL that stands where WGL and GDI stand on Windows: device
// contexts, rendering contexts, pixel formats and the last system error.
#pragma once

#include <cstdint>
#include <string>

#include "contracts/Export.h"
#include "contracts/SysUtils.h"
#include "opengl/PlatformTypes.h"

namespace orvane {

// A device context: the EGL display and the surface drawn into (EGL_NO_SURFACE for a
// surfaceless one). One object per pair, so equal handles mean equal pairs.
struct TDeviceContext {
    void* Display;
    void* Surface;
};

// The context attributes of wglCreateContextAttribsARB.
inline constexpr int WGL_CONTEXT_MAJOR_VERSION_ARB = 0x2091;
inline constexpr int WGL_CONTEXT_MINOR_VERSION_ARB = 0x2092;
inline constexpr int WGL_CONTEXT_LAYER_PLANE_ARB = 0x2093;
inline constexpr int WGL_CONTEXT_FLAGS_ARB = 0x2094;
inline constexpr int WGL_CONTEXT_PROFILE_MASK_ARB = 0x9126;
inline constexpr int WGL_CONTEXT_DEBUG_BIT_ARB = 0x0001;
inline constexpr int WGL_CONTEXT_FORWARD_COMPATIBLE_BIT_ARB = 0x0002;
inline constexpr int WGL_CONTEXT_CORE_PROFILE_BIT_ARB = 0x0001;
inline constexpr int WGL_CONTEXT_COMPATIBILITY_PROFILE_BIT_ARB = 0x0002;

// The codes of GetLastError beside the EGL error codes, which pass through as they are.
inline constexpr std::uint32_t ERROR_INVALID_HANDLE = 6;
inline constexpr std::uint32_t ERROR_INVALID_PARAMETER = 87;
inline constexpr std::uint32_t ERROR_MOD_NOT_FOUND = 126;
inline constexpr std::uint32_t ERROR_INVALID_PIXEL_FORMAT = 2000;

// The WGL names with a meaning over EGL.
ORVANE_API HGLRC wglCreateContext(HDC dc);
ORVANE_API BOOL wglDeleteContext(HGLRC rc);
ORVANE_API HGLRC wglGetCurrentContext();
ORVANE_API HDC wglGetCurrentDC();
ORVANE_API BOOL wglMakeCurrent(HDC dc, HGLRC rc);
ORVANE_API PROC wglGetProcAddress(const char* name);
ORVANE_API HGLRC wglCreateContextAttribsARB(HDC dc, HGLRC shareContext, const int* attribList);
// EGL's client extensions, and the display extensions of a device context.
ORVANE_API const char* wglGetExtensionsStringEXT();
ORVANE_API const char* wglGetExtensionsStringARB(HDC dc);

// The platform function for a WGL name, nullptr for the names without an EGL meaning.
PROC PlatformWGLFunction(const char* name);

// Pixel formats: a format number is the EGL config's id.
ORVANE_API int ChoosePixelFormat(HDC dc, const PIXELFORMATDESCRIPTOR* pfd);
ORVANE_API int DescribePixelFormat(HDC dc, int pixelFormat, unsigned bytes, PIXELFORMATDESCRIPTOR* pfd);
ORVANE_API int GetPixelFormat(HDC dc);
ORVANE_API BOOL SetPixelFormat(HDC dc, int pixelFormat, const PIXELFORMATDESCRIPTOR* pfd);
ORVANE_API std::uint32_t GetObjectType(HDC dc);

// The last failure of a platform function on this thread, with a readable text.
ORVANE_API std::uint32_t GetLastError();
ORVANE_API std::string LastErrorText();
ORVANE_API void SetLastError(std::uint32_t code, std::string text);

class ORVANE_API EOSError : public Exception {
public:
    EOSError(std::uint32_t code, std::string message) : Exception(std::move(message)), FCode(code) {}
    std::uint32_t ErrorCode() const { return FCode; }

private:
    std::uint32_t FCode;
};
// Raises EOSError with "System Error. Code: <n>.\n<text>" for the last error.
[[noreturn]] ORVANE_API void RaiseLastOSError();

// An offscreen device context of a given size: a pbuffer made when its pixel format is set.
ORVANE_API HDC CreateOffscreenDC(int width, int height);
ORVANE_API void DeleteOffscreenDC(HDC dc);

class ORVANE_API TOffscreenDC {
public:
    TOffscreenDC(int width, int height) : FDC(CreateOffscreenDC(width, height)) {}
    ~TOffscreenDC() { DeleteOffscreenDC(FDC); }
    TOffscreenDC(const TOffscreenDC&) = delete;
    TOffscreenDC& operator=(const TOffscreenDC&) = delete;
    HDC Handle() const { return FDC; }

private:
    HDC FDC;
};

// Which display the platform layer opened: a hardware EGL device, Mesa's surfaceless
// platform or the default display. Opens it on first use; raises EOSError when none works.
enum class TDisplayPath { Device, Surfaceless, Default };
ORVANE_API TDisplayPath DisplayPath();
ORVANE_API const char* DisplayPathName(TDisplayPath path);

}  // namespace orvane
