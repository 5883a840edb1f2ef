#include "io/EdgeTable.h"

#include <algorithm>

#include <BRepAdaptor_Curve.hxx>
#include <BRep_Tool.hxx>
#include <GCPnts_TangentialDeflection.hxx>
#include <TopExp.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Vertex.hxx>

namespace orvane::io {
namespace {

// More points than this on one edge are taken evenly instead: a tolerance far below the
// edge's size must not cost unbounded memory.
constexpr int kMostEdgePoints = 100'000;

TPoint3D Point(const gp_Pnt& p)
{
    return {p.X(), p.Y(), p.Z()};
}

}  // namespace

EdgeTable::EdgeTable(double Tolerance) : FTolerance(Tolerance) {}

int EdgeTable::Index(const TopoDS_Edge& Edge)
{
    const int known = FEdges.FindIndex(Edge);
    if (known > 0) return known - 1;
    FEdges.Add(Edge);
    Discretise(TopoDS::Edge(Edge.Oriented(TopAbs_FORWARD)));
    return FEdges.Extent() - 1;
}

void EdgeTable::Discretise(const TopoDS_Edge& Edge)
{
    EdgeData data;
    std::vector<double> params;
    TopoDS_Vertex first, last;
    TopExp::Vertices(Edge, first, last);
    double t0 = 0.0, t1 = 0.0;
    BRep_Tool::Range(Edge, t0, t1);
    data.Degenerate = BRep_Tool::Degenerated(Edge) || first.IsNull() || last.IsNull();
    if (data.Degenerate) {
        const TPoint3D pole = first.IsNull() ? TPoint3D{} : Point(BRep_Tool::Pnt(first));
        data.Points = {pole, pole};
        params = {t0, t1};
    } else {
        const BRepAdaptor_Curve curve(Edge);
        const GCPnts_TangentialDeflection sampler(curve, t0, t1, kEdgeAngularDeflection, FTolerance, 2);
        const int n = sampler.NbPoints();
        const int count = n > kMostEdgePoints ? kMostEdgePoints : std::max(n, 2);
        for (int i = 1; i <= count; ++i)
            params.push_back(count == n ? sampler.Parameter(i) : t0 + (t1 - t0) * (i - 1) / (count - 1));
        params.front() = t0;
        params.back() = t1;
        for (double t : params) data.Points.push_back(Point(curve.Value(t)));
        // Edges meeting at a vertex share its point exactly.
        data.Points.front() = Point(BRep_Tool::Pnt(first));
        data.Points.back() = Point(BRep_Tool::Pnt(last));
    }
    FData.push_back(std::move(data));
    FParameters.push_back(std::move(params));
}

}  // namespace orvane::io
