// A view for tessellating through GLU outside a window. GLU's NURBS renderer samples in
// pixels of the current view, so a host without a view of its own fits one to the part first:
// orthographic, turned 40 degrees about Z and then 30 about X so that no face of the part is
// seen edge-on, the part's box filling the viewport in its longer projected direction.
#pragma once

#include <span>

#include "contracts/Cadgeometry.h"
#include "contracts/Export.h"

namespace orvane {

// P turned as the view turns it.
ORVANE_API TPoint3D ObliqueViewTurn(const TPoint3D& P);

// Model units a pixel of the view that LoadObliqueView fits to Points is, inverted: pixels
// per model unit (0 for points of no extent).
ORVANE_API double ObliqueViewPixelsPerUnit(std::span<const TPoint3D> Points, int Width, int Height);

// Sets the viewport to Width x Height and loads the projection and model-view matrices so
// that Points, turned, fill the viewport in their longer projected direction. Needs a current
// context with the entry points read.
ORVANE_API void LoadObliqueView(std::span<const TPoint3D> Points, int Width, int Height);

// Points of a surface on a Count x Count grid over its knot range (a trimmed or wrapped
// surface by its NURBS base). Raises EArgumentException for a surface with no NURBS base.
ORVANE_API TDynPoints3D SurfaceGridPoints(const TGeSurface& Surface, int Count);

// LoadObliqueView of the surface's 65 x 65 grid.
ORVANE_API void FitObliqueView(const TGeSurface& Surface, int Width, int Height);

}  // namespace orvane
