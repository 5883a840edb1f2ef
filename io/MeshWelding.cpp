#include "io/MeshWelding.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <stdexcept>
#include <utility>

namespace orvane::io {
namespace {

void CheckIndexedForm(const FaceMesh& f, std::size_t pointCount)
{
    if (f.Triangles.empty() && !f.Tri.empty()) throw std::runtime_error(f.Name + ": its mesh has no indexed form");
    const auto bad = [&] { throw std::runtime_error(f.Name + ": its indexed mesh refers past its points"); };
    if (f.Normals.size() != f.Points.size()) bad();
    for (const int p : f.Points)
        if (p < 0 || static_cast<std::size_t>(p) >= pointCount) bad();
    for (const std::array<int, 3>& t : f.Triangles)
        for (const int v : t)
            if (v < 0 || static_cast<std::size_t>(v) >= f.Points.size()) bad();
}

// A point's uses that share one vertex: the first use's normal decides who joins, so that a
// chain of small turns cannot creep round a crease.
struct Cluster {
    TPoint3D Seed;
    TPoint3D Sum;
};

// Vertices for the uses of one point, uses[first, last) (point, use) of one body; clusters is
// scratch space, kept by the caller so that a million points make no million allocations.
void WeldPoint(const std::vector<std::pair<int, int>>& uses, std::size_t first, std::size_t last,
               const std::vector<const TPoint3D*>& normalOfUse, WeldedBody& body, std::vector<int>& vertexOfUse,
               std::vector<Cluster>& clusters)
{
    static const double smooth = std::cos(kSmoothAngleDegrees * std::numbers::pi / 180.0);
    clusters.clear();
    const int base = static_cast<int>(body.Points.size());
    for (std::size_t k = first; k < last; ++k) {
        const TPoint3D& n = *normalOfUse[static_cast<std::size_t>(uses[k].second)];
        auto c = std::find_if(clusters.begin(), clusters.end(), [&](const Cluster& c) { return c.Seed.DotMul(n) >= smooth; });
        if (c == clusters.end()) c = clusters.insert(clusters.end(), {n, {}});
        c->Sum += n;
        vertexOfUse[static_cast<std::size_t>(uses[k].second)] = base + static_cast<int>(c - clusters.begin());
    }
    for (const Cluster& c : clusters) {
        body.Points.push_back(uses[first].first);
        body.Normals.push_back(c.Sum.Normal());
    }
}

WeldedBody WeldBody(const std::vector<const FaceMesh*>& faces, int solid)
{
    WeldedBody body;
    body.Solid = solid;
    body.Name = solid < 0 ? "faces without a solid" : "solid " + std::to_string(solid + 1);
    // Every vertex of every face is a use of its point; sorted, a point's uses lie together.
    std::vector<std::pair<int, int>> uses;
    std::vector<const TPoint3D*> normalOfUse;
    for (const FaceMesh* f : faces)
        for (std::size_t v = 0; v < f->Points.size(); ++v) {
            uses.emplace_back(f->Points[v], static_cast<int>(uses.size()));
            normalOfUse.push_back(&f->Normals[v]);
        }
    std::sort(uses.begin(), uses.end());
    std::vector<int> vertexOfUse(uses.size());
    std::vector<Cluster> clusters;
    for (std::size_t i = 0, j = 0; i < uses.size(); i = j) {
        while (j < uses.size() && uses[j].first == uses[i].first) ++j;
        WeldPoint(uses, i, j, normalOfUse, body, vertexOfUse, clusters);
    }
    std::size_t offset = 0;
    for (const FaceMesh* f : faces) {
        WeldedFace& w = body.Faces.emplace_back(WeldedFace{f->Number, f->Name, {}, f->QuadStarts});
        w.Triangles.reserve(f->Triangles.size());
        for (const std::array<int, 3>& t : f->Triangles)
            w.Triangles.push_back({vertexOfUse[offset + static_cast<std::size_t>(t[0])],
                                   vertexOfUse[offset + static_cast<std::size_t>(t[1])],
                                   vertexOfUse[offset + static_cast<std::size_t>(t[2])]});
        offset += f->Points.size();
    }
    return body;
}

}  // namespace

WeldedMesh WeldFaces(const ModelMesh& Mesh)
{
    std::map<int, std::vector<const FaceMesh*>> facesOf;  // by solid; -1 first
    for (const FaceMesh& f : Mesh.Faces) {
        CheckIndexedForm(f, Mesh.Points.size());
        facesOf[std::max(f.Solid, -1)].push_back(&f);
    }
    WeldedMesh welded;
    welded.Points = Mesh.Points;
    for (const auto& [solid, faces] : facesOf)
        if (solid >= 0) welded.Bodies.push_back(WeldBody(faces, solid));
    if (facesOf.contains(-1)) welded.Bodies.push_back(WeldBody(facesOf[-1], -1));
    return welded;
}

}  // namespace orvane::io
