// Unit GLu: a second binding of the GLU functions, filled by name from the library at
// package start. Nothing in the system reads it; it is there for the host.
#pragma once

#include <span>
#include <string>

#include "contracts/Export.h"
#include "opengl/GlRegistry.h"
#include "opengl/GlUnits.h"

namespace GLu {

// The 52 function variables, gluErrorString to gluEndPolygon.
std::span<const dglOpenGL::registry::TSlot> EntryPoints();

// Frees, loads the library and looks up every name; raises Exception "Could not load GLu
// from <name>" when the library is not there.
ORVANE_API void LoadGLu(const std::string& libName);
// Sets every variable to nil, then releases the library.
ORVANE_API void FreeGLu();

}  // namespace GLu

namespace orvane {

// Unit start: LoadGLu, a failure swallowed. Unit end: FreeGLu.
void StartUnit_GLu();
void StopUnit_GLu();

}  // namespace orvane
