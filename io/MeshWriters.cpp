#include "io/MeshWriters.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <stdexcept>

#include <tiny_gltf.h>

#include "io/AtomicFile.h"
#include "mesh_drawing/CollectedTri.h"

namespace orvane::io {
namespace {

struct Vec {
    float X, Y, Z;
};

Vec At(const TDynGLFloat& a, std::int32_t i)
{
    const auto k = static_cast<std::size_t>(i) * 3;
    return {a[k], a[k + 1], a[k + 2]};
}

Vec FacetNormal(const Vec& a, const Vec& b, const Vec& c)
{
    const double ux = b.X - a.X, uy = b.Y - a.Y, uz = b.Z - a.Z;
    const double vx = c.X - a.X, vy = c.Y - a.Y, vz = c.Z - a.Z;
    const double nx = uy * vz - uz * vy, ny = uz * vx - ux * vz, nz = ux * vy - uy * vx;
    const double len = std::sqrt(nx * nx + ny * ny + nz * nz);
    if (!(len > 0.0)) return {0, 0, 0};
    return {static_cast<float>(nx / len), static_cast<float>(ny / len), static_cast<float>(nz / len)};
}

void Put(std::string& out, const void* data, std::size_t size)
{
    out.append(static_cast<const char*>(data), size);
}

void WriteBytes(const std::string& path, const std::string& bytes)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out) throw std::runtime_error("cannot write " + path);
}

// Appends the bytes of a float or index array to the buffer as a view of its own.
int AddView(tinygltf::Model& model, const void* data, std::size_t size, int target)
{
    std::vector<unsigned char>& buffer = model.buffers[0].data;
    while (buffer.size() % 4 != 0) buffer.push_back(0);
    tinygltf::BufferView view;
    view.buffer = 0;
    view.byteOffset = buffer.size();
    view.byteLength = size;
    view.target = target;
    buffer.insert(buffer.end(), static_cast<const unsigned char*>(data), static_cast<const unsigned char*>(data) + size);
    model.bufferViews.push_back(view);
    return static_cast<int>(model.bufferViews.size()) - 1;
}

int AddVec3Accessor(tinygltf::Model& model, const TDynGLFloat& values, bool withBounds)
{
    tinygltf::Accessor a;
    a.bufferView = AddView(model, values.data(), values.size() * sizeof(float), TINYGLTF_TARGET_ARRAY_BUFFER);
    a.componentType = TINYGLTF_COMPONENT_TYPE_FLOAT;
    a.type = TINYGLTF_TYPE_VEC3;
    a.count = values.size() / 3;
    if (withBounds && a.count > 0) {
        a.minValues = {values[0], values[1], values[2]};
        a.maxValues = a.minValues;
        for (std::size_t i = 0; i < values.size(); ++i) {
            a.minValues[i % 3] = std::min(a.minValues[i % 3], static_cast<double>(values[i]));
            a.maxValues[i % 3] = std::max(a.maxValues[i % 3], static_cast<double>(values[i]));
        }
    }
    model.accessors.push_back(a);
    return static_cast<int>(model.accessors.size()) - 1;
}

int AddIndexAccessor(tinygltf::Model& model, const TDynGLinteger& indices, const IndexedMesh::Part& part)
{
    tinygltf::Accessor a;
    a.bufferView = AddView(model, indices.data() + part.FirstIndex, part.IndexCount * sizeof(std::uint32_t),
                           TINYGLTF_TARGET_ELEMENT_ARRAY_BUFFER);
    a.componentType = TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT;
    a.type = TINYGLTF_TYPE_SCALAR;
    a.count = part.IndexCount;
    model.accessors.push_back(a);
    return static_cast<int>(model.accessors.size()) - 1;
}

tinygltf::Model GltfModel(const IndexedMesh& mesh)
{
    tinygltf::Model model;
    model.asset.version = "2.0";
    model.asset.generator = "orvane";
    model.buffers.resize(1);
    const int positions = AddVec3Accessor(model, mesh.Vertices, true);
    const int normals = AddVec3Accessor(model, mesh.Normals, false);
    tinygltf::Scene scene;
    for (const IndexedMesh::Part& part : mesh.Parts) {
        tinygltf::Primitive primitive;
        primitive.attributes = {{"POSITION", positions}, {"NORMAL", normals}};
        primitive.indices = AddIndexAccessor(model, mesh.Indices, part);
        primitive.mode = TINYGLTF_MODE_TRIANGLES;
        primitive.extras = tinygltf::Value(tinygltf::Value::Object{{"name", tinygltf::Value(part.Name)}});
        tinygltf::Mesh m;
        m.name = part.Name;
        m.primitives.push_back(primitive);
        model.meshes.push_back(m);
        tinygltf::Node node;
        node.name = part.Name;
        node.mesh = static_cast<int>(model.meshes.size()) - 1;
        model.nodes.push_back(node);
        scene.nodes.push_back(static_cast<int>(model.nodes.size()) - 1);
    }
    model.scenes.push_back(scene);
    model.defaultScene = 0;
    return model;
}

}  // namespace

IndexedMesh MergeFaces(const ModelMesh& Mesh)
{
    TFloatDynArray tri, norm;
    JoinFaces(Mesh, tri, norm);
    TCollectedTri collected(true);
    collected.LoadOuter(std::move(tri), std::move(norm));
    IndexedMesh indexed{collected.TriOut(), collected.NormOut(), collected.IndexOut(), {}};
    std::size_t first = 0;
    for (const FaceMesh& f : Mesh.Faces) {
        indexed.Parts.push_back({f.Name, first, f.Tri.size() / 3});
        first += f.Tri.size() / 3;
    }
    return indexed;
}

void WriteStl(const std::string& Path, const IndexedMesh& Mesh)
{
    const auto count = static_cast<std::uint32_t>(Mesh.Indices.size() / 3);
    std::string bytes(80, ' ');
    const char header[] = "binary STL written by orvane";
    std::memcpy(bytes.data(), header, sizeof header - 1);
    Put(bytes, &count, sizeof count);
    bytes.reserve(bytes.size() + std::size_t{50} * count);
    for (std::uint32_t t = 0; t < count; ++t) {
        const Vec a = At(Mesh.Vertices, Mesh.Indices[3 * t]), b = At(Mesh.Vertices, Mesh.Indices[3 * t + 1]),
                  c = At(Mesh.Vertices, Mesh.Indices[3 * t + 2]);
        const Vec facet[4] = {FacetNormal(a, b, c), a, b, c};
        Put(bytes, facet, sizeof facet);
        const std::uint16_t attributes = 0;
        Put(bytes, &attributes, sizeof attributes);
    }
    WriteFileAtomically(Path, [&](const std::string& temp) { WriteBytes(temp, bytes); });
}

void WriteGlb(const std::string& Path, const IndexedMesh& Mesh)
{
    const tinygltf::Model model = GltfModel(Mesh);
    WriteFileAtomically(Path, [&](const std::string& temp) {
        std::ofstream out(temp, std::ios::binary | std::ios::trunc);
        tinygltf::TinyGLTF writer;
        if (!writer.WriteGltfSceneToStream(&model, out, false, true)) throw std::runtime_error("cannot write " + temp);
        out.close();
        if (!out) throw std::runtime_error("cannot write " + temp);
    });
}

}  // namespace orvane::io
