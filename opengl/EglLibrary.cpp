// Loads libEGL once and fills the EGL core variables of dglOpenGL.
#include "opengl/EglLibrary.h"

#include <dlfcn.h>

#include "opengl/GlRegistry.h"

namespace orvane {

namespace {

void* gEGLLibrary = nullptr;
bool gTried = false;

}  // namespace

bool LoadEGLLibrary()
{
    if (!gTried) {
        // Set before the reads, which look the library up again.
        gTried = true;
        gEGLLibrary = dlopen("libEGL.so.1", RTLD_NOW | RTLD_LOCAL);
        if (gEGLLibrary)
            for (const auto& group : dglOpenGL::registry::EGLCoreReads())
                group.Read();
    }
    return gEGLLibrary != nullptr;
}

void* EGLLibraryHandle()
{
    return gEGLLibrary;
}

}  // namespace orvane
