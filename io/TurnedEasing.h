// A boundary that runs steeply across the quad tool's columns leaves slivers beside it, and
// where the surface's parameters stretch unevenly a sliver can come out turned over in 3D
// though it is the right way round in UV. An inner vertex of such a triangle is moved, along
// the surface, to the middle of its neighbours in UV where that leaves fewer triangles round
// it turned over, slivered or off the surface by more than half the tolerance.
#pragma once

#include "io/CadFaceData.h"
#include "io/QuadFaceMesher.h"

namespace orvane::io {

void EaseTurned(FaceDraft& Draft, const FaceData& Face);

}  // namespace orvane::io
