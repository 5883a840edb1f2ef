#include "io/QuadFaceMesher.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <unordered_map>
#include <unordered_set>

#include "contracts/QuadGrid.h"
#include "contracts/QuadLoops.h"
#include "contracts/TessQuadsTool.h"
#include "io/FacePreparation.h"
#include "io/KernelFace.h"
#include "io/QuadStrips.h"
#include "tessellation/SurfaceTriangulatorChecker.h"
#include "tessellation/TessQuadsInvoker.h"

namespace orvane::io {
namespace {

constexpr double kRowSpacing = DefaultSampleRange / 2.0;  // the quad road's YTol

// The affine map between the face's UV and the plane the quad tool works in.
struct PlaneMap {
    bool XIsU = true;
    double U0 = 0.0, V0 = 0.0, Su = 1.0, Sv = 1.0;

    TPoint2D ToPlane(const TPoint2D& uv) const
    {
        const double x = (uv.X - U0) * Su, y = (uv.Y - V0) * Sv;
        return XIsU ? TPoint2D{x, y} : TPoint2D{y, x};
    }
    TPoint2D FromPlane(const TPoint2D& p) const
    {
        const TPoint2D scaled = XIsU ? p : TPoint2D{p.Y, p.X};
        return {U0 + scaled.X / Su, V0 + scaled.Y / Sv};
    }
};

PlaneMap MapOf(const FaceData& f, const PreparationPlan& plan)
{
    PlaneMap m;
    m.XIsU = plan.XIsU;
    m.U0 = f.Surface.KnotsU.front();
    m.V0 = f.Surface.KnotsV.front();
    m.Su = plan.XIsU ? plan.X.Scale : plan.Y.Scale;
    m.Sv = plan.XIsU ? plan.Y.Scale : plan.X.Scale;
    return m;
}

struct PointKey {
    std::uint64_t X, Y;
    bool operator==(const PointKey&) const = default;
};
struct PointKeyHash {
    std::size_t operator()(const PointKey& k) const noexcept { return std::hash<std::uint64_t>()(k.X * 0x9E3779B97F4A7C15ULL ^ k.Y); }
};

PointKey KeyOf(const TPoint2D& p)
{
    return {std::bit_cast<std::uint64_t>(p.X + 0.0), std::bit_cast<std::uint64_t>(p.Y + 0.0)};
}

// The plane point's vertex, made on first sight: the quad tool gives a corner shared by
// several quads bit for bit.
class VertexTable {
public:
    int Of(const TPoint2D& p)
    {
        const auto [it, added] = FIndex.try_emplace(KeyOf(p), static_cast<int>(FPlane.size()));
        if (added) FPlane.push_back(p);
        return it->second;
    }
    const std::vector<TPoint2D>& Plane() const { return FPlane; }

private:
    std::unordered_map<PointKey, int, PointKeyHash> FIndex;
    std::vector<TPoint2D> FPlane;
};

double XTolOf(const PreparedFace& prepared, const TVPolyline2D& outer)
{
    if (prepared.Plan.Simple)
        return TTessQuadsInvoker(prepared.Plan.Type, DefaultSampleRange / 100.0).GetXInternal(outer);
    const double range = TSurfaceTriangulatorChecker::CheckSurfaceSampleRange(prepared.Surface.get(), prepared.Plan.Type);
    return fSmall(range, kRowSpacing, 1e-6) ? kRowSpacing : range;
}

// The column grid the quad tool lays over these loops.
QuadGrid GridOf(const TObjectList<TVPolyline2D>& polylines, double xTol)
{
    std::vector<const TVPoint2DList*> loops;
    for (const TVPolyline2D* polyline : polylines) loops.push_back(polyline);
    return MakeQuadGrid(LoopExtent(CleanQuadLoops(loops).front()), xTol, kRowSpacing, TTessQuadsTool::MaxQuadCount);
}

double Length(const TPoint3D& v)
{
    return std::sqrt(v.DotMul(v));
}

// The quad's triangles: (a, b, c) and (a, c, d) along the shorter diagonal, a repeated corner
// leaving one triangle.
void AddQuad(std::array<int, 4> q, FaceDraft& d)
{
    std::array<int, 4> distinct{};
    int n = 0;
    for (int k = 0; k < 4; ++k)
        if (q[static_cast<std::size_t>(k)] != q[static_cast<std::size_t>((k + 3) % 4)]) distinct[static_cast<std::size_t>(n++)] = q[static_cast<std::size_t>(k)];
    if (n < 3) return;
    if (n == 3) {
        d.Triangles.push_back({distinct[0], distinct[1], distinct[2]});
        return;
    }
    auto at = [&](int k) { return d.Vertices[static_cast<std::size_t>(q[static_cast<std::size_t>(k)])].Position; };
    if (Length(at(1) - at(3)) < Length(at(0) - at(2))) q = {q[1], q[2], q[3], q[0]};
    d.QuadStarts.push_back(static_cast<int>(d.Triangles.size()));
    d.Triangles.push_back({q[0], q[1], q[2]});
    d.Triangles.push_back({q[0], q[2], q[3]});
}

std::vector<std::vector<TPoint2D>> MapLoops(const std::vector<BoundaryLoop>& loops, const PlaneMap& m)
{
    std::vector<std::vector<TPoint2D>> mapped;
    for (const BoundaryLoop& l : loops) {
        mapped.emplace_back();
        for (const TPoint2D& p : l.UV) mapped.back().push_back(m.ToPlane(p));
    }
    return mapped;
}

// Loop points whose X lie within Eps of each other take one X. The quad tool cuts the whole
// region at every distinct X of the loops, and an iso-parameter edge whose converted points
// jitter around one X by rounding would cut every row into hundreds of slivers.
void ShareCloseX(std::vector<std::vector<TPoint2D>>& loops, double eps)
{
    std::vector<double> xs;
    for (const auto& loop : loops)
        for (const TPoint2D& p : loop) xs.push_back(p.X);
    std::sort(xs.begin(), xs.end());
    std::vector<double> firsts;
    for (const double x : xs)
        if (firsts.empty() || x - firsts.back() > eps) firsts.push_back(x);
    for (auto& loop : loops)
        for (TPoint2D& p : loop) p.X = *(std::upper_bound(firsts.begin(), firsts.end(), p.X) - 1);
}

// How far a loop point may move along X: a ten-thousandth of a row and of the loops' width,
// and never more than a hundredth of the tolerance on the surface.
double ShareOfX(const FaceData& f, const PreparationPlan& plan, double tolerance, const std::vector<std::vector<TPoint2D>>& loops)
{
    double x0 = loops.front().front().X, x1 = x0;
    for (const TPoint2D& p : loops.front()) {
        x0 = std::min(x0, p.X);
        x1 = std::max(x1, p.X);
    }
    const double most = plan.XIsU ? f.Bounds.MaxSu : f.Bounds.MaxSv;
    const double eps = 1e-4 * std::min(kRowSpacing, x1 - x0);
    return most > 0.0 ? std::min(eps, 0.01 * tolerance * plan.X.Scale / most) : eps;
}

// Every vertex on an edge of one triangle only learns where it lies on the loops.
void LocateBoundary(FaceDraft& d, const std::vector<TPoint2D>& plane, const BoundaryLocator& locator)
{
    std::unordered_map<std::uint64_t, int> uses;
    auto key = [](int a, int b) { return (static_cast<std::uint64_t>(std::min(a, b)) << 32) | static_cast<std::uint32_t>(std::max(a, b)); };
    for (const auto& t : d.Triangles)
        for (int k = 0; k < 3; ++k) ++uses[key(t[static_cast<std::size_t>(k)], t[static_cast<std::size_t>((k + 1) % 3)])];
    for (const auto& [edge, count] : uses) {
        if (count != 1) continue;
        for (const int v : {static_cast<int>(edge >> 32), static_cast<int>(edge & 0xFFFFFFFFu)}) {
            DraftVertex& vertex = d.Vertices[static_cast<std::size_t>(v)];
            if (vertex.Where.Loop >= 0) continue;
            if (auto where = locator.Locate(plane[static_cast<std::size_t>(v)])) vertex.Where = *where;
        }
    }
}

}  // namespace

double NormalFloor(const FaceData& F)
{
    return 1e-10 * F.Bounds.MaxSu * F.Bounds.MaxSv;
}

TPoint3D SurfaceNormal(const TGeNurbsSurface& S, bool Reversed, const TPoint2D& UV, const TPoint2D& Toward, double Floor)
{
    for (const double step : {0.0, 1e-6, 1e-4, 1e-2}) {
        TPoint3D p, su, sv;
        S.GetDerivatives(UV.X + (Toward.X - UV.X) * step, UV.Y + (Toward.Y - UV.Y) * step, p, su, sv);
        const TPoint3D n = su.CrossMul(sv);
        const double length = Length(n);
        if (length > std::max(Floor, 1e-14 * Length(su) * Length(sv)) && std::isfinite(length)) return n * ((Reversed ? -1.0 : 1.0) / length);
    }
    return {};
}

void MendPoleNormals(FaceDraft& d, const TGeNurbsSurface& s, bool reversed, double floor)
{
    for (const auto& t : d.Triangles)
        for (const int v : t) {
            DraftVertex& vertex = d.Vertices[static_cast<std::size_t>(v)];
            if (vertex.Normal != TPoint3D{}) continue;
            TPoint2D centre{};
            for (const int w : t) centre = {centre.X + d.Vertices[static_cast<std::size_t>(w)].UV.X / 3, centre.Y + d.Vertices[static_cast<std::size_t>(w)].UV.Y / 3};
            vertex.Normal = SurfaceNormal(s, reversed, vertex.UV, centre, floor);
        }
}

FaceDraft DraftQuadFace(const FaceData& F, double Tolerance, long long MaxQuads)
{
    PreparationSettings settings;
    settings.Tolerance = Tolerance;
    settings.MaxQuads = MaxQuads;
    const PreparedFace prepared = PrepareFace(F, settings);
    const PlaneMap map = MapOf(F, prepared.Plan);
    FaceDraft d;
    d.PlannedQuads = prepared.Plan.Quads();
    d.Tolerance = Tolerance;
    d.Loops = FaceBoundary(F);
    if (d.Loops.empty()) throw EFaceRefused("the face has no boundary loop with area");
    std::vector<std::vector<TPoint2D>> mapped = MapLoops(d.Loops, map);
    ShareCloseX(mapped, ShareOfX(F, prepared.Plan, Tolerance, mapped));
    TObjectList<TVPolyline2D> polylines;
    for (const auto& loop : mapped) polylines.Add(new TVPolyline2D(loop));
    const double xTol = XTolOf(prepared, *polylines.First());
    const auto units = TTessQuadsTool::CreateDrawQuads(polylines, xTol, kRowSpacing, false);
    std::vector<PlaneQuad> pieces;
    for (const TViewUnit& unit : *units)
        for (int k = 0; k + 3 < unit.Points2D.Count(); k += 4)
            pieces.push_back({unit.Points2D[k], unit.Points2D[k + 1], unit.Points2D[k + 2], unit.Points2D[k + 3]});
    const QuadGrid grid = GridOf(polylines, xTol);
    std::unordered_set<PointKey, PointKeyHash> loopPoints;
    for (const auto& loop : mapped)
        for (const TPoint2D& p : loop) loopPoints.insert(KeyOf(p));
    const auto polygons = JoinStrips(
        pieces, [&grid](double x) { return grid.ColumnX(grid.NearestColumn(x)) == x; },
        [&loopPoints](const TPoint2D& p) { return loopPoints.contains(KeyOf(p)); });

    const auto surface = BuildKernelSurface(F.Surface);
    VertexTable table;
    std::vector<std::vector<int>> corners;
    for (const auto& polygon : polygons) {
        corners.emplace_back();
        for (const TPoint2D& p : polygon.Corners()) corners.back().push_back(table.Of(p));
    }
    for (const TPoint2D& p : table.Plane()) {
        DraftVertex v;
        v.UV = map.FromPlane(p);
        TPoint3D su, sv;
        surface->GetDerivatives(v.UV.X, v.UV.Y, v.Position, su, sv);
        v.Normal = SurfaceNormal(*surface, F.Reversed, v.UV, v.UV, NormalFloor(F));
        d.Vertices.push_back(v);
    }
    // The quad tool's corners run clockwise in its plane; counter-clockwise in UV is along
    // the surface normal, which the material takes unless the face is reversed.
    const bool keep = map.XIsU == F.Reversed;
    for (std::size_t k = 0; k < polygons.size(); ++k) {
        const std::vector<int>& c = corners[k];
        if (c.size() == 4) {
            AddQuad(keep ? std::array<int, 4>{c[0], c[1], c[2], c[3]} : std::array<int, 4>{c[0], c[3], c[2], c[1]}, d);
            continue;
        }
        for (const auto& t : StripTriangles(polygons[k])) {
            const int a = c[static_cast<std::size_t>(t[0])], b = c[static_cast<std::size_t>(t[1])], e = c[static_cast<std::size_t>(t[2])];
            d.Triangles.push_back(keep ? std::array<int, 3>{a, b, e} : std::array<int, 3>{a, e, b});
        }
    }
    const double tol = 1e-6 * kRowSpacing;
    LocateBoundary(d, table.Plane(), BoundaryLocator(d.Loops, mapped, tol));
    MendPoleNormals(d, *surface, F.Reversed, NormalFloor(F));
    return d;
}

}  // namespace orvane::io
