#include "io/ShapeHealing.h"

#include <algorithm>
#include <cmath>
#include <string>

#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_Copy.hxx>
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
#include <ShapeBuild_ReShape.hxx>
#include <ShapeFix_Face.hxx>
#include <ShapeFix_Shape.hxx>
#include <ShapeFix_Wire.hxx>
#include <Standard_Failure.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
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

double EdgeTolerance(const TopoDS_Edge& edge)
{
    double tol = BRep_Tool::Tolerance(edge);
    TopoDS_Vertex first, last;
    TopExp::Vertices(edge, first, last);
    if (!first.IsNull()) tol = std::max(tol, BRep_Tool::Tolerance(first));
    if (!last.IsNull()) tol = std::max(tol, BRep_Tool::Tolerance(last));
    return std::max(tol, Precision::Confusion());
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

}  // namespace

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
        builder.Range(forward, face, first, last);
        changed = true;
    }
    return changed;
}

HealedShape::HealedShape(const TopoDS_Shape& Shape) : FShape(Shape)
{
    if (Shape.IsNull()) return;
    try {
        ShapeFix_Shape fix(Shape);
        ConfigureFix(fix);
        fix.Perform();
        const TopoDS_Shape healed = fix.Shape();
        if (!healed.IsNull()) {
            const Handle(ShapeBuild_ReShape) context = fix.Context();
            for (TopExp_Explorer ex(Shape, TopAbs_FACE); ex.More(); ex.Next()) {
                const TopoDS_Shape now = context->Value(ex.Current());
                for (TopExp_Explorer f(now, TopAbs_FACE); f.More(); f.Next())
                    if (!f.Current().IsSame(ex.Current()) && !FOriginal.IsBound(f.Current()))
                        FOriginal.Bind(f.Current(), ex.Current());
            }
            FShape = healed;
        }
    } catch (const Standard_Failure&) {
        FShape = Shape;
        FOriginal.Clear();
    }
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
