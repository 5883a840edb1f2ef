// The EGL display of the platform layer and its device contexts.
//
// The display is chosen once: an EGL device that is not Mesa's software renderer (a GPU, also
// on a machine where Mesa is installed), then Mesa's surfaceless platform, then the default
// display. Device contexts are interned {display, surface} pairs and live for the process,
// except offscreen ones, which DeleteOffscreenDC removes.
#include <algorithm>
#include <memory>
#include <string_view>
#include <vector>

#include "opengl/EglLibrary.h"
#include "opengl/PlatformInternal.h"
#include "opengl/dglOpenGL.h"

namespace orvane {

using namespace dglOpenGL;

namespace {

struct TDisplayState {
    bool Tried = false;
    EGLDisplay Display = EGL_NO_DISPLAY;
    TDisplayPath Path = TDisplayPath::Default;
};

TDisplayState& DisplayState()
{
    static TDisplayState state;
    return state;
}

std::vector<std::unique_ptr<detail::TOffscreenRecord>>& OffscreenDCs()
{
    static std::vector<std::unique_ptr<detail::TOffscreenRecord>> records;
    return records;
}

std::vector<std::unique_ptr<TDeviceContext>>& InternedDCs()
{
    static std::vector<std::unique_ptr<TDeviceContext>> records;
    return records;
}

// Initialized and able to render desktop OpenGL into a pbuffer, or terminated again.
bool Usable(EGLDisplay display)
{
    if (display == EGL_NO_DISPLAY)
        return false;
    EGLint major = 0;
    EGLint minor = 0;
    if (!eglInitialize(display, &major, &minor))
        return false;
    const EGLint attributes[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE,
                                 EGL_OPENGL_BIT, EGL_NONE};
    EGLint count = 0;
    if (eglChooseConfig(display, attributes, nullptr, 0, &count) && count > 0)
        return true;
    eglTerminate(display);
    return false;
}

EGLDisplay OpenHardwareDevice()
{
    if (!eglQueryDevicesEXT || !eglQueryDeviceStringEXT)
        Read_EGL_EXT_device_base();
    if (!eglQueryDevicesEXT || !eglQueryDeviceStringEXT)
        return EGL_NO_DISPLAY;
    EGLDeviceEXT devices[16];
    EGLint count = 0;
    if (!eglQueryDevicesEXT(16, devices, &count))
        return EGL_NO_DISPLAY;
    for (EGLint i = 0; i < count; ++i) {
        const char* extensions = eglQueryDeviceStringEXT(devices[i], EGL_EXTENSIONS);
        const std::string text = " " + std::string(extensions ? extensions : "") + " ";
        if (text.find(" EGL_MESA_device_software ") != std::string::npos)
            continue;
        EGLDisplay display = eglGetPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, devices[i], nullptr);
        if (Usable(display))
            return display;
    }
    return EGL_NO_DISPLAY;
}

void OpenDisplay(TDisplayState& state)
{
    if (!LoadEGLLibrary()) {
        SetLastError(ERROR_MOD_NOT_FOUND, "The EGL library libEGL.so.1 could not be loaded");
        return;
    }
    if (EGLDisplay display = OpenHardwareDevice(); display != EGL_NO_DISPLAY) {
        state.Display = display;
        state.Path = TDisplayPath::Device;
        return;
    }
    if (EGLDisplay display = eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA,
                                                   EGL_DEFAULT_DISPLAY, nullptr);
        Usable(display)) {
        state.Display = display;
        state.Path = TDisplayPath::Surfaceless;
        return;
    }
    if (EGLDisplay display = eglGetDisplay(EGL_DEFAULT_DISPLAY); Usable(display)) {
        state.Display = display;
        state.Path = TDisplayPath::Default;
        return;
    }
    detail::SetEGLError("eglInitialize of every display");
}

}  // namespace

namespace detail {

void* TheDisplay()
{
    auto& state = DisplayState();
    if (!state.Tried) {
        state.Tried = true;
        OpenDisplay(state);
    }
    if (state.Display == EGL_NO_DISPLAY)
        RaiseLastOSError();
    return state.Display;
}

void* OpenedDisplay()
{
    return DisplayState().Display;
}

HDC InternDC(void* display, void* surface)
{
    for (const auto& record : OffscreenDCs())
        if (record->Surface && record->Display == display && record->Surface == surface)
            return record.get();
    auto& interned = InternedDCs();
    for (const auto& record : interned)
        if (record->Display == display && record->Surface == surface)
            return record.get();
    interned.push_back(std::make_unique<TDeviceContext>(TDeviceContext{display, surface}));
    return interned.back().get();
}

TOffscreenRecord* OffscreenRecord(HDC dc)
{
    for (const auto& record : OffscreenDCs())
        if (record.get() == dc)
            return record.get();
    return nullptr;
}

bool KnownDC(HDC dc)
{
    if (!dc)
        return false;
    if (OffscreenRecord(dc))
        return true;
    const auto& interned = InternedDCs();
    return std::any_of(interned.begin(), interned.end(),
                       [dc](const auto& record) { return record.get() == dc; });
}

}  // namespace detail

TDisplayPath DisplayPath()
{
    detail::TheDisplay();
    return DisplayState().Path;
}

const char* DisplayPathName(TDisplayPath path)
{
    switch (path) {
    case TDisplayPath::Device: return "EGL device";
    case TDisplayPath::Surfaceless: return "Mesa surfaceless";
    case TDisplayPath::Default: return "default display";
    }
    return "unknown";
}

HDC CreateOffscreenDC(int width, int height)
{
    if (width <= 0 || height <= 0)
        throw EArgumentOutOfRangeException(SArgumentOutOfRange);
    auto record = std::make_unique<detail::TOffscreenRecord>();
    record->Display = detail::TheDisplay();
    record->Surface = EGL_NO_SURFACE;
    record->Width = width;
    record->Height = height;
    OffscreenDCs().push_back(std::move(record));
    return OffscreenDCs().back().get();
}

void DeleteOffscreenDC(HDC dc)
{
    auto& records = OffscreenDCs();
    const auto it = std::find_if(records.begin(), records.end(),
                                 [dc](const auto& record) { return record.get() == dc; });
    if (it == records.end())
        return;
    if ((*it)->Surface != EGL_NO_SURFACE)
        eglDestroySurface((*it)->Display, (*it)->Surface);
    records.erase(it);
}

}  // namespace orvane
