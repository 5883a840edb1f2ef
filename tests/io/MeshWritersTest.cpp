#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <tiny_gltf.h>

#include "io/AtomicFile.h"
#include "io/MeshWriters.h"
#include "tests/io/parts/TestShapes.h"

namespace orvane::io {
namespace {

// Two faces sharing an edge: a unit square split along its diagonal, and one triangle above,
// with the shared corners given twice so that merging has something to merge.
ModelMesh TwoFaces()
{
    ModelMesh mesh;
    mesh.Faces.push_back({1, "face 1", {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 0, 0, 1, 1, 0, 0, 1, 0},
                          {0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1}, 0});
    mesh.Faces.push_back({7, "face 7 (#12 \"lid\")", {1, 0, 0, 1, 1, 0, 1, 0, 1}, {1, 0, 0, 1, 0, 0, 1, 0, 0}, 0});
    return mesh;
}

std::string Slurp(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TEST(MeshWriters, MergedFacesShareVerticesAndKeepTheirTriangleRanges)
{
    const IndexedMesh m = MergeFaces(TwoFaces());
    EXPECT_EQ(m.Vertices.size(), 3u * 7u);  // 4 corners of the square, 3 of the side face
    ASSERT_EQ(m.Indices.size(), 9u);
    EXPECT_EQ(std::vector<int>(m.Indices.begin(), m.Indices.begin() + 6), (std::vector<int>{0, 1, 2, 0, 2, 3}));
    ASSERT_EQ(m.Parts.size(), 2u);
    EXPECT_EQ(m.Parts[1].Name, "face 7 (#12 \"lid\")");
    EXPECT_EQ(m.Parts[1].FirstIndex, 6u);
    EXPECT_EQ(m.Parts[1].IndexCount, 3u);
}

TEST(MeshWriters, StlHoldsEveryTriangleWithANormalFromItsWinding)
{
    testing::TempDir dir;
    WriteStl(dir.File("two.stl"), MergeFaces(TwoFaces()));
    const std::string bytes = Slurp(dir.File("two.stl"));
    ASSERT_EQ(bytes.size(), 84u + 3u * 50u);
    std::uint32_t count;
    std::memcpy(&count, bytes.data() + 80, 4);
    EXPECT_EQ(count, 3u);
    float facet[12];
    std::memcpy(facet, bytes.data() + 84 + 2 * 50, sizeof facet);  // the side face's triangle
    EXPECT_FLOAT_EQ(facet[0], 1.0f);
    EXPECT_FLOAT_EQ(facet[1], 0.0f);
    EXPECT_FLOAT_EQ(facet[2], 0.0f);
    EXPECT_FLOAT_EQ(facet[11], 1.0f);  // z of its third corner
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()), {}), 1);  // no temporary left
}

TEST(MeshWriters, GlbReadsBackWithOneNamedPrimitivePerFace)
{
    testing::TempDir dir;
    WriteGlb(dir.File("two.glb"), MergeFaces(TwoFaces()));
    tinygltf::TinyGLTF loader;
    tinygltf::Model model;
    std::string err, warn;
    ASSERT_TRUE(loader.LoadBinaryFromFile(&model, &err, &warn, dir.File("two.glb"))) << err;
    ASSERT_EQ(model.meshes.size(), 2u);
    EXPECT_EQ(model.meshes[1].name, "face 7 (#12 \"lid\")");
    EXPECT_EQ(model.nodes[1].name, "face 7 (#12 \"lid\")");
    const tinygltf::Primitive& lid = model.meshes[1].primitives.at(0);
    EXPECT_EQ(lid.extras.Get("name").Get<std::string>(), "face 7 (#12 \"lid\")");
    EXPECT_EQ(model.accessors[lid.indices].count, 3u);
    const tinygltf::Accessor& positions = model.accessors[lid.attributes.at("POSITION")];
    EXPECT_EQ(positions.count, 7u);
    EXPECT_EQ(positions.maxValues, (std::vector<double>{1, 1, 1}));
    EXPECT_EQ(lid.attributes.count("NORMAL"), 1u);
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
        WriteStl(dir.File("no/such/folder/out.stl"), MergeFaces(TwoFaces()));
        FAIL() << "wrote";
    } catch (const std::runtime_error& e) {
        EXPECT_EQ(std::string(e.what()), "cannot write " + dir.File("no/such/folder/out.stl") + ": No such file or directory");
    }
}

}  // namespace
}  // namespace orvane::io
