// Conversions of points between the world, view, device and screen coordinates of the display,
// and of transforms between the kernel's matrix and the OpenGL layout.
//
// Plain arithmetic on what the caller passes: no state, no OpenGL call, no heap. Every function
// answers True when it wrote its output and False when it left the output as it was. Input
// points are read before anything is written, so an output point may be the input point.
//
// Wcs: world (model) coordinates. Vcs: after the model-view matrix. Dcs: window pixels of the
// OpenGL window system, origin bottom left, z a depth in 0..1. Scr: the x and y of a device
// point. No y axis is flipped anywhere; the depth range is fixed at 0..1.
#pragma once

#include <array>
#include <cstdint>

#include "contracts/Cadtypes.h"
#include "contracts/Export.h"

namespace orvane {

// 16 doubles in the OpenGL order: element 4c + r is row r of column c; 12, 13, 14 hold the
// translation, 3, 7, 11, 15 the bottom row.
using TGlMatrix = std::array<double, 16>;
// x, y, z, w.
using TGlVector = std::array<double, 4>;
// x origin, y origin, width, height.
using TGlViewport = std::array<std::int32_t, 4>;

// The kernel's columns 0..2 become columns 0..2, its row 3 (the translation) column 3; the
// bottom row is 0, 0, 0, 1.
ORVANE_API bool GksMatrixToGl(const TMatrix3D& AMatrix, TGlMatrix& AGlMatrix);
// The inverse layout; elements 3, 7, 11 and 15 are not read.
ORVANE_API bool GlMatrixToGks(const TGlMatrix& AGlMatrix, TMatrix3D& AMatrix);

// AOut = AMatrix applied to the column vector AVector. AOut must be another array than AVector.
ORVANE_API bool MultMatrixVecd(const TGlMatrix& AMatrix, const TGlVector& AVector, TGlVector& AOut);
// AOut applies A first and B second (B times A as matrices). AOut must be neither A nor B.
ORVANE_API bool MultMatricesd(const TGlMatrix& A, const TGlMatrix& B, TGlMatrix& AOut);
// The inverse by the adjugate, without pivoting. False, with AOut untouched, only when the
// determinant is exactly 0: a nearly singular matrix is inverted. AOut may be AMatrix.
ORVANE_API bool InvertMatrixd(const TGlMatrix& AMatrix, TGlMatrix& AOut);

// The "w test" used below fails when the homogeneous w is within 1e-6 of 0; the "size test"
// fails when the viewport's width or height, in single precision, is below 0 by more than
// 1e-6 (a size of exactly 0 passes).

// World to view through the model-view matrix, divided by w. False: w test.
ORVANE_API bool GLWcsToVcs(const TPoint3D& AWcs, const TGlMatrix& AModelView, TPoint3D& AVcs);
// View to world through the inverse model-view matrix. False: singular matrix, w test.
ORVANE_API bool GLVcsToWcs(const TPoint3D& AVcs, const TGlMatrix& AModelView, TPoint3D& AWcs);

// View to device: projection, division by w, -1..1 to 0..1, then x and y into the viewport.
// False: w test, size test.
ORVANE_API bool GLVcsToDcs(const TPoint3D& AVcs, const TGlMatrix& AProjection, const TGlViewport& AViewport,
                TPoint3D& ADcs);
// Reads the device point as a normalised homogeneous point: where z is not 0 (beyond 1e-6), x
// and y are divided by z and z becomes 1; then 0..1 to -1..1 and the inverse projection. The
// viewport is only validated, so this is not the inverse of GLVcsToDcs.
// False: singular matrix, size test, w test.
ORVANE_API bool GLDcsToVcs(const TPoint3D& ADcs, const TGlMatrix& AProjection, const TGlViewport& AViewport,
                TPoint3D& AVcs);

// The x and y of a device point.
ORVANE_API bool GLDcsToScr(const TPoint3D& ADcs, TPoint2D& AScr);
// A screen point whose z carries the depth, as a device point.
ORVANE_API bool GLScrToDcs(const TPoint3D& AScr, TPoint3D& ADcs);

// World to window x and y. False: w test, size test.
ORVANE_API bool GlWcsToScr(const TPoint3D& AWcs, const TGlMatrix& AModelView, const TGlMatrix& AProjection,
                const TGlViewport& AViewport, TPoint2D& AScr);
// Window x, y and a depth in 0..1 (AScr.Z) back to world. The two-dimensional result of
// GlWcsToScr carries no depth: the caller supplies it. False: singular matrix, size test, w test.
ORVANE_API bool GlScrToWcs(const TPoint3D& AScr, const TGlMatrix& AModelView, const TGlMatrix& AProjection,
                const TGlViewport& AViewport, TPoint3D& AWcs);

}  // namespace orvane
