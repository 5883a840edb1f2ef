#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "contracts/Shapes.h"
#include "tessellation/TempNurbsPointEval.h"

namespace orvane {
namespace {

constexpr double kTol = 0.001;

// x = u^2 along U (a quadratic Bezier with x-coordinates 0, 0, 1), y = v: its extrapolation
// past either end is known in closed form.
TGeNurbsSurface Parabola()
{
    TDynPoints3D pts;
    const double xs[3] = {0.0, 0.0, 1.0};
    for (double x : xs)
        for (int j = 0; j < 2; ++j) pts.push_back({x, 1.0 * j, 0.0});
    return TGeNurbsSurface(3, 2, 2, 1, {0, 0, 0, 1, 1, 1}, {0, 0, 1, 1}, pts);
}

TEST(TempNurbsPointEvalTest, AgreesWithTheKernelInsideTheKnotRange)
{
    const TTempNurbsPointEval eval(kTol);
    for (const char* name : {"cylinder", "sphere", "torus", "freeform", "cone", "ruled-u"}) {
        const auto shape = MakeShape(name);
        const auto& nurbs = dynamic_cast<const TGeNurbsSurface&>(*shape);
        const TRect2D d = nurbs.GetDomain();
        for (int i = 0; i <= 16; ++i)
            for (int j = 0; j <= 16; ++j) {
                const double u = d.Min.X + d.Width() * i / 16;
                const double v = d.Min.Y + d.Height() * j / 16;
                const TPoint3D p = eval.EvalPointOnNurbsSurface(nurbs, {u, v});
                EXPECT_LE(p.DistanceTo(nurbs.GetPoint(u, v)), 1e-12) << name << " at " << u << ", " << v;
            }
    }
}

TEST(TempNurbsPointEvalTest, RepeatedKnotsOnColumnLinesAndTheEndKnotGiveFinitePoints)
{
    const TTempNurbsPointEval eval(kTol);
    const auto cylinder = MakeShape("cylinder");
    const auto& nurbs = dynamic_cast<const TGeNurbsSurface&>(*cylinder);
    // The double knots 0.25, 0.5, 0.75 lie exactly on column lines of the quad road.
    for (double u : {0.0, 0.25, 0.5, 0.75, 1.0}) {
        const TPoint3D p = eval.EvalPointOnNurbsSurface(nurbs, {u, 0.5});
        ASSERT_TRUE(std::isfinite(p.X) && std::isfinite(p.Y) && std::isfinite(p.Z)) << u;
        EXPECT_NEAR(std::hypot(p.X, p.Y), 1.0, 1e-14) << u;
        EXPECT_LE(p.DistanceTo(nurbs.GetPoint(u, 0.5)), 1e-14) << u;
    }
    // At the last knot in U and V a clamped surface ends at its corner control point.
    const TPoint3D corner = eval.EvalPointOnNurbsSurface(nurbs, {1.0, 1.0});
    EXPECT_EQ(corner, nurbs.GetCtrlPoint(8, 1));
    EXPECT_EQ(TTempNurbsPointEval::FindKnotSpan(1.0, nurbs.KnotsU, 2), 8);
    EXPECT_EQ(TTempNurbsPointEval::FindKnotSpan(0.25, nurbs.KnotsU, 2), 4);
    EXPECT_EQ(TTempNurbsPointEval::FindKnotSpan(0.2499, nurbs.KnotsU, 2), 2);
    EXPECT_EQ(TTempNurbsPointEval::FindKnotSpan(-0.1, nurbs.KnotsU, 2), 2);
}

TEST(TempNurbsPointEvalTest, ExtrapolatesInsideTheBandAndClampsBeyondIt)
{
    const TTempNurbsPointEval eval(kTol);
    const TGeNurbsSurface parabola = Parabola();
    // Past the end by one tolerance: the end span's polynomial goes on; the kernel clamps.
    const double past = 1.0 + kTol;
    EXPECT_NEAR(eval.EvalPointOnNurbsSurface(parabola, {past, 0.5}).X, past * past, 1e-15);
    EXPECT_EQ(parabola.GetPoint(past, 0.5).X, 1.0);
    const double before = -kTol;
    EXPECT_NEAR(eval.EvalPointOnNurbsSurface(parabola, {before, 0.5}).X, before * before, 1e-15);
    // Two tolerances (the band's edge, within 1e-6) still extrapolate.
    EXPECT_NEAR(eval.EvalPointOnNurbsSurface(parabola, {1.0 + 2 * kTol, 0.5}).X, std::pow(1.0 + 2 * kTol, 2), 1e-15);
    // Three tolerances out the end control point of the span stands alone.
    EXPECT_EQ(eval.EvalPointOnNurbsSurface(parabola, {1.0 + 3 * kTol, 0.5}).X, 1.0);
    EXPECT_EQ(eval.EvalPointOnNurbsSurface(parabola, {-3 * kTol, 0.5}).X, 0.0);
    // The band scales with the tolerance.
    const TTempNurbsPointEval wide(0.01);
    EXPECT_NEAR(wide.EvalPointOnNurbsSurface(parabola, {1.0 + 3 * kTol, 0.5}).X, std::pow(1.0 + 3 * kTol, 2), 1e-15);
}

TEST(TempNurbsPointEvalTest, DividesByTheWeightOnlyForRationalSurfaces)
{
    const TTempNurbsPointEval eval(kTol);
    // The same net with weights 2 everywhere is rational and gives the same points; without
    // the division they would be twice as far out.
    TDynPoints3D pts{{0, 0, 0}, {0, 1, 0}, {1, 0, 1}, {1, 1, 2}};
    const TGeNurbsSurface plain(2, 2, 1, 1, {0, 0, 1, 1}, {0, 0, 1, 1}, pts);
    const TGeNurbsSurface weighted(2, 2, 1, 1, {0, 0, 1, 1}, {0, 0, 1, 1}, pts, {2, 2, 2, 2});
    const TPoint3D a = eval.EvalPointOnNurbsSurface(plain, {0.3, 0.6});
    const TPoint3D b = eval.EvalPointOnNurbsSurface(weighted, {0.3, 0.6});
    EXPECT_LE(a.DistanceTo(b), 1e-15);
    EXPECT_LE(a.DistanceTo({0.3, 0.6, 0.3 + 0.3 * 0.6}), 1e-15);
}

}  // namespace
}  // namespace orvane
