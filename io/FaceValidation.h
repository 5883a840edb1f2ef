// Checks that a converted face is something the kernel and the tessellators can work with,
// so that a hostile or broken file costs one face and not the process.
#pragma once

#include <string>

#include "io/CadFaceData.h"

namespace orvane::io {

// Limits beyond which a face is refused as absurd.
inline constexpr int kMaxDegree = 25;              // the highest degree the reader itself builds
inline constexpr double kMaxAbsKnot = 1e7;         // knots beyond this are no parameter of a part
inline constexpr double kMinKnotRange = 1e-9;      // a knot range narrower than this is empty
inline constexpr long long kMaxPoleCount = 4'000'000;  // poles of one surface
inline constexpr double kMaxAbsCoordinate = 1e9;   // poles beyond this are no part of a model

// An empty text when the surface is sound; otherwise the reason, one line, e.g.
// "absurd knots: the U knots span 1e+12".
std::string FindSurfaceProblem(const NurbsSurfaceData& S);

// The same for one boundary curve.
std::string FindCurveProblem(const TrimCurveData& C);

// The surface, every curve, and that each loop is closed (within Tol in UV) and lies in the
// surface's knot range (within Tol).
std::string FindFaceProblem(const FaceData& F, double Tol);

}  // namespace orvane::io
