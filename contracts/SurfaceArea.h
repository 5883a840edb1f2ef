// The area of a kernel surface by Gauss-Kronrod quadrature of |Su x Sv| over its domain.
//
// A NURBS surface (or a wrapped one) is integrated over its knot range, span by span. A
// trimmed surface is integrated over its UV region with Green's theorem: with
// F(u, v) = integral of |Su x Sv| over [v0, v], each loop contributes -(closed integral of
// F du) along the exact trim curves, the outer loop added and the holes subtracted whatever
// their direction. Holes must lie inside the outer loop and apart from each other; a loop
// whose ends do not meet is closed by a straight line. Relative accuracy about 1e-11.
#pragma once

#include "contracts/Cadgeometry.h"
#include "contracts/Export.h"

namespace orvane {

// Raises EArgumentException for a surface (or a trimmed surface's base) that is no NURBS
// surface, and for a trim curve of a kind other than line, spline and composite curve.
ORVANE_API double SurfaceArea(const TGeSurface& Surface);

}  // namespace orvane
