// Classification of a surface before the quad road samples it: how it is straight, whether it
// is simple, how wide its sampling columns are, and the tests that decide how a hole's
// boundary is flattened. Class tests go in the order NURBS, trimmed, wrapped NURBS, and accept
// descendants. The surface tests have no guard: what the kernel raises reaches the caller.
#pragma once

#include "contracts/Cadgeometry.h"
#include "contracts/Export.h"
#include "contracts/Generics.h"
#include "tessellation/ExtrusionType.h"

namespace orvane {

class ORVANE_API TSurfaceTriangulatorChecker {
public:
    TSurfaceTriangulatorChecker() = delete;

    // The knot range, from the first to the last knot in U and V.
    static TRect2D GetInternalUVMinMax(const TGeNurbsSurface& GeSurf);
    // Tests the two iso-curves through the minimum corner of the range that a surface covers,
    // each at its middle: five evaluations. Anything but the three classes: NotExtrusion.
    static TExtrusionType CheckExtrusionDirection(const TGeSurface* GeSurf);
    // A NURBS surface is simple when UVDir; a trimmed one over a bilinear NURBS patch always.
    static bool CheckSimpleSurface(const TGeSurface* GeSurf, TExtrusionType AExtrusionType);
    // The spacing of the X columns of the tessellation plane; 0.05 for an unknown surface.
    static double CheckSurfaceSampleRange(const TGeSurface* AGeSurf, TExtrusionType AExtrusionType);

    // Whether the control polygons are narrower than 8 Tol in X or in Y. Guarded: a failure
    // is shown and answers False, as does any sub-curve that is no spline.
    static bool CheckCompositeCurveSmallThanSampleTolerance(const TGeCompositeCurve2D& ACompCurve, double Tol);
    // The same for one spline; one of 2 control points or fewer is never small.
    static bool CheckSplineSmallThanSampleTolerance(const TGeSpline2D& ASpCurve, double Tol);
    // Whether 10 samples lie at one distance, within Tol, from the centre of the curve's box.
    static bool AnalyCurveIsCircle(const TGeCurve2D& AGeCurve, double Tol);

private:
    static TExtrusionType CheckNurbsExtrusion(const TGeNurbsSurface& GeSurf);
    static TExtrusionType CheckTrimmedExtrusion(const TGeTrimmedSurface& GeSurf);
    static TExtrusionType CheckExtrusionInRange(const TGeSurface& S, const TPoint2D& Min, const TPoint2D& Max);
    static bool IsPointOnLine(const TPoint3D& M, const TPoint3D& B, const TPoint3D& A);
    static bool CheckTrimmedSimple(const TGeTrimmedSurface& GeSurf, TExtrusionType AExtrusionType);
    static double SampleRangeOfNurbs(const TGeNurbsSurface& N, TExtrusionType AExtrusionType);
    static bool CheckPointsSmallThanTolerance(const TList<TPoint2D>& Points, double Tol);
};

}  // namespace orvane
