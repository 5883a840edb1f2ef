#include "tests/io/parts/FaultyParts.h"

#include <cmath>
#include <vector>

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepLib.hxx>
#include <BRep_Builder.hxx>
#include <Geom2dAPI_PointsToBSpline.hxx>
#include <Geom2d_BSplineCurve.hxx>
#include <Geom2d_Line.hxx>
#include <GeomConvert.hxx>
#include <Geom_BSplineCurve.hxx>
#include <Geom_BSplineSurface.hxx>
#include <Geom_Circle.hxx>
#include <TColStd_Array1OfInteger.hxx>
#include <TColStd_Array1OfReal.hxx>
#include <TColStd_Array2OfReal.hxx>
#include <TColgp_Array1OfPnt2d.hxx>
#include <TColgp_Array2OfPnt.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Vertex.hxx>
#include <TopoDS_Wire.hxx>

namespace orvane::io::testing {
namespace {

// A straight trim curve from a to b in the surface's parameters, between the given vertices.
TopoDS_Edge EdgeOn(const Handle(Geom_Surface)& s, const gp_Pnt2d& a, const gp_Pnt2d& b, const TopoDS_Vertex& va,
                   const TopoDS_Vertex& vb)
{
    const Handle(Geom2d_Line) line = new Geom2d_Line(a, gp_Dir2d(b.XY() - a.XY()));
    TopoDS_Edge edge = BRepBuilderAPI_MakeEdge(line, s, va, vb, 0.0, a.Distance(b));
    BRepLib::BuildCurves3d(edge);
    return edge;
}

TopoDS_Vertex VertexAt(const Handle(Geom_Surface)& s, const gp_Pnt2d& p)
{
    TopoDS_Vertex v;
    BRep_Builder().MakeVertex(v, s->Value(p.X(), p.Y()), 1e-7);
    return v;
}

// A face of the surface bounded by straight trim curves through the corners, as one loop; a
// corner that repeats an earlier one in 3D (Same[i] >= 0) takes that corner's vertex. Open:
// the last corner is not joined back to the first.
TopoDS_Face FaceOn(const Handle(Geom_Surface)& s, const std::vector<gp_Pnt2d>& corners,
                   const std::vector<int>& same = {}, bool open = false)
{
    std::vector<TopoDS_Vertex> vertices;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const int k = i < same.size() ? same[i] : -1;
        vertices.push_back(k >= 0 ? vertices[static_cast<std::size_t>(k)] : VertexAt(s, corners[i]));
    }
    BRep_Builder builder;
    TopoDS_Wire wire;
    builder.MakeWire(wire);
    const std::size_t n = corners.size(), edges = open ? n - 1 : n;
    for (std::size_t i = 0; i < edges; ++i)
        builder.Add(wire, EdgeOn(s, corners[i], corners[(i + 1) % n], vertices[i], vertices[(i + 1) % n]));
    TopoDS_Face face;
    builder.MakeFace(face, s, 1e-7);
    builder.Add(face, wire);
    return face;
}

// Two open loops of one face, each a list of straight pieces: the cylinder half given by its
// two end arcs.
TopoDS_Face FaceOfPieces(const Handle(Geom_Surface)& s, const std::vector<std::vector<gp_Pnt2d>>& pieces)
{
    BRep_Builder builder;
    TopoDS_Wire wire;
    builder.MakeWire(wire);
    for (const auto& piece : pieces)
        for (std::size_t i = 0; i + 1 < piece.size(); ++i)
            builder.Add(wire, EdgeOn(s, piece[i], piece[i + 1], VertexAt(s, piece[i]), VertexAt(s, piece[i + 1])));
    TopoDS_Face face;
    builder.MakeFace(face, s, 1e-7);
    builder.Add(face, wire);
    return face;
}

// A cylinder of radius 10 as a B-spline surface periodic in U (the circle's rational form,
// period 2 pi), straight in V over [0, height].
Handle(Geom_BSplineSurface) PeriodicCylinder(double height = 20.0)
{
    const Handle(Geom_BSplineCurve) circle =
        GeomConvert::CurveToBSplineCurve(new Geom_Circle(gp_Ax2(gp::Origin(), gp::DZ()), 10.0));
    const int n = circle->NbPoles();
    TColgp_Array2OfPnt poles(1, n, 1, 2);
    TColStd_Array2OfReal weights(1, n, 1, 2);
    for (int i = 1; i <= n; ++i)
        for (int j = 1; j <= 2; ++j) {
            const gp_Pnt p = circle->Pole(i);
            poles(i, j) = gp_Pnt(p.X(), p.Y(), j == 1 ? 0.0 : height);
            weights(i, j) = circle->Weight(i);
        }
    TColStd_Array1OfReal knotsU(1, circle->NbKnots()), knotsV(1, 2);
    TColStd_Array1OfInteger multsU(1, circle->NbKnots()), multsV(1, 2);
    circle->Knots(knotsU);
    circle->Multiplicities(multsU);
    knotsV(1) = 0.0;
    knotsV(2) = height;
    multsV.Init(2);
    return new Geom_BSplineSurface(poles, weights, knotsU, knotsV, multsU, multsV, circle->Degree(), 1,
                                   circle->IsPeriodic(), Standard_False);
}

}  // namespace

TopoDS_Face StrayingCurvePatch(bool faulty)
{
    TColgp_Array2OfPnt poles(1, 4, 1, 4);
    for (int i = 1; i <= 4; ++i)
        for (int j = 1; j <= 4; ++j) {
            const double x = 40.0 * (i - 1) / 3.0, y = 30.0 * (j - 1) / 3.0;
            poles(i, j) = gp_Pnt(x, y, 3.0 * std::sin(0.08 * x) * std::cos(0.1 * y));
        }
    TColStd_Array1OfReal knots(1, 2);
    knots(1) = 0.0;
    knots(2) = 1.0;
    TColStd_Array1OfInteger mults(1, 2);
    mults.Init(4);
    const Handle(Geom_Surface) s = new Geom_BSplineSurface(poles, knots, knots, mults, mults, 3, 3);
    const double low = faulty ? -2e-4 : 0.0;
    return FaceOn(s, {{0.0, low}, {1.0, low}, {1.0, 1.0}, {0.0, 1.0}});
}

TopoDS_Face ShiftedSeamBand(bool faulty)
{
    const Handle(Geom_BSplineSurface) s = PeriodicCylinder();
    const double period = s->UPeriod(), left = faulty ? period - 1.0 : -1.0;
    // The left side runs from (left, 20) down to (left, 0): its ends are the band's first
    // and fourth corners in 3D whichever side of the seam it lies on.
    BRep_Builder builder;
    const std::vector<gp_Pnt2d> corners = {{-1.0, 0.0}, {1.0, 0.0}, {1.0, 20.0}, {-1.0, 20.0}};
    std::vector<TopoDS_Vertex> v;
    for (const gp_Pnt2d& c : corners) v.push_back(VertexAt(s, c));
    TopoDS_Wire wire;
    builder.MakeWire(wire);
    builder.Add(wire, EdgeOn(s, corners[0], corners[1], v[0], v[1]));
    builder.Add(wire, EdgeOn(s, corners[1], corners[2], v[1], v[2]));
    builder.Add(wire, EdgeOn(s, corners[2], corners[3], v[2], v[3]));
    builder.Add(wire, EdgeOn(s, {left, 20.0}, {left, 0.0}, v[3], v[0]));
    TopoDS_Face face;
    builder.MakeFace(face, s, 1e-7);
    builder.Add(face, wire);
    return face;
}

TopoDS_Face HalfCylinderWithoutSides(bool faulty)
{
    const Handle(Geom_BSplineSurface) s = PeriodicCylinder();
    const double half = 0.5 * s->UPeriod();
    if (!faulty) return FaceOn(s, {{0.0, 0.0}, {half, 0.0}, {half, 20.0}, {0.0, 20.0}});
    return FaceOfPieces(s, {{{0.0, 0.0}, {half, 0.0}}, {{half, 20.0}, {0.0, 20.0}}});
}

TopoDS_Face StripWithSpike(bool faulty)
{
    const Handle(Geom_BSplineSurface) s = PeriodicCylinder(30.0);
    if (!faulty) return FaceOn(s, {{0.0, 0.0}, {4.0, 0.0}, {4.0, 20.0}, {3.0, 20.0}, {0.0, 12.0}});
    // Along the line v = 20 from u = 4 to u = 0; then one trim curve back along that line to
    // u = 3, wavering across it by 2e-3 (within its edge's tolerance, as two trim curves of
    // one line in a file do), and across to the left side; then down.
    const std::vector<gp_Pnt2d> corners = {{0.0, 0.0}, {4.0, 0.0}, {4.0, 20.0}, {0.0, 20.0}, {0.0, 12.0}};
    std::vector<TopoDS_Vertex> v;
    for (const gp_Pnt2d& c : corners) v.push_back(VertexAt(s, c));
    BRep_Builder builder;
    TopoDS_Wire wire;
    builder.MakeWire(wire);
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const std::size_t j = (i + 1) % corners.size();
        if (i != 3) {
            builder.Add(wire, EdgeOn(s, corners[i], corners[j], v[i], v[j]));
            continue;
        }
        const int back = 31, across = 10;
        TColgp_Array1OfPnt2d points(1, back + across);
        for (int k = 0; k < back; ++k)
            points(k + 1) = gp_Pnt2d(3.0 * k / (back - 1), 20.0 + 2e-3 * std::sin(3.0 * M_PI * k / (back - 1)));
        for (int k = 1; k <= across; ++k) points(back + k) = gp_Pnt2d(3.0 - 0.3 * k, 20.0 - 0.8 * k);
        const Handle(Geom2d_BSplineCurve) curve = Geom2dAPI_PointsToBSpline(points, 1, 1).Curve();
        TopoDS_Edge edge = BRepBuilderAPI_MakeEdge(curve, s, v[i], v[j], curve->FirstParameter(), curve->LastParameter());
        BRepLib::BuildCurves3d(edge);
        builder.UpdateEdge(edge, 0.05);  // the file's tolerance covers the wavering
        builder.Add(wire, edge);
    }
    TopoDS_Face face;
    builder.MakeFace(face, s, 1e-7);
    builder.Add(face, wire);
    return face;
}

}  // namespace orvane::io::testing
