// The last error of the platform layer, per thread, and EGL's error codes in words.
#include "opengl/PlatformInternal.h"
#include "opengl/dglOpenGL.h"

namespace orvane {

namespace {

struct TLastError {
    std::uint32_t Code = 0;
    std::string Text;
};

thread_local TLastError tLastError;

struct TEGLErrorText {
    int Code;
    const char* Name;
    const char* Meaning;
};

constexpr TEGLErrorText kEGLErrors[] = {
    {0x3000, "EGL_SUCCESS", "the function succeeded"},
    {0x3001, "EGL_NOT_INITIALIZED", "EGL is not initialized for the display"},
    {0x3002, "EGL_BAD_ACCESS", "a resource is in use, for example a context current on another thread"},
    {0x3003, "EGL_BAD_ALLOC", "EGL could not allocate the resources"},
    {0x3004, "EGL_BAD_ATTRIBUTE", "an attribute or its value is not recognized"},
    {0x3005, "EGL_BAD_CONFIG", "the config is not valid"},
    {0x3006, "EGL_BAD_CONTEXT", "the context is not valid"},
    {0x3007, "EGL_BAD_CURRENT_SURFACE", "the current surface is no longer valid"},
    {0x3008, "EGL_BAD_DISPLAY", "the display is not valid"},
    {0x3009, "EGL_BAD_MATCH", "the arguments do not fit together, or the driver lacks what was asked"},
    {0x300A, "EGL_BAD_NATIVE_PIXMAP", "the native pixmap is not valid"},
    {0x300B, "EGL_BAD_NATIVE_WINDOW", "the native window is not valid"},
    {0x300C, "EGL_BAD_PARAMETER", "an argument is not valid"},
    {0x300D, "EGL_BAD_SURFACE", "the surface is not valid"},
    {0x300E, "EGL_CONTEXT_LOST", "the context was lost and must be made again"},
};

}  // namespace

std::uint32_t GetLastError()
{
    return tLastError.Code;
}

std::string LastErrorText()
{
    return tLastError.Text;
}

void SetLastError(std::uint32_t code, std::string text)
{
    tLastError = TLastError{code, std::move(text)};
}

void RaiseLastOSError()
{
    const auto code = GetLastError();
    throw EOSError(code, "System Error. Code: " + std::to_string(code) + ".\n" + LastErrorText());
}

namespace detail {

std::string EGLErrorText(int code)
{
    for (const auto& error : kEGLErrors)
        if (error.Code == code)
            return std::string(error.Name) + ": " + error.Meaning;
    return "EGL error " + std::to_string(code);
}

void SetEGLError(const char* function)
{
    const int code = dglOpenGL::eglGetError ? dglOpenGL::eglGetError() : 0;
    SetLastError(static_cast<std::uint32_t>(code),
                 std::string(function) + " failed: " + EGLErrorText(code));
}

}  // namespace detail

}  // namespace orvane
