// Reaches the vertex merge of TCollectedTri directly, for tests and benchmarks.
#pragma once

#include "mesh_drawing/CollectedTri.h"

namespace orvane {

class TCollectedTriProbe {
public:
    static void ExtractIndexInVertexArray(TFloatDynArray& vertices, TFloatDynArray& normals, TDynGLinteger& index)
    {
        TCollectedTri::ExtractIndexInVertexArray(vertices, normals, index);
    }
};

}  // namespace orvane
