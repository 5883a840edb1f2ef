// The column and row lines of the quad tool and the merge tolerances that go with them.
#pragma once

#include "contracts/Export.h"
#include "contracts/QuadLoops.h"

namespace orvane {

// Columns cut [XMin, XMax] into Columns equal parts, rows cut [YMin, YMax] into Rows equal
// parts, each part at most the tolerance wide (to 1e-12 relative, so that a width equal to
// the tolerance makes one part). ColumnX and RowY are pure functions: every caller gets the
// same double for the same index, and the ends are XMin, XMax (YMin, YMax) exactly.
struct ORVANE_API QuadGrid {
    double XMin;
    double XMax;
    double YMin;
    double YMax;
    long long Columns;
    long long Rows;
    // Two X values closer than XMergeTol count as one breakpoint, a row line closer than
    // YMergeTol to a boundary crossing gives way to it: a billionth of a column width (row
    // height), and never less than a few ulps of the coordinates.
    double XMergeTol;
    double YMergeTol;

    double ColumnX(long long k) const;
    double RowY(long long j) const;
    // The index of the column line nearest to X, within [0, Columns].
    long long NearestColumn(double X) const;
    // The smallest row index j with RowY(j) > Y; Rows + 1 when there is none.
    long long FirstRowAbove(double Y) const;
    // The number of row lines strictly between Lo and Hi.
    long long RowsBetween(double Lo, double Hi) const;
};

// The grid over an extent of positive width and height. Raises EArgumentException when a
// tolerance is so small against the coordinates that its lines could not be told apart, or
// when the grid would need more than MaxColumns columns.
ORVANE_API QuadGrid MakeQuadGrid(const QuadExtent& extent, double XTol, double YTol, long long MaxColumns);

}  // namespace orvane
