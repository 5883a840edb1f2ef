// The EGL library under the platform layer: loaded once, kept for the process.
#pragma once

namespace orvane {

// Loads libEGL.so.1 on the first call and resolves the EGL core entry points of dglOpenGL.
// True when EGL is there.
bool LoadEGLLibrary();
// The loaded library, nullptr before LoadEGLLibrary succeeded.
void* EGLLibraryHandle();

}  // namespace orvane
