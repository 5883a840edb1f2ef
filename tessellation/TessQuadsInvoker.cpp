#include "tessellation/TessQuadsInvoker.h"

#include <cmath>
#include <utility>
#include <vector>

#include "contracts/TessQuadsTool.h"
#include "tessellation/SurfaceTriangulatorChecker.h"

namespace orvane {

namespace {

constexpr int kSamplesOfReplacedHole = 15;
constexpr int kMostPointsOfSmallHole = 5;
constexpr int kFewestPointsOfCircleHole = 21;

}  // namespace

TCreateDrawQuadsFunc DefaultCreateDrawQuads()
{
    return [](std::span<const TVPoint2DList* const> APolylines, double XTol, double YTol, bool AUnitPerColumn) {
        return TTessQuadsTool::CreateDrawQuads(APolylines, XTol, YTol, AUnitPerColumn);
    };
}

TTessQuadsInvoker::TTessQuadsInvoker(TExtrusionType AExtrusionType, double ASampleTolerance,
                                     TCreateDrawQuadsFunc ACreateDrawQuads)
    : FExtrusionType(AExtrusionType), FSampleTolerance(ASampleTolerance), FCreateDrawQuads(std::move(ACreateDrawQuads))
{
}

double TTessQuadsInvoker::GetXInternal(const TVPoint2DList& Polyline) const
{
    double reach = FSampleTolerance;
    for (int i = 1; i < Polyline.Count(); ++i) reach = std::max(reach, std::abs(Polyline[i].X - Polyline[0].X));
    return reach;
}

std::unique_ptr<TViewUnitList> TTessQuadsInvoker::GetViewUnitListOfSurface(const TGeSurface* GeSurf,
                                                                           bool AIsSimpleSurface) const
{
    TPolylines polylines;
    if (auto* nurbs = dynamic_cast<const TGeNurbsSurface*>(GeSurf))
        GetPolylinesOfNurbs(*nurbs, polylines);
    else if (auto* trimmed = dynamic_cast<const TGeTrimmedSurface*>(GeSurf))
        GetPolylinesOfTrimmed(*trimmed, polylines);
    else if (auto* ext = dynamic_cast<const TGeNurbsSurfaceExt*>(GeSurf))
        GetPolylinesOfNurbs(*ext->Surface, polylines);
    else
        return nullptr;
    if (polylines.Count() == 0) return nullptr;
    return CreateQuads(polylines, AIsSimpleSurface, GeSurf);
}

// The full knot range, closed by repeating its first point.
void TTessQuadsInvoker::GetPolylinesOfNurbs(const TGeNurbsSurface& N, TPolylines& Polylines) const
{
    const TRect2D r = TSurfaceTriangulatorChecker::GetInternalUVMinMax(N);
    Polylines.Add(CreatePolyline({r.Min, r.XMinYMax(), r.Max, r.XMaxYMin(), r.Min}).release());
}

// A tiny hole and a circular hole are both resampled evenly: the tiny one gets more points
// than its tolerance polyline had, the circular one fewer.
void TTessQuadsInvoker::GetPolylinesOfTrimmed(const TGeTrimmedSurface& T, TPolylines& Polylines) const
{
    Polylines.Add(GetTolPolyline(*T.OuterBoundary.GetCurve()).release());
    for (int i = 0; i < T.GetInnerBoundaryCount(); ++i) {
        const TGeCurve2D& curve = *T.GetInnerBoundary(i).GetCurve();
        std::unique_ptr<TVPolyline2D> polyline = GetTolPolyline(curve);
        const int count = polyline->Count();
        const bool replace =
            (count <= kMostPointsOfSmallHole && IsSmallCurve(curve)) ||
            (count >= kFewestPointsOfCircleHole &&
             TSurfaceTriangulatorChecker::AnalyCurveIsCircle(curve, FSampleTolerance / 2));
        if (replace) polyline = GetSamplePolyline(curve);
        Polylines.Add(polyline.release());
    }
}

std::unique_ptr<TViewUnitList> TTessQuadsInvoker::CreateQuads(const TPolylines& Polylines, bool AIsSimpleSurface,
                                                              const TGeSurface* GeSurf) const
{
    const double yTol = DefaultSampleRange / 2;
    double xTol = 0.0;
    if (AIsSimpleSurface) {
        // A simple surface gets one column as wide as its whole region.
        xTol = GetXInternal(*Polylines.First());
    } else {
        // Never narrower than YTol, to within 1e-6.
        const double range = TSurfaceTriangulatorChecker::CheckSurfaceSampleRange(GeSurf, FExtrusionType);
        xTol = fSmall(range, yTol, 1e-6) ? yTol : range;
    }
    std::vector<const TVPoint2DList*> lines(Polylines.begin(), Polylines.end());
    return FCreateDrawQuads(lines, xTol, yTol, false);
}

std::unique_ptr<TVPolyline2D> TTessQuadsInvoker::CreatePolyline(TDynPoints2D Points) const
{
    if (FExtrusionType == TExtrusionType::UDir) SwapXY(Points);
    return std::make_unique<TVPolyline2D>(Points);
}

void TTessQuadsInvoker::SwapXY(TDynPoints2D& Points)
{
    for (TPoint2D& p : Points) std::swap(p.X, p.Y);
}

std::unique_ptr<TVPolyline2D> TTessQuadsInvoker::GetTolPolyline(const TGeCurve2D& Curve) const
{
    TDynPoints2D points;
    Curve.GetTolPoints(FSampleTolerance / 10, points);
    return CreatePolyline(std::move(points));
}

std::unique_ptr<TVPolyline2D> TTessQuadsInvoker::GetSamplePolyline(const TGeCurve2D& Curve) const
{
    TDynPoints2D points;
    TFloatDynArray params;
    Curve.GetSamplePoints(kSamplesOfReplacedHole, points, params);
    return CreatePolyline(std::move(points));
}

// Small means a control polygon narrower than 4 FSampleTolerance in X or in Y.
bool TTessQuadsInvoker::IsSmallCurve(const TGeCurve2D& Curve) const
{
    if (auto* composite = dynamic_cast<const TGeCompositeCurve2D*>(&Curve))
        return TSurfaceTriangulatorChecker::CheckCompositeCurveSmallThanSampleTolerance(*composite,
                                                                                       FSampleTolerance / 2);
    if (auto* spline = dynamic_cast<const TGeSpline2D*>(&Curve))
        return TSurfaceTriangulatorChecker::CheckSplineSmallThanSampleTolerance(*spline, FSampleTolerance / 2);
    return false;
}

}  // namespace orvane
