// Builds the kernel's objects from a converted face.
#pragma once

#include <memory>

#include "contracts/Cadgeometry.h"
#include "io/CadFaceData.h"

namespace orvane::io {

std::unique_ptr<TGeNurbsSurface> BuildKernelSurface(const NurbsSurfaceData& S);

// A TGeLine2D for a segment, a TGeSpline2D otherwise.
std::unique_ptr<TGeCurve2D> BuildKernelCurve(const TrimCurveData& C);

// A loop of one curve is that curve; a longer loop is a TGeCompositeCurve2D of its curves.
std::unique_ptr<TGeCurve2D> BuildKernelLoop(const TrimLoopData& L);

// True when the face's only loop runs along the edges of its surface's knot range, each curve
// straight along one edge: the face is its whole surface, trimmed or not.
bool CoversWholeDomain(const FaceData& F);

// The face as a trimmed surface over its NURBS surface, the outer loop first. The kernel's
// constructors raise EArgumentException for values they cannot take.
std::unique_ptr<TGeTrimmedSurface> BuildKernelFace(const FaceData& F);

}  // namespace orvane::io
