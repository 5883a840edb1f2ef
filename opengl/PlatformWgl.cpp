// The WGL names over EGL: rendering contexts, the current context and device context, and the
// procedure and extension look-ups.
#include <cstring>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "opengl/EglLibrary.h"
#include "opengl/GlRegistry.h"
#include "opengl/PlatformInternal.h"
#include "opengl/dglOpenGL.h"

namespace orvane {

using namespace dglOpenGL;

namespace {

bool EGLReady()
{
    return EGLLibraryHandle() != nullptr && eglGetCurrentContext != nullptr;
}

EGLConfig ConfigOf(HDC dc)
{
    EGLConfig config = detail::ConfigById(dc->Display, GetPixelFormat(dc));
    if (!config)
        SetLastError(ERROR_INVALID_PIXEL_FORMAT, "The device context has no pixel format");
    return config;
}

HGLRC CreateContext(HDC dc, HGLRC shareContext, const std::vector<EGLint>& attributes)
{
    if (!detail::KnownDC(dc)) {
        SetLastError(ERROR_INVALID_HANDLE, "The handle is not a device context of this platform layer");
        return nullptr;
    }
    EGLConfig config = ConfigOf(dc);
    if (!config)
        return nullptr;
    eglBindAPI(EGL_OPENGL_API);
    EGLContext context = eglCreateContext(dc->Display, config, shareContext, attributes.data());
    if (context == EGL_NO_CONTEXT)
        detail::SetEGLError("eglCreateContext");
    return context;
}

// WGL context attributes in EGL's words. EGL's forward-compatible flag makes a core profile
// whatever profile is asked for, on Mesa.
bool TranslateAttributes(const int* list, std::vector<EGLint>& out)
{
    for (; list && list[0] != 0; list += 2) {
        const int value = list[1];
        switch (list[0]) {
        case WGL_CONTEXT_MAJOR_VERSION_ARB:
            out.insert(out.end(), {EGL_CONTEXT_MAJOR_VERSION, value});
            break;
        case WGL_CONTEXT_MINOR_VERSION_ARB:
            out.insert(out.end(), {EGL_CONTEXT_MINOR_VERSION, value});
            break;
        case WGL_CONTEXT_FLAGS_ARB:
            if (value & WGL_CONTEXT_DEBUG_BIT_ARB)
                out.insert(out.end(), {EGL_CONTEXT_OPENGL_DEBUG, EGL_TRUE});
            if (value & WGL_CONTEXT_FORWARD_COMPATIBLE_BIT_ARB)
                out.insert(out.end(), {EGL_CONTEXT_OPENGL_FORWARD_COMPATIBLE, EGL_TRUE});
            break;
        case WGL_CONTEXT_PROFILE_MASK_ARB:
            out.insert(out.end(), {EGL_CONTEXT_OPENGL_PROFILE_MASK, value});
            break;
        case WGL_CONTEXT_LAYER_PLANE_ARB:
            break;
        default:
            SetLastError(ERROR_INVALID_PARAMETER,
                         "Unknown context attribute " + std::to_string(list[0]));
            return false;
        }
    }
    out.push_back(EGL_NONE);
    return true;
}

struct TWGLFunction {
    const char* Name;
    PROC Function;
};

const TWGLFunction kWGLFunctions[] = {
    {"wglCreateContext", reinterpret_cast<PROC>(&wglCreateContext)},
    {"wglDeleteContext", reinterpret_cast<PROC>(&wglDeleteContext)},
    {"wglGetCurrentContext", reinterpret_cast<PROC>(&wglGetCurrentContext)},
    {"wglGetCurrentDC", reinterpret_cast<PROC>(&wglGetCurrentDC)},
    {"wglGetProcAddress", reinterpret_cast<PROC>(&wglGetProcAddress)},
    {"wglMakeCurrent", reinterpret_cast<PROC>(&wglMakeCurrent)},
    {"wglCreateContextAttribsARB", reinterpret_cast<PROC>(&wglCreateContextAttribsARB)},
    {"wglGetExtensionsStringARB", reinterpret_cast<PROC>(&wglGetExtensionsStringARB)},
    {"wglGetExtensionsStringEXT", reinterpret_cast<PROC>(&wglGetExtensionsStringEXT)},
};

bool KnownToRegistry(std::string_view name)
{
    static const auto eglNames = [] {
        std::unordered_set<std::string_view> names;
        for (const auto& slot : registry::EGLCommands())
            names.insert(slot.Name);
        return names;
    }();
    return registry::FindGLCommand(name) != nullptr || eglNames.count(name) != 0;
}

}  // namespace

PROC PlatformWGLFunction(const char* name)
{
    for (const auto& function : kWGLFunctions)
        if (std::strcmp(function.Name, name) == 0)
            return function.Function;
    return nullptr;
}

HGLRC wglCreateContext(HDC dc)
{
    return CreateContext(dc, EGL_NO_CONTEXT, {EGL_NONE});
}

HGLRC wglCreateContextAttribsARB(HDC dc, HGLRC shareContext, const int* attribList)
{
    std::vector<EGLint> attributes;
    if (!TranslateAttributes(attribList, attributes))
        return nullptr;
    return CreateContext(dc, shareContext, attributes);
}

BOOL wglDeleteContext(HGLRC rc)
{
    EGLDisplay display = detail::OpenedDisplay();
    if (!rc || display == EGL_NO_DISPLAY) {
        SetLastError(ERROR_INVALID_HANDLE, "The handle is not a rendering context");
        return 0;
    }
    // A context deleted while current stops being current first, as on Windows.
    if (eglGetCurrentContext() == rc)
        eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    const bool deleted = eglDestroyContext(display, rc);
    if (!deleted)
        detail::SetEGLError("eglDestroyContext");
    return deleted ? 1 : 0;
}

HGLRC wglGetCurrentContext()
{
    return EGLReady() ? eglGetCurrentContext() : nullptr;
}

HDC wglGetCurrentDC()
{
    if (!EGLReady() || eglGetCurrentContext() == EGL_NO_CONTEXT)
        return nullptr;
    return detail::InternDC(eglGetCurrentDisplay(), eglGetCurrentSurface(EGL_DRAW));
}

BOOL wglMakeCurrent(HDC dc, HGLRC rc)
{
    if (!rc) {
        // Released through the display of the current context; with none current there is
        // nothing to release.
        if (!EGLReady())
            return 1;
        EGLDisplay display = eglGetCurrentDisplay();
        if (display == EGL_NO_DISPLAY)
            return 1;
        if (eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT))
            return 1;
        detail::SetEGLError("eglMakeCurrent");
        return 0;
    }
    if (!detail::KnownDC(dc)) {
        SetLastError(ERROR_INVALID_HANDLE, "The handle is not a device context of this platform layer");
        return 0;
    }
    if (eglMakeCurrent(dc->Display, dc->Surface, dc->Surface, rc))
        return 1;
    detail::SetEGLError("eglMakeCurrent");
    return 0;
}

PROC wglGetProcAddress(const char* name)
{
    if (!name)
        return nullptr;
    if (PROC function = PlatformWGLFunction(name))
        return function;
    // eglGetProcAddress answers every name with a dispatch stub, so it is asked only for the
    // GL and EGL names of the registry; any other name has no address here.
    if (!KnownToRegistry(name) || !EGLLibraryHandle() || !eglGetProcAddress)
        return nullptr;
    return eglGetProcAddress(name);
}

const char* wglGetExtensionsStringEXT()
{
    return EGLLibraryHandle() && eglQueryString ? eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS)
                                                : nullptr;
}

const char* wglGetExtensionsStringARB(HDC dc)
{
    return detail::KnownDC(dc) ? eglQueryString(dc->Display, EGL_EXTENSIONS) : nullptr;
}

}  // namespace orvane
