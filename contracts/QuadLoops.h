// First step of the quad tool: the boundary loops of a region as plain point arrays, checked
// and cleaned.
#pragma once

#include <span>
#include <vector>

#include "contracts/Export.h"
#include "contracts/ViewUnits.h"

namespace orvane {

using QuadLoop = std::vector<TPoint2D>;

// The loops of APolylines in their order, the outer boundary first. Raises
// EArgumentException when a coordinate is not finite. Consecutive equal points and a closing
// point equal to the first are removed; a loop left with fewer than 3 points has no area and
// is left out. Gives an empty list when the outer boundary has no area (or is missing).
ORVANE_API std::vector<QuadLoop> CleanQuadLoops(std::span<const TVPoint2DList* const> APolylines);

// The smallest and greatest X and Y of a loop.
struct QuadExtent {
    double XMin;
    double XMax;
    double YMin;
    double YMax;
};
ORVANE_API QuadExtent LoopExtent(const QuadLoop& loop);

}  // namespace orvane
