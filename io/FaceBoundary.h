// A face's boundary as the quad road's mesher sees it: closed UV polylines through the shared
// points of the face's edges, each segment knowing which edge it lies on and where, so that a
// mesh vertex on the boundary can be put on the edge's shared polyline in 3D.
#pragma once

#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "contracts/Cadtypes.h"
#include "io/CadFaceData.h"

namespace orvane::io {

// A segment of a loop, on edge Edge from Sigma0 to Sigma1 (positions along the edge's shared
// polyline: point k is at k, between two points linearly); Edge -1 for a segment that lies on
// no shared edge (a bridge across a pole), whose points come from the surface.
struct LoopSegment {
    int Edge = -1;
    double Sigma0 = 0.0;
    double Sigma1 = 0.0;
};

// A closed polyline: UV.back() == UV.front(), one segment between consecutive points.
struct BoundaryLoop {
    std::vector<TPoint2D> UV;
    std::vector<LoopSegment> Segments;
    int SegmentCount() const { return static_cast<int>(Segments.size()); }
};

// The loops of F through its edges' shared points, the outer loop first, without repeated
// points. A curve without shared points (a bridge) adds a straight segment.
std::vector<BoundaryLoop> FaceBoundary(const FaceData& F);

// The point of edge data E at position Sigma: a shared point exactly where Sigma is whole.
TPoint3D EdgePoint(const EdgeData& E, double Sigma);

// Where a point lies on a loop: segment Segment at fraction S (0 at its start).
struct LoopLocation {
    int Loop = -1;
    int Segment = 0;
    double S = 0.0;
    double Lambda() const { return Segment + S; }
};

// Finds the loop segment a point lies on, within Tol, by a grid over the segments. Points are
// given in any coordinates that are an affine image of the loops' UV (the quad road's plane):
// Map turns a loop point into them.
class BoundaryLocator {
public:
    BoundaryLocator(const std::vector<BoundaryLoop>& Loops, const std::vector<std::vector<TPoint2D>>& Mapped,
                    double Tol);
    std::optional<LoopLocation> Locate(const TPoint2D& P) const;

private:
    long long CellOf(double X, double Y) const;

    const std::vector<std::vector<TPoint2D>>& FMapped;
    double FTol;
    double FCell = 1.0;
    TPoint2D FOrigin;
    std::unordered_map<long long, std::vector<std::pair<int, int>>> FCells;  // cell -> (loop, segment)
};

}  // namespace orvane::io
