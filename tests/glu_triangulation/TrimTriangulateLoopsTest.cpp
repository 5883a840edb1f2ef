// The trimmed-surface road through a fake GLU renderer: which loops go, how each curve goes,
// how polylines are sampled and thinned, and the sampling tolerance a surface gets.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "glu_triangulation/uTriangulate.h"
#include "tests/glu_triangulation/GluFakeRenderer.h"
#include "tests/glu_triangulation/GluTestSurfaces.h"

namespace orvane {
namespace {

using namespace orvane::testing;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;

constexpr auto kTol = dglOpenGL::GLU_SAMPLING_TOLERANCE;

std::vector<TPoint2D> UnitSquare() { return {{0, 0}, {1, 0}, {1, 1}, {0, 1}}; }

std::unique_ptr<TGeTrimmedSurface> Trimmed(std::unique_ptr<TGeSurface> Base, std::unique_ptr<TGeCurve2D> Outer,
                                           std::vector<std::unique_ptr<TGeCurve2D>> Inner = {})
{
    return std::make_unique<TGeTrimmedSurface>(std::move(Base), std::move(Outer), std::move(Inner));
}

// The GLU calls between gluBeginSurface and gluEndSurface that concern the trims.
std::vector<std::string> TrimCalls(const TFakeGlu& Glu)
{
    std::vector<std::string> calls;
    for (const std::string& c : Glu.Calls)
        if (c == "gluBeginTrim" || c == "gluEndTrim" || c == "gluPwlCurve" || c == "gluNurbsCurve") calls.push_back(c);
    return calls;
}

std::vector<float> TrianglesOf(TGLSurfaceTriangulator& Tri, const TGeSurface& Surf)
{
    TFloatDynArray tri, norm;
    Tri.Triangulate(&Surf, tri, norm);
    return {tri.begin(), tri.end()};
}

TEST(TrimTriangulateLoops, GluCallsComeInTheOrderOfTheRoad)
{
    TFakeGlu glu;
    glu.Script = {{dglOpenGL::GL_TRIANGLES, {0, 0, 0, 1, 0, 0, 0, 1, 0}}};
    TGLSurfaceTriangulator tri;
    std::vector<std::unique_ptr<TGeCurve2D>> holes;
    holes.push_back(MakeLineLoop({{0.4, 0.4}, {0.4, 0.6}, {0.6, 0.6}, {0.6, 0.4}}));
    const auto surf = Trimmed(MakeGridSurface(2, 2, 3, 3, 10, 10), MakeLineLoop(UnitSquare()), std::move(holes));

    EXPECT_THAT(TrianglesOf(tri, *surf), ElementsAre(0, 0, 0, 1, 0, 0, 0, 1, 0));
    const std::string tol = "gluNurbsProperty " + std::to_string(kTol) + "=";
    const std::string method = "gluNurbsProperty " + std::to_string(dglOpenGL::GLU_SAMPLING_METHOD) + "=" +
                               std::to_string(static_cast<float>(dglOpenGL::GLU_PATH_LENGTH));
    std::vector<std::string> expected = {"gluNewNurbsRenderer", tol + std::to_string(60.0f),
                                         "gluNurbsProperty " + std::to_string(dglOpenGL::GLU_NURBS_MODE) + "=" +
                                             std::to_string(static_cast<float>(dglOpenGL::GLU_NURBS_TESSELLATOR)),
                                         "gluNurbsCallback " + std::to_string(dglOpenGL::GLU_NURBS_BEGIN),
                                         "gluNurbsCallback " + std::to_string(dglOpenGL::GLU_NURBS_VERTEX),
                                         "gluNurbsCallback " + std::to_string(dglOpenGL::GLU_NURBS_END),
                                         "gluNurbsCallback " + std::to_string(dglOpenGL::GLU_NURBS_NORMAL),
                                         "gluBeginSurface", method, tol + std::to_string(5.0f), "gluNurbsSurface"};
    for (int loop = 0; loop < 2; ++loop) {
        expected.push_back("gluBeginTrim");
        for (int side = 0; side < 4; ++side) expected.push_back("gluPwlCurve");
        expected.push_back("gluEndTrim");
    }
    expected.insert(expected.end(), {"gluEndSurface", "gluDeleteNurbsRenderer"});
    EXPECT_THAT(glu.Calls, ElementsAreArray(expected));
    // The outer loop first, then the hole, each curve in the direction the kernel gives.
    ASSERT_EQ(glu.TrimCurves.size(), 8u);
    EXPECT_THAT(glu.TrimCurves[0].Points, ElementsAre(0, 0, 1, 1, 0, 1));
    EXPECT_THAT(glu.TrimCurves[4].Points, ElementsAre(0.4f, 0.4f, 1, 0.4f, 0.6f, 1));
    EXPECT_EQ(glu.TrimCurves[0].Stride, 3);
    EXPECT_EQ(glu.TrimCurves[0].Type, dglOpenGL::GLU_MAP1_TRIM_2);
}

TEST(TrimTriangulateLoops, SamplingToleranceFollowsTheSurface)
{
    auto toleranceOf = [](std::unique_ptr<TGeNurbsSurface> base, int holes) {
        TFakeGlu glu;
        TGLSurfaceTriangulator tri;
        std::vector<std::unique_ptr<TGeCurve2D>> inner;
        for (int h = 0; h < holes; ++h) {
            const double x = 0.02 + 0.04 * h;
            inner.push_back(MakeLineLoop({{x, 0.5}, {x, 0.51}, {x + 0.01, 0.51}}));
        }
        TrianglesOf(tri, *Trimmed(std::move(base), MakeLineLoop(UnitSquare()), std::move(inner)));
        return glu.PropertyValues(kTol);
    };
    // Degree 1 in a direction: the first control step, rounded up.
    TDynPoints3D ruled;
    for (int i = 0; i < 2; ++i)
        for (int j = 0; j < 4; ++j) ruled.push_back({12.3 * i, 5.0 * j, 0.0});
    EXPECT_THAT(toleranceOf(std::make_unique<TGeNurbsSurface>(2, 4, 1, 3, ClampedKnots(2, 1), ClampedKnots(4, 3), ruled), 0),
                ElementsAre(60, 13));
    // Coinciding first control points: the row's UV error, rounded up.
    TDynPoints3D coincide;
    for (const double x : {0.0, 0.0, 30.0})
        for (const double y : {0.0, 4.5, 9.0}) coincide.push_back({x, y, 0.0});
    EXPECT_THAT(toleranceOf(std::make_unique<TGeNurbsSurface>(3, 3, 1, 2, ClampedKnots(3, 1), ClampedKnots(3, 2), coincide), 0),
                ElementsAre(60, 1));
    // The size rule for curved directions, on the first row's and column's control polygons.
    EXPECT_THAT(toleranceOf(MakeGridSurface(2, 3, 4, 5, 800, 750), 0), ElementsAre(60, 100));
    EXPECT_THAT(toleranceOf(MakeGridSurface(2, 3, 4, 5, 800, 300), 0), ElementsAre(60, 10));
    EXPECT_THAT(toleranceOf(MakeGridSurface(2, 3, 4, 5, 300, 501), 0), ElementsAre(60, 10));
    EXPECT_THAT(toleranceOf(MakeGridSurface(2, 3, 4, 5, 300, 300), 21), ElementsAre(60, 10));
    EXPECT_THAT(toleranceOf(MakeGridSurface(2, 3, 4, 5, 300, 300), 20), ElementsAre(60, 5));
    EXPECT_THAT(toleranceOf(MakeGridSurface(2, 3, 4, 5, 300, 300), 0), ElementsAre(60));
    EXPECT_THAT(toleranceOf(MakeGridSurface(2, 3, 4, 5, 800, 700), 0), ElementsAre(60, 10));
    EXPECT_THAT(toleranceOf(MakeGridSurface(2, 3, 4, 5, 500, 500), 0), ElementsAre(60));
}

TEST(TrimTriangulateLoops, LoopsThatAreNotClosedAreDroppedAlone)
{
    TFakeGlu glu;
    TGLSurfaceTriangulator tri;
    std::vector<std::unique_ptr<TGeCurve2D>> inner;
    // Ends exactly 0.01 apart: closed.
    inner.push_back(std::make_unique<TFixedPointsCurve>(TDynPoints2D{{0, 0.5}, {0.5, 0.75}, {0.01, 0.5}}, 1.0));
    // A little more: dropped.
    inner.push_back(std::make_unique<TFixedPointsCurve>(TDynPoints2D{{0, 0.5}, {0.5, 0.75}, {0.0100001, 0.5}}, 1.0));
    // Three lines with a gap between the second and the third, first and last meeting: dropped.
    std::vector<std::unique_ptr<TGeCurve2D>> gapped;
    gapped.push_back(std::make_unique<TGeLine2D>(TPoint2D{0.5, 0.5}, TPoint2D{0.5, 0.75}));
    gapped.push_back(std::make_unique<TGeLine2D>(TPoint2D{0.5, 0.75}, TPoint2D{0.75, 0.75}));
    gapped.push_back(std::make_unique<TGeLine2D>(TPoint2D{0.75, 0.7}, TPoint2D{0.5, 0.5}));
    inner.push_back(std::make_unique<TGeCompositeCurve2D>(std::move(gapped)));
    // A composite mixing the two kinds: the curves in their order.
    std::vector<std::unique_ptr<TGeCurve2D>> mixed;
    mixed.push_back(NurbsTrimLine({0.1, 0.1}, {0.2, 0.1}));
    mixed.push_back(std::make_unique<TGeLine2D>(TPoint2D{0.2, 0.1}, TPoint2D{0.2, 0.2}));
    mixed.push_back(NurbsTrimLine({0.2, 0.2}, {0.1, 0.1}));
    inner.push_back(std::make_unique<TGeCompositeCurve2D>(std::move(mixed)));
    const auto surf = Trimmed(MakeGridSurface(2, 2, 3, 3, 10, 10), MakeLineLoop(UnitSquare()), std::move(inner));

    TrianglesOf(tri, *surf);
    EXPECT_THAT(TrimCalls(glu), ElementsAre("gluBeginTrim", "gluPwlCurve", "gluPwlCurve", "gluPwlCurve",
                                            "gluPwlCurve", "gluEndTrim", "gluBeginTrim", "gluPwlCurve",
                                            "gluEndTrim", "gluBeginTrim", "gluNurbsCurve", "gluPwlCurve",
                                            "gluNurbsCurve", "gluEndTrim"));
    const TFakeTrimCurve& nurbs = glu.TrimCurves[5];
    EXPECT_FALSE(nurbs.Pwl);
    EXPECT_THAT(nurbs.Knots, ElementsAre(0, 0, 1, 1));
    EXPECT_THAT(nurbs.Points, ElementsAre(0.1f, 0.1f, 1, 0.2f, 0.1f, 1));
    EXPECT_EQ(nurbs.Stride, 3);
    EXPECT_EQ(nurbs.Order, 2);
    EXPECT_EQ(nurbs.Type, dglOpenGL::GLU_MAP1_TRIM_3);
}

TEST(TrimTriangulateLoops, SurfaceWithEveryLoopDroppedGoesUntrimmed)
{
    TFakeGlu glu;
    TGLSurfaceTriangulator tri;
    const auto surf = Trimmed(MakeGridSurface(2, 2, 3, 3, 10, 10),
                              std::make_unique<TGeLine2D>(TPoint2D{0, 0}, TPoint2D{1, 1}));
    TrianglesOf(tri, *surf);
    EXPECT_THAT(TrimCalls(glu), IsEmpty());
    EXPECT_EQ(glu.Surfaces.size(), 1u);
}

TEST(TrimTriangulateLoops, BaseOfAnotherKindOrAKernelFailureGivesNothing)
{
    TFakeGlu glu;
    glu.Script = {{dglOpenGL::GL_TRIANGLES, {0, 0, 0, 1, 0, 0, 0, 1, 0}}};
    TGLSurfaceTriangulator tri;
    auto inner = Trimmed(MakeGridSurface(2, 2, 3, 3, 10, 10), MakeLineLoop(UnitSquare()));
    const auto nested = Trimmed(std::move(inner), MakeLineLoop(UnitSquare()));
    EXPECT_THAT(TrianglesOf(tri, *nested), IsEmpty());
    EXPECT_EQ(glu.Surfaces.size(), 0u);

    // An empty composite raises inside the kernel, between gluBeginSurface and gluEndSurface.
    const auto broken = Trimmed(MakeGridSurface(2, 2, 3, 3, 10, 10),
                                std::make_unique<TGeCompositeCurve2D>(std::vector<std::unique_ptr<TGeCurve2D>>{}));
    EXPECT_THAT(TrianglesOf(tri, *broken), IsEmpty());
    EXPECT_EQ(glu.LiveRenderers, 0);

    // A wrapped base goes through its surface.
    glu.Surfaces.clear();
    const auto wrapped = Trimmed(std::make_unique<TGeNurbsSurfaceExt>(MakeGridSurface(2, 2, 3, 3, 10, 10)),
                                 MakeLineLoop(UnitSquare()));
    EXPECT_THAT(TrianglesOf(tri, *wrapped), ElementsAre(0, 0, 0, 1, 0, 0, 0, 1, 0));
    ASSERT_EQ(glu.Surfaces.size(), 1u);
    EXPECT_EQ(glu.Surfaces[0].Control.size(), 3u * 3u * 4u);
}

TEST(TrimTriangulateLoops, CurvesAreSampledByTheirLength)
{
    int count = 0;
    EXPECT_TRUE(TGLSurfaceTriangulator::GetCountNumViaBoundType(TGeLine2D({0, 0}, {500, 0}), count));
    EXPECT_EQ(count, 10);
    count = -1;
    EXPECT_TRUE(TGLSurfaceTriangulator::GetCountNumViaBoundType(TGeSpline2D(1, {0, 0, 1, 1}, {{0, 0}, {3, 4}}), count));
    EXPECT_EQ(count, 10);
    count = -1;
    EXPECT_FALSE(TGLSurfaceTriangulator::GetCountNumViaBoundType(
        TGeSpline2D(1, {0, 0, 0.5, 1, 1}, {{0, 0}, {3, 4}, {6, 0}}), count));
    EXPECT_EQ(count, -1);

    auto samplesFor = [](double length) {
        TFixedPointsCurve curve({{0, 0}, {1, 1}}, length);
        TDynGLPointW2D points;
        TGLSurfaceTriangulator::ParamCurve2GLLines(curve, points, 0, 0);
        return curve.LastCount;
    };
    EXPECT_EQ(samplesFor(25.0), 1000);
    EXPECT_EQ(samplesFor(24.9), 999);
    EXPECT_EQ(samplesFor(1.0), 43);
    // Ties go to the even neighbour: 2.5 -> 2, 7.5 -> 8, 12.5 -> 12.
    EXPECT_EQ(samplesFor(0.0625), 5);
    EXPECT_EQ(samplesFor(0.1875), 11);
    EXPECT_EQ(samplesFor(0.3125), 15);
}

TEST(TrimTriangulateLoops, PolylinesAreThinnedOnlyWithBothErrorsAndEnoughLength)
{
    const TDynPoints2D corners = {{0, 0}, {1, 0}, {1.02, 0.03}, {1, 1}, {0, 1}, {0.01, 1.01}};
    auto xyOf = [&](double uErr, double vErr) {
        TFixedPointsCurve curve(corners, 4.0);
        TDynGLPointW2D points;
        TGLSurfaceTriangulator::ParamCurve2GLLines(curve, points, uErr, vErr);
        std::vector<float> xy;
        for (const TGLPointW2D& p : points) {
            EXPECT_EQ(p.W, 1.0f);
            xy.insert(xy.end(), {p.X, p.Y});
        }
        return xy;
    };
    const std::vector<float> all = {0, 0, 1, 0, 1.02f, 0.03f, 1, 1, 0, 1, 0.01f, 1.01f};
    // The neighbour within both errors goes; the last point stays although it is one too.
    EXPECT_THAT(xyOf(0.05, 0.05), ElementsAre(0, 0, 1, 0, 1, 1, 0, 1, 0.01f, 1.01f));
    EXPECT_THAT(xyOf(0.0, 0.05), ElementsAreArray(all));
    EXPECT_THAT(xyOf(0.05, 0.0), ElementsAreArray(all));
    // Polyline length about 4.02, not above Min(UErr, VErr) * 10 = 5.
    EXPECT_THAT(xyOf(0.5, 0.6), ElementsAreArray(all));

    // Values within 1e-6 of 0 go to GLU as exactly 0.
    TDynGLPointW2D points;
    TGLSurfaceTriangulator::ParamCurve2GLLines(TGeLine2D({2e-7, 0.5}, {0.5, -2e-7}), points, 0, 0);
    ASSERT_EQ(points.size(), 2u);
    EXPECT_EQ(points[0].X, 0.0f);
    EXPECT_FALSE(std::signbit(points[1].Y));
    EXPECT_EQ(points[1].Y, 0.0f);
}

TEST(TrimTriangulateLoops, OnlySplinesNotClampedAtBothEndsGoAsNurbsCurves)
{
    using T = TGLSurfaceTriangulator;
    EXPECT_EQ(T::ParamCurve2GLType(TGeLine2D({0, 0}, {1, 0})), T::ctLines);
    EXPECT_EQ(T::ParamCurve2GLType(TGeSpline2D(3, ClampedKnots(5, 3), {{0, 0}, {1, 1}, {2, 0}, {3, 1}, {4, 0}})),
              T::ctLines);
    EXPECT_EQ(T::ParamCurve2GLType(TNurbsTrimSpline(2, ClampedKnots(3, 2), {{0, 0}, {1, 1}, {2, 0}})), T::ctSpline);
    // Off by no more than the kernel's point tolerance: still a clamped spline.
    EXPECT_EQ(T::ParamCurve2GLType(TNurbsTrimSpline(2, ClampedKnots(3, 2), {{0, 0}, {1, 1}, {2, 0}}, 5e-7)),
              T::ctLines);

    TDynGLPointW2D ctrl;
    TDynGLFloat knots;
    int degree = 0;
    T::ParamCurve2GLSpline(TGeSpline2D(2, {0, 0, 0, 0.1, 0.1, 0.1}, {{1, 2}, {3, 4}, {5, 6}}, {1, 0.5, 2}), ctrl,
                           knots, degree);
    EXPECT_EQ(degree, 2);
    EXPECT_THAT(knots, ElementsAre(0, 0, 0, 0.1f, 0.1f, 0.1f));
    ASSERT_EQ(ctrl.size(), 3u);
    EXPECT_EQ(ctrl[1].X, 1.5f);
    EXPECT_EQ(ctrl[1].Y, 2.0f);
    EXPECT_EQ(ctrl[1].W, 0.5f);
    EXPECT_EQ(ctrl[2].X, 10.0f);
    try {
        T::ParamCurve2GLSpline(TGeLine2D({0, 0}, {1, 0}), ctrl, knots, degree);
        FAIL() << "a line is no spline";
    } catch (const EAssertionFailed& e) {
        EXPECT_THAT(e.what(), MatchesRegex("Assertion failure \\(uTriangulate, line [0-9]+\\)"));
    }
}

TEST(TrimTriangulateLoops, CompositeLinksAreCheckedWithinOneHundredth)
{
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
}

TEST(TrimTriangulateLoops, UVErrorsComeFromDirectionsOfDegreeOne)
{
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
    // Longer than 1000: the error grows in proportion.
    TGLSurfaceTriangulator::ProvideUVError(surface(2000, 1000, 2), uErr, vErr, uLen, vLen);
    EXPECT_DOUBLE_EQ(vErr, 2000.0 / 1000.0 / 10.0 * 2000.0 / 1000.0);
    // Never above a hundredth of the parameter range.
    TGLSurfaceTriangulator::ProvideUVError(surface(50, 1, 2), uErr, vErr, uLen, vLen);
    EXPECT_DOUBLE_EQ(vErr, 0.01);
    // Degree 1 in U as well: the first row, 14 long over the range 0 to 1.
    TGLSurfaceTriangulator::ProvideUVError(surface(50, 1, 1), uErr, vErr, uLen, vLen);
    EXPECT_DOUBLE_EQ(uLen, 14.0);
    EXPECT_DOUBLE_EQ(uErr, 0.01);

    EXPECT_TRUE(TGLSurfaceTriangulator::IsSimpleSurface(*MakeGridSurface(1, 1, 2, 2, 1, 1)));
    EXPECT_FALSE(TGLSurfaceTriangulator::IsSimpleSurface(*MakeGridSurface(1, 1, 3, 2, 1, 1)));
    EXPECT_FALSE(TGLSurfaceTriangulator::IsSimpleSurface(*MakeGridSurface(2, 1, 3, 2, 1, 1)));
}

}  // namespace
}  // namespace orvane
