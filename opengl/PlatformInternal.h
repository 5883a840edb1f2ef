// What the files of the platform layer share: the display, the device contexts and errors.
#pragma once

#include <string>

#include "opengl/Platform.h"

namespace orvane::detail {

// An offscreen device context: its pbuffer appears when its pixel format is set.
struct TOffscreenRecord : TDeviceContext {
    int Width = 0;
    int Height = 0;
    int PixelFormat = 0;
};

// The display of the platform layer, opened on first use; raises EOSError when none opens.
void* TheDisplay();
// The display when it is open already, else nullptr; never opens one.
void* OpenedDisplay();

// The device context of a pair; the same object for the same pair.
HDC InternDC(void* display, void* surface);
bool KnownDC(HDC dc);
// nullptr for a device context that is not an offscreen one of this layer.
TOffscreenRecord* OffscreenRecord(HDC dc);

// The config with this id on the display, nullptr when there is none.
void* ConfigById(void* display, int id);
int ConfigAttribute(void* display, void* config, int attribute);

// Sets the last error from eglGetError, naming the EGL function that failed.
void SetEGLError(const char* function);
std::string EGLErrorText(int code);

}  // namespace orvane::detail
