#include <gtest/gtest.h>

#include <cmath>

#include "io/KernelFace.h"
#include "io/NurbsEdit.h"

namespace orvane::io {
namespace {

// A quarter of a wavy cylinder: rational quadratic in U, cubic with an inner knot in V, on
// parameters that start away from 0.
NurbsSurfaceData QuarterCylinder()
{
    NurbsSurfaceData s;
    s.DegreeU = 2;
    s.DegreeV = 3;
    s.CountU = 3;
    s.CountV = 5;
    s.KnotsU = {2, 2, 2, 5, 5, 5};
    s.KnotsV = {-1, -1, -1, -1, 0.5, 3, 3, 3, 3};
    const double w = std::sqrt(0.5);
    const TPoint3D arc[3] = {{10, 0, 0}, {10, 10, 0}, {0, 10, 0}};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 5; ++j) {
            const double r = 1.0 + 0.1 * (j % 2);
            s.Poles.push_back({arc[i].X * r, arc[i].Y * r, 4.0 * j});
            s.Weights.push_back(i == 1 ? w : 1.0);
        }
    return s;
}

TEST(NurbsEdit, InsertedKnotsLeaveTheSurfaceWhereItWas)
{
    const NurbsSurfaceData before = QuarterCylinder();
    NurbsSurfaceData after = before;
    InsertKnots(after, ParamDir::U, 5);
    InsertKnots(after, ParamDir::V, 3);
    InsertKnot(after, ParamDir::V, 0.5);  // raises an existing knot's multiplicity
    EXPECT_EQ(after.CountU, 8);
    EXPECT_EQ(after.CountV, 9);
    EXPECT_EQ(after.KnotsU.size(), 11u);
    EXPECT_EQ(after.KnotsV.size(), 13u);
    EXPECT_TRUE(std::is_sorted(after.KnotsU.begin(), after.KnotsU.end()));
    // Five knots in [2, 5] by halving the widest span: spans of 3/8 and 3/4, none wider.
    for (std::size_t i = 2; i + 3 < after.KnotsU.size(); ++i) {
        EXPECT_GE(after.KnotsU[i + 1] - after.KnotsU[i], 0.375 - 1e-12);
        EXPECT_LE(after.KnotsU[i + 1] - after.KnotsU[i], 0.75 + 1e-12);
    }
    const auto a = BuildKernelSurface(before), b = BuildKernelSurface(after);
    for (double u = 2.0; u <= 5.0; u += 0.37)
        for (double v = -1.0; v <= 3.0; v += 0.29) EXPECT_LT(a->GetPoint(u, v).DistanceTo(b->GetPoint(u, v)), 1e-12);
}

TEST(NurbsEdit, AnAffineParameterChangeMovesKnotsAndTrimCurvesTogether)
{
    FaceData f;
    f.Surface = QuarterCylinder();
    TrimCurveData edge;  // a rational quadratic in UV, inside the domain
    edge.Degree = 2;
    edge.Knots = {0, 0, 0, 1, 1, 1};
    edge.Poles = {{2.5, 0}, {4, 2}, {4.5, 2.5}};
    edge.Weights = {1, 0.6, 1};
    f.Loops = {{edge}};
    const auto curveBefore = BuildKernelCurve(edge);
    const auto surfaceBefore = BuildKernelSurface(f.Surface);
    MapParameter(f, ParamDir::U, 0.01, -0.02);
    MapParameter(f, ParamDir::V, 7.0, 7.0);
    EXPECT_DOUBLE_EQ(f.Surface.KnotsU.front(), 0.0);
    EXPECT_DOUBLE_EQ(f.Surface.KnotsV.front(), 0.0);
    EXPECT_DOUBLE_EQ(f.Surface.KnotsV.back(), 28.0);
    const auto curveAfter = BuildKernelCurve(f.Loops[0][0]);
    const auto surfaceAfter = BuildKernelSurface(f.Surface);
    for (double t = 0.0; t <= 1.0; t += 0.1) {
        const TPoint2D p = curveBefore->GetPoint(t), q = curveAfter->GetPoint(t);
        EXPECT_NEAR(q.X, 0.01 * p.X - 0.02, 1e-12);
        EXPECT_NEAR(q.Y, 7.0 * p.Y + 7.0, 1e-12);
        EXPECT_LT(surfaceBefore->GetPoint(p.X, p.Y).DistanceTo(surfaceAfter->GetPoint(q.X, q.Y)), 1e-9);
    }
}

}  // namespace
}  // namespace orvane::io
