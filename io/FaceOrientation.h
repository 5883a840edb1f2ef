// Points a face's mesh out of the material. Neither road orients its output by the face: the
// quad road's normals follow its quads' winding or a surface normal of its own choosing, the
// GLU road's follow GLU, and a face of a solid may run against its surface. So each face's
// output is compared with the face's exact normal (the surface normal, negated for a reversed
// face) and turned where it disagrees.
#pragma once

#include "contracts/Cadtypes.h"
#include "io/CadFaceData.h"

namespace orvane::io {

struct OrientationResult {
    bool FlippedNormals = false;  // the output normals pointed into the material
    bool FlippedWinding = false;  // the triangles ran clockwise seen from outside
    int MendedNormals = 0;        // zero normals replaced
};

// Tri and Norm hold triangles, three vertices each, of the face F. Normals and winding are
// judged apart, each by a vote of the largest triangles, and turned where they disagree with
// the exact normal. Then every zero (or non-finite) normal is replaced by its triangle's
// normal, or, for a triangle of no area, by the exact normal at the vertex.
OrientationResult OrientFaceMesh(const FaceData& F, TFloatDynArray& Tri, TFloatDynArray& Norm);

}  // namespace orvane::io
