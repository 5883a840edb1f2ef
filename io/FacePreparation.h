// Prepares a face for the quad road at a chordal tolerance in model units, without changing
// its geometry.
//
// The quad road works in UV units with fixed spacings: rows lie 0.05 apart along Y of its
// tessellation plane; columns along X are 0.05 wide or, where the surface's knot span in X
// divided by D is wider, that wide, with D = (n + p) * 8 for n control points of degree p > 1
// and D = n + 1 for degree 1; a simple surface gets one column. (X is U and Y is V, except for
// a surface straight along U only, where X is V.) So a face's parameters decide its density.
//
// For each direction d of the plane, with s_d the knot span, M_d the largest second
// derivative across the surface (in the face's own parameters), K_d the largest turn of the
// normal per unit of parameter, T the tolerance, h = 0.05 and a = 0.35 rad:
//
//   N_d = s_d * max(sqrt(M_d / (2 T)),   parts that keep every chord within T / 4, so that a
//                   K_d / a)             triangle, off by both directions' chords, stays within
//                                        T / 2, and within T beside a boundary whose polyline is
//                                        itself within T / 2: h_d^2 M_d / 8 <= T / 4; and that
//                                        turn the normal by at most a, so that a small radius
//                                        keeps its area at a coarse tolerance
//   L_d = h * max(N_d, 1)                the prepared span, never below one part, so that the
//                                        quad tool's merging stays far below the loops' detail
//   p -> (L_d / s_d) * (p - p0)          the affine change of parameter (knots and trim curves)
//
// Rows: ceil(L_Y / h). Columns of a surface that is not simple: X gets k inserted knots, the
// fewest that make D >= ceil(N_X), so that the column width comes out as h and the columns as
// ceil(L_X / h); scaling alone cannot give more than D columns. A face whose columns times rows
// exceed the bound is refused before anything is allocated.
#pragma once

#include <memory>
#include <stdexcept>

#include "contracts/Cadgeometry.h"
#include "io/CadFaceData.h"
#include "tessellation/ExtrusionType.h"

namespace orvane::io {

// A face the preparation will not hand to the quad road; the text is the reason.
class EFaceRefused : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct PreparationSettings {
    double Tolerance = 0.0;                       // chordal tolerance, model units
    long long MaxQuads = 2'000'000;               // per face
};

struct DirectionPlan {
    double Span = 0.0;       // knot span before
    double Needed = 0.0;     // N_d
    double Scale = 1.0;      // L_d / s_d
    int InsertedKnots = 0;
    long long Parts = 1;     // columns or rows the quad tool will make
    double Chord = 0.0;      // the chordal error these parts give: (s_d / Parts)^2 M_d / 8
};

struct PreparationPlan {
    TExtrusionType Type = TExtrusionType::NotExtrusion;
    bool Simple = false;
    bool XIsU = true;  // False where X is V (a surface straight along U only)
    DirectionPlan X;
    DirectionPlan Y;
    long long Quads() const { return X.Parts * Y.Parts; }
};

// The formulas above for a face of the given classification.
PreparationPlan PlanPreparation(const FaceData& F, TExtrusionType Type, bool Simple, const PreparationSettings& Settings);

// Scales both parameters (each range then starts at 0) and inserts the planned knots.
void ApplyPreparation(FaceData& F, const PreparationPlan& Plan);

struct PreparedFace {
    FaceData Data;
    PreparationPlan Plan;
    std::unique_ptr<TGeTrimmedSurface> Surface;
};

// Classifies the face as the quad road will, plans, refuses a face beyond Settings.MaxQuads
// (EFaceRefused "needs about <n> quads, more than the <max> a face may have"), applies the
// plan and builds the kernel's surface.
PreparedFace PrepareFace(const FaceData& F, const PreparationSettings& Settings);

}  // namespace orvane::io
