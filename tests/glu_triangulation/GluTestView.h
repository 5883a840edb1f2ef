// Views and measures for the GLU road's tests on Mesa. GLU samples in pixels of the current
// view, so every test that reaches the real GLU has a context current and FitObliqueView set.
#pragma once

#include <vector>

#include "contracts/Cadgeometry.h"

namespace orvane::testing {

// The NURBS surface under a plain, wrapped or trimmed surface.
const TGeNurbsSurface& NurbsOf(const TGeSurface& Surf);

// The length of the diagonal of the surface's bounding box.
double BoxDiagonal(const TGeSurface& Surf);

// The area of a flat triangle list (9 floats a triangle).
double MeshArea(const std::vector<double>& Tri);

// The distance from points to a surface: the closest point of a grid, refined by Newton.
class TSurfaceProjector {
public:
    explicit TSurfaceProjector(const TGeNurbsSurface& Surf);
    double Distance(const TPoint3D& P) const;

private:
    const TGeNurbsSurface& FSurf;
    TRect2D FDomain;
    TDynPoints3D FGrid;
    std::vector<TPoint2D> FGridUV;
};

}  // namespace orvane::testing
