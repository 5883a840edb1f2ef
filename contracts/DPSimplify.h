// Douglas-Peucker polyline simplification (D. Douglas and T. Peucker, "Algorithms for the
// reduction of the number of points required to represent a digitized line or its
// caricature", 1973).
#pragma once

#include <memory>

#include "contracts/ViewUnits.h"

namespace orvane {

// Returns a new list (owned by the caller) with a subset of Points, in their order. The
// first and the last point always stay. A point is dropped when it lies within Tol of the
// segment between the kept points around it (distance to the segment, not to its line, so a
// closed loop whose ends coincide simplifies correctly); so every input point lies within
// Tol of the simplified polyline.
// AHighQuality: True runs Douglas-Peucker on every point. False first drops each point that
// lies within Tol of the last point kept (a radial pass, much faster on dense input) and
// then runs Douglas-Peucker; the input points then lie within 2 Tol of the result.
// Lists of fewer than 3 points come back unchanged. Tol = 0 drops only points lying exactly
// on their segment; a negative Tol drops nothing.
std::unique_ptr<TVPoint2DList> DPSimplify(const TVPoint2DList& Points, double Tol, bool AHighQuality);

}  // namespace orvane
