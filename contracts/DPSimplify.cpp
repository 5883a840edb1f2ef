#include "contracts/DPSimplify.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace orvane {
namespace {

// Distance from P to the segment A-B; a segment of zero length is its end point.
double SegmentDistance(const TPoint2D& P, const TPoint2D& A, const TPoint2D& B)
{
    const double dx = B.X - A.X;
    const double dy = B.Y - A.Y;
    const double len2 = dx * dx + dy * dy;
    double t = 0.0;
    if (len2 > 0.0) t = std::clamp(((P.X - A.X) * dx + (P.Y - A.Y) * dy) / len2, 0.0, 1.0);
    return std::hypot(P.X - (A.X + t * dx), P.Y - (A.Y + t * dy));
}

// Points that lie farther than Tol from the last point kept, and the last point.
std::vector<TPoint2D> RadialPass(const std::vector<TPoint2D>& points, double Tol)
{
    std::vector<TPoint2D> kept{points.front()};
    for (std::size_t i = 1; i + 1 < points.size(); ++i)
        if (points[i].DistanceTo(kept.back()) > Tol) kept.push_back(points[i]);
    kept.push_back(points.back());
    return kept;
}

// Douglas-Peucker with an explicit stack, so long polylines cannot exhaust the call stack.
std::vector<TPoint2D> DouglasPeucker(const std::vector<TPoint2D>& points, double Tol)
{
    std::vector<bool> keep(points.size(), false);
    keep.front() = keep.back() = true;
    std::vector<std::pair<std::size_t, std::size_t>> ranges{{0, points.size() - 1}};
    while (!ranges.empty()) {
        const auto [first, last] = ranges.back();
        ranges.pop_back();
        double farthest = -1.0;
        std::size_t index = first;
        for (std::size_t i = first + 1; i < last; ++i) {
            const double d = SegmentDistance(points[i], points[first], points[last]);
            if (d > farthest) {
                farthest = d;
                index = i;
            }
        }
        if (index == first || !(farthest > Tol)) continue;
        keep[index] = true;
        ranges.emplace_back(first, index);
        ranges.emplace_back(index, last);
    }
    std::vector<TPoint2D> result;
    for (std::size_t i = 0; i < points.size(); ++i)
        if (keep[i]) result.push_back(points[i]);
    return result;
}

}  // namespace

std::unique_ptr<TVPoint2DList> DPSimplify(const TVPoint2DList& Points, double Tol, bool AHighQuality)
{
    const std::vector<TPoint2D>& points = Points.Items();
    if (points.size() < 3) return std::make_unique<TVPoint2DList>(points);
    if (AHighQuality) return std::make_unique<TVPoint2DList>(DouglasPeucker(points, Tol));
    return std::make_unique<TVPoint2DList>(DouglasPeucker(RadialPass(points, Tol), Tol));
}

}  // namespace orvane
