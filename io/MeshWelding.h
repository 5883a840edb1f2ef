// The vertices the mesh files write, welded from a model mesh's indexed form: a vertex is a
// model point seen from one side. Faces meeting smoothly at a point share one vertex there;
// faces meeting at a crease each keep their own normal.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "io/ModelMesher.h"

namespace orvane::io {

// Normals at a shared point within this angle of each other meet smoothly and are averaged
// into one vertex; wider angles are creases. The faces' normals are the exact surface
// normals, so a tangent joint agrees far closer than this, while 2 degrees still keeps a
// shallow design crease (a polygon of 180 sides) sharp.
inline constexpr double kSmoothAngleDegrees = 2.0;

// One face's triangles over its body's vertices.
struct WeldedFace {
    int Number = 0;
    std::string Name;
    std::vector<std::array<int, 3>> Triangles;  // counter-clockwise from outside
    std::vector<int> QuadStarts;                // as FaceMesh::QuadStarts
};

// A solid, or the faces that belong to no solid, over one vertex list of its own: vertices
// never serve two bodies, so each body can be written on its own.
struct WeldedBody {
    int Solid = -1;                 // index into the model's solids; -1: the faces in no solid
    std::string Name;               // "solid 1", "solid 2", ..., "faces without a solid"
    std::vector<int> Points;        // the model point of each vertex
    std::vector<TPoint3D> Normals;  // each vertex's normal, unit, out of the material
    std::vector<WeldedFace> Faces;
};

struct WeldedMesh {
    std::vector<TPoint3D> Points;    // the model's points, shared by all bodies
    std::vector<WeldedBody> Bodies;  // the solids with faces in order, then the faces in none
};

// Welds the faces body by body, from their indexed form (both roads fill it). Raises
// std::runtime_error for a face whose indexed form is missing or refers past its points.
WeldedMesh WeldFaces(const ModelMesh& Mesh);

}  // namespace orvane::io
