// The triangle data of one thing to draw, an outer and an inner mesh, handed to the vertex
// array manager for one id each. In EBO mode equal vertices are merged first, so that the
// drawable keeps each vertex once and an index list says which vertex comes where.
#pragma once

#include "contracts/Cadtypes.h"
#include "contracts/Export.h"
#include "immediate/zqglTypes.h"

namespace orvane {

class TGLVAOManager;

class ORVANE_API TCollectedTri {
public:
    // The key of the vertex table: a position and its normal, six doubles.
    struct TPointComparePair {
        TPoint3D Vertex;
        TPoint3D Normal;

        static TPointComparePair Create(const TPoint3D& AVertex, const TPoint3D& ANormal) { return {AVertex, ANormal}; }
        // Tolerant: both points Equals within 1e-6. The vertex table compares bits instead.
        friend bool operator==(const TPointComparePair& pt1, const TPointComparePair& pt2);
    };

    explicit TCollectedTri(bool EBOMode);
    TCollectedTri(const TCollectedTri&) = delete;
    TCollectedTri& operator=(const TCollectedTri&) = delete;
    ~TCollectedTri() { Reset(); }

    bool EBOMode() const noexcept { return FEBOMode; }
    // Empties both meshes; the mode stays.
    void Reset();

    // Double-precision loads: in EBO mode the vertices are merged (exactly, bit for bit, on the
    // doubles) and indexed, then rounded to single precision. The caller's arrays stay as
    // they are.
    void LoadOuter(TFloatDynArray ATriOuter, TFloatDynArray ANormOuter);
    void LoadInner(TFloatDynArray ATriIner, TFloatDynArray ANormInner);
    // Single-precision loads take the arrays as they are and never merge. In EBO mode they
    // empty the mesh's index list, which would no longer fit the vertices, so that the mesh
    // is drawn without indices.
    void LoadOuter(TDynGLFloat ATriOuter, TDynGLFloat ANormOuter);
    void LoadInner(TDynGLFloat ATriIner, TDynGLFloat ANormInner);

    // Sets both ids to 0, then makes the outer and the inner mesh in the current context; an
    // empty mesh leaves its id 0. The data stays here.
    void GenerateTriVAO(TGLVAOManager& VAOManager, Cardinal& OuterVAOID, Cardinal& InnerVAOID) const;
    // At least one vertex in either mesh.
    bool Valid() const noexcept;

    const TDynGLFloat& TriOut() const noexcept { return FTriOut; }
    const TDynGLFloat& NormOut() const noexcept { return FNormOut; }
    const TDynGLFloat& TriIn() const noexcept { return FTriIn; }
    const TDynGLFloat& NormIn() const noexcept { return FNormIn; }
    const TDynGLinteger& IndexOut() const noexcept { return FIndexOut; }
    const TDynGLinteger& IndexIn() const noexcept { return FIndexIn; }

private:
    friend class TCollectedTriProbe;  // tests and benchmarks reach the merge directly

    static void LoadMesh(bool merge, TFloatDynArray& tri, TFloatDynArray& norm, TDynGLFloat& triOut,
                         TDynGLFloat& normOut, TDynGLinteger& index);
    // Keeps each distinct (vertex, normal) pair once, in the order of first appearance, and
    // writes for every input vertex the index of its pair. Pairs are equal only when all six
    // doubles have the same bits: 0.0 and -0.0 differ, and so does the last bit.
    static void ExtractIndexInVertexArray(TFloatDynArray& vertices, TFloatDynArray& normals, TDynGLinteger& index);

    bool FEBOMode;
    TDynGLFloat FTriOut;
    TDynGLFloat FNormOut;
    TDynGLFloat FTriIn;
    TDynGLFloat FNormIn;
    TDynGLinteger FIndexOut;
    TDynGLinteger FIndexIn;
};

}  // namespace orvane
