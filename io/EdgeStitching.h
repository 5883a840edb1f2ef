// Makes the quad road's faces meet vertex to vertex. Every boundary vertex of a face lies on a
// segment of one of its loops, and so on an edge's shared polyline: it takes that polyline's 3D
// point there, and every other use of the edge (the neighbour face, or the other side of a
// seam) gets a vertex at the same place, splitting the boundary triangle it falls on. Both
// sides then hold the same points along the edge, bit for bit.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "io/CadFaceData.h"
#include "io/ModelMesher.h"
#include "io/QuadFaceMesher.h"

namespace orvane::io {

// Two boundary points of an edge closer than this, in units of the edge's polyline segments,
// become one (and one that close to a shared point becomes that point): the two sides of a
// seam, or two faces, that cut an edge at the same place up to their rounding then share the
// point instead of leaving a triangle of no area between them. Nothing much larger: a move
// along a long straight segment could turn a thin triangle over.
inline constexpr double kEdgeMergeShare = 1e-6;

// Stitches the drafts of the faces Faces[i] (Drafts[i]) against each other, on Threads threads
// (0: every core).
void StitchDrafts(const CadModelData& Model, const std::vector<const FaceData*>& Faces, std::vector<FaceDraft>& Drafts,
                  int Threads = 0);

// Two points of a model closer than this share of its box diagonal are one.
inline constexpr double kSamePointShare = 1e-9;

// The positions every face shares: one index per distinct point. Points closer than Cell
// (far below any tolerance: two computations of one place that differ by rounding) are one,
// the first one seen.
class PointWelder {
public:
    explicit PointWelder(double Cell = 0.0) : FCell(Cell) {}
    int Of(const TPoint3D& P);
    std::vector<TPoint3D> Take() { return std::move(FPoints); }

private:
    struct Key {
        std::int64_t X, Y, Z;
        bool operator==(const Key&) const = default;
    };
    Key CellOf(const TPoint3D& P, int DX, int DY, int DZ) const;
    double FCell;
    struct KeyHash {
        std::size_t operator()(const Key& k) const noexcept;
    };
    std::unordered_map<Key, std::vector<int>, KeyHash> FIndex;
    std::vector<TPoint3D> FPoints;
};

// The face's mesh from its stitched draft: triangles of no area dropped, points welded.
FaceMesh FaceMeshOf(const FaceData& F, const FaceDraft& Draft, PointWelder& Points);

// The flat arrays Tri and Norm of a mesh's indexed form.
void FillFlatArrays(const std::vector<TPoint3D>& Points, FaceMesh& Mesh);

}  // namespace orvane::io
