// Measures of a model's mesh against the exact part: area, signed volume, and how far the
// vertices lie from their faces' surfaces.
#pragma once

#include "io/CadFaceData.h"
#include "io/ModelMesher.h"

namespace orvane::io::testing {

double MeshArea(const TFloatDynArray& tri);
// Positive when the triangles run counter-clockwise seen from outside a closed mesh.
double SignedVolume(const TFloatDynArray& tri);
// The largest distance of a vertex of each face from that face's surface.
double WorstVertexDistance(const CadModelData& model, const ModelMesh& mesh);
// How far the mesh strays from the exact part, over 400 triangles spread over each larger
// face: Total, the largest distance from the face's surface of a triangle's corner, centre or
// side midpoint; Mesh, the largest distance of a centre or side midpoint beyond what its
// corners have there (a corner on an edge lies where the file puts the edge, off the surface
// by as much as the file's own tolerance); and Corner, the largest distance of a corner. A distance found by a local search from the point before that is
// within Enough is taken as it is (an upper bound), so that only the points that may stray
// further cost a global search.
struct Deviation {
    double Total = 0.0;
    double Mesh = 0.0;
    double Corner = 0.0;
};
Deviation WorstDeviation(const CadModelData& model, const ModelMesh& mesh, double enough);
// The largest angle, in radians, between a vertex normal and the exact normal out of the
// material, over the vertices that lie on their surface (within 1e-9 of the model's size).
double WorstNormalAngle(const CadModelData& model, const ModelMesh& mesh);
// Triangles whose area is below 1e-12 of the squared box diagonal.
std::size_t ZeroAreaTriangles(const CadModelData& model, const ModelMesh& mesh);
// The smallest dot product of a vertex normal with the exact normal out of the material, over
// a sample of vertices of every face (a pole's vertices, where there is no normal, left out).
double WorstNormalAgreement(const CadModelData& model, const ModelMesh& mesh);

}  // namespace orvane::io::testing
