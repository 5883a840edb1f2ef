#include "io/EdgeStitching.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "io/BoundaryThinning.h"
#include "io/EveryCore.h"
#include "io/TurnedEasing.h"
#include "io/KernelFace.h"

namespace orvane::io {
namespace {

// Per edge: the positions its uses put boundary vertices at (ascending), what each became
// after merging, and the distinct merged positions strictly between shared points.
struct EdgeMarks {
    std::vector<double> Raw;
    std::vector<double> Merged;
    std::vector<double> Distinct;

    double MergedOf(double sigma) const
    {
        const auto it = std::lower_bound(Raw.begin(), Raw.end(), sigma);
        if (it == Raw.end() || *it != sigma) return sigma;
        return Merged[static_cast<std::size_t>(it - Raw.begin())];
    }
};

// Two places on a loop closer than this, in segments, are one: they differ by rounding only.
constexpr double kSameLambda = 1e-9;


double SigmaAt(const LoopSegment& seg, double s)
{
    return seg.Sigma0 + s * (seg.Sigma1 - seg.Sigma0);
}

double FractionOf(const LoopSegment& seg, double sigma)
{
    return (sigma - seg.Sigma0) / (seg.Sigma1 - seg.Sigma0);
}

const LoopSegment& SegmentAt(const FaceDraft& d, const LoopLocation& w)
{
    return d.Loops[static_cast<std::size_t>(w.Loop)].Segments[static_cast<std::size_t>(w.Segment)];
}

void Collect(const FaceDraft& d, std::vector<EdgeMarks>& marks)
{
    for (const DraftVertex& v : d.Vertices) {
        if (v.Where.Loop < 0 || v.Where.S <= 0.0) continue;
        const LoopSegment& seg = SegmentAt(d, v.Where);
        if (seg.Edge >= 0) marks[static_cast<std::size_t>(seg.Edge)].Raw.push_back(SigmaAt(seg, v.Where.S));
    }
}

// Points closer than kEdgeMergeShare merge into the first of their run; one that close to a
// shared point becomes it.
void Merge(EdgeMarks& m)
{
    std::sort(m.Raw.begin(), m.Raw.end());
    m.Raw.erase(std::unique(m.Raw.begin(), m.Raw.end()), m.Raw.end());
    double runStart = -1e300;
    for (const double x : m.Raw) {
        const double whole = std::round(x);
        double merged = x;
        if (std::fabs(x - whole) < kEdgeMergeShare) {
            merged = whole;
        } else if (x - runStart < kEdgeMergeShare && std::floor(x) == std::floor(runStart)) {
            merged = runStart;
        } else {
            runStart = x;
            m.Distinct.push_back(x);
        }
        m.Merged.push_back(merged);
    }
}

// The 3D point of a place on a loop: the edge's polyline where the segment or the segment
// before it lies on a shared edge, else the surface's point (Fallback).
TPoint3D PositionAt(const CadModelData& model, const BoundaryLoop& loop, const LoopLocation& w, const TPoint3D& fallback)
{
    const LoopSegment& seg = loop.Segments[static_cast<std::size_t>(w.Segment)];
    if (seg.Edge >= 0) return EdgePoint(model.Edges[static_cast<std::size_t>(seg.Edge)], SigmaAt(seg, w.S));
    // A bridge: its start is the end of the edge before it; where its end, the start of the
    // edge after it, is the same point (a pole), it is that point all along.
    const int m = loop.SegmentCount();
    const LoopSegment& before = loop.Segments[static_cast<std::size_t>((w.Segment + m - 1) % m)];
    const LoopSegment& after = loop.Segments[static_cast<std::size_t>((w.Segment + 1) % m)];
    if (before.Edge < 0) return fallback;
    const TPoint3D start = EdgePoint(model.Edges[static_cast<std::size_t>(before.Edge)], before.Sigma1);
    if (w.S == 0.0) return start;
    if (after.Edge < 0) return fallback;
    const TPoint3D end = EdgePoint(model.Edges[static_cast<std::size_t>(after.Edge)], after.Sigma0);
    return start.DistanceTo(end) <= 1e-9 * (1.0 + start.Length()) ? start : fallback;
}

TPoint2D UVAt(const BoundaryLoop& loop, const LoopLocation& w)
{
    const TPoint2D& a = loop.UV[static_cast<std::size_t>(w.Segment)];
    const TPoint2D& b = loop.UV[static_cast<std::size_t>(w.Segment) + 1];
    return {a.X + (b.X - a.X) * w.S, a.Y + (b.Y - a.Y) * w.S};
}

LoopLocation Normalised(LoopLocation w, int segments)
{
    if (w.S >= 1.0) {
        w.S = 0.0;
        w.Segment = (w.Segment + 1) % segments;
    }
    return w;
}

class DraftStitcher {
public:
    DraftStitcher(const CadModelData& model, const FaceData& face, FaceDraft& draft, const std::vector<EdgeMarks>& marks)
        : FModel(model), FFace(face), FDraft(draft), FMarks(marks), FSurface(BuildKernelSurface(face.Surface))
    {
    }

    // Boundary vertices onto their merged places and their edges' points.
    void Place()
    {
        for (DraftVertex& v : FDraft.Vertices) {
            if (v.Where.Loop < 0) continue;
            const BoundaryLoop& loop = FDraft.Loops[static_cast<std::size_t>(v.Where.Loop)];
            const LoopSegment& seg = loop.Segments[static_cast<std::size_t>(v.Where.Segment)];
            if (seg.Edge >= 0 && v.Where.S > 0.0) {
                const double merged = FMarks[static_cast<std::size_t>(seg.Edge)].MergedOf(SigmaAt(seg, v.Where.S));
                v.Where.S = std::clamp(FractionOf(seg, merged), 0.0, 1.0);
                v.Where = Normalised(v.Where, loop.SegmentCount());
                v.UV = UVAt(loop, v.Where);
                v.Normal = SurfaceNormal(*FSurface, FFace.Reversed, v.UV, v.UV, NormalFloor(FFace));
                v.Position = EdgePoint(FModel.Edges[static_cast<std::size_t>(seg.Edge)], merged);
                continue;
            }
            v.Position = PositionAt(FModel, loop, v.Where, v.Position);
        }
    }

    // Splits every boundary triangle on which another use of its edge has a point.
    void Split()
    {
        CountEdges();
        std::vector<std::array<int, 3>> triangles;
        std::vector<int> quadStarts;
        std::vector<bool> quadFirst(FDraft.Triangles.size(), false);
        for (const int q : FDraft.QuadStarts) quadFirst[static_cast<std::size_t>(q)] = true;
        for (std::size_t t = 0; t < FDraft.Triangles.size(); ++t) {
            const bool isQuad = quadFirst[t];
            const std::size_t before = triangles.size();
            const bool split = SplitTriangle(FDraft.Triangles[t], triangles);
            if (!isQuad) continue;
            const bool splitSecond = SplitTriangle(FDraft.Triangles[t + 1], triangles);
            if (!split && !splitSecond) quadStarts.push_back(static_cast<int>(before));
            ++t;
        }
        FDraft.Triangles = std::move(triangles);
        FDraft.QuadStarts = std::move(quadStarts);
        MendPoleNormals(FDraft, *FSurface, FFace.Reversed, NormalFloor(FFace));
    }

    // A thin triangle along the boundary may turn over, or lie flat along a straight edge,
    // once its corners sit on the edges' chords: each such triangle trades its inner side with
    // the neighbour across it where that turns both the right way. Quads that take part are
    // quads no more.
    void RepairTurned()
    {
        std::vector<bool> touched(FDraft.Triangles.size(), false);
        for (int pass = 0; pass < 8 && RepairPass(touched); ++pass) {
        }
        std::erase_if(FDraft.QuadStarts, [&](int q) { return touched[static_cast<std::size_t>(q)] || touched[static_cast<std::size_t>(q) + 1]; });
    }

private:
    // One round of trades; true if any took place.
    bool RepairPass(std::vector<bool>& touched)
    {
        bool traded = false;
        std::unordered_map<std::uint64_t, std::vector<int>> sides;
        auto& tris = FDraft.Triangles;
        for (int t = 0; t < static_cast<int>(tris.size()); ++t)
            for (int k = 0; k < 3; ++k) sides[Key(tris[static_cast<std::size_t>(t)][static_cast<std::size_t>(k)], tris[static_cast<std::size_t>(t)][static_cast<std::size_t>((k + 1) % 3)])].push_back(t);
        for (int t = 0; t < static_cast<int>(tris.size()); ++t) {
            if (!Flat(tris[static_cast<std::size_t>(t)])) continue;
            for (int k = 0; k < 3 && Flat(tris[static_cast<std::size_t>(t)]); ++k) {
                const auto tri = tris[static_cast<std::size_t>(t)];
                const int a = tri[static_cast<std::size_t>(k)], b = tri[static_cast<std::size_t>((k + 1) % 3)], c = tri[static_cast<std::size_t>((k + 2) % 3)];
                const std::vector<int>& across = sides[Key(a, b)];
                if (across.size() != 2) continue;
                const int u = across[0] == t ? across[1] : across[0];
                const auto& other = tris[static_cast<std::size_t>(u)];
                const int d = other[0] != a && other[0] != b ? other[0] : other[1] != a && other[1] != b ? other[1] : other[2];
                const std::array<int, 3> first{a, d, c}, second{d, b, c};
                if (Flat(first) || Flat(second)) continue;
                tris[static_cast<std::size_t>(t)] = first;
                tris[static_cast<std::size_t>(u)] = second;
                touched[static_cast<std::size_t>(t)] = touched[static_cast<std::size_t>(u)] = true;
                traded = true;
                break;
            }
        }
        return traded;
    }

    // Whether the triangle is turned over, or so thin that it has no area to speak of (its
    // corners on one straight edge): three times its doubled area along the surface normal at
    // its corners, against its longest side.
    bool Flat(const std::array<int, 3>& t) const
    {
        const TPoint3D& a = FDraft.Vertices[static_cast<std::size_t>(t[0])].Position;
        const TPoint3D& b = FDraft.Vertices[static_cast<std::size_t>(t[1])].Position;
        const TPoint3D& c = FDraft.Vertices[static_cast<std::size_t>(t[2])].Position;
        const double side2 = std::max({(b - a).DotMul(b - a), (c - b).DotMul(c - b), (a - c).DotMul(a - c)});
        return Facing(t) <= 1e-9 * side2;
    }

    // Twice the triangle's area along the surface normal at its corners: negative where it
    // is turned over.
    double Facing(const std::array<int, 3>& t) const
    {
        const DraftVertex& a = FDraft.Vertices[static_cast<std::size_t>(t[0])];
        const DraftVertex& b = FDraft.Vertices[static_cast<std::size_t>(t[1])];
        const DraftVertex& c = FDraft.Vertices[static_cast<std::size_t>(t[2])];
        return (b.Position - a.Position).CrossMul(c.Position - a.Position).DotMul(a.Normal + b.Normal + c.Normal);
    }

    static std::uint64_t Key(int a, int b)
    {
        return (static_cast<std::uint64_t>(std::min(a, b)) << 32) | static_cast<std::uint32_t>(std::max(a, b));
    }

    void CountEdges()
    {
        for (const auto& t : FDraft.Triangles)
            for (int k = 0; k < 3; ++k) ++FUses[Key(t[static_cast<std::size_t>(k)], t[static_cast<std::size_t>((k + 1) % 3)])];
    }

    // Appends the triangle, split where its boundary sides take other points; true if split.
    bool SplitTriangle(const std::array<int, 3>& t, std::vector<std::array<int, 3>>& out)
    {
        std::vector<int> polygon;
        int sidesSplit = 0, splitSide = 0;
        for (int k = 0; k < 3; ++k) {
            const int a = t[static_cast<std::size_t>(k)], b = t[static_cast<std::size_t>((k + 1) % 3)];
            polygon.push_back(a);
            if (FUses[Key(a, b)] != 1) continue;
            const std::size_t size = polygon.size();
            AddPointsBetween(a, b, polygon);
            if (polygon.size() > size) ++sidesSplit, splitSide = k;
        }
        if (sidesSplit == 0) {
            out.push_back(t);
            return false;
        }
        if (sidesSplit == 1) {
            // A fan from the corner opposite the split side.
            const int apex = t[static_cast<std::size_t>((splitSide + 2) % 3)];
            const auto start = std::find(polygon.begin(), polygon.end(), t[static_cast<std::size_t>(splitSide)]) - polygon.begin();
            const auto n = static_cast<long>(polygon.size());
            for (long i = 0; i + 2 < n; ++i)
                out.push_back({polygon[static_cast<std::size_t>((start + i) % n)], polygon[static_cast<std::size_t>((start + i + 1) % n)], apex});
            return true;
        }
        // Points on two or three sides: a fan from a new vertex inside.
        const int centre = AddCentre(t);
        for (std::size_t i = 0; i < polygon.size(); ++i) out.push_back({polygon[i], polygon[(i + 1) % polygon.size()], centre});
        return true;
    }

    int AddCentre(const std::array<int, 3>& t)
    {
        DraftVertex v;
        for (const int k : t) {
            v.UV.X += FDraft.Vertices[static_cast<std::size_t>(k)].UV.X / 3.0;
            v.UV.Y += FDraft.Vertices[static_cast<std::size_t>(k)].UV.Y / 3.0;
        }
        v.Position = FSurface->GetPoint(v.UV.X, v.UV.Y);
        v.Normal = SurfaceNormal(*FSurface, FFace.Reversed, v.UV, v.UV, NormalFloor(FFace));
        FDraft.Vertices.push_back(v);
        return static_cast<int>(FDraft.Vertices.size()) - 1;
    }

    // The places strictly between the boundary vertices a and b, from a to b: the loop's own
    // points and the other uses' points on the segments in between.
    struct LoopPlace {
        double Lambda;
        int Segment;
        double Sigma;  // on the segment's edge; NaN: the segment's start
        bool operator<(const LoopPlace& o) const { return Lambda < o.Lambda; }
    };

    // The shorter way round the loop first; the other where the first does not run along the
    // side (the two ways can be equally long).
    void AddPointsBetween(int a, int b, std::vector<int>& polygon)
    {
        const LoopLocation wa = FDraft.Vertices[static_cast<std::size_t>(a)].Where;
        const LoopLocation wb = FDraft.Vertices[static_cast<std::size_t>(b)].Where;
        if (wa.Loop < 0 || wa.Loop != wb.Loop) return;
        const BoundaryLoop& loop = FDraft.Loops[static_cast<std::size_t>(wa.Loop)];
        const int m = loop.SegmentCount();
        const double ahead = std::fmod(wb.Lambda() - wa.Lambda() + 2.0 * m, static_cast<double>(m));
        if (ahead == 0.0) return;
        const bool shorterForward = ahead <= m - ahead;
        for (const bool forward : {shorterForward, !shorterForward}) {
            std::vector<LoopPlace> places = PlacesOnTheWay(loop, forward ? wa.Lambda() : wb.Lambda(), forward ? ahead : m - ahead);
            if (!forward) std::reverse(places.begin(), places.end());
            if (!AllBetween(loop, places, a, b)) continue;
            for (const LoopPlace& p : places) polygon.push_back(AddBoundaryVertex(wa.Loop, p.Segment, p.Sigma));
            return;
        }
    }

    // The loop's points and the marks of other uses strictly inside (From, From + Span),
    // ascending.
    std::vector<LoopPlace> PlacesOnTheWay(const BoundaryLoop& loop, double from, double span) const
    {
        const int m = loop.SegmentCount();
        std::vector<LoopPlace> places;
        for (int j = static_cast<int>(std::floor(from)); j <= static_cast<int>(std::floor(from + span)); ++j) {
            const LoopSegment& seg = loop.Segments[static_cast<std::size_t>(j % m)];
            // Places within rounding of the ends are the ends themselves.
            auto take = [&](double lambda, double sigma) {
                if (lambda > from + kSameLambda && lambda < from + span - kSameLambda) places.push_back({lambda, j % m, sigma});
            };
            take(j, std::nan(""));
            if (seg.Edge < 0) continue;
            const std::vector<double>& marks = FMarks[static_cast<std::size_t>(seg.Edge)].Distinct;
            const auto lo = std::upper_bound(marks.begin(), marks.end(), std::min(seg.Sigma0, seg.Sigma1));
            const auto hi = std::lower_bound(marks.begin(), marks.end(), std::max(seg.Sigma0, seg.Sigma1));
            for (auto it = lo; it < hi; ++it) take(j + FractionOf(seg, *it), *it);
        }
        std::sort(places.begin(), places.end());
        return places;
    }

    // Whether every place lies along the side from a to b, in UV or, where the face's
    // parameters crowd the loop (a thin face whose side skipped loop points), in 3D: a side
    // whose ends were placed on stretches of a loop that is not one after the other (a loop
    // that runs back along itself) takes no points.
    bool AllBetween(const BoundaryLoop& loop, const std::vector<LoopPlace>& places, int a, int b) const
    {
        const DraftVertex& va = FDraft.Vertices[static_cast<std::size_t>(a)];
        const DraftVertex& vb = FDraft.Vertices[static_cast<std::size_t>(b)];
        for (const auto& p : places) {
            const LoopSegment& seg = loop.Segments[static_cast<std::size_t>(p.Segment)];
            const bool onEdge = !std::isnan(p.Sigma) && seg.Edge >= 0;
            const LoopLocation w{0, p.Segment, onEdge ? std::clamp(FractionOf(seg, p.Sigma), 0.0, 1.0) : 0.0};
            const TPoint2D q = UVAt(loop, w);
            const TPoint3D q3 = onEdge ? EdgePoint(FModel.Edges[static_cast<std::size_t>(seg.Edge)], p.Sigma)
                                       : PositionAt(FModel, loop, w, va.Position);
            if (!Along(va.UV, vb.UV, q, 1e-3) && !Along(va.Position, vb.Position, q3, 0.25)) return false;
        }
        return true;
    }

    // Whether Q lies beside the segment from A to B, within Share of its length of it.
    template <typename Point>
    static bool Along(const Point& A, const Point& B, const Point& Q, double Share)
    {
        const Point ab = B - A, aq = Q - A;
        const double length2 = Dot(ab, ab);
        if (!(length2 > 0.0)) return false;
        const double t = Dot(aq, ab) / length2;
        const double off2 = Dot(aq, aq) - t * t * length2;
        return t > 0.0 && t < 1.0 && off2 <= Share * Share * length2;
    }
    static double Dot(const TPoint2D& a, const TPoint2D& b) { return a.X * b.X + a.Y * b.Y; }
    static double Dot(const TPoint3D& a, const TPoint3D& b) { return a.DotMul(b); }

    // A vertex at the start of the segment, or at Sigma on its edge (the point that the other
    // uses of the edge share).
    int AddBoundaryVertex(int loopIndex, int segment, double sigma)
    {
        const BoundaryLoop& loop = FDraft.Loops[static_cast<std::size_t>(loopIndex)];
        const LoopSegment& seg = loop.Segments[static_cast<std::size_t>(segment)];
        const bool onEdge = !std::isnan(sigma) && seg.Edge >= 0;
        const LoopLocation w{loopIndex, segment, onEdge ? std::clamp(FractionOf(seg, sigma), 0.0, 1.0) : 0.0};
        DraftVertex v;
        v.Where = w;
        v.UV = UVAt(loop, w);
        v.Position = onEdge ? EdgePoint(FModel.Edges[static_cast<std::size_t>(seg.Edge)], sigma)
                            : PositionAt(FModel, loop, w, FSurface->GetPoint(v.UV.X, v.UV.Y));
        v.Normal = SurfaceNormal(*FSurface, FFace.Reversed, v.UV, v.UV, NormalFloor(FFace));
        FDraft.Vertices.push_back(v);
        return static_cast<int>(FDraft.Vertices.size()) - 1;
    }

    const CadModelData& FModel;
    const FaceData& FFace;
    FaceDraft& FDraft;
    const std::vector<EdgeMarks>& FMarks;
    std::unique_ptr<TGeNurbsSurface> FSurface;
    std::unordered_map<std::uint64_t, int> FUses;
};

}  // namespace

void StitchDrafts(const CadModelData& Model, const std::vector<const FaceData*>& Faces, std::vector<FaceDraft>& Drafts,
                  int Threads)
{
    // Each face's own steps run on every core; the marks of an edge are gathered across faces.
    const int count = static_cast<int>(Drafts.size());
    OnEveryCore(count, [&](int i) {
        ThinBoundaryCrossings(Drafts[static_cast<std::size_t>(i)], *Faces[static_cast<std::size_t>(i)], Model.Edges);
    }, {}, Threads);
    std::vector<EdgeMarks> marks(Model.Edges.size());
    for (const FaceDraft& d : Drafts) Collect(d, marks);
    for (EdgeMarks& m : marks) Merge(m);
    OnEveryCore(count, [&](int i) {
        FaceDraft& draft = Drafts[static_cast<std::size_t>(i)];
        const FaceData& face = *Faces[static_cast<std::size_t>(i)];
        DraftStitcher stitcher(Model, face, draft, marks);
        stitcher.Place();
        stitcher.Split();
        stitcher.RepairTurned();
        EaseTurned(draft, face);
    }, {}, Threads);
}

std::size_t PointWelder::KeyHash::operator()(const Key& k) const noexcept
{
    return std::hash<std::uint64_t>()((k.X * 0x9E3779B97F4A7C15ULL) ^ (k.Y * 0xC2B2AE3D27D4EB4FULL) ^ k.Z);
}

PointWelder::Key PointWelder::CellOf(const TPoint3D& P, int DX, int DY, int DZ) const
{
    if (!(FCell > 0.0))
        return {std::bit_cast<std::int64_t>(P.X + 0.0), std::bit_cast<std::int64_t>(P.Y + 0.0),
                std::bit_cast<std::int64_t>(P.Z + 0.0)};
    return {static_cast<std::int64_t>(std::floor(P.X / FCell)) + DX, static_cast<std::int64_t>(std::floor(P.Y / FCell)) + DY,
            static_cast<std::int64_t>(std::floor(P.Z / FCell)) + DZ};
}

int PointWelder::Of(const TPoint3D& P)
{
    const int reach = FCell > 0.0 ? 1 : 0;
    for (int dx = -reach; dx <= reach; ++dx)
        for (int dy = -reach; dy <= reach; ++dy)
            for (int dz = -reach; dz <= reach; ++dz) {
                const auto found = FIndex.find(CellOf(P, dx, dy, dz));
                if (found == FIndex.end()) continue;
                for (const int i : found->second)
                    if (FPoints[static_cast<std::size_t>(i)] == P || FPoints[static_cast<std::size_t>(i)].DistanceTo(P) <= FCell) return i;
            }
    FIndex[CellOf(P, 0, 0, 0)].push_back(static_cast<int>(FPoints.size()));
    FPoints.push_back(P);
    return static_cast<int>(FPoints.size()) - 1;
}

FaceMesh FaceMeshOf(const FaceData& F, const FaceDraft& Draft, PointWelder& Points)
{
    FaceMesh mesh;
    mesh.Number = F.Number;
    mesh.Name = F.Name;
    mesh.Solid = F.Solid;
    mesh.PlannedQuads = Draft.PlannedQuads;
    std::vector<int> local(Draft.Vertices.size(), -1);
    std::vector<int> pointOf(Draft.Vertices.size(), -1);
    auto vertex = [&](int v) {
        int& l = local[static_cast<std::size_t>(v)];
        if (l < 0) {
            l = static_cast<int>(mesh.Points.size());
            mesh.Points.push_back(pointOf[static_cast<std::size_t>(v)]);
            mesh.Normals.push_back(Draft.Vertices[static_cast<std::size_t>(v)].Normal);
        }
        return l;
    };
    for (std::size_t v = 0; v < Draft.Vertices.size(); ++v) pointOf[v] = Points.Of(Draft.Vertices[v].Position);
    std::vector<bool> quadFirst(Draft.Triangles.size(), false);
    for (const int q : Draft.QuadStarts) quadFirst[static_cast<std::size_t>(q)] = true;
    auto hasArea = [&](const std::array<int, 3>& t) {
        const int a = pointOf[static_cast<std::size_t>(t[0])], b = pointOf[static_cast<std::size_t>(t[1])], c = pointOf[static_cast<std::size_t>(t[2])];
        if (a == b || b == c || c == a) return false;
        const TPoint3D& pa = Draft.Vertices[static_cast<std::size_t>(t[0])].Position;
        const TPoint3D n = (Draft.Vertices[static_cast<std::size_t>(t[1])].Position - pa).CrossMul(Draft.Vertices[static_cast<std::size_t>(t[2])].Position - pa);
        return n.DotMul(n) > 0.0;
    };
    for (std::size_t t = 0; t < Draft.Triangles.size(); ++t) {
        const bool pair = quadFirst[t] && hasArea(Draft.Triangles[t]) && hasArea(Draft.Triangles[t + 1]);
        if (pair) mesh.QuadStarts.push_back(static_cast<int>(mesh.Triangles.size()));
        for (std::size_t k = t; k <= (quadFirst[t] ? t + 1 : t); ++k) {
            const auto& tri = Draft.Triangles[k];
            if (hasArea(tri)) mesh.Triangles.push_back({vertex(tri[0]), vertex(tri[1]), vertex(tri[2])});
        }
        if (quadFirst[t]) ++t;
    }
    return mesh;
}

void FillFlatArrays(const std::vector<TPoint3D>& Points, FaceMesh& Mesh)
{
    Mesh.Tri.clear();
    Mesh.Norm.clear();
    Mesh.Tri.reserve(Mesh.Triangles.size() * 9);
    Mesh.Norm.reserve(Mesh.Triangles.size() * 9);
    for (const auto& t : Mesh.Triangles)
        for (const int v : t) {
            const TPoint3D& p = Points[static_cast<std::size_t>(Mesh.Points[static_cast<std::size_t>(v)])];
            const TPoint3D& n = Mesh.Normals[static_cast<std::size_t>(v)];
            Mesh.Tri.insert(Mesh.Tri.end(), {p.X, p.Y, p.Z});
            Mesh.Norm.insert(Mesh.Norm.end(), {n.X, n.Y, n.Z});
        }
}

}  // namespace orvane::io
