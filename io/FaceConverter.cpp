#include "io/FaceConverter.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <utility>

#include <BRepAdaptor_Curve.hxx>
#include <BRepBuilderAPI_NurbsConvert.hxx>
#include <BRepTools.hxx>
#include <BRep_Tool.hxx>
#include <Geom2dConvert.hxx>
#include <Geom2d_BSplineCurve.hxx>
#include <Geom2d_TrimmedCurve.hxx>
#include <GeomAdaptor_Surface.hxx>
#include <GeomConvert.hxx>
#include <Geom_BSplineSurface.hxx>
#include <Geom_BezierSurface.hxx>
#include <Geom_Plane.hxx>
#include <Geom_RectangularTrimmedSurface.hxx>
#include <Precision.hxx>
#include <Standard_Failure.hxx>
#include <TColStd_Array1OfReal.hxx>
#include <TColgp_Array1OfPnt2d.hxx>
#include <ShapeAnalysis_Curve.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_DataMapOfShapeShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Iterator.hxx>
#include <TopoDS_Wire.hxx>

#include "io/FaceValidation.h"
#include "io/ShapeHealing.h"

namespace orvane::io {
namespace {

using Curve2d = Handle(Geom2d_BSplineCurve);

std::string Text(const auto&... parts)
{
    std::ostringstream out;
    (out << ... << parts);
    return out.str();
}

// One edge's curve in UV, in the direction the loop runs, with the 3D tolerance of its ends.
// Edge is the face's edge as its wire holds it (null for a bridge added here); Against tells
// that the curve runs against the edge's parameter.
struct LoopCurve {
    Curve2d Curve;
    double Tolerance = 0.0;
    TopoDS_Edge Edge;
    bool Against = false;
    gp_Pnt2d Start() const { return Curve->StartPoint(); }
    gp_Pnt2d End() const { return Curve->EndPoint(); }
};

// What the faces need to take their edges' shared points: the table, and for a face that was
// converted to NURBS, which edge of the original shape each converted edge stands for.
struct EdgeContext {
    EdgeTable& Table;
    TopTools_DataMapOfShapeShape Original;  // converted edge -> original edge; empty: not converted
};

// --- Surface --------------------------------------------------------------------------------

// The face converted by OpenCASCADE, whose pcurves are recomputed for the new surface: the
// NURBS form of a cylinder or a sphere is parametrised differently from the original.
// Original receives, for each converted edge, the edge of the original face it stands for.
TopoDS_Face NurbsFace(const TopoDS_Face& face, TopTools_DataMapOfShapeShape& original)
{
    BRepBuilderAPI_NurbsConvert convert(face, Standard_True);
    if (!convert.IsDone() || convert.Shape().ShapeType() != TopAbs_FACE)
        throw EFaceSkipped("the conversion to NURBS failed");
    for (TopExp_Explorer ex(face, TopAbs_EDGE); ex.More(); ex.Next()) {
        const TopoDS_Shape& converted = convert.ModifiedShape(ex.Current());
        if (!original.IsBound(converted)) original.Bind(converted, ex.Current());
    }
    return TopoDS::Face(convert.Shape());
}

Handle(Geom_BSplineSurface) BSplineOf(const TopoDS_Face& converted, const TopoDS_Face& original)
{
    Handle(Geom_Surface) s = BRep_Tool::Surface(converted);
    while (auto trimmed = Handle(Geom_RectangularTrimmedSurface)::DownCast(s)) s = trimmed->BasisSurface();
    auto bspline = Handle(Geom_BSplineSurface)::DownCast(s);
    if (bspline.IsNull()) {
        Handle(Geom_Surface) kind = BRep_Tool::Surface(original);
        throw EFaceSkipped(Text("its surface (", kind.IsNull() ? "none" : kind->DynamicType()->Name(),
                                ") does not convert to NURBS"));
    }
    return Handle(Geom_BSplineSurface)::DownCast(bspline->Copy());
}

// The NURBS form of a surface whose conversion keeps its parameters (a B-spline, a Bezier
// patch, a plane over the face's box), so that the face's own trim curves still fit; none for
// any other kind. Going round BRepBuilderAPI_NurbsConvert where it is not needed also spares
// its reprojection of trim curves, which can take very long on degenerate surfaces.
Handle(Geom_BSplineSurface) DirectNurbs(const TopoDS_Face& face)
{
    Handle(Geom_Surface) s = BRep_Tool::Surface(face);
    while (auto trimmed = Handle(Geom_RectangularTrimmedSurface)::DownCast(s)) s = trimmed->BasisSurface();
    if (auto bspline = Handle(Geom_BSplineSurface)::DownCast(s)) return Handle(Geom_BSplineSurface)::DownCast(bspline->Copy());
    if (auto bezier = Handle(Geom_BezierSurface)::DownCast(s)) return GeomConvert::SurfaceToBSplineSurface(bezier);
    if (auto plane = Handle(Geom_Plane)::DownCast(s)) {
        double u0, u1, v0, v1;
        BRepTools::UVBounds(face, u0, u1, v0, v1);
        if (!(u1 - u0 > kMinKnotRange) || !(v1 - v0 > kMinKnotRange) || std::fabs(u0) > kMaxAbsKnot ||
            std::fabs(u1) > kMaxAbsKnot || std::fabs(v0) > kMaxAbsKnot || std::fabs(v1) > kMaxAbsKnot)
            return nullptr;
        return GeomConvert::SurfaceToBSplineSurface(new Geom_RectangularTrimmedSurface(plane, u0, u1, v0, v1));
    }
    return nullptr;
}

// Limits [a, b] to the surface's range in one direction; a periodic direction keeps its place
// but no more than one period. Ends within rounding of the range's ends snap onto them.
void FitRange(double& a, double& b, double first, double last, bool periodic, double period)
{
    const double snap = 1e-9 * std::max(1.0, last - first);
    if (std::fabs(a - first) < snap) a = first;
    if (std::fabs(b - last) < snap) b = last;
    if (periodic) {
        b = std::min(b, a + period);
    } else {
        a = std::max(a, first);
        b = std::min(b, last);
    }
}

// The whole number of periods nearest to delta; 0 for a direction that is not periodic.
double WholePeriods(double delta, double period)
{
    return period > 0.0 ? std::round(delta / period) * period : 0.0;
}

// Cuts the surface to the face's UV box: this also makes a periodic surface clamped and
// non-periodic, and keeps the parameters where they were. A periodic cut may land a whole
// number of periods away; the result is how far the knots must move back (U, V).
gp_XY CutToBox(const Handle(Geom_BSplineSurface)& s, double u0, double u1, double v0, double v1)
{
    double su0, su1, sv0, sv1;
    s->Bounds(su0, su1, sv0, sv1);
    FitRange(u0, u1, su0, su1, s->IsUPeriodic(), s->IsUPeriodic() ? s->UPeriod() : 0.0);
    FitRange(v0, v1, sv0, sv1, s->IsVPeriodic(), s->IsVPeriodic() ? s->VPeriod() : 0.0);
    if (!(u1 - u0 > kMinKnotRange) || !(v1 - v0 > kMinKnotRange))
        throw EFaceSkipped("the face covers no area of its surface's parameter range");
    const double periodU = s->IsUPeriodic() ? s->UPeriod() : 0.0, periodV = s->IsVPeriodic() ? s->VPeriod() : 0.0;
    s->Segment(u0, u1, v0, v1);
    if (s->IsUPeriodic()) s->SetUNotPeriodic();
    if (s->IsVPeriodic()) s->SetVNotPeriodic();
    s->Bounds(su0, su1, sv0, sv1);
    return {WholePeriods(u0 - su0, periodU), WholePeriods(v0 - sv0, periodV)};
}

void ShiftKnots(std::vector<double>& knots, double delta)
{
    if (delta == 0.0) return;
    for (double& k : knots) k += delta;
}

std::vector<double> FlatKnots(const TColStd_Array1OfReal& seq)
{
    return {seq.begin(), seq.end()};
}

NurbsSurfaceData SurfaceData(const Handle(Geom_BSplineSurface)& s)
{
    NurbsSurfaceData d;
    d.DegreeU = s->UDegree();
    d.DegreeV = s->VDegree();
    d.CountU = s->NbUPoles();
    d.CountV = s->NbVPoles();
    TColStd_Array1OfReal ku(1, d.CountU + d.DegreeU + 1), kv(1, d.CountV + d.DegreeV + 1);
    s->UKnotSequence(ku);
    s->VKnotSequence(kv);
    d.KnotsU = FlatKnots(ku);
    d.KnotsV = FlatKnots(kv);
    const bool rational = s->IsURational() || s->IsVRational();
    d.Poles.reserve(static_cast<std::size_t>(d.CountU) * d.CountV);
    for (int i = 1; i <= d.CountU; ++i)
        for (int j = 1; j <= d.CountV; ++j) {
            const gp_Pnt p = s->Pole(i, j);
            d.Poles.push_back({p.X(), p.Y(), p.Z()});
            if (rational) d.Weights.push_back(s->Weight(i, j));
        }
    return d;
}

// Samples per direction: four a knot span, at least 9, at most 65.
int SampleCount(int knotCount)
{
    return std::clamp(4 * (knotCount - 1) + 1, 9, 65);
}

DerivativeBounds SampleDerivatives(const Handle(Geom_BSplineSurface)& s)
{
    double u0, u1, v0, v1;
    s->Bounds(u0, u1, v0, v1);
    const int nu = SampleCount(s->NbUKnots()), nv = SampleCount(s->NbVKnots());
    DerivativeBounds b;
    for (int i = 0; i < nu; ++i)
        for (int j = 0; j < nv; ++j) {
            gp_Pnt p;
            gp_Vec su, sv, suu, svv, suv;
            s->D2(u0 + (u1 - u0) * i / (nu - 1), v0 + (v1 - v0) * j / (nv - 1), p, su, sv, suu, svv, suv);
            b.MaxSu = std::max(b.MaxSu, su.Magnitude());
            b.MaxSv = std::max(b.MaxSv, sv.Magnitude());
            const gp_Vec n = su.Crossed(sv);
            const double length = n.Magnitude();
            const bool hasNormal = length > 1e-12 * std::max(1.0, su.SquareMagnitude() + sv.SquareMagnitude());
            b.MaxSuu = std::max(b.MaxSuu, hasNormal ? std::fabs(suu.Dot(n)) / length : suu.Magnitude());
            b.MaxSvv = std::max(b.MaxSvv, hasNormal ? std::fabs(svv.Dot(n)) / length : svv.Magnitude());
            if (!hasNormal) continue;
            if (su.Magnitude() > 0.0) b.MaxTurnU = std::max(b.MaxTurnU, std::fabs(suu.Dot(n)) / (length * su.Magnitude()));
            if (sv.Magnitude() > 0.0) b.MaxTurnV = std::max(b.MaxTurnV, std::fabs(svv.Dot(n)) / (length * sv.Magnitude()));
        }
    return b;
}

// --- Boundary -------------------------------------------------------------------------------

Curve2d LineCurve(const gp_Pnt2d& a, const gp_Pnt2d& b)
{
    TColgp_Array1OfPnt2d poles(1, 2);
    poles(1) = a;
    poles(2) = b;
    TColStd_Array1OfReal knots(1, 2);
    knots(1) = 0.0;
    knots(2) = 1.0;
    TColStd_Array1OfInteger mults(1, 2);
    mults(1) = 2;
    mults(2) = 2;
    return new Geom2d_BSplineCurve(poles, knots, mults, 1);
}

// The edge's curve on the face from its start to its end as the loop runs, or none for an
// edge of no extent.
bool EdgeCurve(const TopoDS_Edge& edge, const TopoDS_Face& face, int loop, int number, LoopCurve& out)
{
    double first = 0.0, last = 0.0;
    Handle(Geom2d_Curve) pcurve = BRep_Tool::CurveOnSurface(edge, face, first, last);
    if (pcurve.IsNull())
        throw EFaceSkipped(Text("edge ", number, " of loop ", loop, " has no curve in the face's parameters"));
    if (!(last - first > Precision::PConfusion())) return false;
    Curve2d c = Geom2dConvert::CurveToBSplineCurve(new Geom2d_TrimmedCurve(pcurve, first, last));
    const bool against = edge.Orientation() == TopAbs_REVERSED;
    if (against) c->Reverse();
    out = {c, EdgeTolerance(edge), edge, against};
    return true;
}

// Puts the curves in running order: each next is the one whose start lies nearest the end of
// the one before. A well-formed wire is in that order already.
void Chain(std::vector<LoopCurve>& curves)
{
    for (std::size_t i = 0; i + 1 < curves.size(); ++i) {
        const gp_Pnt2d end = curves[i].End();
        auto nearest = std::min_element(curves.begin() + static_cast<long>(i) + 1, curves.end(),
            [&](const LoopCurve& a, const LoopCurve& b) { return a.Start().Distance(end) < b.Start().Distance(end); });
        std::iter_swap(curves.begin() + static_cast<long>(i) + 1, nearest);
    }
}

// True when the UV segment from a to b maps to points within tol of one another: the side of
// the parameter box that a pole collapses to one point.
bool CollapsesOnSurface(const GeomAdaptor_Surface& s, const gp_Pnt2d& a, const gp_Pnt2d& b, double tol)
{
    const gp_Pnt pa = s.Value(a.X(), a.Y());
    for (int k = 1; k <= 4; ++k) {
        const gp_XY q = a.XY() + (b.XY() - a.XY()) * (k / 4.0);
        if (s.Value(q.X(), q.Y()).Distance(pa) > tol) return false;
    }
    return true;
}

// Where the surface's own parameter range ends or wraps: its bounds in a direction that is
// not periodic, its seams (every whole period from the first parameter) in one that is.
struct NaturalRange {
    double First[2] = {0.0, 0.0};
    double Last[2] = {0.0, 0.0};
    double Period[2] = {0.0, 0.0};  // 0: not periodic

    explicit NaturalRange(const TopoDS_Face& face)
    {
        Handle(Geom_Surface) s = BRep_Tool::Surface(face);
        while (auto trimmed = Handle(Geom_RectangularTrimmedSurface)::DownCast(s)) s = trimmed->BasisSurface();
        if (s.IsNull()) return;
        s->Bounds(First[0], Last[0], First[1], Last[1]);
        if (s->IsUPeriodic()) Period[0] = s->UPeriod();
        if (s->IsVPeriodic()) Period[1] = s->VPeriod();
    }

    // True when x lies within res of a bound or a seam of direction d.
    bool OnBorder(int d, double x, double res) const
    {
        if (Period[d] > 0.0) return std::fabs(std::remainder(x - First[d], Period[d])) <= res;
        return std::fabs(x - First[d]) <= res || std::fabs(x - Last[d]) <= res;
    }
};

// True when the UV segment from a to b is a side the file left out of a loop: it runs along a
// bound or a seam of the surface's range (a patch whose edge along its border stops short, a
// loop that ends on the seam), or it crosses the whole range from one bound or seam to the
// other (a half cylinder given by its two end arcs only).
bool RunsAlongBorder(const NaturalRange& range, const GeomAdaptor_Surface& s, const gp_Pnt2d& a, const gp_Pnt2d& b,
                     double tol)
{
    const double res[2] = {std::max(s.UResolution(tol), 1e-9), std::max(s.VResolution(tol), 1e-9)};
    const double pa[2] = {a.X(), a.Y()}, pb[2] = {b.X(), b.Y()};
    for (int d = 0; d < 2; ++d) {
        const int other = 1 - d;
        if (std::fabs(pa[d] - pb[d]) > res[d]) continue;  // not along an iso-line of direction d
        if (range.OnBorder(d, 0.5 * (pa[d] + pb[d]), res[d])) return true;
        if (range.OnBorder(other, pa[other], res[other]) && range.OnBorder(other, pb[other], res[other])) return true;
    }
    return false;
}

// Closes every joint of the loop, the last onto the first, or raises an open-loop error. A
// gap within the edges' tolerance is closed; a gap that collapses to one point on the surface
// or runs along a bound or a seam of its range is bridged by a segment (a bridge has no edge).
void CloseJoints(std::vector<LoopCurve>& curves, const GeomAdaptor_Surface& s, const NaturalRange& range, int loop)
{
    std::vector<LoopCurve> closed;
    for (std::size_t i = 0; i < curves.size(); ++i) {
        LoopCurve& cur = curves[i];
        const LoopCurve& next = curves[(i + 1) % curves.size()];
        const double tol = std::max(cur.Tolerance, next.Tolerance);
        const gp_Pnt2d end = cur.End(), start = next.Start();
        closed.push_back(cur);
        if (std::fabs(end.X() - start.X()) <= s.UResolution(tol) && std::fabs(end.Y() - start.Y()) <= s.VResolution(tol)) {
            closed.back().Curve->SetPole(closed.back().Curve->NbPoles(), start);
        } else if (CollapsesOnSurface(s, end, start, tol) || RunsAlongBorder(range, s, end, start, tol)) {
            closed.push_back({LineCurve(end, start), tol, {}, false});
        } else {
            throw EFaceSkipped(Text("open trim loop: loop ", loop, " has a gap of ", end.Distance(start),
                                    " in UV after edge ", i + 1));
        }
    }
    curves = std::move(closed);
}

// Twice the signed area the loop encloses in UV, from samples of its curves.
double SignedArea(const std::vector<LoopCurve>& curves)
{
    double area = 0.0;
    for (const LoopCurve& c : curves) {
        const int n = std::max(8, 4 * c.Curve->NbPoles());
        const double t0 = c.Curve->FirstParameter(), t1 = c.Curve->LastParameter();
        gp_Pnt2d prev = c.Curve->Value(t0);
        for (int k = 1; k <= n; ++k) {
            const gp_Pnt2d p = c.Curve->Value(t0 + (t1 - t0) * k / n);
            area += prev.X() * p.Y() - p.X() * prev.Y();
            prev = p;
        }
    }
    return area;
}

void Reverse(std::vector<LoopCurve>& curves)
{
    std::reverse(curves.begin(), curves.end());
    for (LoopCurve& c : curves) {
        c.Curve->Reverse();
        c.Against = !c.Against;
    }
}

// Poles within rounding outside the surface's range are put on its edge: a loop that runs
// along a seam or a pole comes out of the conversion a hair outside (a periodic surface cut to
// a whole period comes out of OpenCASCADE a few 1e-8 of it short), and GLU's trimming takes
// such a loop for one that crosses the boundary.
void SnapIntoDomain(TPoint2D& p, const TRect2D& d)
{
    const double snapU = 1e-6 * std::max(1.0, d.Width()), snapV = 1e-6 * std::max(1.0, d.Height());
    auto snap = [](double& x, double lo, double hi, double tol) {
        if (x < lo && x > lo - tol) x = lo;
        if (x > hi && x < hi + tol) x = hi;
    };
    snap(p.X, d.Min.X, d.Max.X, snapU);
    snap(p.Y, d.Min.Y, d.Max.Y, snapV);
}

// Parameters on the converted edge of the original edge's shared points: the converted
// curves are parametrised afresh, so each inner point is projected onto the converted edge,
// starting from the one before (the points run along the edge).
std::vector<double> ConvertedParameters(const TopoDS_Edge& converted, const EdgeData& e, double first, double last)
{
    std::vector<double> t(e.Points.size(), first);
    t.back() = last;
    if (e.Degenerate) return t;
    const BRepAdaptor_Curve curve(TopoDS::Edge(converted.Oriented(TopAbs_FORWARD)));
    const ShapeAnalysis_Curve analysis;
    for (std::size_t i = 1; i + 1 < t.size(); ++i) {
        gp_Pnt projected;
        double param = t[i - 1];
        analysis.NextProject(t[i - 1], curve, gp_Pnt(e.Points[i].X, e.Points[i].Y, e.Points[i].Z), Precision::Confusion(),
                             projected, param);
        t[i] = std::clamp(param, t[i - 1], last);
    }
    return t;
}

// The UV on this face of the shared points of the curve's edge, in the curve's running
// direction, the ends exactly where the curve starts and ends. Nothing for a bridge.
void TakeSharedPoints(const LoopCurve& c, EdgeContext& edges, const TopoDS_Face& face, const TRect2D& domain,
                      TrimCurveData& d)
{
    if (c.Edge.IsNull()) return;
    const bool converted = !edges.Original.IsEmpty();
    if (converted && !edges.Original.IsBound(c.Edge)) return;
    const TopoDS_Edge original = converted ? TopoDS::Edge(edges.Original.Find(c.Edge)) : c.Edge;
    d.Edge = edges.Table.Index(original);
    d.AgainstEdge = c.Against;
    double first = 0.0, last = 0.0;
    const Handle(Geom2d_Curve) pcurve = BRep_Tool::CurveOnSurface(c.Edge, face, first, last);
    const std::vector<double> t = converted ? ConvertedParameters(c.Edge, edges.Table.Data(d.Edge), first, last)
                                            : edges.Table.Parameters(d.Edge);
    for (double param : t) {
        const gp_Pnt2d uv = pcurve->Value(param);
        d.EdgeUV.push_back({uv.X(), uv.Y()});
        SnapIntoDomain(d.EdgeUV.back(), domain);
    }
    if (c.Against) std::reverse(d.EdgeUV.begin(), d.EdgeUV.end());
    d.EdgeUV.front() = d.Poles.front();
    d.EdgeUV.back() = d.Poles.back();
}

TrimCurveData CurveData(const Curve2d& c, const TRect2D& domain)
{
    TrimCurveData d;
    d.Degree = c->Degree();
    TColStd_Array1OfReal knots(1, c->NbPoles() + c->Degree() + 1);
    c->KnotSequence(knots);
    d.Knots = FlatKnots(knots);
    for (int i = 1; i <= c->NbPoles(); ++i) {
        d.Poles.push_back({c->Pole(i).X(), c->Pole(i).Y()});
        SnapIntoDomain(d.Poles.back(), domain);
        if (c->IsRational()) d.Weights.push_back(c->Weight(i));
    }
    return d;
}

std::vector<LoopCurve> WireCurves(const TopoDS_Wire& wire, const TopoDS_Face& face, int loop)
{
    std::vector<LoopCurve> curves;
    int number = 0;
    // The wire's edges as stored, with their orientation in the face: a wire explorer that
    // follows vertices loses edges at poles, where a degenerate edge shares its vertex.
    for (TopoDS_Iterator it(wire); it.More(); it.Next()) {
        if (it.Value().ShapeType() != TopAbs_EDGE) continue;
        ++number;
        const TopoDS_Edge& edge = TopoDS::Edge(it.Value());
        if (edge.Orientation() != TopAbs_FORWARD && edge.Orientation() != TopAbs_REVERSED) continue;
        LoopCurve c;
        if (EdgeCurve(edge, face, loop, number, c)) curves.push_back(c);
    }
    return curves;
}

// Puts the poles of a degenerate edge's curve into the domain: at a pole the surface is one
// point all along the curve, and a recomputed curve may run anywhere along it, even outside
// the face's box.
void KeepInDomain(const Curve2d& c, const TRect2D& d)
{
    for (int i = 1; i <= c->NbPoles(); ++i) {
        const gp_Pnt2d p = c->Pole(i);
        c->SetPole(i, gp_Pnt2d(std::clamp(p.X(), d.Min.X, d.Max.X), std::clamp(p.Y(), d.Min.Y, d.Max.Y)));
    }
}

std::vector<TrimLoopData> Loops(const TopoDS_Face& face, const Handle(Geom_BSplineSurface)& s, const TRect2D& domain,
                                 EdgeContext& edges)
{
    const TopoDS_Face forward = TopoDS::Face(face.Oriented(TopAbs_FORWARD));
    GeomAdaptor_Surface adaptor(s);
    const NaturalRange range(forward);
    std::vector<std::vector<LoopCurve>> loops;
    std::vector<double> areas;
    for (TopoDS_Iterator it(forward); it.More(); it.Next()) {
        if (it.Value().ShapeType() != TopAbs_WIRE || it.Value().Orientation() == TopAbs_INTERNAL ||
            it.Value().Orientation() == TopAbs_EXTERNAL)
            continue;
        const int number = static_cast<int>(loops.size()) + 1;
        std::vector<LoopCurve> curves = WireCurves(TopoDS::Wire(it.Value()), forward, number);
        if (curves.empty()) continue;
        for (LoopCurve& c : curves)
            if (BRep_Tool::Degenerated(c.Edge)) KeepInDomain(c.Curve, domain);
        Chain(curves);
        CloseJoints(curves, adaptor, range, number);
        areas.push_back(SignedArea(curves));
        loops.push_back(std::move(curves));
    }
    if (loops.empty()) throw EFaceSkipped("the face has no boundary loop");
    // The outer loop encloses the most; it goes first and counter-clockwise, holes clockwise.
    const auto outer = std::max_element(areas.begin(), areas.end(),
        [](double a, double b) { return std::fabs(a) < std::fabs(b); }) - areas.begin();
    std::swap(loops[0], loops[static_cast<std::size_t>(outer)]);
    std::swap(areas[0], areas[static_cast<std::size_t>(outer)]);
    std::vector<TrimLoopData> result;
    for (std::size_t l = 0; l < loops.size(); ++l) {
        if ((l == 0) != (areas[l] > 0.0)) Reverse(loops[l]);
        TrimLoopData data;
        for (const LoopCurve& c : loops[l]) {
            data.push_back(CurveData(c.Curve, domain));
            TakeSharedPoints(c, edges, forward, domain, data.back());
        }
        result.push_back(std::move(data));
    }
    return result;
}

// The surface kind the file gives, in words.
std::string SourceKind(const TopoDS_Face& face)
{
    Handle(Geom_Surface) s = BRep_Tool::Surface(face);
    while (auto trimmed = Handle(Geom_RectangularTrimmedSurface)::DownCast(s)) s = trimmed->BasisSurface();
    if (s.IsNull()) return "none";
    static const std::pair<const char*, const char*> kinds[] = {
        {"Geom_Plane", "plane"}, {"Geom_CylindricalSurface", "cylinder"}, {"Geom_ConicalSurface", "cone"},
        {"Geom_SphericalSurface", "sphere"}, {"Geom_ToroidalSurface", "torus"}, {"Geom_BSplineSurface", "B-spline"},
        {"Geom_BezierSurface", "Bezier"}, {"Geom_SurfaceOfRevolution", "surface of revolution"},
        {"Geom_SurfaceOfLinearExtrusion", "extrusion"}, {"Geom_OffsetSurface", "offset surface"}};
    const std::string name = s->DynamicType()->Name();
    for (const auto& [type, words] : kinds)
        if (name == type) return words;
    return name;
}

FaceData Convert(const TopoDS_Face& face, int number, const std::string& name, EdgeTable& table)
{
    EdgeContext edges{table, {}};
    FaceData f;
    f.Number = number;
    f.Name = name;
    f.Reversed = face.Orientation() == TopAbs_REVERSED;
    f.SourceKind = SourceKind(face);
    TopoDS_Face converted = face;
    Handle(Geom_BSplineSurface) s = DirectNurbs(face);
    if (s.IsNull()) {
        converted = NurbsFace(face, edges.Original);
        // The recomputed trim curves may stray a little outside the NURBS form's range.
        FitTrimCurvesIntoRange(converted);
        s = BSplineOf(converted, face);
    }
    double u0, u1, v0, v1;
    BRepTools::UVBounds(converted, u0, u1, v0, v1);
    const gp_XY shift = CutToBox(s, u0, u1, v0, v1);
    f.Surface = SurfaceData(s);
    ShiftKnots(f.Surface.KnotsU, shift.X());
    ShiftKnots(f.Surface.KnotsV, shift.Y());
    if (auto problem = FindSurfaceProblem(f.Surface); !problem.empty()) throw EFaceSkipped(problem);
    f.Loops = Loops(converted, s, f.Surface.Domain(), edges);
    // A conversion's recomputed trim curve may wander near a pole, out of the face's box:
    // projected anew, it keeps to the box.
    const TRect2D domain = f.Surface.Domain();
    if (!edges.Original.IsEmpty() && !FindFaceProblem(f, 1e-9).empty() &&
        ReprojectStrayTrimCurves(converted, domain.Min.X, domain.Max.X, domain.Min.Y, domain.Max.Y))
        f.Loops = Loops(converted, s, domain, edges);
    f.Bounds = SampleDerivatives(s);
    // What the meshers would refuse is refused here, where the reader can say what
    // OpenCASCADE's own mesher makes of the face.
    if (auto problem = FindFaceProblem(f, 1e-9); !problem.empty()) throw EFaceSkipped(problem);
    return f;
}

}  // namespace

FaceData ConvertFace(const TopoDS_Face& Face, int Number, const std::string& Name, EdgeTable& Edges)
{
    try {
        return Convert(Face, Number, Name, Edges);
    } catch (const Standard_Failure& e) {
        throw EFaceSkipped(Text("the geometry library failed: ", e.DynamicType()->Name(),
                                *e.GetMessageString() ? ": " : "", e.GetMessageString()));
    }
}

}  // namespace orvane::io
