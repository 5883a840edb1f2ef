// Faces made with OpenCASCADE that carry the faults real CAD files carry, for the healing
// tests: each is a valid region of its surface, but its boundary as stored is not what the
// converter can take as it stands. With Faulty false each gives the same region, soundly
// bounded: the reference for the exact area.
#pragma once

#include <TopoDS_Face.hxx>

namespace orvane::io::testing {

// A curved 40 x 30 B-spline patch over [0, 1] x [0, 1] whose lower edge's trim curve runs at
// v = -2e-4, a little outside the surface's range.
TopoDS_Face StrayingCurvePatch(bool Faulty = true);

// A band of a periodic B-spline cylinder (radius 10, height 20) over u in [-1, 1], across the
// seam at u = 0, whose left side's trim curve lies a whole period away, at u = 2 pi - 1.
TopoDS_Face ShiftedSeamBand(bool Faulty = true);

// Half of the same cylinder, u in [0, pi], bounded only by its two end arcs: the straight
// sides along u = 0 and u = pi are missing from the loop, which is open in UV and in 3D.
TopoDS_Face HalfCylinderWithoutSides(bool Faulty = true);

// A strip of a cylinder of radius 10 and height 30, u in [0, 4] and v in [0, 20] less a
// corner, whose loop runs along v = 20 to u = 0 and then, in one trim curve, back along that
// line to u = 3, wavering across it by 2e-3 within the edge's tolerance of 0.05, before it
// crosses to the left side: a spike of no width, as the coil of a flat-ground spring carries
// where it meets the ground plane.
TopoDS_Face StripWithSpike(bool Faulty = true);

}  // namespace orvane::io::testing
