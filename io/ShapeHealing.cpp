#include "io/ShapeHealing.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include <BRepAdaptor_Curve.hxx>
#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_Copy.hxx>
#include <BRepBuilderAPI_Sewing.hxx>
#include <BRepMesh_IncrementalMesh.hxx>
#include <BRep_Builder.hxx>
#include <Bnd_Box.hxx>
#include <Poly_Triangulation.hxx>
#include <BRep_Tool.hxx>
#include <Geom2dConvert.hxx>
#include <Geom2d_BSplineCurve.hxx>
#include <Geom2d_TrimmedCurve.hxx>
#include <Geom_RectangularTrimmedSurface.hxx>
#include <Geom_Surface.hxx>
#include <Precision.hxx>
#include <ShapeAnalysis_Curve.hxx>
#include <ShapeBuild_Edge.hxx>
#include <ShapeBuild_ReShape.hxx>
#include <ShapeFix_Edge.hxx>
#include <ShapeFix_Face.hxx>
#include <ShapeFix_Shape.hxx>
#include <ShapeFix_Wire.hxx>
#include <Standard_Failure.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedDataMapOfShapeListOfShape.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopTools_MapOfShape.hxx>
#include <TopoDS_Iterator.hxx>
#include <TopoDS_Wire.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Edge.hxx>

namespace orvane::io {
namespace {

// One direction of a surface's parameter range; Bounded when trim curves must keep inside it.
struct Span {
    double Lo = 0.0;
    double Hi = 0.0;
    bool Bounded = false;
    double Clamp(double x) const { return Bounded ? std::clamp(x, Lo, Hi) : x; }
};

Span SpanOf(double lo, double hi, bool periodic)
{
    const bool bounded = !periodic && !Precision::IsInfinite(lo) && !Precision::IsInfinite(hi) && hi > lo;
    return {lo, hi, bounded};
}

// The trim curve with its poles pulled into the range, or none when it keeps inside already,
// cannot be rebuilt with the same parameters, or strays further than healing may move it.
Handle(Geom2d_BSplineCurve) FittedCurve(const Handle(Geom2d_Curve)& pcurve, double first, double last,
                                        const Handle(Geom_Surface)& surface, const Span& u, const Span& v, double tol)
{
    if (pcurve.IsNull() || !(last > first) || Precision::IsInfinite(first) || Precision::IsInfinite(last)) return nullptr;
    Handle(Geom2d_BSplineCurve) b = Geom2dConvert::CurveToBSplineCurve(new Geom2d_TrimmedCurve(pcurve, first, last));
    const double eps = 1e-9 * std::max(1.0, last - first);
    if (std::fabs(b->FirstParameter() - first) > eps || std::fabs(b->LastParameter() - last) > eps) return nullptr;
    double excessU = 0.0, excessV = 0.0, move3d = 0.0;
    for (int i = 1; i <= b->NbPoles(); ++i) {
        const gp_Pnt2d p = b->Pole(i);
        const gp_Pnt2d q(u.Clamp(p.X()), v.Clamp(p.Y()));
        if (p.IsEqual(q, 0.0)) continue;
        excessU = std::max(excessU, std::fabs(p.X() - q.X()));
        excessV = std::max(excessV, std::fabs(p.Y() - q.Y()));
        move3d = std::max(move3d, surface->Value(p.X(), p.Y()).Distance(surface->Value(q.X(), q.Y())));
        b->SetPole(i, q);
    }
    if (excessU == 0.0 && excessV == 0.0) return nullptr;
    const bool slight = (!u.Bounded || excessU <= 0.01 * (u.Hi - u.Lo)) && (!v.Bounded || excessV <= 0.01 * (v.Hi - v.Lo));
    if (move3d > tol && !slight) return nullptr;
    return b;
}

// The topological repairs, each on by choice: trim curves a period off across the seam
// (shifted), 2D and 3D gaps at joints, edges out of order, degenerate edges missing at poles,
// missing seams. What the readers' own healing left undone, these mend; wires are not split
// or dropped and faces not removed, so every face of the file stays one face here.
void ConfigureFix(ShapeFix_Shape& fix)
{
    const Handle(ShapeFix_Face) face = fix.FixFaceTool();
    face->FixOrientationMode() = 1;
    face->FixMissingSeamMode() = 1;
    face->FixPeriodicDegeneratedMode() = 1;
    face->FixSmallAreaWireMode() = 0;
    face->RemoveSmallAreaFaceMode() = 0;
    face->FixSplitFaceMode() = 0;
    face->FixLoopWiresMode() = 0;
    face->FixIntersectingWiresMode() = 0;
    const Handle(ShapeFix_Wire) wire = fix.FixWireTool();
    wire->FixReorderMode() = 1;
    wire->FixShiftedMode() = 1;
    wire->FixConnectedMode() = 1;
    wire->FixGaps2dMode() = 1;
    wire->FixGaps3dMode() = 1;
    wire->FixDegeneratedMode() = 1;
    wire->FixLackingMode() = 1;
    wire->FixSmallMode() = 0;
    wire->FixSelfIntersectionMode() = 0;
}


// --- Spikes ----------------------------------------------------------------------------------

// One use of an edge in a wire, in the direction the wire runs.
struct EdgeUse {
    TopoDS_Edge Edge;
    bool Reversed = false;
    double First = 0.0, Last = 0.0;  // the edge's range
    double Start() const { return Reversed ? Last : First; }
    double End() const { return Reversed ? First : Last; }
};

// Where B, from its start, runs back along A's end: the parameters on A and B where B leaves
// A (3D distance above tol), or false when B turns away at once, or retraces A or B whole.
bool FindSpike(const EdgeUse& a, const EdgeUse& b, double tol, double& atA, double& atB)
{
    const BRepAdaptor_Curve ca(a.Edge), cb(b.Edge);
    gp_Pnt pa, pb;
    gp_Vec ta, tb;
    ca.D1(a.End(), pa, ta);
    cb.D1(b.Start(), pb, tb);
    if (a.Reversed) ta.Reverse();
    if (b.Reversed) tb.Reverse();
    if (ta.Magnitude() < gp::Resolution() || tb.Magnitude() < gp::Resolution() || pa.Distance(pb) > tol) return false;
    if (ta.Normalized().Dot(tb.Normalized()) > -0.95) return false;  // no turn back
    const ShapeAnalysis_Curve analysis;
    // The distance from A of B's point at t, and the parameter of its foot on A.
    auto offA = [&](double t, double& foot) {
        gp_Pnt projected;
        return analysis.Project(ca, cb.Value(t), Precision::Confusion(), projected, foot, Standard_False);
    };
    const int n = 64;
    double onA = a.End(), last = b.Start();
    int k = 1;
    for (; k <= n; ++k) {
        const double t = b.Start() + (b.End() - b.Start()) * k / n;
        double foot = onA;
        if (offA(t, foot) > tol) break;
        onA = foot;
        last = t;
    }
    if (k == 1 || k > n) return false;
    // Where between the last sample on A and the first off it B leaves A.
    double off = b.Start() + (b.End() - b.Start()) * k / n;
    for (int i = 0; i < 30; ++i) {
        const double mid = 0.5 * (last + off);
        double foot = onA;
        if (offA(mid, foot) > tol) {
            off = mid;
        } else {
            last = mid;
            onA = foot;
        }
    }
    // A's kept part must not vanish: the spike ends inside A.
    const double keep = a.Reversed ? a.Last - onA : onA - a.First;
    if (!(keep > 1e-6 * std::fabs(a.Last - a.First))) return false;
    atA = onA;
    atB = last;
    return true;
}

// The edge cut at t into two edges meeting at v, in the edge's own direction.
void SplitEdge(const TopoDS_Edge& edge, double t, const TopoDS_Vertex& v, TopoDS_Edge& low, TopoDS_Edge& high)
{
    const TopoDS_Edge forward = TopoDS::Edge(edge.Oriented(TopAbs_FORWARD));
    TopoDS_Vertex first, last;
    TopExp::Vertices(forward, first, last);
    double f = 0.0, l = 0.0;
    BRep_Tool::Range(forward, f, l);
    const ShapeBuild_Edge build;
    BRep_Builder builder;
    low = build.CopyReplaceVertices(forward, first, v);
    builder.Range(low, f, t);
    high = build.CopyReplaceVertices(forward, v, last);
    builder.Range(high, t, l);
}

TopoDS_Wire WireOf(std::initializer_list<TopoDS_Edge> edges)
{
    BRep_Builder builder;
    TopoDS_Wire wire;
    builder.MakeWire(wire);
    for (const TopoDS_Edge& e : edges) builder.Add(wire, e);
    return wire;
}

// Cuts the spikes out of the wire: where an edge runs back along the end of the edge before
// it, both are split where they part, the two pieces that retrace each other leave this wire
// (the faces on their other sides keep them), and the wire closes where they parted. A spike
// bounds nothing, yet a region mesher sees slivers along it wherever the two curves waver
// across each other. One spike a wire is cut, which is what files carry.
bool CutSpike(const TopoDS_Wire& wire, const TopoDS_Face& face, ShapeBuild_ReShape& context)
{
    std::vector<EdgeUse> uses;
    for (TopoDS_Iterator it(wire); it.More(); it.Next()) {
        if (it.Value().ShapeType() != TopAbs_EDGE) return false;
        const TopoDS_Edge& e = TopoDS::Edge(it.Value());
        if (e.Orientation() != TopAbs_FORWARD && e.Orientation() != TopAbs_REVERSED) return false;
        if (BRep_Tool::Degenerated(e)) {
            uses.push_back({e, e.Orientation() == TopAbs_REVERSED, 0.0, 0.0});
            continue;
        }
        double f = 0.0, l = 0.0;
        if (BRep_Tool::Curve(e, f, l).IsNull() || !BRep_Tool::SameParameter(e)) return false;
        uses.push_back({e, e.Orientation() == TopAbs_REVERSED, f, l});
    }
    if (uses.size() < 3) return false;
    for (std::size_t i = 0; i < uses.size(); ++i) {
        const EdgeUse& a = uses[i];
        const EdgeUse& b = uses[(i + 1) % uses.size()];
        if (BRep_Tool::Degenerated(a.Edge) || BRep_Tool::Degenerated(b.Edge) || a.Edge.IsSame(b.Edge)) continue;
        if (BRep_Tool::IsClosed(a.Edge, face) || BRep_Tool::IsClosed(b.Edge, face)) continue;
        const double tol = 0.1 * std::max(BRep_Tool::Tolerance(a.Edge), BRep_Tool::Tolerance(b.Edge)) + Precision::Confusion();
        double atA = 0.0, atB = 0.0;
        if (!FindSpike(a, b, tol, atA, atB)) continue;
        const gp_Pnt pa = BRepAdaptor_Curve(a.Edge).Value(atA), pb = BRepAdaptor_Curve(b.Edge).Value(atB);
        TopoDS_Vertex v;
        BRep_Builder builder;
        builder.MakeVertex(v, gp_Pnt(0.5 * (pa.XYZ() + pb.XYZ())),
                           std::max({BRep_Tool::Tolerance(a.Edge), BRep_Tool::Tolerance(b.Edge), 0.5 * pa.Distance(pb) + Precision::Confusion()}));
        TopoDS_Edge aLow, aHigh, bLow, bHigh;
        SplitEdge(a.Edge, atA, v, aLow, aHigh);
        SplitEdge(b.Edge, atB, v, bLow, bHigh);
        // Elsewhere each edge is its two pieces; here only the pieces outside the spike.
        context.Replace(a.Edge.Oriented(TopAbs_FORWARD), WireOf({aLow, aHigh}));
        context.Replace(b.Edge.Oriented(TopAbs_FORWARD), WireOf({bLow, bHigh}));
        const TopoDS_Edge aKept = a.Reversed ? TopoDS::Edge(aHigh.Reversed()) : aLow;
        const TopoDS_Edge bKept = b.Reversed ? TopoDS::Edge(bLow.Reversed()) : bHigh;
        BRep_Builder wb;
        TopoDS_Wire cut;
        wb.MakeWire(cut);
        for (std::size_t j = 0; j < uses.size(); ++j) {
            if (j == i) wb.Add(cut, aKept);
            else if (j == (i + 1) % uses.size()) wb.Add(cut, bKept);
            else wb.Add(cut, uses[j].Edge);
        }
        cut.Orientation(wire.Orientation());
        context.Replace(wire, cut);
        return true;
    }
    return false;
}

// The shape with the spikes of its faces' wires cut out; the faces in the same order.
TopoDS_Shape CutSpikes(const TopoDS_Shape& shape)
{
    const Handle(ShapeBuild_ReShape) context = new ShapeBuild_ReShape();
    bool any = false;
    TopTools_IndexedMapOfShape faces;
    TopExp::MapShapes(shape, TopAbs_FACE, faces);
    TopTools_MapOfShape edgesCut;
    for (int i = 1; i <= faces.Extent(); ++i) {
        const TopoDS_Face face = TopoDS::Face(faces(i).Oriented(TopAbs_FORWARD));
        for (TopoDS_Iterator it(face); it.More(); it.Next()) {
            if (it.Value().ShapeType() != TopAbs_WIRE) continue;
            // An edge is cut once: a second spike on it waits for another healing.
            bool touched = false;
            for (TopoDS_Iterator e(it.Value()); e.More(); e.Next()) touched = touched || edgesCut.Contains(e.Value());
            if (touched) continue;
            if (CutSpike(TopoDS::Wire(it.Value()), face, *context)) {
                for (TopoDS_Iterator e(it.Value()); e.More(); e.Next()) edgesCut.Add(e.Value());
                any = true;
            }
        }
    }
    return any ? context->Apply(shape) : shape;
}

// Edges of the shape that bound one face only.
int FreeEdges(const TopoDS_Shape& shape)
{
    TopTools_IndexedDataMapOfShapeListOfShape faces;
    TopExp::MapShapesAndAncestors(shape, TopAbs_EDGE, TopAbs_FACE, faces);
    int free = 0;
    for (int i = 1; i <= faces.Extent(); ++i) free += faces(i).Extent() == 1 && !BRep_Tool::Degenerated(TopoDS::Edge(faces.FindKey(i)));
    return free;
}

// Faces that meet along edges of their own (as IGES files often give them) sewn into shells
// that share those edges, within a thousandth of the shape's size; the shape as it is
// where it has no free edge or sewing fails. Original learns each sewn face's face.
TopoDS_Shape Sewn(const TopoDS_Shape& shape, TopTools_DataMapOfShapeShape& original)
{
    const int free = FreeEdges(shape);
    if (free == 0) return shape;
    try {
        Bnd_Box box;
        BRepBndLib::Add(shape, box);
        if (box.IsVoid()) return shape;
        BRepBuilderAPI_Sewing sewing(1e-3 * std::sqrt(box.SquareExtent()));
        sewing.Add(shape);
        sewing.Perform();
        const TopoDS_Shape sewn = sewing.SewedShape();
        if (sewn.IsNull() || FreeEdges(sewn) >= free) return shape;
        for (TopExp_Explorer ex(shape, TopAbs_FACE); ex.More(); ex.Next())
            if (sewing.IsModifiedSubShape(ex.Current())) original.Bind(sewing.ModifiedSubShape(ex.Current()), ex.Current());
        return sewn;
    } catch (const Standard_Failure&) {
        return shape;
    }
}

}  // namespace

double EdgeTolerance(const TopoDS_Edge& Edge)
{
    double tol = BRep_Tool::Tolerance(Edge);
    TopoDS_Vertex first, last;
    TopExp::Vertices(Edge, first, last);
    if (!first.IsNull()) tol = std::max(tol, BRep_Tool::Tolerance(first));
    if (!last.IsNull()) tol = std::max(tol, BRep_Tool::Tolerance(last));
    return std::max(tol, Precision::Confusion());
}


bool FitTrimCurvesIntoRange(const TopoDS_Face& Face)
{
    // Read and write the curves of a seam edge as the forward face holds them: the edge's
    // two curves are told apart by the edge's orientation in the forward face.
    const TopoDS_Face face = TopoDS::Face(Face.Oriented(TopAbs_FORWARD));
    TopLoc_Location location;
    Handle(Geom_Surface) surface = BRep_Tool::Surface(face, location);
    // The range is the basis surface's: a trimmed surface's box is no limit to its curves.
    while (auto trimmed = Handle(Geom_RectangularTrimmedSurface)::DownCast(surface)) surface = trimmed->BasisSurface();
    if (surface.IsNull()) return false;
    double u0, u1, v0, v1;
    surface->Bounds(u0, u1, v0, v1);
    const Span u = SpanOf(u0, u1, surface->IsUPeriodic()), v = SpanOf(v0, v1, surface->IsVPeriodic());
    if (!u.Bounded && !v.Bounded) return false;
    bool changed = false;
    TopTools_IndexedMapOfShape edges;
    TopExp::MapShapes(face, TopAbs_EDGE, edges);
    BRep_Builder builder;
    for (int i = 1; i <= edges.Extent(); ++i) {
        const TopoDS_Edge forward = TopoDS::Edge(edges(i).Oriented(TopAbs_FORWARD));
        const double tol = EdgeTolerance(forward);
        double first = 0.0, last = 0.0;
        const Handle(Geom2d_Curve) c1 = BRep_Tool::CurveOnSurface(forward, face, first, last);
        Handle(Geom2d_BSplineCurve) f1 = FittedCurve(c1, first, last, surface, u, v, tol);
        if (BRep_Tool::IsClosed(forward, face)) {
            double first2 = 0.0, last2 = 0.0;
            const TopoDS_Edge reversed = TopoDS::Edge(forward.Reversed());
            const Handle(Geom2d_Curve) c2 = BRep_Tool::CurveOnSurface(reversed, face, first2, last2);
            Handle(Geom2d_BSplineCurve) f2 = FittedCurve(c2, first2, last2, surface, u, v, tol);
            if (f1.IsNull() && f2.IsNull()) continue;
            if (c1.IsNull() || c2.IsNull() || first2 != first || last2 != last) continue;
            builder.UpdateEdge(forward, f1.IsNull() ? c1 : Handle(Geom2d_Curve)(f1),
                               f2.IsNull() ? c2 : Handle(Geom2d_Curve)(f2), face, BRep_Tool::Tolerance(forward));
        } else {
            if (f1.IsNull()) continue;
            builder.UpdateEdge(forward, f1, face, BRep_Tool::Tolerance(forward));
        }
        // The vertices' tolerances cover the moved ends of the curve.
        ShapeFix_Edge().FixVertexTolerance(forward, face);
        builder.Range(forward, face, first, last);
        changed = true;
    }
    return changed;
}

bool ReprojectStrayTrimCurves(const TopoDS_Face& Face, double U0, double U1, double V0, double V1)
{
    const TopoDS_Face face = TopoDS::Face(Face.Oriented(TopAbs_FORWARD));
    const double slackU = 1e-6 * std::max(1.0, U1 - U0), slackV = 1e-6 * std::max(1.0, V1 - V0);
    bool changed = false;
    TopTools_IndexedMapOfShape edges;
    TopExp::MapShapes(face, TopAbs_EDGE, edges);
    for (int i = 1; i <= edges.Extent(); ++i) {
        const TopoDS_Edge edge = TopoDS::Edge(edges(i).Oriented(TopAbs_FORWARD));
        if (BRep_Tool::Degenerated(edge) || BRep_Tool::IsClosed(edge, face)) continue;
        double first = 0.0, last = 0.0;
        const Handle(Geom2d_Curve) pcurve = BRep_Tool::CurveOnSurface(edge, face, first, last);
        if (pcurve.IsNull() || !(last > first)) continue;
        const Handle(Geom2d_BSplineCurve) b = Geom2dConvert::CurveToBSplineCurve(new Geom2d_TrimmedCurve(pcurve, first, last));
        bool strays = false;
        for (int k = 1; k <= b->NbPoles() && !strays; ++k) {
            const gp_Pnt2d p = b->Pole(k);
            strays = p.X() < U0 - slackU || p.X() > U1 + slackU || p.Y() < V0 - slackV || p.Y() > V1 + slackV;
        }
        if (!strays) continue;
        BRep_Builder builder;
        builder.UpdateEdge(edge, Handle(Geom2d_Curve)(), face, BRep_Tool::Tolerance(edge));
        if (!ShapeFix_Edge().FixAddPCurve(edge, face, Standard_False)) {
            builder.UpdateEdge(edge, pcurve, face, BRep_Tool::Tolerance(edge));  // keep what it had
            builder.Range(edge, face, first, last);
            continue;
        }
        changed = true;
    }
    return changed;
}

HealedShape::HealedShape(const TopoDS_Shape& Read) : FShape(Read)
{
    if (Read.IsNull()) return;
    const TopoDS_Shape Shape = Sewn(Read, FOriginal);
    FShape = Shape;
    try {
        ShapeFix_Shape fix(Shape);
        ConfigureFix(fix);
        fix.Perform();
        const TopoDS_Shape healed = fix.Shape();
        if (!healed.IsNull()) {
            const Handle(ShapeBuild_ReShape) context = fix.Context();
            TopTools_DataMapOfShapeShape original;
            for (TopExp_Explorer ex(Shape, TopAbs_FACE); ex.More(); ex.Next()) {
                const TopoDS_Shape now = context->Value(ex.Current());
                for (TopExp_Explorer f(now, TopAbs_FACE); f.More(); f.Next())
                    if (!original.IsBound(f.Current())) original.Bind(f.Current(), Original(ex.Current()));
            }
            FOriginal = original;
            FShape = healed;
        }
    } catch (const Standard_Failure&) {
        FShape = Shape;
    }
    try {
        const TopoDS_Shape cut = CutSpikes(FShape);
        if (!cut.IsSame(FShape)) {
            // The rebuilt shape keeps its faces in order: face i stands for face i before.
            TopTools_IndexedMapOfShape before, after;
            TopExp::MapShapes(FShape, TopAbs_FACE, before);
            TopExp::MapShapes(cut, TopAbs_FACE, after);
            if (before.Extent() == after.Extent()) {
                TopTools_DataMapOfShapeShape original;
                for (int i = 1; i <= after.Extent(); ++i) original.Bind(after(i), Original(before(i)));
                FOriginal = original;
                FShape = cut;
            }
        }
    } catch (const Standard_Failure&) {
        // The spikes stay; the faces convert as they are.
    }
    // A cut loop no longer shares the stretch it kept with the face beside it: sewn again.
    TopTools_DataMapOfShapeShape resewn;
    FShape = Sewn(FShape, resewn);
    for (TopTools_DataMapOfShapeShape::Iterator it(resewn); it.More(); it.Next()) FOriginal.Bind(it.Key(), Original(it.Value()));
    TopTools_IndexedMapOfShape faces;
    TopExp::MapShapes(FShape, TopAbs_FACE, faces);
    for (int i = 1; i <= faces.Extent(); ++i) {
        try {
            FitTrimCurvesIntoRange(TopoDS::Face(faces(i)));
        } catch (const Standard_Failure&) {
            // A face whose curves cannot be fitted keeps them; its conversion says what is wrong.
        }
    }
}

TopoDS_Shape HealedShape::Original(const TopoDS_Shape& Face) const
{
    const TopoDS_Shape* original = FOriginal.Seek(Face);
    return original ? *original : Face;
}

std::string KernelMesherVerdict(const TopoDS_Face& Face)
{
    try {
        const TopoDS_Face copy = TopoDS::Face(BRepBuilderAPI_Copy(Face).Shape());
        Bnd_Box box;
        BRepBndLib::Add(copy, box);
        double deflection = 1e-3;
        if (!box.IsVoid()) {
            const double size = std::sqrt(box.SquareExtent());
            if (std::isfinite(size) && size > 0.0) deflection = 0.01 * size;
        }
        const BRepMesh_IncrementalMesh mesh(copy, deflection, Standard_False, 0.5);
        TopLoc_Location location;
        const Handle(Poly_Triangulation) triangles = BRep_Tool::Triangulation(copy, location);
        const int count = triangles.IsNull() ? 0 : triangles->NbTriangles();
        if (count == 0) return "; OpenCASCADE's mesher leaves it without triangles too";
        return "; OpenCASCADE's mesher gives it " + std::to_string(count) + " triangles";
    } catch (const Standard_Failure&) {
        return "; OpenCASCADE's mesher fails on it too";
    }
}

}  // namespace orvane::io
