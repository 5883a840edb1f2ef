// The GLU road of `orvane tessellate`: a headless context, a view fitted to the surface, and
// the GLU surface triangulator. GLU samples in pixels of the current view (tolerance 60 px,
// or the trimmed-surface rule), so the size of the view decides how fine the mesh is.
#pragma once

#include <string>

#include "contracts/Cadgeometry.h"
#include "tools/Options.h"

namespace orvane::tools {

// Triangulates (or, with Quads, quadrilateralizes) the surface through GLU inside a headless
// context with a view of Size, fitted so that the surface spans it. Fills Tri and
// Norm, the seconds the triangulator took, and returns a line about the view.
std::string GluTessellate(const TGeSurface& Surface, const TViewSize& Size, bool Quads, TFloatDynArray& Tri,
                          TFloatDynArray& Norm, double& Seconds);

}  // namespace orvane::tools
