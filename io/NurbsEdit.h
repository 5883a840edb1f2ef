// Edits of a face that leave its geometry as it is: an affine change of one parameter (the
// knots and the trim curves together) and knot insertion.
#pragma once

#include "io/CadFaceData.h"

namespace orvane::io {

enum class ParamDir { U, V };

// Replaces the parameter p in direction Dir by Scale * p + Offset: the surface's knots and that
// coordinate of every trim curve's poles. Scale must be positive. The trim curves' own knots
// stay: an affine map of the plane commutes with a NURBS curve's evaluation.
void MapParameter(FaceData& F, ParamDir Dir, double Scale, double Offset);

// Inserts the knot T once in direction Dir (Boehm's algorithm, on homogeneous poles).
// T must lie strictly inside the knot range.
void InsertKnot(NurbsSurfaceData& S, ParamDir Dir, double T);

// Inserts Count knots in direction Dir, each at the middle of the widest knot span at the time,
// which spreads them evenly over the range.
void InsertKnots(NurbsSurfaceData& S, ParamDir Dir, int Count);

}  // namespace orvane::io
