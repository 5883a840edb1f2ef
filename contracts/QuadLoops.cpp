#include "contracts/QuadLoops.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace orvane {
namespace {

void CheckFinite(const TVPoint2DList& polyline, std::size_t loopIndex)
{
    for (int i = 0; i < polyline.Count(); ++i) {
        const TPoint2D& p = polyline[i];
        if (!std::isfinite(p.X) || !std::isfinite(p.Y))
            throw EArgumentException("CreateDrawQuads: point " + std::to_string(i) + " of polyline " +
                                     std::to_string(loopIndex) + " has a coordinate that is not finite");
    }
}

QuadLoop Clean(const TVPoint2DList& polyline)
{
    QuadLoop loop;
    for (const TPoint2D& p : polyline)
        if (loop.empty() || !(p == loop.back())) loop.push_back(p);
    while (loop.size() > 1 && loop.back() == loop.front()) loop.pop_back();
    return loop;
}

}  // namespace

std::vector<QuadLoop> CleanQuadLoops(std::span<const TVPoint2DList* const> APolylines)
{
    for (std::size_t i = 0; i < APolylines.size(); ++i) CheckFinite(*APolylines[i], i);
    std::vector<QuadLoop> loops;
    for (std::size_t i = 0; i < APolylines.size(); ++i) {
        QuadLoop loop = Clean(*APolylines[i]);
        if (loop.size() >= 3) {
            loops.push_back(std::move(loop));
        } else if (i == 0) {
            return {};
        }
    }
    return loops;
}

QuadExtent LoopExtent(const QuadLoop& loop)
{
    QuadExtent e{loop.front().X, loop.front().X, loop.front().Y, loop.front().Y};
    for (const TPoint2D& p : loop) {
        e.XMin = std::min(e.XMin, p.X);
        e.XMax = std::max(e.XMax, p.X);
        e.YMin = std::min(e.YMin, p.Y);
        e.YMax = std::max(e.YMax, p.Y);
    }
    return e;
}

}  // namespace orvane
