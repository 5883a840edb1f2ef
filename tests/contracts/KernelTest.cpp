// The CAD kernel: tolerant comparisons, points, lines and matrices; curves, surfaces, the shape
// library and surface areas against closed forms; and what every constructor says is wrong.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <numbers>

#include "contracts/Cadgeometry.h"
#include "contracts/Shapes.h"
#include "contracts/SurfaceArea.h"
#include "tests/support/MessageCapture.h"

namespace orvane {
namespace {

constexpr double kPi = std::numbers::pi;

void ExpectNear(const TPoint3D& A, const TPoint3D& B, double Tol = 1e-12)
{
    EXPECT_TRUE(A.Equals(B, Tol)) << "(" << A.X << ", " << A.Y << ", " << A.Z << ") vs (" << B.X << ", " << B.Y
                                  << ", " << B.Z << ")";
}

std::string MessageOf(const std::function<void()>& Build) { return testing::Raised<EArgumentException>(Build); }

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

// A closed loop of lines through the corners, the first corner repeated at the end.
std::unique_ptr<TGeCompositeCurve2D> LineLoop(const TDynPoints2D& Corners)
{
    std::vector<std::unique_ptr<TGeCurve2D>> sides;
    for (std::size_t i = 0; i + 1 < Corners.size(); ++i)
        sides.push_back(std::make_unique<TGeLine2D>(Corners[i], Corners[i + 1]));
    return std::make_unique<TGeCompositeCurve2D>(std::move(sides));
}

std::unique_ptr<TGeNurbsSurface> NurbsShape(const std::string& Name)
{
    return std::unique_ptr<TGeNurbsSurface>(dynamic_cast<TGeNurbsSurface*>(MakeShape(Name).release()));
}

// Signed area of a closed polyline: positive when counter-clockwise.
double SignedArea(const TDynPoints2D& P)
{
    double twice = 0.0;
    for (std::size_t i = 0; i + 1 < P.size(); ++i) twice += P[i].X * P[i + 1].Y - P[i + 1].X * P[i].Y;
    return twice / 2;
}

// A surface of a kind the kernel does not build.
class TFlatFunction : public TGeSurface {
public:
    TPoint3D GetPoint(double U, double V) const override { return {U, V, 0}; }
};

TEST(KernelValues, TolerancesPointsRectanglesAndLines)
{
    // Equal within the tolerance; above and below only beyond it.
    EXPECT_TRUE(fEqual(1.0, 1.0 + 1e-7, 1e-6));
    EXPECT_FALSE(fEqual(1.0, 1.0 + 2e-6, 1e-6));
    EXPECT_TRUE(fGreat(1.0 + 2e-6, 1.0, 1e-6));
    EXPECT_FALSE(fGreat(1.0 + 1e-7, 1.0, 1e-6));
    EXPECT_TRUE(fSmall(1.0, 1.0 + 2e-6, 1e-6));
    EXPECT_FALSE(fSmall(1.0, 1.0 + 1e-7, 1e-6));
    EXPECT_FALSE(fSmall(2.0, 1.0, 1e-6));
    EXPECT_TRUE(TPoint2D(0, 0).Equals({0, 1e-6}, 1e-6));
    EXPECT_FALSE(TPoint2D(0, 0).Equals({0, 1.1e-6}, 1e-6));
    EXPECT_TRUE(DefTol.PointEquals(TPoint2D(1, 1), TPoint2D(1, 1 + 5e-7)));

    // The normal of a vector too short (or not finite) is zero.
    for (const TPoint3D& v : {TPoint3D(), TPoint3D(1e-13, 0, 0), TPoint3D(NAN, 0, 0)}) EXPECT_EQ(v.Normal(), TPoint3D::FZero);
    ExpectNear(TPoint3D(1e-9, 0, 0).Normal(), {1, 0, 0});
    ExpectNear(TPoint3D(3, 0, 4).Normal(), {0.6, 0, 0.8});
    ExpectNear(TPoint3D(1, 0, 0).CrossMul({0, 1, 0}), {0, 0, 1});

    const TRect2D r = TRect2D::CreateNormal({3, -1}, {1, 2});
    EXPECT_EQ(r, (TRect2D{{1, -1}, {3, 2}}));
    EXPECT_EQ(r.CenterPoint(), TPoint2D(2, 0.5));
    EXPECT_EQ(CalcAABB({{0, 5}, {-2, 1}, {4, 3}}), (TRect2D{{-2, 1}, {4, 5}}));
    EXPECT_EQ(MessageOf([] { CalcAABB({}); }), "CalcAABB: the point list is empty");

    double param = -1;
    const TLine3D line({0, 0, 0}, {2, 0, 0});
    EXPECT_TRUE(line.IsOn({1, 5e-7, 0}, DefTol, param));
    EXPECT_DOUBLE_EQ(param, 0.5);
    EXPECT_FALSE(line.IsOn({1, 1e-5, 0}, DefTol, param));
    EXPECT_FALSE(line.IsOn({3, 0, 0}, DefTol, param));  // on the line, past the end
    EXPECT_DOUBLE_EQ(param, 1.5);
    // A closed cross-section: both ends coincide, so nothing is on it, not even that point.
    const TLine3D closed({1, 1, 1}, {1, 1, 1 + 1e-7});
    EXPECT_FALSE(closed.IsOn({1, 1, 1}, DefTol, param));
    EXPECT_EQ(param, 0.0);
}

TEST(KernelMatrix, LayoutRotationMirrorsCompositionAndExactEquality)
{
    TMatrix3D m;
    m.SetColVector(0, {0, 1, 0});   // x -> y
    m.SetColVector(1, {-1, 0, 0});  // y -> -x
    m.SetColVector(2, {0, 0, 2});   // z -> 2z
    m.SetRowVector(3, {10, 20, 30});
    EXPECT_EQ(m.M[0][1], -1.0);  // row 0 holds the x components of the axis images
    ExpectNear(m.Transform({1, 2, 3}), {10 - 2, 20 + 1, 30 + 6});
    ExpectNear(m.TransformVector({1, 2, 3}), {-2, 1, 6});
    EXPECT_EQ(m.GetRowVector(0), TPoint3D(0, -1, 0));
    EXPECT_THROW(m.GetColVector(3), EArgumentOutOfRangeException);
    EXPECT_THROW(m.SetRowVector(4, {}), EArgumentOutOfRangeException);
    EXPECT_THROW(m.GetRowVector(-1), EArgumentOutOfRangeException);

    TMatrix3D turn;
    turn.RotateZ(kPi / 2);  // counter-clockwise, in radians
    ExpectNear(turn.Transform({1, 0, 0}), {0, 1, 0});
    ExpectNear(turn.Transform({0, 0, 5}), {0, 0, 5});
    TMatrix3D mirror, half;
    mirror.ReflexXOZ();
    half.ReflexY();
    ExpectNear(mirror.Transform({1, 2, 3}), {1, -2, 3});
    ExpectNear(half.Transform({1, 2, 3}), {-1, 2, -3});

    TMatrix3D shift;
    shift.SetRowVector(3, {1, 0, 0});
    TMatrix3D after = shift, before = shift;
    after.Multiply(turn, true);  // shift first, then turn
    before.Multiply(turn, false);  // turn first, then shift
    ExpectNear(after.Transform({0, 0, 0}), {0, 1, 0});
    ExpectNear(before.Transform({1, 0, 0}), {1, 1, 0});
    turn.RotateZ(kPi / 2);  // composes: two quarter turns
    ExpectNear(turn.Transform({1, 0, 0}), {-1, 0, 0});

    turn.Reset();
    EXPECT_TRUE(turn.IsIdent());
    EXPECT_TRUE(turn == TMatrix3D::CreateIdent());
    turn.M[3][2] = 1e-300;  // equality is exact: no tolerance hides this
    EXPECT_FALSE(turn.IsIdent());
    EXPECT_FALSE(turn == TMatrix3D::CreateIdent());
}

TEST(KernelCurves, CircleAndWaveHaveTheirTrueLengthPointsAndBoxes)
{
    const auto circle = Circle({1, -2}, 3);
    EXPECT_NEAR(circle->GetLength(), 2 * kPi * 3, 1e-9 * 2 * kPi * 3);
    TDynPoints2D pts;
    TFloatDynArray params;
    circle->GetSamplePoints(13, pts, params);
    ASSERT_EQ(pts.size(), 13u);
    for (const TPoint2D& p : pts) EXPECT_NEAR(p.DistanceTo({1, -2}), 3, 1e-12);
    EXPECT_EQ(params.front(), 0.0);
    EXPECT_DOUBLE_EQ(params[3], 0.25);
    EXPECT_EQ(params.back(), 1.0);
    const TRect2D box = circle->GetBoundRect();
    EXPECT_TRUE(box.Min.Equals({-2, -5}, 1e-10) && box.Max.Equals({4, 1}, 1e-10));

    // The box is the curve's own, not its control polygon's.
    const TRect2D wave = Wave().GetBoundRect();
    EXPECT_TRUE(wave.Min.Equals({0, -std::sqrt(3.0) / 3}, 1e-10) && wave.Max.Equals({3, std::sqrt(3.0) / 3}, 1e-10));
    const double h = std::sqrt(0.5);
    const TGeSpline2D half(2, {0, 0, 0, .5, .5, 1, 1, 1}, {{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}}, {1, h, 1, h, 1});
    EXPECT_NEAR(half.GetBoundRect().Min.Y, 0, 1e-12);
    EXPECT_NEAR(half.GetBoundRect().Max.Y, 1, 1e-10);

    // Interior knots of full multiplicity keep a corner; parameters beyond the range are clamped.
    const TGeSpline2D corner(1, {0, 0, 0.5, 1, 1}, {{0, 0}, {1, 0}, {1, 1}});
    EXPECT_EQ(corner.GetPoint(0.25), TPoint2D(0.5, 0));
    EXPECT_EQ(corner.GetPoint(0.75), TPoint2D(1, 0.5));
    EXPECT_EQ(corner.GetPoint(7.0), TPoint2D(1, 1));
    EXPECT_DOUBLE_EQ(circle->GetCtrlPointW(1).X, 4 * h);  // the homogeneous point: weighted
}

double DistanceToPolyline(const TPoint2D& P, const TDynPoints2D& Poly)
{
    double best = INFINITY;
    for (std::size_t i = 1; i < Poly.size(); ++i) best = std::min(best, ge::DistanceToSegment(P, Poly[i - 1], Poly[i]));
    return best;
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
    TDynPoints2D poly, dense;
    TFloatDynArray params;
    wave.GetTolPoints(1e-3, poly);
    wave.GetSamplePoints(20001, dense, params);
    for (const TPoint2D& p : dense) EXPECT_LE(DistanceToPolyline(p, poly), 1e-3);
    EXPECT_LT(poly.size(), 200u);  // flattened, not sampled densely
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
    line.GetSamplePoints(0, pts, params);
    EXPECT_TRUE(pts.empty() && params.empty());

    const TDynPoints2D corners{{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}};
    const auto square = LineLoop(corners);
    EXPECT_DOUBLE_EQ(square->GetLength(), 4.0);
    square->GetTolPoints(0.01, pts);
    EXPECT_EQ(pts, corners);
    square->GetSamplePoints(9, pts, params);
    EXPECT_EQ(pts[2], TPoint2D(1, 0));
    EXPECT_EQ(pts[3], TPoint2D(1, 0.5));
    EXPECT_EQ(params[8], 4.0);
    EXPECT_EQ(square->GetBoundRect(), (TRect2D{{0, 0}, {1, 1}}));
    // Parameters that are not finite or far out give the start point.
    for (double bad : {std::nan(""), 1e300}) EXPECT_EQ(square->GetPoint(bad), TPoint2D(0, 0));
    EXPECT_EQ(line.GetPoint(NAN), TPoint2D(0, 0));

    const TGeCompositeCurve2D empty({});
    EXPECT_THROW(empty.GetStartPoint(), EArgumentOutOfRangeException);
    empty.GetSamplePoints(5, pts, params);
    EXPECT_TRUE(pts.empty());
}

TEST(KernelShapes, LibraryShapesLieOnTheirClosedForms)
{
    EXPECT_EQ(MessageOf([] { MakeShape("teapot"); }), "Unknown shape: teapot");

    const auto sphere = MakeShape("sphere"), torus = MakeShape("torus"), cone = MakeShape("cone");
    const auto cylinder = MakeShape("cylinder"), transposed = MakeShape("cylinder-transposed");
    for (int i = 0; i <= 20; ++i)
        for (int j = 0; j <= 20; ++j) {
            const double u = i / 20.0, v = j / 20.0;
            EXPECT_NEAR(sphere->GetPoint(u, v).Length(), 2.0, 1e-12);
            const TPoint3D t = torus->GetPoint(u, v);
            EXPECT_NEAR(std::hypot(std::hypot(t.X, t.Y) - 3.0, t.Z), 1.0, 1e-12);
            for (const TPoint3D c : {cylinder->GetPoint(u, v), transposed->GetPoint(v, u)}) {
                EXPECT_NEAR(std::hypot(c.X, c.Y), 1.0, 1e-12);
                EXPECT_NEAR(c.Z, 2.0 * v, 1e-12);
            }
            const TPoint3D k = cone->GetPoint(u, v);
            EXPECT_NEAR(std::hypot(k.X, k.Y), 1.0 - v, 1e-12);
        }
    // The sphere's poles and the cone's apex are single points.
    EXPECT_TRUE(sphere->GetPoint(0.3, 0).Equals({0, 0, -2}, 1e-15));
    EXPECT_TRUE(sphere->GetPoint(0.8, 1).Equals({0, 0, 2}, 1e-15));
    EXPECT_TRUE(cone->GetPoint(0.6, 1).Equals({0, 0, 2}, 1e-15));
    // The partial cylinder spans 120 degrees, symmetric about +X.
    const auto arc = MakeShape("partial-cylinder");
    EXPECT_NEAR(std::atan2(arc->GetPoint(0, 0).Y, arc->GetPoint(0, 0).X), -kPi / 3, 1e-12);
    EXPECT_NEAR(std::atan2(arc->GetPoint(1, 0).Y, arc->GetPoint(1, 0).X), kPi / 3, 1e-12);
    EXPECT_TRUE(arc->GetPoint(0.5, 0).Equals({1, 0, 0}, 1e-12));

    // Ruled shapes are straight along their ruled direction only.
    for (const auto& [name, alongU] : {std::pair{"ruled-u", true}, std::pair{"ruled-v", false}}) {
        const auto s = MakeShape(name);
        for (double w : {0.2, 0.7}) {
            const auto at = [&](double t, bool along) { return along ? s->GetPoint(t, w) : s->GetPoint(w, t); };
            double param = 0;
            EXPECT_TRUE(TLine3D(at(0, alongU), at(1, alongU)).IsOn(at(0.37, alongU), DefTol, param)) << name;
            EXPECT_FALSE(TLine3D(at(0, !alongU), at(1, !alongU)).IsOn(at(0.37, !alongU), DefTol, param)) << name;
        }
    }
}

TEST(KernelShapes, TrimLoopsRunOuterCounterClockwiseAndHolesClockwise)
{
    for (const char* name : {"trimmed-circular-holes", "trimmed-polygon-holes"}) {
        const auto shape = MakeShape(name);
        const auto* t = dynamic_cast<const TGeTrimmedSurface*>(shape.get());
        ASSERT_NE(t, nullptr);
        EXPECT_EQ(t->GetPoint(0.3, 0.6), t->GetSurface()->GetPoint(0.3, 0.6));
        TDynPoints2D pts;
        t->OuterBoundary.GetCurve()->GetTolPoints(1e-4, pts);
        EXPECT_NEAR(SignedArea(pts), 0.81, 1e-12) << name;
        ASSERT_GE(t->GetInnerBoundaryCount(), 2);
        for (int i = 0; i < t->GetInnerBoundaryCount(); ++i) {
            const TGeCurve2D* hole = t->GetInnerBoundary(i).GetCurve();
            hole->GetTolPoints(1e-4, pts);
            EXPECT_LT(SignedArea(pts), 0) << name << " hole " << i;
            EXPECT_TRUE(hole->GetStartPoint().Equals(hole->GetEndPoint(), 1e-12));
        }
        EXPECT_THROW(t->GetInnerBoundary(t->GetInnerBoundaryCount()), EArgumentOutOfRangeException);
    }
}

TEST(KernelNurbsSurface, DerivativesMatchFiniteDifferencesAndTheBoundaryIsKept)
{
    const auto t = NurbsShape("torus");
    for (const auto& [u, v] : {std::pair{0.1, 0.2}, std::pair{0.55, 0.77}, std::pair{0.9, 0.01}}) {
        TPoint3D p, su, sv;
        t->GetDerivatives(u, v, p, su, sv);
        EXPECT_EQ(p, t->GetPoint(u, v));
        const double h = 1e-6;
        EXPECT_TRUE(su.Equals((t->GetPoint(u + h, v) - t->GetPoint(u - h, v)) / (2 * h), 1e-7));
        EXPECT_TRUE(sv.Equals((t->GetPoint(u, v + h) - t->GetPoint(u, v - h)) / (2 * h), 1e-7));
    }
    // Corners are the corner control points; outside the range the boundary is kept.
    EXPECT_TRUE(t->GetPoint(1, 1).Equals(t->GetCtrlPoint(8, 8), 1e-15));
    EXPECT_EQ(t->GetPoint(1.5, -3), t->GetPoint(1, 0));
    EXPECT_THROW(t->GetKnotsU(12), EArgumentOutOfRangeException);
    EXPECT_THROW(t->GetCtrlPoint(9, 0), EArgumentOutOfRangeException);
    EXPECT_THROW(t->GetWeight(0, -1), EArgumentOutOfRangeException);
    const TGeNurbsSurfaceExt ext(NurbsShape("plane"));
    EXPECT_EQ(ext.GetPoint(0.5, 0.25), TPoint3D(1.5, 0.5, 0));
}

TEST(KernelSurfaceArea, MatchesClosedFormsWithinOneInABillion)
{
    for (const std::string& name : ShapeNames()) {
        const double exact = ShapeExactArea(name);
        if (std::isnan(exact)) continue;
        EXPECT_NEAR(SurfaceArea(*MakeShape(name)), exact, 1e-9 * exact) << name;
    }
    // Torus 4 pi^2 R r with R = 3, r = 1, whatever the library's table says.
    EXPECT_NEAR(SurfaceArea(*MakeShape("torus")), 12 * kPi * kPi, 1e-9 * 12 * kPi * kPi);
    // The twisted patch (u, v, uv): density sqrt(1 + u^2 + v^2), checked by a fine midpoint sum.
    double sum = 0.0;
    constexpr int n = 1000;
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) sum += std::hypot(1.0, (i + 0.5) / n, (j + 0.5) / n);
    EXPECT_NEAR(SurfaceArea(*MakeShape("bilinear")), sum / (n * n), 1e-6);

    // On a sphere of radius 2 the part between azimuths a0, a1 and heights z0, z1 has the area
    // 2 (a1 - a0) (z1 - z0) (Archimedes), whatever the rational parametrisation does; the
    // loops cross knot lines in U and V.
    const auto sphere = MakeShape("sphere");
    const auto zone = [&](double u0, double u1, double v0, double v1) {
        const auto azimuth = [&](double u) {
            const TPoint3D p = sphere->GetPoint(u, 0.5);
            const double a = std::atan2(p.Y, p.X);
            return a < 0 ? a + 2 * kPi : a;
        };
        return 2.0 * (azimuth(u1) - azimuth(u0)) * (sphere->GetPoint(0, v1).Z - sphere->GetPoint(0, v0).Z);
    };
    std::vector<std::unique_ptr<TGeCurve2D>> holes;
    holes.push_back(std::make_unique<TGeSpline2D>(1, TArrayDouble{0, 0, 1, 2, 3, 4, 4},
                                                  TDynPoints2D{{0.3, 0.4}, {0.3, 0.6}, {0.55, 0.6}, {0.55, 0.4}, {0.3, 0.4}}));
    const TGeTrimmedSurface trimmed(NurbsShape("sphere"), LineLoop({{0.1, 0.2}, {0.9, 0.2}, {0.9, 0.8}, {0.1, 0.8}, {0.1, 0.2}}),
                                    std::move(holes));
    const double exact = zone(0.1, 0.9, 0.2, 0.8) - zone(0.3, 0.55, 0.4, 0.6);
    EXPECT_NEAR(SurfaceArea(trimmed), exact, 1e-9 * exact);
    // A trimmed wrapped plane: the whole square.
    const TGeTrimmedSurface whole(std::make_unique<TGeNurbsSurfaceExt>(NurbsShape("plane")),
                                  LineLoop({{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}}));
    EXPECT_NEAR(SurfaceArea(whole), 6.0, 1e-12);
}

TEST(KernelMessages, EveryRefusalSaysWhatIsWrong)
{
    const TDynPoints2D four{{0, 0}, {1, 0}, {2, 0}, {3, 0}};
    const TArrayDouble lin{0, 0, 1, 1}, cubic{0, 0, 0, 0, 1, 1, 1, 1};
    const TDynPoints3D net{{0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {1, 1, 0}};
    TGeSpline3D space(3, 2);
    const TFlatFunction flat;
    const TGeTrimmedSurface foreign(std::make_unique<TFlatFunction>(),
                                    std::make_unique<TGeLine2D>(TPoint2D{0, 0}, TPoint2D{1, 0}));
    const std::pair<std::function<void()>, const char*> cases[] = {
        {[&] { TGeSpline2D(0, {0, 1, 2, 3}, four); }, "TGeSpline2D: degree is 0; it must be at least 1"},
        {[&] { TGeSpline2D(2, {0, 0, 0, 1, 1, 1}, four); }, "TGeSpline2D: 6 knots; 4 control points of degree 2 need 7"},
        {[&] { TGeSpline2D(2, {0, 0, 0, 0.7, 0.5, 1, 1}, four); }, "TGeSpline2D: knots decrease at index 4"},
        {[&] { TGeSpline2D(1, {0, 0, 0, 1, 1, 1}, four); },
         "TGeSpline2D: the first knot has multiplicity 3; a clamped vector of degree 1 needs exactly 2"},
        {[&] { TGeSpline2D(2, {0, 0, 0.5, 0.6, 1, 1, 1}, four); },
         "TGeSpline2D: the first knot has multiplicity 2; a clamped vector of degree 2 needs exactly 3"},
        {[&] { TGeSpline2D(1, {0, 0, 0.5, 1, 1, 1}, four); },
         "TGeSpline2D: the last knot has multiplicity 3; a clamped vector of degree 1 needs exactly 2"},
        {[&] { TGeSpline2D(1, {0, 0, 0.5, 0.5, 1, 1}, four); },
         "TGeSpline2D: the interior knot 0.5 has multiplicity 2, more than the degree 1"},
        {[&] { TGeSpline2D(1, {0, 0, NAN, 1, 1, 1}, four); }, "TGeSpline2D: knot 2 is not finite"},
        {[&] { TGeSpline2D(3, cubic, {{0, 0}, {1, INFINITY}, {2, 0}, {3, 0}}); }, "TGeSpline2D: control point 1 is not finite"},
        {[&] { TGeSpline2D(3, cubic, four, {1, 1, 0, 1}); },
         "TGeSpline2D: the weight of control point 2 is 0; weights must be positive and finite"},
        {[&] { TGeSpline2D(3, cubic, four, {1, 1, 1}); }, "TGeSpline2D: 3 weights given; 4 or none expected"},
        {[&] { TGeSpline2D(3, {0, 0, 0, 1, 1, 1}, {{0, 0}, {1, 0}}); },
         "TGeSpline2D: 2 control points; degree 3 needs at least 4"},
        {[&] { TDynPoints2D out; Wave().GetTolPoints(0, out); }, "TGeSpline2D: the tolerance is 0; it must be positive"},
        {[] { TGeLine2D({0, NAN}, {1, 1}); }, "TGeLine2D: control point 0 is not finite"},
        {[] {
             std::vector<std::unique_ptr<TGeCurve2D>> curves;
             curves.push_back(nullptr);
             TGeCompositeCurve2D c(std::move(curves));
         },
         "TGeCompositeCurve2D: sub-curve 0 is missing"},
        {[&] { space.SetWeight(0, -1); },
         "TGeSpline3D: the weight of control point 0 is -1; weights must be positive and finite"},
        {[] { TGeSpline3D(1, 1); }, "TGeSpline3D: 1 control points; degree 1 needs at least 2"},
        {[&] { TGeNurbsSurface(2, 2, 1, 1, {0, 0, 1, 1, 1}, lin, net); },
         "TGeNurbsSurface: 5 knots in U; 2 control points of degree 1 need 4"},
        {[&] { TGeNurbsSurface(2, 2, 1, 1, lin, {0, 1, 1, 1}, net); },
         "TGeNurbsSurface: the first knot in V has multiplicity 1; a clamped vector of degree 1 needs exactly 2"},
        {[&] { TGeNurbsSurface(2, 2, 1, 0, lin, {0, 1, 1}, net); }, "TGeNurbsSurface: degree in V is 0; it must be at least 1"},
        {[&] { TGeNurbsSurface(2, 2, 1, 1, lin, lin, {{0, 0, 0}}); }, "TGeNurbsSurface: 1 control points given; 2 x 2 needs 4"},
        {[&] { TGeNurbsSurface(2, 2, 1, 1, lin, lin, net, {1, 1, 1}); }, "TGeNurbsSurface: 3 weights given; 4 or none expected"},
        {[&] { TGeNurbsSurface(2, 2, 1, 1, lin, lin, net, {1, 1, INFINITY, 1}); },
         "TGeNurbsSurface: the weight of control point (1, 0) is inf; weights must be positive and finite"},
        {[&] { TGeNurbsSurface(2, 2, 1, 1, lin, lin, {{0, 0, 0}, {0, 1, NAN}, {1, 0, 0}, {1, 1, 0}}); },
         "TGeNurbsSurface: control point (0, 1) is not finite"},
        {[] { TGeNurbsSurfaceExt(nullptr); }, "TGeNurbsSurfaceExt: the wrapped surface is missing"},
        {[] { TGeTrimmedSurface(std::make_unique<TFlatFunction>(), nullptr); },
         "TGeTrimmedSurface: the outer boundary is missing"},
        {[] { TGeTrimmedSurface(nullptr, std::make_unique<TGeLine2D>(TPoint2D{}, TPoint2D{})); },
         "TGeTrimmedSurface: the base surface is missing"},
        {[&] { SurfaceArea(flat); }, "SurfaceArea: the surface is no NURBS surface"},
        {[&] { SurfaceArea(foreign); }, "SurfaceArea: the base surface is no NURBS surface"},
    };
    for (const auto& [build, message] : cases) EXPECT_EQ(MessageOf(build), message);
    EXPECT_EQ(foreign.GetPoint(0.25, 0.5), TPoint3D(0.25, 0.5, 0));
}

}  // namespace
}  // namespace orvane
