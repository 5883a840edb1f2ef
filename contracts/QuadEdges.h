// Second step of the quad tool: the boundary as straight edges that meet only at shared end
// points, with every X that will cut a column into pieces.
#pragma once

#include <vector>

#include "contracts/QuadGrid.h"
#include "contracts/QuadLoops.h"

namespace orvane {

// A boundary edge, its left end first (X0 < X1). Loop is the index of its loop (0 = outer).
// Vertical edges are left out: they bound no piece between two sweep lines, and their end
// points are end points of the sloped edges beside them.
struct QuadEdge {
    double X0;
    double Y0;
    double X1;
    double Y1;
    int Loop;
};

struct QuadEdges {
    // Sorted by X0.
    std::vector<QuadEdge> Sloped;
    int LoopCount = 0;
    // The distinct end point X strictly between XMin and XMax that are no column line, sorted.
    std::vector<double> BreakX;
};

// The edges of the loops. Where two edges cross, or an end point lies on another edge, both
// are split at one shared point, so edges meet only at end points. Then every end point's X
// is merged: X within the grid's XMergeTol of a column line becomes that line's X exactly,
// and X within XMergeTol of each other (a cluster counted from its smallest value) become
// that smallest value.
QuadEdges BuildQuadEdges(const std::vector<QuadLoop>& loops, const QuadGrid& grid);

}  // namespace orvane
