// The quad tool cuts its whole region at every distinct X of the loops, so a boundary that runs
// across the columns leaves each row of the interior in as many slivers as that boundary has
// points. Here the slivers are joined again into the cells the column grid alone would give;
// corners that neighbouring pieces keep on a joined cell's top or bottom become vertices of
// the cell, so the mesh stays conforming.
#pragma once

#include <array>
#include <functional>
#include <vector>

#include "contracts/Cadtypes.h"

namespace orvane::io {

// A piece as the quad tool gives it: top-left, top-right, bottom-right, bottom-left.
using PlaneQuad = std::array<TPoint2D, 4>;

// The pieces as polygons, clockwise like the quads: rectangles of one row side by side are
// joined unless the line between them is a column line or ends at a loop's point, every other
// piece stays as it was.
// A polygon of more than four points is a rectangle with extra points on its top and bottom.
std::vector<std::vector<TPoint2D>> JoinStrips(const std::vector<PlaneQuad>& Quads,
                                              const std::function<bool(double X)>& IsColumnLine,
                                              const std::function<bool(const TPoint2D&)>& IsLoopPoint);

// Triangles of a polygon from JoinStrips, as indices into it, clockwise: a zig-zag between
// its top and its bottom chain.
std::vector<std::array<int, 3>> StripTriangles(const std::vector<TPoint2D>& Polygon);

}  // namespace orvane::io
