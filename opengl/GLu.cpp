// Unit GLu: the GLU functions by name from the library.
#include "opengl/GLu.h"

#include "opengl/LegacyLoader.h"

namespace GLu {

namespace {

orvane::detail::TLegacyLoader& Loader()
{
    static orvane::detail::TLegacyLoader loader("Could not load GLu from ");
    return loader;
}

}  // namespace

void LoadGLu(const std::string& libName)
{
    Loader().Load(libName, EntryPoints());
}

void FreeGLu()
{
    Loader().Free(EntryPoints());
}

}  // namespace GLu

namespace orvane {

void StartUnit_GLu()
{
    try {
        GLu::LoadGLu("libGLU.so.1");
    } catch (...) {
        // A missing library leaves the variables nil; the package still loads.
    }
}

void StopUnit_GLu()
{
    GLu::FreeGLu();
}

}  // namespace orvane
