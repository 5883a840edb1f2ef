// A small library of named surfaces built as exact NURBS, for tests, benchmarks and the
// tool. Every shape is built afresh on each call and handed to the caller.
//
//   plane                  flat 3 x 2 rectangle, bilinear (2 x 2 control points)
//   bilinear               twisted bilinear patch (u, v, u v) over the unit square
//   cylinder               radius 1, height 2: U a full circle (9 control points, quarter
//                          arcs, knots 0 0 0 .25 .25 .5 .5 .75 .75 1 1 1), straight along V
//   cylinder-transposed    the same, straight along U and round along V
//   partial-cylinder       a 120 degree arc (two 60 degree spans) of radius 1, height 2
//   cone                   base radius 1, height 2, apex a pole (a row of equal points)
//   sphere                 radius 2: U around the axis, V a half meridian pole to pole
//   torus                  major radius 3, minor radius 1, rational in U and V
//   freeform               bicubic 4 x 5 control points, an interior knot in V
//   ruled-u                straight along U (degree 1), cubic along V
//   ruled-v                straight along V (degree 1), cubic along U
//   trimmed-circular-holes plane of degree 2 trimmed by a square of lines, a circular
//                          spline hole and a hole of two half-circle splines
//   trimmed-polygon-holes  the same plane trimmed by a degree-1 spline square, a triangle
//                          and a rectangle of lines, and a pentagon as a degree-1 spline
//
// Trimmed shapes: outer loop counter-clockwise in UV, holes clockwise.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "contracts/Cadgeometry.h"
#include "contracts/Export.h"

namespace orvane {

// The names, in the order above.
ORVANE_API std::vector<std::string> ShapeNames();

// A new shape; raises EArgumentException "Unknown shape: <name>" for any other name.
ORVANE_API std::unique_ptr<TGeSurface> MakeShape(const std::string& Name);

// A polyline as one degree-1 spline through its points, knots evenly spaced on [0, 1].
ORVANE_API std::unique_ptr<TGeSpline2D> PolylineSpline(const TDynPoints2D& Points);

// The area in closed form, or NaN where none is known (bilinear, freeform, ruled).
ORVANE_API double ShapeExactArea(const std::string& Name);

// One line that says what the shape is.
ORVANE_API std::string ShapeDescription(const std::string& Name);

}  // namespace orvane
