// Evaluates one point of a NURBS surface by its own code, not through the kernel's GetPoint,
// with a band of tolerance beyond the ends of the knot range: a parameter past an end knot by
// up to 2 FSampleTolerance is extrapolated with the end span; further out it clamps to the end
// control points of that span. The forward steps of the surface normal stay inside the band.
#pragma once

#include <vector>

#include "contracts/Cadgeometry.h"

namespace orvane {

class TTempNurbsPointEval {
public:
    explicit TTempNurbsPointEval(double ASampleTolerance) : FSampleTolerance(ASampleTolerance) {}

    // The point at APoint = (U, V).
    TPoint3D EvalPointOnNurbsSurface(const TGeNurbsSurface& ANurbsSurface, const TPoint2D& APoint) const;

    // The span of U: K[Span] <= U < K[Span + 1] inside the range, the last non-empty span at
    // or beyond the end knot, the first one below the start knot.
    static int FindKnotSpan(double U, const std::vector<double>& K, int P);
    // The P + 1 basis functions of Span at U (The NURBS Book, A2.2), or a single 1 at the end
    // of the span where U lies outside the tolerance band.
    std::vector<double> BasisFunctions(int Span, double U, int P, const std::vector<double>& K) const;
    // The same into N (P + 1 doubles), with Left and Right scratch of P + 2 doubles each.
    void BasisFunctionsInto(int Span, double U, int P, const std::vector<double>& K, double* N, double* Left,
                            double* Right) const;

private:
    double FSampleTolerance;
};

}  // namespace orvane
