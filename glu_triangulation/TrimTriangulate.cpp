// Trimmed surfaces through GLU: the boundary loops become GLU trim loops, each curve as a NURBS
// curve or as a sampled and thinned polyline, and the sampling tolerance follows the surface.
#include <algorithm>
#include <cfenv>
#include <cmath>
#include <memory>
#include <optional>

#include "contracts/DPSimplify.h"
#include "contracts/ViewUnits.h"
#include "glu_triangulation/uTriangulate.h"
#include "opengl/dglOpenGL.h"

namespace orvane {

using namespace dglOpenGL;

namespace {

constexpr const char* kUnitName = "uTriangulate";

constexpr double kLoopClosureTol = 0.01;
constexpr double kSamplesPerLength = 40.0;
constexpr int kSamplesAdded = 3;
constexpr int kMaxSamples = 1000;
constexpr int kStraightSamples = 10;
constexpr double kSimplifyTol = 0.001;
constexpr double kZeroTol = 1e-6;

// The number of knots that equal K within kZeroTol.
int KnotMultiplicity(const TGeSpline2D& Spline, double K)
{
    int count = 0;
    for (int i = 0; i < Spline.GetKnotCount(); ++i) {
        const double k = Spline.GetKnots(i);
        if (!fGreat(K, k, kZeroTol) && fEqual(K, k, kZeroTol)) ++count;
    }
    return count;
}

double PolylineLength(const TVPolyline2D& Polyline)
{
    double length = 0.0;
    for (int i = 1; i < Polyline.Count(); ++i) length += Polyline[i - 1].DistanceTo(Polyline[i]);
    return length;
}

double CtrlPolygonLength(const TGeSpline3D& Spline)
{
    double length = 0.0;
    for (int i = 1; i < Spline.GetCtrlPointCount(); ++i)
        length += Spline.GetCtrlPoint(i - 1).DistanceTo(Spline.GetCtrlPoint(i));
    return length;
}

// A tenth of the geometric length per parameter unit, growing in proportion above a length
// of 1000, at most a hundredth of the parameter range; 0 for a degree other than 1, and then
// Length is not written.
double SplineUVError(const TGeSpline3D& Spline, double& Length)
{
    if (Spline.Degree != 1) return 0.0;
    Length = CtrlPolygonLength(Spline);
    const double interval = Spline.GetInterval().GetLength();
    double error = fEqual(interval, 0.0, kZeroTol) ? 0.1 : Length / interval / 10.0;
    if (Length > 1000.0) error = error * Length / 1000.0;
    return std::min(interval / 100.0, error);
}

// The first row (AlongU) or the first column of the surface as a space spline.
std::unique_ptr<TGeSpline3D> EdgeSpline(const TGeNurbsSurface& Surf, bool AlongU)
{
    const int count = AlongU ? Surf.CtrlCountU : Surf.CtrlCountV;
    auto spline = std::make_unique<TGeSpline3D>(count, AlongU ? Surf.DegreeU : Surf.DegreeV);
    for (int i = 0; i < count; ++i) {
        spline->SetCtrlPoint(i, AlongU ? Surf.GetCtrlPoint(i, 0) : Surf.GetCtrlPoint(0, i));
        spline->SetWeight(i, AlongU ? Surf.GetWeight(i, 0) : Surf.GetWeight(0, i));
    }
    const int knots = AlongU ? Surf.GetKnotCountU() : Surf.GetKnotCountV();
    for (int i = 0; i < knots; ++i) spline->SetKnots(i, AlongU ? Surf.GetKnotsU(i) : Surf.GetKnotsV(i));
    return spline;
}

// True when a direction has degree 1; UErr then becomes the greater first control step.
bool CheckLinearDirection(const TGeNurbsSurface& Base, double& UErr)
{
    double step = 0.0;
    bool linear = false;
    if (Base.DegreeU == 1) {
        linear = true;
        step = Base.GetCtrlPoint(0, 0).DistanceTo(Base.GetCtrlPoint(1, 0));
    }
    if (Base.DegreeV == 1) {
        linear = true;
        step = std::max(step, Base.GetCtrlPoint(0, 0).DistanceTo(Base.GetCtrlPoint(0, 1)));
    }
    if (step > 0.0) UErr = step;
    return linear;
}

// Neighbours within UErr in U and VErr in V collapse onto the earlier one; the first and the
// last point always stay.
void ThinPolyline(TVPolyline2D& Polyline, double UErr, double VErr)
{
    int i = 0;
    while (i <= Polyline.Count() - 1) {
        const int j = i + 1;
        if (j > Polyline.Count() - 2) break;
        if (fEqual(Polyline[i].X, Polyline[j].X, UErr) && fEqual(Polyline[i].Y, Polyline[j].Y, VErr))
            Polyline.Delete(j);
        else
            ++i;
    }
}

float ToTrimValue(double Value) { return fEqual(Value, 0.0, kZeroTol) ? 0.0f : static_cast<float>(Value); }

const TGeNurbsSurface* NurbsBase(const TGeSurface* Surface)
{
    if (const auto* nurbs = dynamic_cast<const TGeNurbsSurface*>(Surface)) return nurbs;
    if (const auto* ext = dynamic_cast<const TGeNurbsSurfaceExt*>(Surface)) return ext->Surface;
    return nullptr;
}

}  // namespace

bool TGLSurfaceTriangulator::IsSimpleSurface(const TGeNurbsSurface& Surf)
{
    return Surf.DegreeU == 1 && Surf.DegreeV == 1 && Surf.CtrlCountU == 2 && Surf.CtrlCountV == 2;
}

bool TGLSurfaceTriangulator::CheckCompositeCurveInternalLink(const TGeCompositeCurve2D& Curve)
{
    if (ParamCurve2GLType(Curve) != ctLines) return true;
    for (int i = 0; i + 1 < Curve.GetCurveCount(); ++i)
        if (!Curve.GetCurve(i)->GetEndPoint().Equals(Curve.GetCurve(i + 1)->GetStartPoint(), kLoopClosureTol))
            return false;
    const int last = Curve.GetCurveCount() - 1;
    return Curve.GetCurve(0)->GetStartPoint().Equals(Curve.GetCurve(last)->GetEndPoint(), kLoopClosureTol);
}

TGLSurfaceTriangulator::TCurveType TGLSurfaceTriangulator::ParamCurve2GLType(const TGeCurve2D& Curve)
{
    const auto* spline = dynamic_cast<const TGeSpline2D*>(&Curve);
    if (spline == nullptr) return ctLines;
    const double first = spline->GetKnots(0);
    const double last = spline->GetKnots(spline->GetKnotCount() - 1);
    if (KnotMultiplicity(*spline, first) <= spline->Degree) return ctSpline;
    if (KnotMultiplicity(*spline, last) <= spline->Degree) return ctSpline;
    if (!DefTol.PointEquals(spline->GetCtrlPoint(0), spline->GetStartPoint())) return ctSpline;
    if (!DefTol.PointEquals(spline->GetCtrlPoint(spline->GetCtrlPointCount() - 1), spline->GetEndPoint()))
        return ctSpline;
    return ctLines;
}

bool TGLSurfaceTriangulator::GetCountNumViaBoundType(const TGeCurve2D& Curve, int& Count)
{
    if (const auto* spline = dynamic_cast<const TGeSpline2D*>(&Curve)) {
        if (spline->Degree != 1 || spline->GetCtrlPointCount() != 2) return false;
        Count = kStraightSamples;
        return true;
    }
    if (dynamic_cast<const TGeLine2D*>(&Curve) != nullptr) {
        Count = kStraightSamples;
        return true;
    }
    return false;
}

void TGLSurfaceTriangulator::ParamCurve2GLLines(const TGeCurve2D& Curve, TDynGLPointW2D& Points, double UErr,
                                                double VErr)
{
    int count = 0;
    // std::nearbyint rounds half to even in the default rounding mode.
    if (!GetCountNumViaBoundType(Curve, count))
        count = static_cast<int>(std::min(std::nearbyint(Curve.GetLength() * kSamplesPerLength) + kSamplesAdded,
                                          static_cast<double>(kMaxSamples)));
    TDynPoints2D samples;
    TFloatDynArray params;
    Curve.GetSamplePoints(count, samples, params);
    TVPolyline2D polyline(samples);
    {
        const std::unique_ptr<TVPoint2DList> simplified = DPSimplify(polyline, kSimplifyTol, true);
        polyline.Clear();
        polyline.AddRange(*simplified);
    }
    if (!fEqual(UErr, 0.0, kZeroTol) && !fEqual(VErr, 0.0, kZeroTol) &&
        PolylineLength(polyline) > std::min(UErr, VErr) * 10.0)
        ThinPolyline(polyline, UErr, VErr);
    Points.assign(polyline.Count(), TGLPointW2D{});
    for (int i = 0; i < polyline.Count(); ++i)
        Points[i] = {ToTrimValue(polyline[i].X), ToTrimValue(polyline[i].Y), 1.0f};
}

void TGLSurfaceTriangulator::ParamCurve2GLSpline(const TGeCurve2D& Curve, TDynGLPointW2D& CtrlPoints,
                                                 TDynGLFloat& Knots, int& Degree)
{
    const auto* spline = dynamic_cast<const TGeSpline2D*>(&Curve);
    Assert(spline != nullptr);
    CtrlPoints.assign(spline->GetCtrlPointCount(), TGLPointW2D{});
    for (int i = 0; i < spline->GetCtrlPointCount(); ++i) {
        const TPoint3D p = spline->GetCtrlPointW(i);
        CtrlPoints[i] = {static_cast<float>(p.X), static_cast<float>(p.Y), static_cast<float>(p.Z)};
    }
    Knots.assign(spline->GetKnotCount(), 0.0f);
    for (int i = 0; i < spline->GetKnotCount(); ++i) Knots[i] = static_cast<float>(spline->GetKnots(i));
    Degree = spline->Degree;
}

void TGLSurfaceTriangulator::ProvideUVError(const TGeNurbsSurface& Surf, double& UErr, double& VErr, double& ULen,
                                            double& VLen)
{
    UErr = SplineUVError(*EdgeSpline(Surf, true), ULen);
    VErr = SplineUVError(*EdgeSpline(Surf, false), VLen);
}

void TGLSurfaceTriangulator::DoTrimTriangulate(const TGeTrimmedSurface& Surf, TDynGLFloat& Vertices,
                                               TDynGLFloat& Normals)
{
    const TGeNurbsSurface* base = NurbsBase(Surf.GetSurface());
    Assert(base != nullptr);
    try {
        double uErr = 0.0, vErr = 0.0, uLen = 0.0, vLen = 0.0;
        FirstRowColumnLengths(*base, uLen, vLen);
        ProvideUVError(*base, uErr, vErr, uLen, vLen);
        TGLSurfaceData data = MakeSurfaceData(*base);
        gluBeginSurface(FRender);
        gluNurbsProperty(FRender, GLU_SAMPLING_METHOD, GLU_PATH_LENGTH);
        if (const std::optional<float> tolerance = TrimmedSamplingTolerance(Surf, *base, uErr, uLen, vLen))
            gluNurbsProperty(FRender, GLU_SAMPLING_TOLERANCE, *tolerance);
        SendSurface(data);
        AddTrimLoop(*Surf.OuterBoundary.GetCurve(), uErr, vErr);
        for (int i = 0; i < Surf.GetInnerBoundaryCount(); ++i)
            AddTrimLoop(*Surf.GetInnerBoundary(i).GetCurve(), uErr, vErr);
        gluEndSurface(FRender);
        RaiseKeptFailure();
    } catch (...) {
        // Swallowed: what was recorded before the failure is the result.
    }
    CollectResult(Vertices, Normals);
    std::feclearexcept(FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW);
}

// With a direction of degree 1 the tolerance is the first control step rounded up; else
// the size rule on the control polygons' lengths and the number of holes. Nothing: it stays.
std::optional<float> TGLSurfaceTriangulator::TrimmedSamplingTolerance(const TGeTrimmedSurface& Surf, const TGeNurbsSurface& Base,
                                                       double& UErr, double ULen, double VLen)
{
    if (CheckLinearDirection(Base, UErr)) return static_cast<float>(std::ceil(UErr));
    const int innerCount = Surf.GetInnerBoundaryCount();
    if (ULen > 700.0 && VLen > 700.0) return 100.0f;
    if (innerCount > 20 || ULen > 500.0 || VLen > 500.0) return 10.0f;
    if (innerCount >= 1) return 5.0f;
    return std::nullopt;
}

// The size rule needs the control polygon lengths of the first row and column whatever the
// degrees, while ProvideUVError writes them only for a direction of degree 1: measure them
// here first.
void TGLSurfaceTriangulator::FirstRowColumnLengths(const TGeNurbsSurface& Surf, double& ULen, double& VLen)
{
    ULen = CtrlPolygonLength(*EdgeSpline(Surf, true));
    VLen = CtrlPolygonLength(*EdgeSpline(Surf, false));
}

// A loop that is not closed within 0.01, or a composite with a gap, is dropped: no GLU call.
void TGLSurfaceTriangulator::AddTrimLoop(const TGeCurve2D& Curve, double UErr, double VErr)
{
    if (const auto* composite = dynamic_cast<const TGeCompositeCurve2D*>(&Curve)) {
        if (!CheckCompositeCurveInternalLink(*composite)) return;
        gluBeginTrim(FRender);
        for (int i = 0; i < composite->GetCurveCount(); ++i) AddTrimCurve(*composite->GetCurve(i), UErr, VErr);
        gluEndTrim(FRender);
        return;
    }
    if (Curve.GetStartPoint().DistanceTo(Curve.GetEndPoint()) > kLoopClosureTol) return;
    gluBeginTrim(FRender);
    AddTrimCurve(Curve, UErr, VErr);
    gluEndTrim(FRender);
}

// Polylines keep their W and so stride 3, though GLU_MAP1_TRIM_2 reads X and Y only.
void TGLSurfaceTriangulator::AddTrimCurve(const TGeCurve2D& Curve, double UErr, double VErr)
{
    if (ParamCurve2GLType(Curve) == ctSpline) {
        TDynGLPointW2D ctrl;
        TDynGLFloat knots;
        int degree = 0;
        ParamCurve2GLSpline(Curve, ctrl, knots, degree);
        if (!ctrl.empty())  // a spline of no control points sends nothing, as a polyline of one point
            gluNurbsCurve(FRender, static_cast<GLint>(knots.size()), knots.data(), 3, &ctrl.front().X, degree + 1,
                          GLU_MAP1_TRIM_3);
        return;
    }
    TDynGLPointW2D points;
    ParamCurve2GLLines(Curve, points, UErr, VErr);
    if (points.size() >= 2)
        gluPwlCurve(FRender, static_cast<GLint>(points.size()), &points.front().X, 3, GLU_MAP1_TRIM_2);
}

}  // namespace orvane
