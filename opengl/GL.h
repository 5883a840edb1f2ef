// Unit GL: a second binding of the OpenGL 1.0 and 1.1 functions, filled by name from the
// library at package start. Nothing in the system reads it; it is there for the host.
#pragma once

#include <span>
#include <string>

#include "contracts/Export.h"
#include "opengl/GlRegistry.h"
#include "opengl/GlUnits.h"

namespace GL {

using TChoosePixelFormat = int (*)(orvane::HDC dc, const orvane::PIXELFORMATDESCRIPTOR* pfd);
// The library's own, or the platform layer's when the library has none.
extern TChoosePixelFormat ChoosePixelFormat;

// The 336 function variables, glAccum to glViewport.
std::span<const dglOpenGL::registry::TSlot> EntryPoints();

// Frees, loads the library and looks up every name; raises Exception "Could not load OpenGL
// from <name>" when the library is not there.
ORVANE_API void LoadOpenGL(const std::string& libName);
// Sets every variable to nil, then releases the library.
ORVANE_API void FreeOpenGL();

}  // namespace GL

namespace orvane {

// Unit start: LoadOpenGL, a failure swallowed. Unit end: FreeOpenGL.
void StartUnit_GL();
void StopUnit_GL();

}  // namespace orvane
