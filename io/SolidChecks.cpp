#include "io/SolidChecks.h"

#include <algorithm>
#include <cstdint>

#include "io/MeshWelding.h"

namespace orvane::io {
namespace {

// Edges seen by how many triangles: each as one key, its smaller point in the high half.
void CountEdges(const WeldedBody& body, SolidCheck& check)
{
    std::vector<std::uint64_t> edges;
    for (const WeldedFace& f : body.Faces) edges.reserve(edges.size() + 3 * f.Triangles.size());
    for (const WeldedFace& f : body.Faces)
        for (const std::array<int, 3>& t : f.Triangles)
            for (int k = 0; k < 3; ++k) {
                const auto a = static_cast<std::uint32_t>(body.Points[static_cast<std::size_t>(t[k])]);
                const auto b = static_cast<std::uint32_t>(body.Points[static_cast<std::size_t>(t[(k + 1) % 3])]);
                if (a != b) edges.push_back(std::uint64_t{std::min(a, b)} << 32 | std::max(a, b));
            }
    std::sort(edges.begin(), edges.end());
    for (std::size_t i = 0, j = 0; i < edges.size(); i = j) {
        while (j < edges.size() && edges[j] == edges[i]) ++j;
        if (j - i == 1) check.FreeEdges.push_back({static_cast<int>(edges[i] >> 32), static_cast<int>(edges[i] & 0xffffffffu)});
        if (j - i > 2) ++check.NonManifoldEdges;
    }
}

// The divergence theorem over the triangles, taken about the body's first point so that a
// part far from the origin loses no digits.
double SignedVolume(const WeldedBody& body, const std::vector<TPoint3D>& points)
{
    const auto at = [&](int v) { return points[static_cast<std::size_t>(body.Points[static_cast<std::size_t>(v)])]; };
    const TPoint3D origin = body.Points.empty() ? TPoint3D() : at(0);
    double volume = 0.0;
    for (const WeldedFace& f : body.Faces)
        for (const std::array<int, 3>& t : f.Triangles)
            volume += (at(t[0]) - origin).DotMul((at(t[1]) - origin).CrossMul(at(t[2]) - origin));
    return volume / 6.0;
}

}  // namespace

std::vector<SolidCheck> CheckSolids(const ModelMesh& Mesh)
{
    const WeldedMesh welded = WeldFaces(Mesh);
    std::vector<SolidCheck> checks;
    for (const WeldedBody& body : welded.Bodies) {
        if (body.Solid < 0) continue;
        SolidCheck& check = checks.emplace_back();
        check.Solid = body.Solid;
        for (const WeldedFace& f : body.Faces) check.Triangles += f.Triangles.size();
        CountEdges(body, check);
        check.Volume = SignedVolume(body, welded.Points);
        if (static_cast<std::size_t>(body.Solid) < Mesh.Solids.size())
            check.ExactVolume = Mesh.Solids[static_cast<std::size_t>(body.Solid)].ExactVolume;
    }
    return checks;
}

}  // namespace orvane::io
