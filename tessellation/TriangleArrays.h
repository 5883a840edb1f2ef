// The triangle road's step from a view unit's point lists to flat single-precision triangle
// arrays, through the primitive stream recorder.
#pragma once

#include "contracts/Cadtypes.h"
#include "contracts/Generics.h"
#include "immediate/zqglTypes.h"

namespace orvane {

class TTriangleArrays {
public:
    TTriangleArrays() = delete;

    // Both lists (equal counts, asserted) into single-precision arrays, then into triangles
    // of the primitive DrawMode.
    static void TriangulateAndTransformToGLArray(Cardinal DrawMode, const TList<TPoint3D>& Vertices,
                                                 const TList<TPoint3D>& Normals, TDynGLFloat& GLVert,
                                                 TDynGLFloat& GLNorm);
    // X, Y, Z of each point, rounded to single precision; the array is replaced.
    static void TransPointListToGLArray(const TList<TPoint3D>& List, TDynGLFloat& Array);
    // Replaces the vertices and normals of one primitive (equal lengths, asserted) by
    // triangles, 9 floats each; a quad P0..P3 becomes P0 P1 P2 and P0 P2 P3. A DrawMode the
    // recorder cannot convert raises its "Error Message".
    static void TriangulateVertexAndNormal(Cardinal DrawMode, TDynGLFloat& Vertices, TDynGLFloat& Normals);
    // The triangles of TriangulateAndTransformToGLArray, widened again and added to Tri and
    // Norm; quads are split here directly, without the recorder's buffers.
    static void AppendTriangles(Cardinal DrawMode, const TList<TPoint3D>& Vertices, const TList<TPoint3D>& Normals,
                                TFloatDynArray& Tri, TFloatDynArray& Norm);
};

}  // namespace orvane
