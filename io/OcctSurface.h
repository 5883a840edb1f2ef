// A converted surface back in OpenCASCADE's form, for what needs its projection and normals.
#pragma once

#include <Geom_BSplineSurface.hxx>

#include "io/CadFaceData.h"

namespace orvane::io {

// S must be sound (FindSurfaceProblem gives no problem); OpenCASCADE raises otherwise.
Handle(Geom_BSplineSurface) OcctSurface(const NurbsSurfaceData& S);

}  // namespace orvane::io
