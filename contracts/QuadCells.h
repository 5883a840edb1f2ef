// Last step of the quad tool: fills a trapezoid of the sweep with quads.
#pragma once

#include "contracts/QuadColumns.h"
#include "contracts/QuadGrid.h"

namespace orvane {

// One quad of a trapezoid: its left side runs from LeftLo to LeftHi on the left line, its
// right side from RightLo to RightHi on the right line. One of the sides may be a single
// point (a triangle), never both.
struct QuadCell {
    double LeftLo;
    double LeftHi;
    double RightLo;
    double RightHi;
};

// Walks the quads of a trapezoid from bottom to top. The points of each side are the points
// of its line within the side: the line's crossings, and the row lines that lie farther than
// the grid's YMergeTol from every crossing of the line. Every trapezoid that touches a piece
// of a line therefore has the same points on it, so neighbours meet corner to corner. Each
// step moves up one point on the left, on the right, or on both, whichever gives the most
// nearly horizontal top edge (both, when tied); so where rows run through, quads are
// rectangles, and no two quads overlap.
class QuadCellWalker {
public:
    QuadCellWalker(const QuadGrid& grid, const QuadLine& left, const QuadLine& right, const QuadTrapezoid& piece);
    // The next quad; false when the trapezoid is full.
    bool Next(QuadCell& cell);

private:
    class Side {
    public:
        Side(const QuadGrid& grid, const QuadLine& line, double lo, double hi);
        double Y() const { return FY; }
        bool HasNext() const { return FY < FHi; }
        double NextY() const { return FNext; }
        void Advance();

    private:
        double FindNext();
        bool Dropped(double row) const;

        const QuadGrid& FGrid;
        const std::vector<double>& FCrossings;
        double FHi;
        double FY;
        double FNext = 0.0;
        std::size_t FCrossing;  // first crossing above FY
        long long FRow;         // first row above FY not yet rejected
    };

    Side FLeft;
    Side FRight;
};

// A lower bound of the number of quads in a trapezoid that needs no walk.
long long MinQuadCells(const QuadGrid& grid, const QuadLine& left, const QuadLine& right, const QuadTrapezoid& piece);

}  // namespace orvane
