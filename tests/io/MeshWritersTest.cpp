#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <numbers>
#include <set>
#include <sstream>

#include <tiny_gltf.h>

#include "io/AtomicFile.h"
#include "io/MeshWriters.h"
#include "io/SolidChecks.h"
#include "tests/io/parts/TestShapes.h"

namespace orvane::io {
namespace {

using Lattice = std::array<int, 3>;

// Boxes as the quad road leaves them: each side an N x N grid of quads, its own normals, the
// points of the box's edges shared by the sides that meet there.
class BoxMaker {
public:
    explicit BoxMaker(int n) : FN(n) {}

    // The sides of the box of Size at Offset (all six, or the five without the top) in Solid.
    void Box(TPoint3D size, TPoint3D offset, int solid, bool withTop = true)
    {
        ++FBox;
        FSize = size;
        FOffset = offset;
        const int n = FN;
        Side({0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {0, 0, -1}, solid);
        if (withTop) Side({0, 0, n}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, solid);
        Side({0, 0, 0}, {0, 0, 1}, {0, 1, 0}, {-1, 0, 0}, solid);
        Side({n, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 0}, solid);
        Side({0, 0, 0}, {1, 0, 0}, {0, 0, 1}, {0, -1, 0}, solid);
        Side({0, n, 0}, {0, 0, 1}, {1, 0, 0}, {0, 1, 0}, solid);
    }

    // A side from Origin along U and V (lattice steps; U x V points out), quad (i, j) the
    // triangles (a, b, c), (a, c, d) of its corners counter-clockwise.
    void Side(Lattice origin, Lattice u, Lattice v, TPoint3D normal, int solid)
    {
        FaceMesh& f = FMesh.Faces.emplace_back();
        f.Number = static_cast<int>(FMesh.Faces.size());
        f.Name = "face " + std::to_string(f.Number);
        f.Solid = solid;
        const int n = FN;
        for (int j = 0; j <= n; ++j)
            for (int i = 0; i <= n; ++i) {
                f.Points.push_back(Point({origin[0] + i * u[0] + j * v[0], origin[1] + i * u[1] + j * v[1],
                                          origin[2] + i * u[2] + j * v[2]}));
                f.Normals.push_back(normal);
            }
        for (int j = 0; j < n; ++j)
            for (int i = 0; i < n; ++i) {
                const int a = j * (n + 1) + i, b = a + 1, c = b + n + 1, d = a + n + 1;
                f.QuadStarts.push_back(static_cast<int>(f.Triangles.size()));
                f.Triangles.push_back({a, b, c});
                f.Triangles.push_back({a, c, d});
            }
    }

    int Point(Lattice l)
    {
        const auto [at, added] = FIndex.emplace(std::make_pair(FBox, l), static_cast<int>(FMesh.Points.size()));
        if (added)
            FMesh.Points.push_back(FOffset + TPoint3D(l[0] * FSize.X / FN, l[1] * FSize.Y / FN, l[2] * FSize.Z / FN));
        return at->second;
    }

    ModelMesh& Mesh() { return FMesh; }

private:
    int FN;
    int FBox = 0;
    TPoint3D FSize, FOffset;
    std::map<std::pair<int, Lattice>, int> FIndex;
    ModelMesh FMesh;
};

ModelMesh ClosedBox(int n, TPoint3D size = {2, 3, 5})
{
    BoxMaker maker(n);
    maker.Box(size, {}, 0);
    maker.Mesh().Solids = {{size.X * size.Y * size.Z}};
    return maker.Mesh();
}

// Two flat faces hinged along the Y axis, the second turned by Degrees.
ModelMesh Hinge(double degrees)
{
    const double t = degrees * std::numbers::pi / 180.0;
    ModelMesh mesh;
    mesh.Points = {{0, 0, 0}, {0, 1, 0}, {-1, 0, 0}, {-1, 1, 0}, {std::cos(t), 0, std::sin(t)}, {std::cos(t), 1, std::sin(t)}};
    FaceMesh a, b;
    a.Name = "flat";
    a.Points = {2, 0, 1, 3};
    a.Normals.assign(4, {0, 0, 1});
    a.Triangles = {{0, 1, 2}, {0, 2, 3}};
    b.Name = "turned";
    b.Points = {0, 4, 5, 1};
    b.Normals.assign(4, {-std::sin(t), 0, std::cos(t)});
    b.Triangles = {{0, 1, 2}, {0, 2, 3}};
    mesh.Faces = {a, b};
    return mesh;
}

using testing::Slurp;

std::size_t VertexCount(const WeldedMesh& m)
{
    std::size_t count = 0;
    for (const WeldedBody& b : m.Bodies) count += b.Points.size();
    return count;
}

TEST(MeshWelding, SplitsAtCreasesAndJoinsSmoothFaces)
{
    // A box of 2 x 2 quads a side: 26 points; a corner is seen from 3 sides, an edge point
    // from 2, the middle of a side from 1.
    EXPECT_EQ(VertexCount(WeldFaces(ClosedBox(2))), 8u * 3 + 12u * 2 + 6u);
    const struct {
        double Degrees;
        std::size_t Vertices;
    } hinges[] = {{0.0, 6}, {1.0, 6}, {1.9, 6}, {2.5, 8}, {30.0, 8}, {90.0, 8}};
    for (const auto& h : hinges) {
        const WeldedMesh w = WeldFaces(Hinge(h.Degrees));
        ASSERT_EQ(w.Bodies.size(), 1u);
        EXPECT_EQ(w.Bodies[0].Name, "faces without a solid");
        EXPECT_EQ(VertexCount(w), h.Vertices) << h.Degrees;
        // Both faces' triangles still reach the hinge's points.
        const WeldedBody& body = w.Bodies[0];
        EXPECT_EQ(body.Points[static_cast<std::size_t>(body.Faces[1].Triangles[0][0])], 0) << h.Degrees;
    }
    // A joined vertex takes the bisector of the two normals.
    const WeldedBody body = WeldFaces(Hinge(1.0)).Bodies[0];
    const TPoint3D n = body.Normals[static_cast<std::size_t>(body.Faces[1].Triangles[0][0])];
    EXPECT_NEAR(n.X, -std::sin(0.5 * std::numbers::pi / 180.0), 1e-12);
    EXPECT_NEAR(n.Z, std::cos(0.5 * std::numbers::pi / 180.0), 1e-12);
    // A broken indexed form is an error, not a crash.
    ModelMesh broken = Hinge(0.0);
    broken.Faces[1].Points[3] = 6;
    EXPECT_THROW(WeldFaces(broken), std::runtime_error);
    broken = Hinge(0.0);
    broken.Faces[1].Triangles[1][2] = 4;
    EXPECT_THROW(WeldFaces(broken), std::runtime_error);
}

TEST(MeshWriters, ObjSharesPointsBitForBitAndWritesQuadsOnRequest)
{
    testing::TempDir dir;
    ModelMesh mesh = ClosedBox(2, {1.0 / 3, 2.0 / 7, 0.7});  // coordinates with no short decimal form
    // One quad of the last side written as plain triangles: no longer in QuadStarts. A triangle
    // collapsed to two corners is no face at all.
    mesh.Faces.back().QuadStarts.erase(mesh.Faces.back().QuadStarts.begin() + 1);
    mesh.Faces[0].Triangles.push_back({0, 1, 1});
    const struct {
        bool Quads;
        int FourCorners, ThreeCorners;
    } cases[] = {{false, 0, 48}, {true, 23, 2}};
    for (const auto& c : cases) {
        WriteObj(dir.File("box.obj"), WeldFaces(mesh), {"box\ntwo lines", c.Quads});
        std::istringstream text(Slurp(dir.File("box.obj")));
        std::map<std::string, int> tags;
        int corners[5] = {};
        std::vector<TPoint3D> v;
        for (std::string line; std::getline(text, line);) {
            std::istringstream words(line);
            std::string tag;
            words >> tag;
            ++tags[tag];
            if (tag == "v") v.push_back({});
            if (tag == "v") words >> v.back().X >> v.back().Y >> v.back().Z;
            if (tag == "f") ++corners[std::min<long>(4, std::distance(std::istream_iterator<std::string>(words), {}))];
        }
        EXPECT_EQ(tags["#"], 2);
        EXPECT_EQ(tags["o"], 1);
        EXPECT_EQ(tags["g"], 6);
        EXPECT_EQ(tags["vn"], 54);
        EXPECT_EQ(v, mesh.Points);
        EXPECT_EQ(corners[4], c.FourCorners);
        EXPECT_EQ(corners[3], c.ThreeCorners);
        EXPECT_EQ(corners[2], 0);
    }
    EXPECT_NE(Slurp(dir.File("box.obj")).find("\no solid_1\ng face_1\nf "), std::string::npos);
}

TEST(MeshWriters, StlOfAClosedSolidIsClosed)
{
    testing::TempDir dir;
    WriteStl(dir.File("box.stl"), WeldFaces(ClosedBox(3, {0.1, 0.3, 0.7})));
    const std::string bytes = Slurp(dir.File("box.stl"));
    const std::uint32_t triangles = 6 * 9 * 2;
    ASSERT_EQ(bytes.size(), 84u + triangles * 50u);
    std::uint32_t count;
    std::memcpy(&count, bytes.data() + 80, 4);
    EXPECT_EQ(count, triangles);
    // Every edge, by its float corners, is met once in each direction.
    std::map<std::array<float, 6>, int> edges;
    for (std::uint32_t t = 0; t < count; ++t) {
        float f[12];
        std::memcpy(f, bytes.data() + 84 + 50 * t, sizeof f);
        for (int k = 0; k < 3; ++k) {
            const float* a = f + 3 + 3 * k;
            const float* b = f + 3 + 3 * ((k + 1) % 3);
            ++edges[{a[0], a[1], a[2], b[0], b[1], b[2]}];
        }
        EXPECT_NEAR(std::hypot(f[0], f[1], f[2]), 1.0, 1e-6);
    }
    for (const auto& [e, n] : edges) {
        const std::array<float, 6> back{e[3], e[4], e[5], e[0], e[1], e[2]};
        EXPECT_EQ(n, edges[back]);
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()), {}), 1);  // no temporary left
}

TEST(MeshWriters, GlbHasOneMeshPerSolidAndOneNamedPrimitivePerFace)
{
    BoxMaker maker(2);
    maker.Box({1, 1, 1}, {}, 0);
    maker.Box({1, 2, 1}, {5, 0, 0}, 1);
    maker.Side({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, -1);  // in no solid, on the bottom of solid 2
    maker.Mesh().Faces.back().Name = "sheet \"lid\"";
    testing::TempDir dir;
    WriteGlb(dir.File("two.glb"), WeldFaces(maker.Mesh()));
    tinygltf::TinyGLTF loader;
    tinygltf::Model model;
    std::string err, warn;
    ASSERT_TRUE(loader.LoadBinaryFromFile(&model, &err, &warn, dir.File("two.glb"))) << err;
    const struct {
        std::string Name;
        std::size_t Faces, Vertices;
        std::vector<double> Max;
    } meshes[] = {{"solid 1", 6, 54, {1, 1, 1}}, {"solid 2", 6, 54, {6, 2, 1}}, {"faces without a solid", 1, 9, {6, 2, 0}}};
    ASSERT_EQ(model.meshes.size(), std::size(meshes));
    for (std::size_t m = 0; m < std::size(meshes); ++m) {
        const tinygltf::Mesh& mesh = model.meshes[m];
        EXPECT_EQ(mesh.name, meshes[m].Name);
        EXPECT_EQ(model.nodes.at(m).name, meshes[m].Name);
        ASSERT_EQ(mesh.primitives.size(), meshes[m].Faces);
        for (const tinygltf::Primitive& p : mesh.primitives) {
            EXPECT_EQ(p.attributes.at("POSITION"), mesh.primitives[0].attributes.at("POSITION"));  // shared
            EXPECT_EQ(p.attributes.at("NORMAL"), mesh.primitives[0].attributes.at("NORMAL"));
            EXPECT_EQ(model.accessors[static_cast<std::size_t>(p.indices)].count, 2u * 2 * 2 * 3);
        }
        const tinygltf::Accessor& positions = model.accessors[static_cast<std::size_t>(mesh.primitives[0].attributes.at("POSITION"))];
        EXPECT_EQ(positions.count, meshes[m].Vertices);
        EXPECT_EQ(positions.maxValues, meshes[m].Max);
    }
    EXPECT_EQ(model.meshes[0].primitives[5].extras.Get("name").Get<std::string>(), "face 6");
    EXPECT_EQ(model.meshes[2].primitives[0].extras.Get("name").Get<std::string>(), "sheet \"lid\"");
}

TEST(MeshChecks, FreeEdgesAreTheHolesAndTheVolumeIsTheBoxs)
{
    const int n = 3;
    BoxMaker open(n);
    open.Box({2, 3, 5}, {}, 0, false);
    // The rim of the missing top, edge by edge.
    std::set<std::array<int, 2>> rim;
    for (int k = 0; k < n; ++k)
        for (const auto& [a, b] : {std::pair<Lattice, Lattice>{{k, 0, n}, {k + 1, 0, n}}, {{k, n, n}, {k + 1, n, n}},
                                   {{0, k, n}, {0, k + 1, n}}, {{n, k, n}, {n, k + 1, n}}}) {
            const int p = open.Point(a), q = open.Point(b);
            rim.insert({std::min(p, q), std::max(p, q)});
        }
    ModelMesh finned = ClosedBox(n);
    finned.Faces.push_back(finned.Faces[0]);  // one quad of the bottom again: its five edges
    finned.Faces.back().Triangles.resize(2);  // lie on three or four triangles
    ModelMesh insideOut = ClosedBox(n);
    for (FaceMesh& f : insideOut.Faces)
        for (std::array<int, 3>& t : f.Triangles) std::swap(t[1], t[2]);
    const std::size_t sides = 6 * n * n * 2;
    const struct {
        std::string Name;
        ModelMesh Mesh;
        std::size_t Free, NonManifold, Triangles;
        double Volume;  // 0: not checked
    } cases[] = {{"closed", ClosedBox(n), 0, 0, sides, 30.0},
                 {"inside out", insideOut, 0, 0, sides, -30.0},
                 {"open", open.Mesh(), 4 * n, 0, sides - n * n * 2, 0.0},
                 {"finned", finned, 0, 5, sides + 2, 0.0}};
    for (const auto& c : cases) {
        const std::vector<SolidCheck> checks = CheckSolids(c.Mesh);
        ASSERT_EQ(checks.size(), 1u) << c.Name;
        EXPECT_EQ(checks[0].FreeEdges.size(), c.Free) << c.Name;
        EXPECT_EQ(checks[0].NonManifoldEdges, c.NonManifold) << c.Name;
        EXPECT_EQ(checks[0].Triangles, c.Triangles) << c.Name;
        EXPECT_EQ(checks[0].Closed(), c.Free == 0 && c.NonManifold == 0) << c.Name;
        if (c.Volume != 0) {
            EXPECT_NEAR(checks[0].Volume, c.Volume, 1e-12) << c.Name;
        }
    }
    EXPECT_EQ(CheckSolids(ClosedBox(n))[0].ExactVolume, 30.0);
    const std::vector<SolidCheck> checks = CheckSolids(open.Mesh());
    const std::set<std::array<int, 2>> free(checks[0].FreeEdges.begin(), checks[0].FreeEdges.end());
    EXPECT_EQ(free, rim);
}

TEST(MeshWriters, AFailedWriteLeavesNothingUnderTheNameAndSaysWhy)
{
    testing::TempDir dir;
    const std::string path = dir.File("out.stl");
    std::ofstream(path) << "old";
    try {
        WriteFileAtomically(path, [](const std::string& temp) {
            std::ofstream(temp) << "half";
            throw std::runtime_error("cannot write " + temp + ": disk full");
        });
        FAIL() << "wrote";
    } catch (const std::runtime_error& e) {
        EXPECT_EQ(std::string(e.what()), "cannot write " + path + ": disk full");
    }
    EXPECT_EQ(Slurp(path), "old");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()), {}), 1);
    try {
        WriteStl(dir.File("no/such/folder/out.stl"), WeldFaces(ClosedBox(1)));
        FAIL() << "wrote";
    } catch (const std::runtime_error& e) {
        EXPECT_EQ(std::string(e.what()), "cannot write " + dir.File("no/such/folder/out.stl") + ": No such file or directory");
    }
}

}  // namespace
}  // namespace orvane::io
