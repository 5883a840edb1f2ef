// Tessellates every face of a read model through one of the two roads, and points the
// result out of the material.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "contracts/Cadtypes.h"
#include "io/CadFaceData.h"
#include "io/CadModelReader.h"

namespace orvane::io {

enum class MeshRoad { Quad, Glu };

struct MeshSettings {
    MeshRoad Road = MeshRoad::Quad;
    double Tolerance = 0.0;  // quad road, model units; 0: DefaultTolerance of the model
    int ViewWidth = 1024;    // glu road: the view GLU samples in
    int ViewHeight = 1024;
    long long MaxQuads = 2'000'000;  // quad road, per face
    // The whole model's triangles, planned before any face is meshed (io/MeshBudget.h); 0: no
    // bound.
    double MaxTriangles = 0.0;
    int Threads = 0;  // quad road: the threads that mesh the faces; 0: every core
};

// The chordal tolerance used when none is given: 1/2500 of the model's box diagonal.
inline constexpr double kDefaultToleranceShare = 4e-4;
double DefaultTolerance(const CadModelData& Model);

// One face's mesh. The indexed form is the truth; Tri and Norm are its flat arrays.
struct FaceMesh {
    int Number = 0;
    std::string Name;
    int Solid = -1;       // index into the model's solids; -1: not in a solid
    TFloatDynArray Tri;   // triangles, three vertices each, counter-clockwise seen from outside
    TFloatDynArray Norm;  // the normal of each vertex, out of the material
    long long PlannedQuads = 0;  // quad road: what the preparation expected
    bool FromGlu = false;        // meshed by the GLU road (not welded to its neighbours)

    // Indexed form: each vertex of the face is a point of the model (ModelMesh::Points, shared
    // bit for bit with the neighbour faces along their common edges) with the face's own
    // normal there.
    std::vector<int> Points;
    std::vector<TPoint3D> Normals;               // unit, out of the material
    std::vector<std::array<int, 3>> Triangles;  // the face's vertices, counter-clockwise from outside
    // Triangles QuadStarts[k] and QuadStarts[k] + 1, (a, b, c) and (a, c, d), are the quad
    // (a, b, c, d) of the quad road; ascending.
    std::vector<int> QuadStarts;
};

struct ModelMesh {
    std::vector<FaceMesh> Faces;         // in the model's order, only faces with triangles
    std::vector<TPoint3D> Points;        // the positions the faces' vertices share
    std::vector<SolidData> Solids;       // the model's solids
    std::vector<SkippedFace> Skipped;    // the reader's, then those refused or left empty here
    std::vector<SkippedFace> Notes;      // what a road reported of a face it meshed in part
    double Tolerance = 0.0;              // quad road: the one used
    StageTimes Stages;                   // budget, tessellate, stitch, orient
    std::size_t TriangleCount() const;
};

// Meshes every face. A face the kernel refuses, the preparation refuses, or the road leaves
// empty becomes a skipped face with its reason; the rest go on. What a road shows through the
// application's message sink while it works on a face becomes a note on that face. Raises
// EOverBudget (io/MeshBudget.h) before anything is meshed when the plan passes MaxTriangles.
ModelMesh MeshModel(const CadModelData& Model, const MeshSettings& Settings, const ProgressFn& Progress = {});

// The faces' arrays, one after the other.
void JoinFaces(const ModelMesh& Mesh, TFloatDynArray& Tri, TFloatDynArray& Norm);

}  // namespace orvane::io
