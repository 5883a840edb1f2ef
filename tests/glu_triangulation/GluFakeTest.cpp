// The GLU road through a fake GLU renderer: the GLU calls and properties of plain and trimmed
// surfaces, what gives nothing, which instance the callbacks reach, the sampling tolerance a
// trimmed surface gets, and how trim loops are dropped and trim curves typed, sampled and thinned.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "glu_triangulation/uTriangulate.h"
#include "tests/glu_triangulation/GluTestSupport.h"
#include "tests/support/MessageCapture.h"

namespace orvane {
namespace {

using namespace orvane::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
namespace gl = dglOpenGL;

const std::vector<TPoint2D> kUnitSquare{{0, 0}, {1, 0}, {1, 1}, {0, 1}};

std::unique_ptr<TGeTrimmedSurface> Trimmed(std::unique_ptr<TGeSurface> Base, std::unique_ptr<TGeCurve2D> Outer,
                                           std::vector<std::unique_ptr<TGeCurve2D>> Inner = {})
{
    return std::make_unique<TGeTrimmedSurface>(std::move(Base), std::move(Outer), std::move(Inner));
}

// How a rational surface reaches gluNurbsSurface is checked against Mesa; here only the
// rounding: each coordinate times the weight rounded to single, the product in double.
TEST(GluFake, WeightedControlPointsAreRoundedAfterTheProduct)
{
    TFakeGlu glu;
    TGLSurfaceTriangulator tri;
    TDynPoints3D points;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 2; ++j) points.push_back({0.1 + i, 1.0 * j, 0.3});
    Mesh(tri, TGeNurbsSurface(3, 2, 2, 1, ClampedKnots(3, 2), ClampedKnots(2, 1), points, {1, 1, 1, 0.1, 1, 1}));
    ASSERT_EQ(glu.Surfaces.size(), 1u);
    const float w = 0.1f;
    EXPECT_THAT(std::vector<float>(glu.Surfaces[0].begin() + 12, glu.Surfaces[0].begin() + 16),
                ElementsAre(static_cast<float>(1.1 * w), static_cast<float>(1.0 * w), static_cast<float>(0.3 * w), w));
}

TEST(GluFake, CallsOfPlainAndTrimmedSurfaces)
{
    const std::string start = "NewNurbsRenderer NurbsProperty NurbsProperty NurbsCallback NurbsCallback NurbsCallback "
                              "NurbsCallback BeginSurface ";
    {
        // Untrimmed: tolerance 60 and the default sampling method.
        TFakeGlu glu;
        TGLSurfaceTriangulator tri;
        Mesh(tri, *MakeGridSurface(2, 2, 3, 3, 1, 1), true);
        EXPECT_EQ(glu.Sequence(), start + "NurbsSurface EndSurface DeleteNurbsRenderer");
        EXPECT_THAT(glu.PropertyValues(gl::GLU_SAMPLING_TOLERANCE), ElementsAre(60));
        EXPECT_THAT(glu.PropertyValues(gl::GLU_NURBS_MODE), ElementsAre(gl::GLU_NURBS_TESSELLATOR));
        EXPECT_THAT(glu.PropertyValues(gl::GLU_SAMPLING_METHOD), IsEmpty());
    }
    // Trimmed: path length sampling at tolerance 5 inside the surface, then the outer loop and
    // the hole, each curve in the direction the kernel gives.
    TFakeGlu glu;
    TGLSurfaceTriangulator tri;
    std::vector<std::unique_ptr<TGeCurve2D>> holes;
    holes.push_back(MakeLineLoop({{0.4, 0.4}, {0.4, 0.6}, {0.6, 0.6}, {0.6, 0.4}}));
    EXPECT_THAT(Mesh(tri, *Trimmed(MakeGridSurface(2, 2, 3, 3, 10, 10), MakeLineLoop(kUnitSquare), std::move(holes))),
                ElementsAre(0, 0, 0, 1, 0, 0, 0, 1, 0));
    const std::string loop = "BeginTrim PwlCurve PwlCurve PwlCurve PwlCurve EndTrim ";
    EXPECT_EQ(glu.Sequence(),
              start + "NurbsProperty NurbsProperty NurbsSurface " + loop + loop + "EndSurface DeleteNurbsRenderer");
    EXPECT_THAT(glu.PropertyValues(gl::GLU_SAMPLING_TOLERANCE), ElementsAre(60, 5));
    EXPECT_THAT(glu.PropertyValues(gl::GLU_SAMPLING_METHOD), ElementsAre(gl::GLU_PATH_LENGTH));
    ASSERT_EQ(glu.TrimCurves.size(), 8u);
    EXPECT_THAT(glu.TrimCurves[0].Points, ElementsAre(0, 0, 1, 1, 0, 1));
    EXPECT_THAT(glu.TrimCurves[4].Points, ElementsAre(0.4f, 0.4f, 1, 0.4f, 0.6f, 1));
    EXPECT_EQ(glu.TrimCurves[0].Stride, 3);
    EXPECT_EQ(glu.TrimCurves[0].Type, gl::GLU_MAP1_TRIM_2);
}

class OtherSurface : public TGeSurface {
public:
    TPoint3D GetPoint(double, double) const override { return {}; }
};

TEST(GluFake, WhatGoesOutAsItsBaseWhatGivesNothingAndWhichInstanceRecords)
{
    TFakeGlu glu;
    const std::vector<double> triangle{0, 0, 0, 1, 0, 0, 0, 1, 0};
    {
        TGLSurfaceTriangulator tri;
        // A trimmed surface over a wrapped base goes as the surface wrapped; another kind of
        // surface, a trimmed one over a trimmed base and a kernel failure between gluBeginSurface
        // and gluEndSurface (an empty composite) give nothing.
        EXPECT_EQ(Mesh(tri, *Trimmed(std::make_unique<TGeNurbsSurfaceExt>(MakeGridSurface(2, 1, 3, 2, 5, 1)),
                                     MakeLineLoop(kUnitSquare))),
                  triangle);
        Mesh(tri, *MakeGridSurface(2, 1, 3, 2, 5, 1));
        ASSERT_EQ(glu.Surfaces.size(), 2u);
        EXPECT_EQ(glu.Surfaces[0], glu.Surfaces[1]);
        EXPECT_THAT(Mesh(tri, OtherSurface()), IsEmpty());
        EXPECT_THAT(Mesh(tri, *Trimmed(Trimmed(MakeGridSurface(2, 2, 3, 3, 10, 10), MakeLineLoop(kUnitSquare)),
                                       MakeLineLoop(kUnitSquare))),
                    IsEmpty());
        EXPECT_EQ(glu.Surfaces.size(), 2u);
        EXPECT_THAT(Mesh(tri, *Trimmed(MakeGridSurface(2, 2, 3, 3, 10, 10),
                                       std::make_unique<TGeCompositeCurve2D>(std::vector<std::unique_ptr<TGeCurve2D>>{}))),
                    IsEmpty());
        EXPECT_EQ(glu.LiveRenderers(), 0);
    }

    // The latest instance takes the callbacks; a freed one leaves no address behind.
    const auto surf = MakeGridSurface(1, 1, 2, 2, 1, 1);
    TGLSurfaceTriangulator first;
    EXPECT_EQ(CurSurfTri, &first);
    {
        TGLSurfaceTriangulator second;
        EXPECT_EQ(CurSurfTri, &second);
        EXPECT_THAT(Mesh(first, *surf), IsEmpty());
        EXPECT_EQ(Mesh(second, *surf), triangle);
    }
    EXPECT_EQ(CurSurfTri, nullptr);
    EXPECT_THAT(Mesh(first, *surf), IsEmpty());

    // The unit's start installs the kernel's triangulator, which then takes the callbacks.
    StartUnit_uTriangulate();
    ASSERT_NE(dynamic_cast<TGLSurfaceTriangulator*>(GeSurfTri), nullptr);
    EXPECT_EQ(CurSurfTri, GeSurfTri);
    StopUnit_uTriangulate();
    EXPECT_EQ(CurSurfTri, nullptr);

    // Without GLU the arrays come back empty and no call is made.
    glu.Rec.Clear();
    gl::gluNurbsCurve = nullptr;
    TGLSurfaceTriangulator last;
    std::vector<double> tri{1, 2, 3}, norm;
    last.Triangulate(surf.get(), tri, norm);
    EXPECT_THAT(tri, IsEmpty());
    EXPECT_THAT(glu.Rec.Names(), IsEmpty());
}

TEST(GluFake, SamplingToleranceOfTrimmedSurfacesFollowsTheSurface)
{
    auto toleranceOf = [](std::unique_ptr<TGeNurbsSurface> base, int holes) {
        TFakeGlu glu;
        TGLSurfaceTriangulator tri;
        std::vector<std::unique_ptr<TGeCurve2D>> inner;
        for (int h = 0; h < holes; ++h) {
            const double x = 0.02 + 0.04 * h;
            inner.push_back(MakeLineLoop({{x, 0.5}, {x, 0.51}, {x + 0.01, 0.51}}));
        }
        Mesh(tri, *Trimmed(std::move(base), MakeLineLoop(kUnitSquare), std::move(inner)));
        return glu.PropertyValues(gl::GLU_SAMPLING_TOLERANCE);
    };
    // Degree 1 in a direction: the first control step, rounded up.
    TDynPoints3D ruled, coincide;
    for (int i = 0; i < 2; ++i)
        for (int j = 0; j < 4; ++j) ruled.push_back({12.3 * i, 5.0 * j, 0.0});
    EXPECT_THAT(toleranceOf(std::make_unique<TGeNurbsSurface>(2, 4, 1, 3, ClampedKnots(2, 1), ClampedKnots(4, 3), ruled), 0),
                ElementsAre(60, 13));
    // Coinciding first control points: the row's UV error, rounded up.
    for (const double x : {0.0, 0.0, 30.0})
        for (const double y : {0.0, 4.5, 9.0}) coincide.push_back({x, y, 0.0});
    EXPECT_THAT(toleranceOf(std::make_unique<TGeNurbsSurface>(3, 3, 1, 2, ClampedKnots(3, 1), ClampedKnots(3, 2), coincide), 0),
                ElementsAre(60, 1));
    // The size rule for curved directions, on the first row's and column's control polygons;
    // none set (the default stays) for a small surface with few holes.
    const struct {
        double SizeU, SizeV;
        int Holes;
        std::vector<double> Expected;
    } sizes[] = {{800, 750, 0, {60, 100}}, {800, 300, 0, {60, 10}}, {300, 501, 0, {60, 10}}, {300, 300, 21, {60, 10}},
                 {300, 300, 20, {60, 5}},  {300, 300, 0, {60}},     {800, 700, 0, {60, 10}}, {500, 500, 0, {60}}};
    for (const auto& s : sizes)
        EXPECT_EQ(toleranceOf(MakeGridSurface(2, 3, 4, 5, s.SizeU, s.SizeV), s.Holes), s.Expected) << s.SizeU << " x " << s.SizeV;
}

// A curve that hands out fixed points whatever count it is asked for, and remembers the count.
class TFixedPointsCurve : public TGeCurve2D {
public:
    TFixedPointsCurve(TDynPoints2D APoints, double ALength) : FPoints(std::move(APoints)), FLength(ALength) {}
    mutable int LastCount = -1;
    TPoint2D GetStartPoint() const override { return FPoints.front(); }
    TPoint2D GetEndPoint() const override { return FPoints.back(); }
    double GetLength() const override { return FLength; }
    TRect2D GetBoundRect() const override { return CalcAABB(FPoints); }
    void GetSamplePoints(int Count, TDynPoints2D& Points, TFloatDynArray& Params) const override
    {
        LastCount = Count;
        Points = FPoints;
        Params.assign(FPoints.size(), 0.0);
    }
    void GetTolPoints(double, TDynPoints2D& Points) const override { Points = FPoints; }
    TGeInterval GetInterval() const override { return {0.0, 1.0}; }
    TPoint2D GetPoint(double) const override { return FPoints.front(); }

private:
    TDynPoints2D FPoints;
    double FLength;
};

TEST(GluFake, LoopsThatAreNotClosedAreDroppedAloneAndMixedCompositesKeepTheirOrder)
{
    TGLSurfaceTriangulator tri;
    {
        TFakeGlu glu;
        std::vector<std::unique_ptr<TGeCurve2D>> inner, gapped, mixed;
        // Ends exactly 0.01 apart: closed. A little more: dropped.
        inner.push_back(std::make_unique<TFixedPointsCurve>(TDynPoints2D{{0, 0.5}, {0.5, 0.75}, {0.01, 0.5}}, 1.0));
        inner.push_back(std::make_unique<TFixedPointsCurve>(TDynPoints2D{{0, 0.5}, {0.5, 0.75}, {0.0100001, 0.5}}, 1.0));
        // Three lines with a gap between the second and the third, first and last meeting: dropped.
        gapped.push_back(std::make_unique<TGeLine2D>(TPoint2D{0.5, 0.5}, TPoint2D{0.5, 0.75}));
        gapped.push_back(std::make_unique<TGeLine2D>(TPoint2D{0.5, 0.75}, TPoint2D{0.75, 0.75}));
        gapped.push_back(std::make_unique<TGeLine2D>(TPoint2D{0.75, 0.7}, TPoint2D{0.5, 0.5}));
        inner.push_back(std::make_unique<TGeCompositeCurve2D>(std::move(gapped)));
        mixed.push_back(NurbsTrimLine({0.1, 0.1}, {0.2, 0.1}));
        mixed.push_back(std::make_unique<TGeLine2D>(TPoint2D{0.2, 0.1}, TPoint2D{0.2, 0.2}));
        mixed.push_back(NurbsTrimLine({0.2, 0.2}, {0.1, 0.1}));
        inner.push_back(std::make_unique<TGeCompositeCurve2D>(std::move(mixed)));
        Mesh(tri, *Trimmed(MakeGridSurface(2, 2, 3, 3, 10, 10), MakeLineLoop(kUnitSquare), std::move(inner)));
        EXPECT_EQ(glu.Sequence(true), "BeginTrim PwlCurve PwlCurve PwlCurve PwlCurve EndTrim BeginTrim PwlCurve EndTrim "
                                      "BeginTrim NurbsCurve PwlCurve NurbsCurve EndTrim");
        const TFakeGlu::TrimCurve& nurbs = glu.TrimCurves[5];
        EXPECT_FALSE(nurbs.Pwl);
        EXPECT_THAT(nurbs.Knots, ElementsAre(0, 0, 1, 1));
        EXPECT_THAT(nurbs.Points, ElementsAre(0.1f, 0.1f, 1, 0.2f, 0.1f, 1));
        EXPECT_EQ(std::vector<int>({nurbs.Stride, nurbs.Order, static_cast<int>(nurbs.Type)}),
                  std::vector<int>({3, 2, gl::GLU_MAP1_TRIM_3}));
    }
    // With every loop dropped the surface goes untrimmed.
    TFakeGlu open;
    Mesh(tri, *Trimmed(MakeGridSurface(2, 2, 3, 3, 10, 10), std::make_unique<TGeLine2D>(TPoint2D{0, 0}, TPoint2D{1, 1})));
    EXPECT_EQ(open.Rec.Count("gluBeginTrim"), 0u);
    EXPECT_EQ(open.Surfaces.size(), 1u);
}

TEST(GluTrimCurves, CurvesAreTypedSampledByLengthAndThinned)
{
    using T = TGLSurfaceTriangulator;
    // Only splines not clamped at both ends (beyond the kernel's point tolerance) go as NURBS curves.
    EXPECT_EQ(T::ParamCurve2GLType(TGeLine2D({0, 0}, {1, 0})), T::ctLines);
    EXPECT_EQ(T::ParamCurve2GLType(TGeSpline2D(3, ClampedKnots(5, 3), {{0, 0}, {1, 1}, {2, 0}, {3, 1}, {4, 0}})), T::ctLines);
    EXPECT_EQ(T::ParamCurve2GLType(TNurbsTrimSpline(2, ClampedKnots(3, 2), {{0, 0}, {1, 1}, {2, 0}})), T::ctSpline);
    EXPECT_EQ(T::ParamCurve2GLType(TNurbsTrimSpline(2, ClampedKnots(3, 2), {{0, 0}, {1, 1}, {2, 0}}, 5e-7)), T::ctLines);
    TDynGLPointW2D ctrl;
    TDynGLFloat knots;
    int degree = 0;
    T::ParamCurve2GLSpline(TGeSpline2D(2, {0, 0, 0, 0.1, 0.1, 0.1}, {{1, 2}, {3, 4}, {5, 6}}, {1, 0.5, 2}), ctrl, knots, degree);
    EXPECT_EQ(degree, 2);
    EXPECT_THAT(knots, ElementsAre(0, 0, 0, 0.1f, 0.1f, 0.1f));
    ASSERT_EQ(ctrl.size(), 3u);
    EXPECT_EQ(std::vector<float>({ctrl[1].X, ctrl[1].Y, ctrl[1].W, ctrl[2].X}), std::vector<float>({1.5f, 2.0f, 0.5f, 10.0f}));
    EXPECT_THAT(Raised<EAssertionFailed>([&] { T::ParamCurve2GLSpline(TGeLine2D({0, 0}, {1, 0}), ctrl, knots, degree); }),
                MatchesRegex("Assertion failure \\(uTriangulate, line [0-9]+\\)"));

    // Straight curves take 10 samples; others 40 a unit of length, ties to the even neighbour.
    const auto countOf = [](const TGeCurve2D& c) {
        int count = -1;
        const bool straight = T::GetCountNumViaBoundType(c, count);
        return std::pair{straight, count};
    };
    EXPECT_EQ(countOf(TGeLine2D({0, 0}, {500, 0})), std::pair(true, 10));
    EXPECT_EQ(countOf(TGeSpline2D(1, {0, 0, 1, 1}, {{0, 0}, {3, 4}})), std::pair(true, 10));
    EXPECT_EQ(countOf(TGeSpline2D(1, {0, 0, 0.5, 1, 1}, {{0, 0}, {3, 4}, {6, 0}})), std::pair(false, -1));
    for (const auto& [length, samples] :
         {std::pair{25.0, 1000}, {24.9, 999}, {1.0, 43}, {0.0625, 5}, {0.1875, 11}, {0.3125, 15}}) {
        TFixedPointsCurve curve({{0, 0}, {1, 1}}, length);
        TDynGLPointW2D points;
        T::ParamCurve2GLLines(curve, points, 0, 0);
        EXPECT_EQ(curve.LastCount, samples) << length;
    }

    // A neighbour within both errors goes, the last point stays although it is one too; no
    // thinning with either error 0 or a polyline (about 4.02) not longer than 10 Min(UErr, VErr).
    const TDynPoints2D corners = {{0, 0}, {1, 0}, {1.02, 0.03}, {1, 1}, {0, 1}, {0.01, 1.01}};
    auto xyOf = [&](double uErr, double vErr) {
        TDynGLPointW2D points;
        T::ParamCurve2GLLines(TFixedPointsCurve(corners, 4.0), points, uErr, vErr);
        std::vector<float> xy;
        for (const TGLPointW2D& p : points) {
            EXPECT_EQ(p.W, 1.0f);
            xy.insert(xy.end(), {p.X, p.Y});
        }
        return xy;
    };
    const std::vector<float> all = {0, 0, 1, 0, 1.02f, 0.03f, 1, 1, 0, 1, 0.01f, 1.01f};
    EXPECT_THAT(xyOf(0.05, 0.05), ElementsAre(0, 0, 1, 0, 1, 1, 0, 1, 0.01f, 1.01f));
    for (const auto& [u, v] : {std::pair{0.0, 0.05}, {0.05, 0.0}, {0.5, 0.6}}) EXPECT_EQ(xyOf(u, v), all);
    // Values within 1e-6 of 0 go to GLU as exactly +0.
    TDynGLPointW2D points;
    T::ParamCurve2GLLines(TGeLine2D({2e-7, 0.5}, {0.5, -2e-7}), points, 0, 0);
    ASSERT_EQ(points.size(), 2u);
    EXPECT_EQ(points[0].X, 0.0f);
    EXPECT_EQ(points[1].Y, 0.0f);
    EXPECT_FALSE(std::signbit(points[1].Y));
}

TEST(GluTrimCurves, CompositeLinksAndUVErrors)
{
    // Composite links are checked within one hundredth.
    auto composite = [](double gap) {
        std::vector<std::unique_ptr<TGeCurve2D>> c;
        c.push_back(std::make_unique<TGeLine2D>(TPoint2D{0, 0.5}, TPoint2D{0.5, 0.5}));
        c.push_back(std::make_unique<TGeLine2D>(TPoint2D{0.5 + gap, 0.5}, TPoint2D{0.5, 1}));
        c.push_back(std::make_unique<TGeLine2D>(TPoint2D{0.5, 1}, TPoint2D{0, 0.5}));
        return TGeCompositeCurve2D(std::move(c));
    };
    EXPECT_TRUE(TGLSurfaceTriangulator::CheckCompositeCurveInternalLink(composite(0.0)));
    EXPECT_TRUE(TGLSurfaceTriangulator::CheckCompositeCurveInternalLink(composite(0.0078125)));
    EXPECT_FALSE(TGLSurfaceTriangulator::CheckCompositeCurveInternalLink(composite(0.015625)));

    // UV errors come from directions of degree 1 only.
    auto surface = [](double columnLength, double vRange, int degreeU) {
        TDynPoints3D points;
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 2; ++j) points.push_back({7.0 * i, columnLength * j, 0.0});
        return TGeNurbsSurface(3, 2, degreeU, 1, ClampedKnots(3, degreeU), ClampedKnots(2, 1, vRange), points);
    };
    double uErr = -1, vErr = -1, uLen = -1, vLen = -1;
    // Degree 2 in U: no U error and ULen unwritten; V from the first column.
    TGLSurfaceTriangulator::ProvideUVError(surface(50, 1000, 2), uErr, vErr, uLen, vLen);
    EXPECT_EQ(uErr, 0.0);
    EXPECT_EQ(uLen, -1.0);
    EXPECT_DOUBLE_EQ(vLen, 50.0);
    EXPECT_DOUBLE_EQ(vErr, 50.0 / 1000.0 / 10.0);
    // Longer than 1000: the error grows in proportion; never above a hundredth of the range.
    TGLSurfaceTriangulator::ProvideUVError(surface(2000, 1000, 2), uErr, vErr, uLen, vLen);
    EXPECT_DOUBLE_EQ(vErr, 2000.0 / 1000.0 / 10.0 * 2000.0 / 1000.0);
    TGLSurfaceTriangulator::ProvideUVError(surface(50, 1, 2), uErr, vErr, uLen, vLen);
    EXPECT_DOUBLE_EQ(vErr, 0.01);
    // Degree 1 in U as well: the first row, 14 long over the range 0 to 1.
    TGLSurfaceTriangulator::ProvideUVError(surface(50, 1, 1), uErr, vErr, uLen, vLen);
    EXPECT_DOUBLE_EQ(uLen, 14.0);
    EXPECT_DOUBLE_EQ(uErr, 0.01);

    EXPECT_TRUE(TGLSurfaceTriangulator::IsSimpleSurface(*MakeGridSurface(1, 1, 2, 2, 1, 1)));
    EXPECT_FALSE(TGLSurfaceTriangulator::IsSimpleSurface(*MakeGridSurface(1, 1, 3, 2, 1, 1)));
    EXPECT_FALSE(TGLSurfaceTriangulator::IsSimpleSurface(*MakeGridSurface(1, 1, 2, 3, 1, 1)));
    EXPECT_FALSE(TGLSurfaceTriangulator::IsSimpleSurface(*MakeGridSurface(2, 1, 3, 2, 1, 1)));
}

}  // namespace
}  // namespace orvane
