// The quad tool cuts its columns at the X of every boundary point, and where a cut meets the
// boundary it leaves a point of its own on the edge. Each such point would be handed on to the
// edge's other uses (EdgeStitching.h), which split a triangle for it: a fan of slivers in the
// neighbour face for every cut of this one. So first each such point is moved along the
// boundary onto the nearer shared point of its edge, where that turns no triangle over and
// keeps every triangle it changes within half the face's tolerance of the surface (the sides'
// midpoints and the centre against the surface at their UV); the triangle between them goes.
#pragma once

#include <vector>

#include "io/CadFaceData.h"
#include "io/QuadFaceMesher.h"

namespace orvane::io {

void ThinBoundaryCrossings(FaceDraft& Draft, const FaceData& Face, const std::vector<EdgeData>& Edges);

}  // namespace orvane::io
