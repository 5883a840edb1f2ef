#include "io/MeshWriters.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <functional>
#include <fstream>
#include <limits>
#include <sstream>
#include <stdexcept>

#include <tiny_gltf.h>

#include "io/AtomicFile.h"

namespace orvane::io {
namespace {

using Triangle = std::array<int, 3>;

TPoint3D Corner(const WeldedMesh& mesh, const WeldedBody& body, int v)
{
    return mesh.Points[static_cast<std::size_t>(body.Points[static_cast<std::size_t>(v)])];
}

void Put(std::string& out, const void* data, std::size_t size)
{
    out.append(static_cast<const char*>(data), size);
}

void PutPoint(std::string& out, const TPoint3D& p)
{
    const float xyz[3] = {static_cast<float>(p.X), static_cast<float>(p.Y), static_cast<float>(p.Z)};
    Put(out, xyz, sizeof xyz);
}

// --- glTF ------------------------------------------------------------------------------

// Appends the bytes to the one buffer as a view of their own.
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

int AddAccessor(tinygltf::Model& model, tinygltf::Accessor a)
{
    model.accessors.push_back(std::move(a));
    return static_cast<int>(model.accessors.size()) - 1;
}

// Positions need their bounds in glTF; normals do not.
int AddVec3Accessor(tinygltf::Model& model, const std::vector<TPoint3D>& values, bool withBounds)
{
    std::vector<float> floats;
    floats.reserve(3 * values.size());
    for (const TPoint3D& p : values) floats.insert(floats.end(), {float(p.X), float(p.Y), float(p.Z)});
    tinygltf::Accessor a;
    a.bufferView = AddView(model, floats.data(), floats.size() * sizeof(float), TINYGLTF_TARGET_ARRAY_BUFFER);
    a.componentType = TINYGLTF_COMPONENT_TYPE_FLOAT;
    a.type = TINYGLTF_TYPE_VEC3;
    a.count = values.size();
    if (withBounds && !floats.empty()) {
        a.minValues = {floats[0], floats[1], floats[2]};
        a.maxValues = a.minValues;
        for (std::size_t i = 0; i < floats.size(); ++i) {
            a.minValues[i % 3] = std::min(a.minValues[i % 3], double{floats[i]});
            a.maxValues[i % 3] = std::max(a.maxValues[i % 3], double{floats[i]});
        }
    }
    return AddAccessor(model, std::move(a));
}

int AddIndexAccessor(tinygltf::Model& model, const std::vector<Triangle>& triangles)
{
    std::vector<std::uint32_t> indices;
    indices.reserve(3 * triangles.size());
    for (const Triangle& t : triangles)
        for (const int v : t) indices.push_back(static_cast<std::uint32_t>(v));
    tinygltf::Accessor a;
    a.bufferView = AddView(model, indices.data(), indices.size() * sizeof(std::uint32_t),
                           TINYGLTF_TARGET_ELEMENT_ARRAY_BUFFER);
    a.componentType = TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT;
    a.type = TINYGLTF_TYPE_SCALAR;
    a.count = indices.size();
    return AddAccessor(model, std::move(a));
}

tinygltf::Mesh GltfMesh(tinygltf::Model& model, const WeldedMesh& mesh, const WeldedBody& body)
{
    std::vector<TPoint3D> positions;
    positions.reserve(body.Points.size());
    for (std::size_t v = 0; v < body.Points.size(); ++v) positions.push_back(Corner(mesh, body, static_cast<int>(v)));
    const int position = AddVec3Accessor(model, positions, true);
    const int normal = AddVec3Accessor(model, body.Normals, false);
    tinygltf::Mesh m;
    m.name = body.Name;
    for (const WeldedFace& f : body.Faces) {
        tinygltf::Primitive& primitive = m.primitives.emplace_back();
        primitive.attributes = {{"POSITION", position}, {"NORMAL", normal}};
        primitive.indices = AddIndexAccessor(model, f.Triangles);
        primitive.mode = TINYGLTF_MODE_TRIANGLES;
        primitive.extras = tinygltf::Value(tinygltf::Value::Object{{"name", tinygltf::Value(f.Name)}});
    }
    return m;
}

tinygltf::Model GltfModel(const WeldedMesh& mesh)
{
    tinygltf::Model model;
    model.asset.version = "2.0";
    model.asset.generator = "orvane";
    model.buffers.resize(1);
    tinygltf::Scene scene;
    for (const WeldedBody& body : mesh.Bodies) {
        model.meshes.push_back(GltfMesh(model, mesh, body));
        tinygltf::Node node;
        node.name = body.Name;
        node.mesh = static_cast<int>(model.meshes.size()) - 1;
        model.nodes.push_back(node);
        scene.nodes.push_back(static_cast<int>(model.nodes.size()) - 1);
    }
    model.scenes.push_back(scene);
    model.defaultScene = 0;
    return model;
}

// --- OBJ -------------------------------------------------------------------------------

std::string ObjName(std::string name)
{
    for (char& c : name)
        if (std::isspace(static_cast<unsigned char>(c))) c = '_';
    return name;
}

// The shortest text that reads back as the same double.
void PutNumber(std::string& line, double x)
{
    char text[32];
    line.append(text, std::to_chars(text, text + sizeof text, x).ptr);
}

void PutTriple(std::ostream& out, const char* tag, const TPoint3D& p)
{
    std::string line = tag;
    for (const double x : {p.X, p.Y, p.Z}) {
        line += ' ';
        PutNumber(line, x);
    }
    line += '\n';
    out << line;
}

// OBJ numbers: the used points from 1 in the model's order, the normals body after body.
struct ObjNumbers {
    std::vector<long long> Point;            // by model point; 0: not written
    std::vector<long long> FirstNormal;      // by body
};

ObjNumbers WritePointsAndNormals(std::ostream& out, const WeldedMesh& mesh)
{
    ObjNumbers numbers{std::vector<long long>(mesh.Points.size(), 0), {}};
    for (const WeldedBody& body : mesh.Bodies)
        for (const int p : body.Points) numbers.Point[static_cast<std::size_t>(p)] = 1;
    long long next = 0;
    for (std::size_t p = 0; p < mesh.Points.size(); ++p)
        if (numbers.Point[p] != 0) {
            numbers.Point[p] = ++next;
            PutTriple(out, "v", mesh.Points[p]);
        }
    next = 0;
    for (const WeldedBody& body : mesh.Bodies) {
        numbers.FirstNormal.push_back(next + 1);
        for (const TPoint3D& n : body.Normals) PutTriple(out, "vn", n);
        next += static_cast<long long>(body.Normals.size());
    }
    return numbers;
}

// One `f` line of the vertices, a corner that repeats the point before it left out; nothing
// when fewer than three corners remain.
void PutFace(std::ostream& out, const WeldedBody& body, const ObjNumbers& numbers, long long firstNormal,
             std::initializer_list<int> vertices)
{
    const auto point = [&](int v) { return body.Points[static_cast<std::size_t>(v)]; };
    std::array<int, 4> corners{};
    std::size_t count = 0;
    for (const int v : vertices)
        if (count == 0 || point(v) != point(corners[count - 1])) corners[count++] = v;
    while (count > 1 && point(corners[count - 1]) == point(corners[0])) --count;
    if (count < 3) return;
    std::string line = "f";
    for (std::size_t k = 0; k < count; ++k)
        line += ' ' + std::to_string(numbers.Point[static_cast<std::size_t>(point(corners[k]))]) + "//" +
                std::to_string(firstNormal + corners[k]);
    line += '\n';
    out << line;
}

// The face's triangles; with quads, each pair (a, b, c), (a, c, d) that QuadStarts names as
// the quad (a, b, c, d).
void PutFaces(std::ostream& out, const WeldedBody& body, const WeldedFace& f, const ObjNumbers& numbers,
              long long firstNormal, bool quads)
{
    const std::vector<Triangle>& t = f.Triangles;
    std::size_t q = 0;
    for (std::size_t i = 0; i < t.size(); ++i) {
        while (quads && q < f.QuadStarts.size() && f.QuadStarts[q] < static_cast<int>(i)) ++q;
        const bool quad = quads && q < f.QuadStarts.size() && f.QuadStarts[q] == static_cast<int>(i) &&
                          i + 1 < t.size() && t[i + 1][0] == t[i][0] && t[i + 1][1] == t[i][2];
        if (quad) {
            PutFace(out, body, numbers, firstNormal, {t[i][0], t[i][1], t[i][2], t[i + 1][2]});
            ++i;
        } else {
            PutFace(out, body, numbers, firstNormal, {t[i][0], t[i][1], t[i][2]});
        }
    }
}

}  // namespace

void WriteStl(const std::string& Path, const WeldedMesh& Mesh)
{
    std::size_t total = 0;
    for (const WeldedBody& body : Mesh.Bodies)
        for (const WeldedFace& f : body.Faces) total += f.Triangles.size();
    if (total > std::numeric_limits<std::uint32_t>::max())
        throw std::runtime_error("cannot write " + Path + ": more triangles than binary STL can count");
    const auto count = static_cast<std::uint32_t>(total);
    std::string bytes(80, ' ');
    const char header[] = "binary STL written by orvane";
    std::memcpy(bytes.data(), header, sizeof header - 1);
    Put(bytes, &count, sizeof count);
    bytes.reserve(bytes.size() + std::size_t{50} * count);
    const std::uint16_t attributes = 0;
    for (const WeldedBody& body : Mesh.Bodies)
        for (const WeldedFace& f : body.Faces)
            for (const Triangle& t : f.Triangles) {
                const TPoint3D a = Corner(Mesh, body, t[0]), b = Corner(Mesh, body, t[1]), c = Corner(Mesh, body, t[2]);
                PutPoint(bytes, (b - a).CrossMul(c - a).Normal());
                for (const TPoint3D& p : {a, b, c}) PutPoint(bytes, p);
                Put(bytes, &attributes, sizeof attributes);
            }
    WriteStreamAtomically(Path, [&](std::ostream& out) { out.write(bytes.data(), static_cast<std::streamsize>(bytes.size())); });
}

void WriteGlb(const std::string& Path, const WeldedMesh& Mesh)
{
    const tinygltf::Model model = GltfModel(Mesh);
    WriteStreamAtomically(Path, [&](std::ostream& out) {
        tinygltf::TinyGLTF writer;
        if (!writer.WriteGltfSceneToStream(&model, out, false, true)) out.setstate(std::ios::failbit);
    });
}

void WriteObj(const std::string& Path, const WeldedMesh& Mesh, const ObjOptions& Options)
{
    WriteStreamAtomically(Path, [&](std::ostream& out) {
        std::istringstream comment(Options.Comment);
        for (std::string line; std::getline(comment, line);) out << "# " << line << '\n';
        const ObjNumbers numbers = WritePointsAndNormals(out, Mesh);
        for (std::size_t b = 0; b < Mesh.Bodies.size(); ++b) {
            const WeldedBody& body = Mesh.Bodies[b];
            out << "o " << ObjName(body.Name) << '\n';
            for (const WeldedFace& f : body.Faces) {
                out << "g " << ObjName(f.Name) << '\n';
                PutFaces(out, body, f, numbers, numbers.FirstNormal[b], Options.Quads);
            }
        }
    });
}

}  // namespace orvane::io
