// Normals of quads given by their corners. Lists run in parallel with their vertex lists:
// entries 4Q to 4Q + 3 are quad Q, corners P0 to P3.
#pragma once

#include <memory>

#include "contracts/Cadtypes.h"
#include "contracts/Generics.h"

namespace orvane {

class TQuadNormals {
public:
    TQuadNormals() = delete;

    // ((B - A) made unit, crossed with C - A) made unit; zero for a degenerate corner.
    static TPoint3D CalcNormal(const TPoint3D& A, const TPoint3D& B, const TPoint3D& C);
    // The first corner normal that is not zero within 1e-6, tried at P0, P1, P2 and P3 in
    // turn; the last one stands whatever it is.
    static TPoint3D CalcNormal(const TPoint3D& P0, const TPoint3D& P1, const TPoint3D& P2, const TPoint3D& P3);

    // One flat normal a quad, four times. A degenerate quad takes the previous quad's normal;
    // a wholly degenerate first quad keeps the zero vector. A vertex count that is no
    // multiple of 4 fails the assertion "得到四边形划分数据不为4的倍数".
    static std::unique_ptr<TList<TPoint3D>> GetNormalListFromVertexList(const TList<TPoint3D>& Vertices);

    // The repair of a straight surface's flat normals (C entries, columns of quads one after
    // the other). Runs of quads with equal normals end where the surface bends. Points 0 and 3
    // of the first run take S, points 1 and 2 of the last run take T (each first turned to
    // the side of the flat normals), and across every edge between runs both sides take the
    // normalised sum of the flat normals of the two quads that meet there.
    static void FixNormalRuns(TList<TPoint3D>& N, TPoint3D S, TPoint3D T);
};

}  // namespace orvane
