#include "contracts/QuadCells.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvane {

QuadCellWalker::Side::Side(const QuadGrid& grid, const QuadLine& line, double lo, double hi)
    : FGrid(grid), FCrossings(line.Crossings), FHi(hi), FY(lo),
      FCrossing(static_cast<std::size_t>(std::upper_bound(FCrossings.begin(), FCrossings.end(), lo) -
                                         FCrossings.begin())),
      FRow(grid.FirstRowAbove(lo))
{
    if (HasNext()) FNext = FindNext();
}

// A row line gives way to a crossing of its line closer than YMergeTol. The nearest
// crossings lie just below and at or above FCrossing, because no crossing lies between FY
// and the row when the row is the next candidate.
bool QuadCellWalker::Side::Dropped(double row) const
{
    if (FCrossing > 0 && row - FCrossings[FCrossing - 1] <= FGrid.YMergeTol) return true;
    return FCrossing < FCrossings.size() && FCrossings[FCrossing] - row <= FGrid.YMergeTol;
}

double QuadCellWalker::Side::FindNext()
{
    // FHi is a crossing of the line, so a crossing at or below FHi always follows FY.
    if (FCrossing >= FCrossings.size()) return FHi;
    const double crossing = FCrossings[FCrossing];
    for (; FRow <= FGrid.Rows; ++FRow) {
        const double row = FGrid.RowY(FRow);
        if (row >= crossing) break;
        if (!Dropped(row)) return row;
    }
    return crossing;
}

void QuadCellWalker::Side::Advance()
{
    FY = FNext;
    if (FCrossing < FCrossings.size() && FCrossings[FCrossing] == FY) ++FCrossing;
    else ++FRow;
    if (HasNext()) FNext = FindNext();
}

QuadCellWalker::QuadCellWalker(const QuadGrid& grid, const QuadLine& left, const QuadLine& right,
                               const QuadTrapezoid& piece)
    : FLeft(grid, left, piece.LeftLo, piece.LeftHi), FRight(grid, right, piece.RightLo, piece.RightHi)
{
}

bool QuadCellWalker::Next(QuadCell& cell)
{
    const bool hasLeft = FLeft.HasNext();
    const bool hasRight = FRight.HasNext();
    if (!hasLeft && !hasRight) return false;
    bool moveLeft = hasLeft;
    bool moveRight = hasRight;
    if (hasLeft && hasRight) {
        const double both = std::fabs(FLeft.NextY() - FRight.NextY());
        const double leftOnly = std::fabs(FLeft.NextY() - FRight.Y());
        const double rightOnly = std::fabs(FLeft.Y() - FRight.NextY());
        if (both > leftOnly || both > rightOnly) {
            moveLeft = leftOnly < rightOnly;
            moveRight = !moveLeft;
        }
    }
    cell.LeftLo = FLeft.Y();
    cell.RightLo = FRight.Y();
    if (moveLeft) FLeft.Advance();
    if (moveRight) FRight.Advance();
    cell.LeftHi = FLeft.Y();
    cell.RightHi = FRight.Y();
    return true;
}

long long MinQuadCells(const QuadGrid& grid, const QuadLine& left, const QuadLine& right, const QuadTrapezoid& piece)
{
    // Each crossing takes the place of at most one row line: YMergeTol is far below a row.
    const long long leftRows = grid.RowsBetween(piece.LeftLo, piece.LeftHi) - static_cast<long long>(left.Crossings.size());
    const long long rightRows =
        grid.RowsBetween(piece.RightLo, piece.RightHi) - static_cast<long long>(right.Crossings.size());
    return std::max({1LL, leftRows, rightRows});
}

}  // namespace orvane
