// Whether a model's mesh closes round each solid, and the volume it encloses: what `orvane
// info` reports and the tests hold the meshes to.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "io/ModelMesher.h"

namespace orvane::io {

struct SolidCheck {
    int Solid = 0;                          // index into the model's solids
    std::size_t Triangles = 0;
    std::vector<std::array<int, 2>> FreeEdges;  // edges of one triangle only (model points, ascending)
    std::size_t NonManifoldEdges = 0;       // edges of more than two triangles
    double Volume = 0.0;                    // signed: positive when the triangles wind outwards
    double ExactVolume = 0.0;               // the reader's; 0 where the mesh has no solid record

    bool Closed() const { return FreeEdges.empty() && NonManifoldEdges == 0; }
};

// One check for each solid that has meshed faces, in the solids' order. Edges are told apart
// by their model points, so faces count as joined only where they share points; an edge from
// a point to itself (at a pole) is no edge.
std::vector<SolidCheck> CheckSolids(const ModelMesh& Mesh);

}  // namespace orvane::io
