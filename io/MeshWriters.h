// The mesh files `orvane mesh` writes: OBJ, binary STL and binary glTF 2.0, all from the
// welded mesh (io/MeshWelding.h). Each raises std::runtime_error "cannot write <Path>: ..."
// when the file cannot be written, and leaves no file behind then.
#pragma once

#include <string>

#include "io/MeshWelding.h"

namespace orvane::io {

// Binary STL: an 80-byte header naming the writer, the triangle count, then per triangle its
// normal (from the winding, so that it points out) and its three corners, as floats. Shared
// points round to the same floats, so a closed solid stays closed.
void WriteStl(const std::string& Path, const WeldedMesh& Mesh);

// Binary glTF 2.0 (.glb): one mesh and one node per body, named as the body; the body's
// vertices one position and one normal accessor that all its faces' primitives share; each
// face a primitive of triangles with its own index accessor and its name in extras.name.
void WriteGlb(const std::string& Path, const WeldedMesh& Mesh);

struct ObjOptions {
    std::string Comment;  // written first, as comment lines
    bool Quads = false;   // each quad of the quad road as one 4-vertex face
};

// Wavefront OBJ: the model's points used as `v` lines in full double precision (the shortest
// text that reads back bit for bit), the vertices' normals as `vn` lines, then per body `o`
// and per face `g` (names with blanks turned into '_', as OBJ splits names at blanks), its
// faces `f v//vn`.
// A face whose corners repeat a point (at a pole) loses the repeat, and is left out when fewer
// than three corners remain.
void WriteObj(const std::string& Path, const WeldedMesh& Mesh, const ObjOptions& Options);

}  // namespace orvane::io
