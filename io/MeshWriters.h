// The mesh files `orvane mesh` writes besides OBJ: binary STL and binary glTF 2.0.
#pragma once

#include <string>
#include <vector>

#include "immediate/zqglTypes.h"
#include "io/ModelMesher.h"

namespace orvane::io {

// A model's mesh after its faces were joined and equal vertices merged: each vertex once, the
// triangles as an index list in the faces' order, and where each face's triangles lie in it.
struct IndexedMesh {
    TDynGLFloat Vertices;  // x, y, z
    TDynGLFloat Normals;   // x, y, z, out of the material
    TDynGLinteger Indices; // three a triangle, counter-clockwise seen from outside
    struct Part {
        std::string Name;
        std::size_t FirstIndex = 0;
        std::size_t IndexCount = 0;
    };
    std::vector<Part> Parts;
};

// Joins the faces' arrays and merges equal vertices through a collected mesh in EBO mode (one
// load: a load replaces the one before); each face becomes a part named as the face.
IndexedMesh MergeFaces(const ModelMesh& Mesh);

// Binary STL: an 80-byte header naming the writer, the triangle count, then per triangle
// its normal (from the winding, so that it points out) and its three corners, as floats.
// Raises std::runtime_error "cannot write <Path>: ..." when the file cannot be written.
void WriteStl(const std::string& Path, const IndexedMesh& Mesh);

// Binary glTF 2.0 (.glb): one vertex and one normal buffer shared by all parts, each part a
// named primitive of triangles with its own index accessor, all in one mesh of one node.
void WriteGlb(const std::string& Path, const IndexedMesh& Mesh);

}  // namespace orvane::io
