// Third step of the quad tool: a sweep along X that cuts the region into trapezoids with
// vertical sides, column by column.
#pragma once

#include <vector>

#include "contracts/QuadEdges.h"
#include "contracts/QuadGrid.h"

namespace orvane {

// A vertical line of the sweep: a column line or a breakpoint X. Crossings holds, sorted and
// distinct, the Y of every sloped edge on the line, computed once per edge and line, with
// values closer than the grid's YMergeTol merged; both pieces beside the line read these
// same doubles.
struct QuadLine {
    double X = 0.0;
    std::vector<double> Crossings;
};

// A piece of the region between two neighbouring sweep lines, bounded below and above by
// edges: its left side runs from LeftLo to LeftHi on the left line, its right side from
// RightLo to RightHi on the right line. All four are values of the lines' Crossings.
struct QuadTrapezoid {
    double LeftLo;
    double LeftHi;
    double RightLo;
    double RightHi;
};

class QuadTrapezoidVisitor {
public:
    virtual ~QuadTrapezoidVisitor() = default;
    virtual void Visit(long long column, const QuadLine& left, const QuadLine& right, const QuadTrapezoid& piece) = 0;
};

// Visits the trapezoids of the region in order: by column, within a column by sweep line,
// then from bottom to top. A point belongs to the region when it lies inside the outer loop
// and inside no hole, each by the even-odd rule. Pieces thinner than the grid's YMergeTol on
// both sides have no area and are skipped.
void SweepQuadColumns(const QuadEdges& edges, const QuadGrid& grid, QuadTrapezoidVisitor& visitor);

}  // namespace orvane
