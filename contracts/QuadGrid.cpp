#include "contracts/QuadGrid.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <string>

namespace orvane {
namespace {

// Relative slack when dividing an extent by a tolerance: a width of exactly the tolerance,
// give or take rounding, is one part.
constexpr double kPartSlack = 1e-12;
// Breakpoints this fraction of a part apart are merged.
constexpr double kMergeFraction = 1e-9;
// A part narrower than this many ulps of the coordinates cannot be represented safely.
constexpr double kMinPartUlps = 1024.0;
constexpr double kMinMergeUlps = 8.0;

double Magnitude(double a, double b) { return std::max(std::fabs(a), std::fabs(b)); }

// The number of parts of at most tol that cut length. Raises when the parts would be too
// narrow to be told apart at the coordinates' magnitude (which also keeps the count far
// below the range of long long).
long long PartCount(double length, double tol, double magnitude, const char* name)
{
    const double ratio = length / tol;
    const double parts = std::max(1.0, std::ceil(ratio - ratio * kPartSlack));
    if (parts > 1.0 && length / parts < kMinPartUlps * DBL_EPSILON * magnitude)
        throw EArgumentException(std::string("CreateDrawQuads: ") + name +
                                 " is too small for the coordinates of the region");
    return static_cast<long long>(parts);
}

double Line(double lo, double hi, long long parts, long long k)
{
    if (k >= parts) return hi;
    if (k <= 0) return lo;
    return lo + (hi - lo) * static_cast<double>(k) / static_cast<double>(parts);
}

}  // namespace

double QuadGrid::ColumnX(long long k) const { return Line(XMin, XMax, Columns, k); }

double QuadGrid::RowY(long long j) const { return Line(YMin, YMax, Rows, j); }

long long QuadGrid::NearestColumn(double X) const
{
    const double t = std::clamp((X - XMin) / (XMax - XMin), 0.0, 1.0);
    return std::llround(t * static_cast<double>(Columns));
}

long long QuadGrid::FirstRowAbove(double Y) const
{
    const double t = std::clamp((Y - YMin) / (YMax - YMin), 0.0, 1.0);
    long long j = static_cast<long long>(std::floor(t * static_cast<double>(Rows)));
    while (j > 0 && RowY(j - 1) > Y) --j;
    while (j <= Rows && RowY(j) <= Y) ++j;
    return j;
}

long long QuadGrid::RowsBetween(double Lo, double Hi) const
{
    if (!(Hi > Lo)) return 0;
    long long below = FirstRowAbove(Lo);
    long long upTo = FirstRowAbove(Hi);  // rows <= Hi lie below this index
    if (upTo > 0 && RowY(upTo - 1) == Hi) --upTo;
    return std::max(0LL, upTo - below);
}

QuadGrid MakeQuadGrid(const QuadExtent& extent, double XTol, double YTol, long long MaxColumns)
{
    QuadGrid grid{extent.XMin, extent.XMax, extent.YMin, extent.YMax, 0, 0, 0.0, 0.0};
    const double width = extent.XMax - extent.XMin;
    const double height = extent.YMax - extent.YMin;
    if (width / XTol > static_cast<double>(MaxColumns))
        throw EArgumentException("CreateDrawQuads: the region needs more than " + std::to_string(MaxColumns) +
                                 " columns");
    const double xMagnitude = Magnitude(extent.XMin, extent.XMax);
    const double yMagnitude = Magnitude(extent.YMin, extent.YMax);
    grid.Columns = PartCount(width, XTol, xMagnitude, "XTol");
    grid.Rows = PartCount(height, YTol, yMagnitude, "YTol");
    const double columnWidth = width / static_cast<double>(grid.Columns);
    const double rowHeight = height / static_cast<double>(grid.Rows);
    grid.XMergeTol = std::max(kMergeFraction * columnWidth, kMinMergeUlps * DBL_EPSILON * xMagnitude);
    grid.YMergeTol = std::max(kMergeFraction * rowHeight, kMinMergeUlps * DBL_EPSILON * yMagnitude);
    return grid;
}

}  // namespace orvane
