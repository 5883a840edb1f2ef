#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <numbers>
#include <set>

#include "contracts/Cadgeometry.h"
#include "contracts/Shapes.h"
#include "contracts/SurfaceArea.h"

namespace orvane {
namespace {

constexpr double kPi = std::numbers::pi;

std::string MessageOf(const std::function<void()>& Build)
{
    try { Build(); } catch (const EArgumentException& e) { return e.what(); }
    return "no exception";
}

const TGeNurbsSurface& Nurbs(const std::unique_ptr<TGeSurface>& S)
{
    const auto* n = dynamic_cast<const TGeNurbsSurface*>(S.get());
    if (!n) throw std::runtime_error("not a NURBS surface");
    return *n;
}

// A surface of a kind the kernel does not build.
class TFlatFunction : public TGeSurface {
public:
    TPoint3D GetPoint(double U, double V) const override { return {U, V, 0}; }
};

// Signed area of a closed polyline: positive when counter-clockwise.
double SignedArea(const TDynPoints2D& P)
{
    double twice = 0.0;
    for (std::size_t i = 0; i + 1 < P.size(); ++i) twice += P[i].X * P[i + 1].Y - P[i + 1].X * P[i].Y;
    return twice / 2;
}

TEST(KernelShapes, LibraryBuildsEveryNamedShapeOnce)
{
    const std::vector<std::string> names = ShapeNames();
    const std::set<std::string> unique(names.begin(), names.end());
    EXPECT_EQ(unique.size(), names.size());
    for (const char* required : {"plane", "bilinear", "cylinder", "cylinder-transposed", "partial-cylinder", "cone",
                                 "sphere", "torus", "freeform", "ruled-u", "ruled-v", "trimmed-circular-holes",
                                 "trimmed-polygon-holes"})
        EXPECT_TRUE(unique.count(required)) << required;
    for (const std::string& name : names) {
        const auto shape = MakeShape(name);
        ASSERT_NE(shape, nullptr) << name;
        EXPECT_FALSE(ShapeDescription(name).empty());
    }
    EXPECT_EQ(MessageOf([] { MakeShape("teapot"); }), "Unknown shape: teapot");
}

TEST(KernelShapes, RoundShapesLieOnTheirClosedForms)
{
    const auto sphere = MakeShape("sphere");
    const auto torus = MakeShape("torus");
    const auto cylinder = MakeShape("cylinder");
    const auto transposed = MakeShape("cylinder-transposed");
    const auto cone = MakeShape("cone");
    for (int i = 0; i <= 20; ++i)
        for (int j = 0; j <= 20; ++j) {
            const double u = i / 20.0, v = j / 20.0;
            EXPECT_NEAR(sphere->GetPoint(u, v).Length(), 2.0, 1e-12);
            const TPoint3D t = torus->GetPoint(u, v);
            EXPECT_NEAR(std::hypot(std::hypot(t.X, t.Y) - 3.0, t.Z), 1.0, 1e-12);
            const TPoint3D c = cylinder->GetPoint(u, v);
            EXPECT_NEAR(std::hypot(c.X, c.Y), 1.0, 1e-12);
            EXPECT_NEAR(c.Z, 2.0 * v, 1e-12);
            const TPoint3D ct = transposed->GetPoint(v, u);
            EXPECT_NEAR(std::hypot(ct.X, ct.Y), 1.0, 1e-12);
            EXPECT_NEAR(ct.Z, 2.0 * v, 1e-12);
            const TPoint3D k = cone->GetPoint(u, v);
            EXPECT_NEAR(std::hypot(k.X, k.Y), 1.0 - v, 1e-12);
        }
    // The sphere's poles and the cone's apex are single points.
    EXPECT_TRUE(sphere->GetPoint(0.3, 0).Equals({0, 0, -2}, 1e-15));
    EXPECT_TRUE(sphere->GetPoint(0.8, 1).Equals({0, 0, 2}, 1e-15));
    EXPECT_TRUE(cone->GetPoint(0.6, 1).Equals({0, 0, 2}, 1e-15));
    // The partial cylinder spans 120 degrees, symmetric about +X.
    const auto arc = MakeShape("partial-cylinder");
    const TPoint3D a = arc->GetPoint(0, 0), m = arc->GetPoint(0.5, 0), b = arc->GetPoint(1, 0);
    EXPECT_NEAR(std::atan2(a.Y, a.X), -kPi / 3, 1e-12);
    EXPECT_NEAR(std::atan2(b.Y, b.X), kPi / 3, 1e-12);
    EXPECT_TRUE(m.Equals({1, 0, 0}, 1e-12));
}

TEST(KernelShapes, StructureMatchesTheNames)
{
    const auto cylinder = MakeShape("cylinder");
    const TGeNurbsSurface& c = Nurbs(cylinder);
    EXPECT_EQ(c.CtrlCountU, 9);
    EXPECT_EQ(c.CtrlCountV, 2);
    EXPECT_EQ(c.DegreeU, 2);
    EXPECT_EQ(c.DegreeV, 1);
    EXPECT_EQ(c.KnotsU, (TArrayDouble{0, 0, 0, .25, .25, .5, .5, .75, .75, 1, 1, 1}));
    EXPECT_TRUE(c.GetRational());
    EXPECT_DOUBLE_EQ(c.GetWeight(1, 0), std::sqrt(0.5));
    const auto transposed = MakeShape("cylinder-transposed");
    EXPECT_EQ(Nurbs(transposed).DegreeU, 1);
    EXPECT_EQ(Nurbs(transposed).CtrlCountV, 9);
    // Ruled shapes: the iso-curve along the straight direction is a line.
    for (const auto& [name, alongU] : {std::pair{"ruled-u", true}, std::pair{"ruled-v", false}}) {
        const auto s = MakeShape(name);
        for (double w : {0.2, 0.7}) {
            const auto at = [&](double t) { return alongU ? s->GetPoint(t, w) : s->GetPoint(w, t); };
            double param = 0;
            EXPECT_TRUE(TLine3D(at(0), at(1)).IsOn(at(0.37), DefTol, param)) << name;
            const auto across = [&](double t) { return alongU ? s->GetPoint(w, t) : s->GetPoint(t, w); };
            EXPECT_FALSE(TLine3D(across(0), across(1)).IsOn(across(0.37), DefTol, param)) << name;
        }
    }
    const auto freeform = MakeShape("freeform");
    EXPECT_EQ(Nurbs(freeform).DegreeU, 3);
    EXPECT_EQ(Nurbs(freeform).DegreeV, 3);
    EXPECT_FALSE(Nurbs(freeform).GetRational());
}

TEST(KernelShapes, TrimLoopsRunOuterCounterClockwiseAndHolesClockwise)
{
    for (const char* name : {"trimmed-circular-holes", "trimmed-polygon-holes"}) {
        const auto shape = MakeShape(name);
        const auto* t = dynamic_cast<const TGeTrimmedSurface*>(shape.get());
        ASSERT_NE(t, nullptr);
        EXPECT_NE(dynamic_cast<const TGeNurbsSurface*>(t->GetSurface()), nullptr);
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

TEST(KernelSurfaceArea, MatchesClosedFormsWithinOneInABillion)
{
    // Torus: 4 pi^2 R r with R = 3, r = 1.
    EXPECT_NEAR(SurfaceArea(*MakeShape("torus")), 4 * kPi * kPi * 3 * 1, 1e-9 * 12 * kPi * kPi);
    for (const std::string& name : ShapeNames()) {
        const double exact = ShapeExactArea(name);
        if (std::isnan(exact)) continue;
        EXPECT_NEAR(SurfaceArea(*MakeShape(name)), exact, 1e-9 * exact) << name;
    }
    // The twisted patch (u, v, uv): density sqrt(1 + u^2 + v^2), checked by a fine midpoint sum.
    double sum = 0.0;
    constexpr int n = 1000;
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) {
            const double u = (i + 0.5) / n, v = (j + 0.5) / n;
            sum += std::sqrt(1 + u * u + v * v);
        }
    EXPECT_NEAR(SurfaceArea(*MakeShape("bilinear")), sum / (n * n), 1e-6);
}

// A closed loop of lines through the corners, the first corner repeated at the end.
std::unique_ptr<TGeCurve2D> LineLoop(const TDynPoints2D& Corners)
{
    std::vector<std::unique_ptr<TGeCurve2D>> sides;
    for (std::size_t i = 0; i + 1 < Corners.size(); ++i)
        sides.push_back(std::make_unique<TGeLine2D>(Corners[i], Corners[i + 1]));
    return std::make_unique<TGeCompositeCurve2D>(std::move(sides));
}

TEST(KernelSurfaceArea, TrimmedRegionOfACurvedRationalBase)
{
    // On a sphere of radius R the part between azimuths a0, a1 and heights z0, z1 has the
    // area R (a1 - a0) (z1 - z0) (Archimedes). UV rectangles give such parts whatever the
    // rational parametrisation does; the loops cross knot lines in U and V.
    const auto sphere = MakeShape("sphere");
    const auto zone = [&](double u0, double u1, double v0, double v1) {
        const auto azimuth = [&](double u) {
            const TPoint3D p = sphere->GetPoint(u, 0.5);
            const double a = std::atan2(p.Y, p.X);
            return a < 0 ? a + 2 * kPi : a;
        };
        return 2.0 * (azimuth(u1) - azimuth(u0)) * (sphere->GetPoint(0, v1).Z - sphere->GetPoint(0, v0).Z);
    };
    auto base = std::unique_ptr<TGeNurbsSurface>(dynamic_cast<TGeNurbsSurface*>(MakeShape("sphere").release()));
    std::vector<std::unique_ptr<TGeCurve2D>> holes;
    holes.push_back(std::make_unique<TGeSpline2D>(1, TArrayDouble{0, 0, 1, 2, 3, 4, 4},
                                                  TDynPoints2D{{0.3, 0.4}, {0.3, 0.6}, {0.55, 0.6}, {0.55, 0.4}, {0.3, 0.4}}));
    const TGeTrimmedSurface trimmed(std::move(base), LineLoop({{0.1, 0.2}, {0.9, 0.2}, {0.9, 0.8}, {0.1, 0.8}, {0.1, 0.2}}),
                                    std::move(holes));
    const double exact = zone(0.1, 0.9, 0.2, 0.8) - zone(0.3, 0.55, 0.4, 0.6);
    EXPECT_NEAR(SurfaceArea(trimmed), exact, 1e-9 * exact);
}

TEST(KernelSurfaceArea, RefusesWhatItCannotIntegrate)
{
    EXPECT_EQ(MessageOf([] { SurfaceArea(TFlatFunction()); }), "SurfaceArea: the surface is no NURBS surface");
    const TGeTrimmedSurface foreign(std::make_unique<TFlatFunction>(), std::make_unique<TGeLine2D>(TPoint2D{0, 0}, TPoint2D{1, 0}));
    EXPECT_EQ(foreign.GetPoint(0.25, 0.5), TPoint3D(0.25, 0.5, 0));
    EXPECT_EQ(MessageOf([&] { SurfaceArea(foreign); }), "SurfaceArea: the base surface is no NURBS surface");
    // The same square region, once as a trimmed plane and once as the wrapped plane.
    const TDynPoints2D square{{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}};
    std::vector<std::unique_ptr<TGeCurve2D>> sides;
    for (int i = 0; i < 4; ++i) sides.push_back(std::make_unique<TGeLine2D>(square[i], square[i + 1]));
    auto plane = std::unique_ptr<TGeNurbsSurface>(dynamic_cast<TGeNurbsSurface*>(MakeShape("plane").release()));
    const TGeTrimmedSurface whole(std::make_unique<TGeNurbsSurfaceExt>(std::move(plane)),
                                  std::make_unique<TGeCompositeCurve2D>(std::move(sides)));
    EXPECT_NEAR(SurfaceArea(whole), 6.0, 1e-12);
}

TEST(KernelNurbsSurface, EvaluationDerivativesAndClamping)
{
    const auto torus = MakeShape("torus");
    const TGeNurbsSurface& t = Nurbs(torus);
    for (const auto& [u, v] : {std::pair{0.1, 0.2}, std::pair{0.55, 0.77}, std::pair{0.9, 0.01}}) {
        TPoint3D p, su, sv;
        t.GetDerivatives(u, v, p, su, sv);
        EXPECT_EQ(p, t.GetPoint(u, v));
        const double h = 1e-6;
        EXPECT_TRUE(su.Equals((t.GetPoint(u + h, v) - t.GetPoint(u - h, v)) / (2 * h), 1e-7));
        EXPECT_TRUE(sv.Equals((t.GetPoint(u, v + h) - t.GetPoint(u, v - h)) / (2 * h), 1e-7));
    }
    // Corners are the corner control points; outside the range the boundary is kept.
    EXPECT_TRUE(t.GetPoint(1, 1).Equals(t.GetCtrlPoint(8, 8), 1e-15));
    EXPECT_EQ(t.GetPoint(1.5, -3), t.GetPoint(1, 0));
    EXPECT_EQ(t.GetKnotCountU(), 12);
    EXPECT_EQ(t.GetKnotsV(11), 1.0);
    EXPECT_THROW(t.GetKnotsU(12), EArgumentOutOfRangeException);
    EXPECT_THROW(t.GetCtrlPoint(9, 0), EArgumentOutOfRangeException);
    EXPECT_THROW(t.GetWeight(0, -1), EArgumentOutOfRangeException);
    const auto plane = MakeShape("plane");
    EXPECT_FALSE(Nurbs(plane).GetRational());
    EXPECT_EQ(Nurbs(plane).GetWeight(1, 1), 1.0);
    EXPECT_EQ(Nurbs(plane).GetDomain(), (TRect2D{{0, 0}, {1, 1}}));
    const TGeNurbsSurfaceExt ext(std::make_unique<TGeNurbsSurface>(Nurbs(plane)));
    EXPECT_EQ(ext.GetPoint(0.5, 0.25), TPoint3D(1.5, 0.5, 0));
}

TEST(KernelNurbsSurface, ConstructorsSayWhatIsWrong)
{
    const TArrayDouble lin{0, 0, 1, 1};
    const TDynPoints3D four{{0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {1, 1, 0}};
    EXPECT_EQ(MessageOf([&] { TGeNurbsSurface(2, 2, 1, 1, {0, 0, 1, 1, 1}, lin, four); }),
              "TGeNurbsSurface: 5 knots in U; 2 control points of degree 1 need 4");
    EXPECT_EQ(MessageOf([&] { TGeNurbsSurface(2, 2, 1, 1, lin, {0, 1, 1, 1}, four); }),
              "TGeNurbsSurface: the first knot in V has multiplicity 1; a clamped vector of degree 1 needs exactly 2");
    EXPECT_EQ(MessageOf([&] { TGeNurbsSurface(2, 2, 1, 0, lin, {0, 1, 1}, four); }),
              "TGeNurbsSurface: degree in V is 0; it must be at least 1");
    EXPECT_EQ(MessageOf([&] { TGeNurbsSurface(2, 2, 1, 1, lin, lin, {{0, 0, 0}}); }),
              "TGeNurbsSurface: 1 control points given; 2 x 2 needs 4");
    EXPECT_EQ(MessageOf([&] { TGeNurbsSurface(2, 2, 1, 1, lin, lin, four, {1, 1, 1}); }),
              "TGeNurbsSurface: 3 weights given; 4 or none expected");
    EXPECT_EQ(MessageOf([&] { TGeNurbsSurface(2, 2, 1, 1, lin, lin, four, {1, 1, INFINITY, 1}); }),
              "TGeNurbsSurface: the weight of control point (1, 0) is inf; weights must be positive and finite");
    EXPECT_EQ(MessageOf([&] { TGeNurbsSurface(2, 2, 1, 1, lin, lin, {{0, 0, 0}, {0, 1, NAN}, {1, 0, 0}, {1, 1, 0}}); }),
              "TGeNurbsSurface: control point (0, 1) is not finite");
    EXPECT_EQ(MessageOf([] { TGeNurbsSurfaceExt(nullptr); }), "TGeNurbsSurfaceExt: the wrapped surface is missing");
    EXPECT_EQ(MessageOf([] { TGeTrimmedSurface(std::make_unique<TFlatFunction>(), nullptr); }),
              "TGeTrimmedSurface: the outer boundary is missing");
    EXPECT_EQ(MessageOf([] { TGeTrimmedSurface(nullptr, std::make_unique<TGeLine2D>(TPoint2D{}, TPoint2D{})); }),
              "TGeTrimmedSurface: the base surface is missing");
}

}  // namespace
}  // namespace orvane
