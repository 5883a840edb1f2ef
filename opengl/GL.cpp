// Unit GL: OpenGL 1.0 and 1.1 by name from the library.
#include "opengl/GL.h"

#include <dlfcn.h>

#include "opengl/LegacyLoader.h"
#include "opengl/Platform.h"

namespace GL {

TChoosePixelFormat ChoosePixelFormat = nullptr;

namespace {

orvane::detail::TLegacyLoader& Loader()
{
    static orvane::detail::TLegacyLoader loader("Could not load OpenGL from ");
    return loader;
}

}  // namespace

void LoadOpenGL(const std::string& libName)
{
    FreeOpenGL();
    Loader().Load(libName, EntryPoints());
    ChoosePixelFormat = reinterpret_cast<TChoosePixelFormat>(
        dlsym(Loader().Library(), "ChoosePixelFormat"));
    if (!ChoosePixelFormat)
        ChoosePixelFormat = &orvane::ChoosePixelFormat;
}

void FreeOpenGL()
{
    ChoosePixelFormat = nullptr;
    Loader().Free(EntryPoints());
}

}  // namespace GL

namespace orvane {

void StartUnit_GL()
{
    try {
        GL::LoadOpenGL("libGL.so.1");
    } catch (...) {
        // A missing library leaves the variables nil; the package still loads.
    }
}

void StopUnit_GL()
{
    GL::FreeOpenGL();
}

}  // namespace orvane
