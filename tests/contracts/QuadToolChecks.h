// Independent checks of the quad tool's result against the region it was given.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "contracts/ViewUnits.h"

namespace orvane::testing {

using QuadLoops = std::vector<TDynPoints2D>;

struct Quad {
    TPoint2D P[4];
};

// The quads of all units, in list order.
std::vector<Quad> QuadsOf(const TViewUnitList& units);

// Reference region: inside the first loop and inside none of the others, each by even-odd.
bool InRegion(const QuadLoops& loops, const TPoint2D& p);
// Its area, by brute force: cut at every vertex and crossing X, midpoint rule per slab.
double RegionArea(const QuadLoops& loops);
double QuadsArea(const std::vector<Quad>& quads);

// Each returns "" or a description of the first violation found.
// Vertical sides, P0 top-left, P1 top-right, P2 bottom-right, P3 bottom-left, clockwise,
// convex, no zero area, width at most XTol (to 1e-9 relative) and sides at most YTol (to
// 3e-9 relative, for merges); no
// quad narrower than minWidth, no side shorter than minSide unless it is a single point.
std::string CheckShapes(const std::vector<Quad>& quads, double XTol, double YTol, double minWidth, double minSide);
// Pieces between the same two vertical lines stack without overlap, and different pairs of
// lines do not interleave: together, no two quads share any interior point.
std::string CheckNoOverlap(const std::vector<Quad>& quads);
// Every quad edge is shared, reversed and bit for bit, by exactly one other quad edge, or
// lies on a boundary segment of the input (within tol).
std::string CheckNoCracks(const std::vector<Quad>& quads, const QuadLoops& loops, double tol);
// Random points farther than tol from the boundary lie in exactly one quad when they are in
// the region and in none otherwise.
std::string CheckCoverage(const std::vector<Quad>& quads, const QuadLoops& loops, int samples, std::uint32_t seed,
                          double tol);
// Quads of each unit follow along X: P0.X never decreases through the list.
std::string CheckColumnOrder(const std::vector<Quad>& quads);

// All of the above plus the area (to areaTol relative): what every region must satisfy.
// Vertices closer than the merge tolerances are moved onto each other, which changes the
// area by up to about a billionth of a column times the boundary's length; regions built
// that way need a looser areaTol.
void ExpectQuadProperties(const QuadLoops& loops, double XTol, double YTol, const TViewUnitList& units,
                          std::uint32_t seed = 1, double areaTol = 1e-9);

}  // namespace orvane::testing
