#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numbers>

#include "contracts/Cadgeometry.h"

namespace orvane {
namespace {

constexpr double kPi = std::numbers::pi;

// A full circle of radius R about C: nine control points, quarter arcs.
std::unique_ptr<TGeSpline2D> Circle(const TPoint2D& C, double R)
{
    const double h = std::sqrt(0.5);
    TDynPoints2D pts{{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}, {1, 0}};
    for (TPoint2D& p : pts) p = C + p * R;
    return std::make_unique<TGeSpline2D>(2, TArrayDouble{0, 0, 0, .25, .25, .5, .5, .75, .75, 1, 1, 1}, pts,
                                         TArrayDouble{1, h, 1, h, 1, h, 1, h, 1});
}

// A cubic whose control polygon reaches y = +-2 while the curve stays within +-sqrt(3)/3.
TGeSpline2D Wave() { return TGeSpline2D(3, {0, 0, 0, 0, 1, 1, 1, 1}, {{0, 0}, {1, 2}, {2, -2}, {3, 0}}); }

double DistanceToPolyline(const TPoint2D& P, const TDynPoints2D& Poly)
{
    double best = INFINITY;
    for (std::size_t i = 1; i < Poly.size(); ++i)
        best = std::min(best, ge::DistanceToSegment(P, Poly[i - 1], Poly[i]));
    return best;
}

std::string MessageOf(const std::function<void()>& Build)
{
    try { Build(); } catch (const EArgumentException& e) { return e.what(); }
    return "no exception";
}

TEST(KernelCurves, CircleHasClosedFormLengthPointsAndBox)
{
    const auto circle = Circle({1, -2}, 3);
    EXPECT_NEAR(circle->GetLength(), 2 * kPi * 3, 1e-9 * 2 * kPi * 3);
    TDynPoints2D pts;
    TFloatDynArray params;
    circle->GetSamplePoints(13, pts, params);
    ASSERT_EQ(pts.size(), 13u);
    for (const TPoint2D& p : pts) EXPECT_NEAR(p.DistanceTo({1, -2}), 3, 1e-12);
    EXPECT_EQ(params.front(), 0.0);
    EXPECT_EQ(params.back(), 1.0);
    EXPECT_DOUBLE_EQ(params[3], 0.25);
    const TRect2D box = circle->GetBoundRect();
    EXPECT_NEAR(box.Min.X, -2, 1e-10);
    EXPECT_NEAR(box.Max.X, 4, 1e-10);
    EXPECT_NEAR(box.Min.Y, -5, 1e-10);
    EXPECT_NEAR(box.Max.Y, 1, 1e-10);
}

TEST(KernelCurves, BoundRectIsTheCurvesOwnNotItsControlPolygons)
{
    const TGeSpline2D wave = Wave();
    const TRect2D box = wave.GetBoundRect();
    EXPECT_NEAR(box.Max.Y, std::sqrt(3.0) / 3, 1e-10);
    EXPECT_NEAR(box.Min.Y, -std::sqrt(3.0) / 3, 1e-10);
    EXPECT_NEAR(box.Min.X, 0, 1e-12);
    EXPECT_NEAR(box.Max.X, 3, 1e-12);
    // A half circle's box is a half square, not the box of its centre.
    const double h = std::sqrt(0.5);
    const TGeSpline2D half(2, {0, 0, 0, .5, .5, 1, 1, 1}, {{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}},
                           {1, h, 1, h, 1});
    const TRect2D hb = half.GetBoundRect();
    EXPECT_NEAR(hb.Min.Y, 0, 1e-12);
    EXPECT_NEAR(hb.Max.Y, 1, 1e-10);
    EXPECT_NEAR(hb.CenterPoint().Y, 0.5, 1e-10);
}

TEST(KernelCurves, TolPointsStayWithinToleranceBothWays)
{
    const auto circle = Circle({0, 0}, 2);
    for (double tol : {1e-1, 1e-3, 1e-6}) {
        TDynPoints2D poly;
        circle->GetTolPoints(tol, poly);
        ASSERT_GE(poly.size(), 3u);
        EXPECT_EQ(poly.front(), circle->GetStartPoint());
        EXPECT_TRUE(poly.back().Equals(circle->GetEndPoint(), 1e-12));
        for (std::size_t i = 1; i < poly.size(); ++i) {
            EXPECT_NEAR(poly[i].DistanceTo({0, 0}), 2, 1e-12);
            // The chord of a circle strays furthest at its middle.
            EXPECT_LE(2 - ((poly[i] + poly[i - 1]) / 2.0).DistanceTo({0, 0}), tol);
        }
    }
    const TGeSpline2D wave = Wave();
    TDynPoints2D poly;
    wave.GetTolPoints(1e-3, poly);
    TDynPoints2D dense;
    TFloatDynArray params;
    wave.GetSamplePoints(20001, dense, params);
    for (const TPoint2D& p : dense) EXPECT_LE(DistanceToPolyline(p, poly), 1e-3);
    EXPECT_LT(poly.size(), 200u);  // flattened, not sampled densely
    EXPECT_EQ(MessageOf([&] { wave.GetTolPoints(0, poly); }),
              "TGeSpline2D: the tolerance is 0; it must be positive");
}

TEST(KernelCurves, LineAndCompositeJoinTheirPieces)
{
    const TGeLine2D line({0, 0}, {2, 4});
    EXPECT_DOUBLE_EQ(line.GetLength(), std::sqrt(20.0));
    TDynPoints2D pts;
    TFloatDynArray params;
    line.GetSamplePoints(3, pts, params);
    EXPECT_EQ(pts, (TDynPoints2D{{0, 0}, {1, 2}, {2, 4}}));
    EXPECT_EQ(params, (TFloatDynArray{0, 0.5, 1}));
    line.GetSamplePoints(1, pts, params);
    EXPECT_EQ(pts, (TDynPoints2D{{0, 0}}));
    line.GetSamplePoints(0, pts, params);
    EXPECT_TRUE(pts.empty() && params.empty());

    std::vector<std::unique_ptr<TGeCurve2D>> sides;
    const TDynPoints2D corners{{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}};
    for (std::size_t i = 0; i + 1 < corners.size(); ++i)
        sides.push_back(std::make_unique<TGeLine2D>(corners[i], corners[i + 1]));
    const TGeCompositeCurve2D square(std::move(sides));
    EXPECT_EQ(square.GetCurveCount(), 4);
    EXPECT_DOUBLE_EQ(square.GetLength(), 4.0);
    square.GetTolPoints(0.01, pts);
    EXPECT_EQ(pts, corners);
    square.GetSamplePoints(9, pts, params);
    EXPECT_EQ(pts[2], TPoint2D(1, 0));
    EXPECT_EQ(pts[3], TPoint2D(1, 0.5));
    EXPECT_EQ(params[8], 4.0);
    EXPECT_EQ(square.GetBoundRect(), (TRect2D{{0, 0}, {1, 1}}));
    EXPECT_THROW(square.GetCurve(4), EArgumentOutOfRangeException);
    EXPECT_EQ(square.GetPoint(NAN), TPoint2D(0, 0));
    EXPECT_EQ(square.GetPoint(1e300), TPoint2D(0, 0));
    EXPECT_EQ(line.GetPoint(NAN), TPoint2D(0, 0));

    const TGeCompositeCurve2D empty({});
    EXPECT_EQ(empty.GetCurveCount(), 0);
    EXPECT_THROW(empty.GetStartPoint(), EArgumentOutOfRangeException);
    empty.GetSamplePoints(5, pts, params);
    EXPECT_TRUE(pts.empty());
}

TEST(KernelCurves, SplineAccessorsAndHomogeneousPoints)
{
    const auto circle = Circle({0, 0}, 1);
    EXPECT_EQ(circle->Degree, 2);
    EXPECT_EQ(circle->GetCtrlPointCount(), 9);
    EXPECT_EQ(circle->GetKnotCount(), 12);
    EXPECT_EQ(circle->GetKnots(3), 0.25);
    EXPECT_TRUE(circle->GetRational());
    const TPoint3D w = circle->GetCtrlPointW(1);
    EXPECT_DOUBLE_EQ(w.Z, std::sqrt(0.5));
    EXPECT_DOUBLE_EQ(w.X, std::sqrt(0.5));
    EXPECT_EQ(circle->GetCtrlPoint(1), TPoint2D(1, 1));
    EXPECT_THROW(circle->GetCtrlPoint(9), EArgumentOutOfRangeException);
    EXPECT_FALSE(Wave().GetRational());
    EXPECT_EQ(Wave().GetWeight(2), 1.0);
    // Interior knots of full multiplicity: the curve keeps its corner.
    const TGeSpline2D corner(1, {0, 0, 0.5, 1, 1}, {{0, 0}, {1, 0}, {1, 1}});
    EXPECT_EQ(corner.GetPoint(0.25), TPoint2D(0.5, 0));
    EXPECT_EQ(corner.GetPoint(0.75), TPoint2D(1, 0.5));
    EXPECT_EQ(corner.GetPoint(7.0), TPoint2D(1, 1));  // clamped to the range
}

TEST(KernelCurves, ConstructorsSayWhatIsWrong)
{
    const TDynPoints2D four{{0, 0}, {1, 0}, {2, 0}, {3, 0}};
    EXPECT_EQ(MessageOf([&] { TGeSpline2D(0, {0, 1, 2, 3}, four); }),
              "TGeSpline2D: degree is 0; it must be at least 1");
    EXPECT_EQ(MessageOf([&] { TGeSpline2D(2, {0, 0, 0, 1, 1, 1}, four); }),
              "TGeSpline2D: 6 knots; 4 control points of degree 2 need 7");
    EXPECT_EQ(MessageOf([&] { TGeSpline2D(2, {0, 0, 0, 0.7, 0.5, 1, 1}, four); }),
              "TGeSpline2D: knots decrease at index 4");
    EXPECT_EQ(MessageOf([&] { TGeSpline2D(1, {0, 0, 0, 1, 1, 1}, four); }),
              "TGeSpline2D: the first knot has multiplicity 3; a clamped vector of degree 1 needs exactly 2");
    EXPECT_EQ(MessageOf([&] { TGeSpline2D(2, {0, 0, 0.5, 0.6, 1, 1, 1}, four); }),
              "TGeSpline2D: the first knot has multiplicity 2; a clamped vector of degree 2 needs exactly 3");
    EXPECT_EQ(MessageOf([&] { TGeSpline2D(1, {0, 0, 0.5, 1, 1, 1}, four); }),
              "TGeSpline2D: the last knot has multiplicity 3; a clamped vector of degree 1 needs exactly 2");
    EXPECT_EQ(MessageOf([&] { TGeSpline2D(1, {0, 0, 0.5, 0.5, 1, 1}, four); }),
              "TGeSpline2D: the interior knot 0.5 has multiplicity 2, more than the degree 1");
    EXPECT_EQ(MessageOf([&] { TGeSpline2D(1, {0, 0, NAN, 1, 1, 1}, four); }),
              "TGeSpline2D: knot 2 is not finite");
    EXPECT_EQ(MessageOf([&] { TGeSpline2D(3, {0, 0, 0, 0, 1, 1, 1, 1}, {{0, 0}, {1, INFINITY}, {2, 0}, {3, 0}}); }),
              "TGeSpline2D: control point 1 is not finite");
    EXPECT_EQ(MessageOf([&] { TGeSpline2D(3, {0, 0, 0, 0, 1, 1, 1, 1}, four, {1, 1, 0, 1}); }),
              "TGeSpline2D: the weight of control point 2 is 0; weights must be positive and finite");
    EXPECT_EQ(MessageOf([&] { TGeSpline2D(3, {0, 0, 0, 0, 1, 1, 1, 1}, four, {1, 1, 1}); }),
              "TGeSpline2D: 3 weights given; 4 or none expected");
    EXPECT_EQ(MessageOf([&] { TGeSpline2D(3, {0, 0, 0, 1, 1, 1}, {{0, 0}, {1, 0}}); }),
              "TGeSpline2D: 2 control points; degree 3 needs at least 4");
    EXPECT_EQ(MessageOf([] { TGeLine2D({0, NAN}, {1, 1}); }), "TGeLine2D: control point 0 is not finite");
    EXPECT_EQ(MessageOf([] {
                  std::vector<std::unique_ptr<TGeCurve2D>> curves;
                  curves.push_back(nullptr);
                  TGeCompositeCurve2D c(std::move(curves));
              }),
              "TGeCompositeCurve2D: sub-curve 0 is missing");
}

TEST(KernelCurves, SpaceSplineIsFilledByItsCreator)
{
    TGeSpline3D s(3, 2);
    EXPECT_EQ(s.GetCtrlPointCount(), 3);
    EXPECT_EQ(s.GetKnotCount(), 6);
    const double knots[] = {0, 0, 0, 2, 2, 2};
    for (int i = 0; i < 6; ++i) s.SetKnots(i, knots[i] + 1);
    s.SetCtrlPoint(1, {1, 2, 3});
    s.SetWeight(1, 0.5);
    EXPECT_EQ(s.GetCtrlPoint(1), TPoint3D(1, 2, 3));
    EXPECT_EQ(s.GetWeight(0), 1.0);
    EXPECT_EQ(s.GetInterval().Low, 1.0);
    EXPECT_EQ(s.GetInterval().GetLength(), 2.0);
    EXPECT_THROW(s.SetKnots(6, 0), EArgumentOutOfRangeException);
    EXPECT_EQ(MessageOf([&] { s.SetWeight(0, -1); }),
              "TGeSpline3D: the weight of control point 0 is -1; weights must be positive and finite");
    EXPECT_EQ(MessageOf([] { TGeSpline3D(1, 1); }), "TGeSpline3D: 1 control points; degree 1 needs at least 2");
}

}  // namespace
}  // namespace orvane
