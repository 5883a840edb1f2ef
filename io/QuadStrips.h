// The quad tool cuts its whole region at every distinct X of the loops, so a boundary that runs
// across the columns leaves each row in as many slivers as that boundary has points, and a
// steep boundary leaves slivers beside it that a curved surface turns over. Here the pieces of
// a row are joined again along the lines the columns do not need, and the points those lines
// left on the row lines go where no piece needs them any more; the mesh stays conforming.
#pragma once

#include <array>
#include <functional>
#include <vector>

#include "contracts/Cadtypes.h"

namespace orvane::io {

// A piece as the quad tool gives it: top-left, top-right, bottom-right, bottom-left.
using PlaneQuad = std::array<TPoint2D, 4>;

// A polygon between two chains that run left to right and meet the same vertical lines at
// both ends; the region lies between them.
struct StripPolygon {
    std::vector<TPoint2D> Top;
    std::vector<TPoint2D> Bottom;

    // The distinct corners clockwise: the top chain, then the bottom chain backwards.
    std::vector<TPoint2D> Corners() const;
};

// Pieces side by side whose shared side is the same on both are joined unless that side lies
// on a column line; a point inside a row line's stretch of every polygon it is on goes,
// unless it is a loop's point.
std::vector<StripPolygon> JoinStrips(const std::vector<PlaneQuad>& Quads, const std::function<bool(double X)>& IsColumnLine,
                                     const std::function<bool(const TPoint2D&)>& IsLoopPoint);

// Triangles of a polygon, as indices into its Corners(), clockwise: a zig-zag between its
// chains where that stays inside it, else ears cut off one by one.
std::vector<std::array<int, 3>> StripTriangles(const StripPolygon& Polygon);

}  // namespace orvane::io
