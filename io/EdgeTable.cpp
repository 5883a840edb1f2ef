#include "io/EdgeTable.h"

#include <algorithm>
#include <iterator>
#include <cmath>

#include <BRepAdaptor_Curve.hxx>
#include <BRep_Tool.hxx>
#include <BndLib_Add3dCurve.hxx>
#include <Bnd_Box.hxx>
#include <GCPnts_TangentialDeflection.hxx>
#include <Standard_Failure.hxx>
#include <TopExp.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Vertex.hxx>

namespace orvane::io {
namespace {

// More points than this on one edge are taken evenly instead: a tolerance far below the
// edge's size must not cost unbounded memory.
constexpr int kMostEdgePoints = 100'000;

// The sampler's deflection never falls below this share of the edge's extent: a tolerance
// far below the edge's size (or an edge of absurd size) must not cost unbounded time.
constexpr double kLeastDeflectionShare = 1e-6;

TPoint3D Point(const gp_Pnt& p)
{
    return {p.X(), p.Y(), p.Z()};
}

// The deflection to sample the curve at, or 0 where its extent is not finite and the curve
// can only be taken evenly.
double SamplingDeflection(const BRepAdaptor_Curve& Curve, double T0, double T1, double Tolerance)
{
    Bnd_Box box;
    try {
        BndLib_Add3dCurve::Add(Curve, T0, T1, 0.0, box);
    } catch (const Standard_Failure&) {
        return 0.0;
    }
    const double extent = box.IsVoid() ? 0.0 : std::sqrt(box.SquareExtent());
    if (!std::isfinite(extent)) return 0.0;
    return std::max(Tolerance, extent * kLeastDeflectionShare);
}

}  // namespace

EdgeTable::EdgeTable(double Tolerance) : FTolerance(Tolerance) {}

void EdgeTable::AddAll(const TopoDS_Shape& Shape)
{
    TopTools_IndexedMapOfShape edges;
    TopExp::MapShapes(Shape, TopAbs_EDGE, edges);
    for (int i = 1; i <= edges.Extent(); ++i) Index(TopoDS::Edge(edges(i)));
}

const std::vector<double>& EdgeTable::Parameters(int Index) const
{
    const std::lock_guard lock(FMutex);
    return FParameters[static_cast<std::size_t>(Index)];
}

const EdgeData& EdgeTable::Data(int Index) const
{
    const std::lock_guard lock(FMutex);
    return FData[static_cast<std::size_t>(Index)];
}

int EdgeTable::Size() const
{
    const std::lock_guard lock(FMutex);
    return FEdges.Extent();
}

std::vector<EdgeData> EdgeTable::Take()
{
    const std::lock_guard lock(FMutex);
    std::vector<EdgeData> data(std::make_move_iterator(FData.begin()), std::make_move_iterator(FData.end()));
    FData.clear();
    return data;
}

int EdgeTable::Index(const TopoDS_Edge& Edge)
{
    const std::lock_guard lock(FMutex);
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
        const double deflection = SamplingDeflection(curve, t0, t1, FTolerance);
        if (deflection > 0.0) {
            const GCPnts_TangentialDeflection sampler(curve, t0, t1, kEdgeAngularDeflection, deflection, 2);
            for (int i = 1; i <= sampler.NbPoints() && i <= kMostEdgePoints; ++i)
                params.push_back(sampler.Parameter(i));
        }
        if (params.size() < 2 || params.size() == static_cast<std::size_t>(kMostEdgePoints)) {
            const int count = params.size() < 2 ? 2 : kMostEdgePoints;
            params.clear();
            for (int i = 0; i < count; ++i) params.push_back(t0 + (t1 - t0) * i / (count - 1));
        }
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
