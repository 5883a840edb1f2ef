#include "tessellation/SurfaceTriangulatorChecker.h"

#include <algorithm>
#include <cmath>

#include "contracts/AppSystem.h"

namespace orvane {

namespace {

// Runs a small predicate so that a failure is shown with its bare message and answers False.
template <typename F>
bool Guarded(F Body)
{
    try {
        return Body();
    } catch (const Exception& e) {
        AppSys.ShowMsg(e.Message(), 0);
        return false;
    }
}

}  // namespace

TRect2D TSurfaceTriangulatorChecker::GetInternalUVMinMax(const TGeNurbsSurface& GeSurf)
{
    return TRect2D::CreateNormal({GeSurf.GetKnotsU(0), GeSurf.GetKnotsV(0)},
                                 {GeSurf.GetKnotsU(GeSurf.GetKnotCountU() - 1),
                                  GeSurf.GetKnotsV(GeSurf.GetKnotCountV() - 1)});
}

TExtrusionType TSurfaceTriangulatorChecker::CheckExtrusionDirection(const TGeSurface* GeSurf)
{
    if (auto* nurbs = dynamic_cast<const TGeNurbsSurface*>(GeSurf)) return CheckNurbsExtrusion(*nurbs);
    if (auto* trimmed = dynamic_cast<const TGeTrimmedSurface*>(GeSurf)) return CheckTrimmedExtrusion(*trimmed);
    if (auto* ext = dynamic_cast<const TGeNurbsSurfaceExt*>(GeSurf)) return CheckNurbsExtrusion(*ext->Surface);
    return TExtrusionType::NotExtrusion;
}

TExtrusionType TSurfaceTriangulatorChecker::CheckNurbsExtrusion(const TGeNurbsSurface& GeSurf)
{
    const TRect2D range = GetInternalUVMinMax(GeSurf);
    return CheckExtrusionInRange(GeSurf, range.Min, range.Max);
}

// Tested over the box of what the trimmed surface covers; the box's corners need not lie on it.
TExtrusionType TSurfaceTriangulatorChecker::CheckTrimmedExtrusion(const TGeTrimmedSurface& GeSurf)
{
    TDynPoints2D points;
    GeSurf.OuterBoundary.GetCurve()->GetTolPoints(0.01, points);
    const TRect2D box = CalcAABB(points);
    const TGeSurface* base = GeSurf.GetSurface();
    if (dynamic_cast<const TGeNurbsSurface*>(base)) return CheckExtrusionInRange(GeSurf, box.Min, box.Max);
    if (auto* ext = dynamic_cast<const TGeNurbsSurfaceExt*>(base))
        return CheckExtrusionInRange(*ext->Surface, box.Min, box.Max);
    return TExtrusionType::NotExtrusion;
}

TExtrusionType TSurfaceTriangulatorChecker::CheckExtrusionInRange(const TGeSurface& S, const TPoint2D& Min,
                                                                  const TPoint2D& Max)
{
    if (Min.Equals(Max, 1e-6)) return TExtrusionType::NotExtrusion;
    const TPoint3D a = S.GetPoint(Min.X, Min.Y);
    const bool vStraight =
        IsPointOnLine(S.GetPoint(Min.X, (Max.Y + Min.Y) / 2), S.GetPoint(Min.X, Max.Y), a);
    const bool uStraight =
        IsPointOnLine(S.GetPoint((Max.X + Min.X) / 2, Min.Y), S.GetPoint(Max.X, Min.Y), a);
    if (vStraight && uStraight) return TExtrusionType::UVDir;
    if (vStraight) return TExtrusionType::VDir;
    if (uStraight) return TExtrusionType::UDir;
    return TExtrusionType::NotExtrusion;
}

bool TSurfaceTriangulatorChecker::IsPointOnLine(const TPoint3D& M, const TPoint3D& B, const TPoint3D& A)
{
    double param = 0.0;
    return TLine3D(A, B).IsOn(M, DefTol, param);
}

bool TSurfaceTriangulatorChecker::CheckSimpleSurface(const TGeSurface* GeSurf, TExtrusionType AExtrusionType)
{
    if (dynamic_cast<const TGeNurbsSurface*>(GeSurf)) return AExtrusionType == TExtrusionType::UVDir;
    if (auto* trimmed = dynamic_cast<const TGeTrimmedSurface*>(GeSurf))
        return CheckTrimmedSimple(*trimmed, AExtrusionType);
    if (dynamic_cast<const TGeNurbsSurfaceExt*>(GeSurf)) return AExtrusionType == TExtrusionType::UVDir;
    return false;
}

// A trimmed bilinear patch is simple whatever its type, even when a twisted net makes it
// NotExtrusion.
bool TSurfaceTriangulatorChecker::CheckTrimmedSimple(const TGeTrimmedSurface& GeSurf, TExtrusionType AExtrusionType)
{
    if (auto* nurbs = dynamic_cast<const TGeNurbsSurface*>(GeSurf.GetSurface()))
        return nurbs->GetKnotCountU() == 4 && nurbs->CtrlCountU == 2 && nurbs->GetKnotCountV() == 4 &&
               nurbs->CtrlCountV == 2;
    return AExtrusionType == TExtrusionType::UVDir;
}

double TSurfaceTriangulatorChecker::CheckSurfaceSampleRange(const TGeSurface* AGeSurf, TExtrusionType AExtrusionType)
{
    if (auto* nurbs = dynamic_cast<const TGeNurbsSurface*>(AGeSurf)) return SampleRangeOfNurbs(*nurbs, AExtrusionType);
    if (auto* trimmed = dynamic_cast<const TGeTrimmedSurface*>(AGeSurf))
        return CheckSurfaceSampleRange(trimmed->GetSurface(), AExtrusionType);
    if (auto* ext = dynamic_cast<const TGeNurbsSurfaceExt*>(AGeSurf))
        return SampleRangeOfNurbs(*ext->Surface, AExtrusionType);
    return DefaultSampleRange / 2;
}

// X runs along V for UDir and along U for every other type.
double TSurfaceTriangulatorChecker::SampleRangeOfNurbs(const TGeNurbsSurface& N, TExtrusionType AExtrusionType)
{
    const bool alongV = AExtrusionType == TExtrusionType::UDir;
    const double span = alongV ? std::abs(N.GetKnotsV(N.GetKnotCountV() - 1) - N.GetKnotsV(0))
                               : std::abs(N.GetKnotsU(N.GetKnotCountU() - 1) - N.GetKnotsU(0));
    const int count = alongV ? N.CtrlCountV : N.CtrlCountU;
    const int degree = alongV ? N.DegreeV : N.DegreeU;
    const int divisor = degree == 1 ? count + 1 : (count + degree) * 8;
    return span / divisor;
}

// One thin side is enough: the box need be narrow in X or in Y only.
bool TSurfaceTriangulatorChecker::CheckPointsSmallThanTolerance(const TList<TPoint2D>& Points, double Tol)
{
    return Guarded([&] {
        TPoint2D min = Points.GetItem(0);
        TPoint2D max = min;
        for (int i = 1; i < Points.Count(); ++i) {
            const TPoint2D& p = Points[i];
            min = {std::min(min.X, p.X), std::min(min.Y, p.Y)};
            max = {std::max(max.X, p.X), std::max(max.Y, p.Y)};
        }
        return Tol * 8 > max.X - min.X || Tol * 8 > max.Y - min.Y;
    });
}

bool TSurfaceTriangulatorChecker::CheckCompositeCurveSmallThanSampleTolerance(const TGeCompositeCurve2D& ACompCurve,
                                                                             double Tol)
{
    return Guarded([&] {
        TList<TPoint2D> points;
        for (int i = 0; i < ACompCurve.GetCurveCount(); ++i) {
            auto* spline = dynamic_cast<const TGeSpline2D*>(ACompCurve.GetCurve(i));
            if (!spline) return false;
            for (int k = 0; k < spline->GetCtrlPointCount(); ++k) points.Add(spline->GetCtrlPoint(k));
        }
        return CheckPointsSmallThanTolerance(points, Tol);
    });
}

// The control polygon stands in for the curve; the curve is not evaluated.
bool TSurfaceTriangulatorChecker::CheckSplineSmallThanSampleTolerance(const TGeSpline2D& ASpCurve, double Tol)
{
    return Guarded([&] {
        if (ASpCurve.GetCtrlPointCount() <= 2) return false;
        TList<TPoint2D> points;
        for (int k = 0; k < ASpCurve.GetCtrlPointCount(); ++k) points.Add(ASpCurve.GetCtrlPoint(k));
        return CheckPointsSmallThanTolerance(points, Tol);
    });
}

bool TSurfaceTriangulatorChecker::AnalyCurveIsCircle(const TGeCurve2D& AGeCurve, double Tol)
{
    const TPoint2D centre = AGeCurve.GetBoundRect().CenterPoint();
    TDynPoints2D points;
    TFloatDynArray params;
    AGeCurve.GetSamplePoints(10, points, params);
    if (points.empty()) return false;
    const double r = centre.DistanceTo(points[0]);
    return std::all_of(points.begin() + 1, points.end(),
                       [&](const TPoint2D& p) { return fEqual(r, centre.DistanceTo(p), Tol); });
}

}  // namespace orvane
