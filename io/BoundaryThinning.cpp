#include "io/BoundaryThinning.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <unordered_map>

#include "io/DraftGeometry.h"

namespace orvane::io {
namespace {

using Triangle = std::array<int, 3>;

std::uint64_t SideKey(int a, int b)
{
    return (static_cast<std::uint64_t>(std::min(a, b)) << 32) | static_cast<std::uint32_t>(std::max(a, b));
}

class Thinner {
public:
    Thinner(FaceDraft& draft, const FaceData& face, const std::vector<EdgeData>& edges)
        : FDraft(draft), FEdges(edges), FGeometry(draft, face, draft.Tolerance / 2.0)
    {
        FAlive.assign(draft.Triangles.size(), true);
        FTouched.assign(draft.Triangles.size(), false);
        FAround.resize(draft.Vertices.size());
        FNeighbours.resize(draft.Vertices.size());
        std::unordered_map<std::uint64_t, int> uses;
        for (int t = 0; t < static_cast<int>(draft.Triangles.size()); ++t)
            for (int k = 0; k < 3; ++k) {
                const int v = Corner(t, k);
                FAround[static_cast<std::size_t>(v)].push_back(t);
                ++uses[SideKey(v, Corner(t, (k + 1) % 3))];
            }
        for (const auto& [key, count] : uses) {
            if (count != 1) continue;
            const int a = static_cast<int>(key >> 32), b = static_cast<int>(key & 0xFFFFFFFFu);
            FNeighbours[static_cast<std::size_t>(a)].push_back(b);
            FNeighbours[static_cast<std::size_t>(b)].push_back(a);
        }
    }

    void Run()
    {
        for (int v = 0; v < static_cast<int>(FDraft.Vertices.size()); ++v) {
            const int target = Target(v);
            if (target >= 0 && Keeps(v, target)) Move(v, target);
        }
        Compact();
    }

private:
    int Corner(int t, int k) const { return FDraft.Triangles[static_cast<std::size_t>(t)][static_cast<std::size_t>(k)]; }
    const DraftVertex& Vertex(int v) const { return FDraft.Vertices[static_cast<std::size_t>(v)]; }

    // The nearer boundary neighbour of v that is a shared point at an end of v's segment;
    // -1 where v is not a point of its own inside a segment of a real edge.
    int Target(int v) const
    {
        const LoopLocation w = Vertex(v).Where;
        if (w.Loop < 0 || !(w.S > 0.0 && w.S < 1.0)) return -1;
        const BoundaryLoop& loop = FDraft.Loops[static_cast<std::size_t>(w.Loop)];
        const LoopSegment& seg = loop.Segments[static_cast<std::size_t>(w.Segment)];
        if (seg.Edge < 0 || FEdges[static_cast<std::size_t>(seg.Edge)].Degenerate) return -1;
        const int next = (w.Segment + 1) % loop.SegmentCount();
        int best = -1;
        double bestDistance = 0.0;
        for (const int n : FNeighbours[static_cast<std::size_t>(v)]) {
            const LoopLocation wn = Vertex(n).Where;
            if (wn.Loop != w.Loop || wn.S != 0.0 || (wn.Segment != w.Segment && wn.Segment != next)) continue;
            const double d = Vertex(n).Position.DistanceTo(Vertex(v).Position);
            if (best < 0 || d < bestDistance) best = n, bestDistance = d;
        }
        return best;
    }

    // Whether every triangle round v that does not hold Target still faces out with v moved there.
    bool Keeps(int v, int target) const
    {
        for (const int t : FAround[static_cast<std::size_t>(v)]) {
            if (!FAlive[static_cast<std::size_t>(t)]) continue;
            Triangle moved = FDraft.Triangles[static_cast<std::size_t>(t)];
            if (std::find(moved.begin(), moved.end(), target) != moved.end()) continue;
            std::replace(moved.begin(), moved.end(), v, target);
            if (!FGeometry.Faces(moved) || !FGeometry.Close(moved)) return false;
        }
        return true;
    }

    void Move(int v, int target)
    {
        for (const int t : FAround[static_cast<std::size_t>(v)]) {
            if (!FAlive[static_cast<std::size_t>(t)]) continue;
            Triangle& tri = FDraft.Triangles[static_cast<std::size_t>(t)];
            FTouched[static_cast<std::size_t>(t)] = true;
            if (std::find(tri.begin(), tri.end(), target) != tri.end()) {
                FAlive[static_cast<std::size_t>(t)] = false;
                continue;
            }
            std::replace(tri.begin(), tri.end(), v, target);
            FAround[static_cast<std::size_t>(target)].push_back(t);
        }
        for (const int n : FNeighbours[static_cast<std::size_t>(v)]) {
            auto& list = FNeighbours[static_cast<std::size_t>(n)];
            list.erase(std::remove(list.begin(), list.end(), v), list.end());
            if (n == target) continue;
            list.push_back(target);
            FNeighbours[static_cast<std::size_t>(target)].push_back(n);
        }
        FNeighbours[static_cast<std::size_t>(v)].clear();
        FDraft.Vertices[static_cast<std::size_t>(v)].Where.Loop = -1;  // no longer on the boundary
    }

    void Compact()
    {
        std::vector<int> newIndex(FDraft.Triangles.size(), -1);
        std::vector<Triangle> kept;
        for (std::size_t t = 0; t < FDraft.Triangles.size(); ++t)
            if (FAlive[t]) {
                newIndex[t] = static_cast<int>(kept.size());
                kept.push_back(FDraft.Triangles[t]);
            }
        std::vector<int> quads;
        for (const int q : FDraft.QuadStarts) {
            const auto a = static_cast<std::size_t>(q), b = a + 1;
            if (!FTouched[a] && !FTouched[b] && newIndex[a] >= 0 && newIndex[b] == newIndex[a] + 1) quads.push_back(newIndex[a]);
        }
        FDraft.Triangles = std::move(kept);
        FDraft.QuadStarts = std::move(quads);
    }

    FaceDraft& FDraft;
    const std::vector<EdgeData>& FEdges;
    DraftGeometry FGeometry;
    std::vector<bool> FAlive;
    std::vector<bool> FTouched;
    std::vector<std::vector<int>> FAround;      // triangles round each vertex (some dead)
    std::vector<std::vector<int>> FNeighbours;  // each vertex's neighbours along the boundary
};

// Twice the area the triangles cover in UV, signed.
double AreaInUV(const FaceDraft& d)
{
    double area = 0.0;
    for (const Triangle& t : d.Triangles) {
        const TPoint2D a = d.Vertices[static_cast<std::size_t>(t[0])].UV, b = d.Vertices[static_cast<std::size_t>(t[1])].UV,
                       c = d.Vertices[static_cast<std::size_t>(t[2])].UV;
        area += (b.X - a.X) * (c.Y - a.Y) - (c.X - a.X) * (b.Y - a.Y);
    }
    return area;
}

}  // namespace

// The moves keep the region: a face whose triangles would not cover the same area in UV
// afterwards (where a move's fan is not convex in UV) keeps its draft as it was.
void ThinBoundaryCrossings(FaceDraft& Draft, const FaceData& Face, const std::vector<EdgeData>& Edges)
{
    FaceDraft before = Draft;
    const double area = AreaInUV(Draft);
    Thinner(Draft, Face, Edges).Run();
    const double after = AreaInUV(Draft);
    if (Draft.Triangles.empty() || !(std::fabs(after - area) <= 1e-9 * std::fabs(area))) Draft = std::move(before);
}

}  // namespace orvane::io
