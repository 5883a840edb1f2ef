#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "contracts/Shapes.h"
#include "tessellation/SurfaceTriangulatorChecker.h"
#include "tests/support/MessageCapture.h"
#include "tests/tessellation/RoadTestSupport.h"

namespace orvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::CircleSpline;
using testing::FlatPatch;
using testing::LineLoop;
using testing::MessageCapture;
using testing::PolylineSpline;
using testing::TCountingNurbsSurface;
using testing::TForeignSurface;
using Checker = TSurfaceTriangulatorChecker;

const TDynPoints2D kUnitSquare{{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}};

std::unique_ptr<TGeTrimmedSurface> Trimmed(std::unique_ptr<TGeSurface> Base, const TDynPoints2D& Outer = kUnitSquare)
{
    return std::make_unique<TGeTrimmedSurface>(std::move(Base), LineLoop(Outer));
}

TEST(SurfaceTriangulatorCheckerTest, ClassifiesTheShapeLibrary)
{
    struct Expected {
        const char* Name;
        TExtrusionType Type;
        bool Simple;
    };
    const Expected table[] = {
        {"plane", TExtrusionType::UVDir, true},
        {"cylinder", TExtrusionType::VDir, false},
        {"cylinder-transposed", TExtrusionType::UDir, false},
        {"partial-cylinder", TExtrusionType::VDir, false},
        {"cone", TExtrusionType::VDir, false},
        {"sphere", TExtrusionType::NotExtrusion, false},
        {"torus", TExtrusionType::NotExtrusion, false},
        // A plane trimmed over a degree-2 NURBS base is straight both ways but not bilinear.
        {"trimmed-circular-holes", TExtrusionType::UVDir, false},
    };
    for (const Expected& e : table) {
        const auto shape = MakeShape(e.Name);
        const TExtrusionType type = Checker::CheckExtrusionDirection(shape.get());
        EXPECT_EQ(type, e.Type) << e.Name;
        EXPECT_EQ(Checker::CheckSimpleSurface(shape.get(), type), e.Simple) << e.Name;
    }
}

TEST(SurfaceTriangulatorCheckerTest, UnknownSurfacesAreNotExtrusionNotSimpleWithTheDefaultRange)
{
    const TForeignSurface foreign;
    for (const TGeSurface* s : {static_cast<const TGeSurface*>(&foreign), static_cast<const TGeSurface*>(nullptr)}) {
        EXPECT_EQ(Checker::CheckExtrusionDirection(s), TExtrusionType::NotExtrusion);
        EXPECT_FALSE(Checker::CheckSimpleSurface(s, TExtrusionType::UVDir));
        EXPECT_EQ(Checker::CheckSurfaceSampleRange(s, TExtrusionType::VDir), 0.05);
    }
    // A trimmed surface over a base of another kind is tested no further.
    const auto trimmed = Trimmed(std::make_unique<TForeignSurface>(true));
    EXPECT_EQ(Checker::CheckExtrusionDirection(trimmed.get()), TExtrusionType::NotExtrusion);
    EXPECT_EQ(Checker::CheckSurfaceSampleRange(trimmed.get(), TExtrusionType::VDir), 0.05);
}

TEST(SurfaceTriangulatorCheckerTest, TrimmedSurfacesAreTestedOverTheirBoundaryBoxWithFiveEvaluations)
{
    const TArrayDouble knots{0, 0, 0, 1, 1, 1};
    TDynPoints3D pts;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) pts.push_back({1.0 * i, 1.0 * j, 0.0});
    auto base = std::make_unique<TCountingNurbsSurface>(3, 3, 2, 2, knots, knots, pts);
    const TCountingNurbsSurface* counter = base.get();
    const auto trimmed = Trimmed(std::move(base), {{0.2, 0.3}, {0.6, 0.3}, {0.6, 0.7}, {0.2, 0.3}});
    EXPECT_EQ(Checker::CheckExtrusionDirection(trimmed.get()), TExtrusionType::UVDir);
    EXPECT_EQ(counter->Evaluations, 5);

    // An outer boundary that collapses to a point within 1e-6 needs no evaluation at all.
    auto base2 = std::make_unique<TCountingNurbsSurface>(3, 3, 2, 2, knots, knots, pts);
    const TCountingNurbsSurface* counter2 = base2.get();
    const auto collapsed = Trimmed(std::move(base2), {{0.5, 0.5}, {0.5, 0.5 + 4e-7}, {0.5, 0.5}});
    EXPECT_EQ(Checker::CheckExtrusionDirection(collapsed.get()), TExtrusionType::NotExtrusion);
    EXPECT_EQ(counter2->Evaluations, 0);
}

TEST(SurfaceTriangulatorCheckerTest, SimplicityOfTrimmedSurfacesDependsOnTheirBase)
{
    // A bilinear base is simple whatever the type.
    const auto bilinear = Trimmed(FlatPatch(1));
    EXPECT_TRUE(Checker::CheckSimpleSurface(bilinear.get(), TExtrusionType::NotExtrusion));
    // A higher degree NURBS base never is; a wrapped one is when UVDir.
    const auto quadratic = Trimmed(FlatPatch(2));
    EXPECT_FALSE(Checker::CheckSimpleSurface(quadratic.get(), TExtrusionType::UVDir));
    const auto wrapped = Trimmed(std::make_unique<TGeNurbsSurfaceExt>(FlatPatch(2)));
    EXPECT_EQ(Checker::CheckExtrusionDirection(wrapped.get()), TExtrusionType::UVDir);
    EXPECT_TRUE(Checker::CheckSimpleSurface(wrapped.get(), TExtrusionType::UVDir));
    EXPECT_FALSE(Checker::CheckSimpleSurface(wrapped.get(), TExtrusionType::VDir));
    const TGeNurbsSurfaceExt ext(FlatPatch(3));
    EXPECT_TRUE(Checker::CheckSimpleSurface(&ext, TExtrusionType::UVDir));
    EXPECT_FALSE(Checker::CheckSimpleSurface(&ext, TExtrusionType::UDir));
}

TEST(SurfaceTriangulatorCheckerTest, SampleRangeRunsAlongVForUDirOnly)
{
    // 4 cubic control points along U over a span of 1: 1/56; 2 linear ones along V: 1/3.
    const auto ruled = MakeShape("ruled-v");
    EXPECT_DOUBLE_EQ(Checker::CheckSurfaceSampleRange(ruled.get(), TExtrusionType::VDir), 1.0 / 56);
    EXPECT_DOUBLE_EQ(Checker::CheckSurfaceSampleRange(ruled.get(), TExtrusionType::UVDir), 1.0 / 56);
    EXPECT_DOUBLE_EQ(Checker::CheckSurfaceSampleRange(ruled.get(), TExtrusionType::NotExtrusion), 1.0 / 56);
    EXPECT_DOUBLE_EQ(Checker::CheckSurfaceSampleRange(ruled.get(), TExtrusionType::UDir), 1.0 / 3);

    // 5 linear control points over a span of 2: 2/6; the trimmed and the wrapped surface give
    // their base's range.
    TDynPoints3D pts;
    for (int i = 0; i < 5; ++i)
        for (int j = 0; j < 2; ++j) pts.push_back({1.0 * i, 1.0 * j, 0.0});
    auto linear = std::make_unique<TGeNurbsSurface>(5, 2, 1, 1, TArrayDouble{0, 0, .5, 1, 1.5, 2, 2},
                                                    TArrayDouble{0, 0, 1, 1}, pts);
    EXPECT_DOUBLE_EQ(Checker::CheckSurfaceSampleRange(linear.get(), TExtrusionType::VDir), 2.0 / 6);
    const TGeNurbsSurfaceExt ext(std::move(linear));
    EXPECT_DOUBLE_EQ(Checker::CheckSurfaceSampleRange(&ext, TExtrusionType::VDir), 2.0 / 6);
    const auto trimmed = Trimmed(MakeShape("cylinder"));
    EXPECT_DOUBLE_EQ(Checker::CheckSurfaceSampleRange(trimmed.get(), TExtrusionType::VDir), 1.0 / 88);
}

TEST(SurfaceTriangulatorCheckerTest, SmallCurvesCompareTheirControlPolygonStrictly)
{
    MessageCapture messages;
    const double tol = 0.01;
    // A box exactly 8 Tol wide and high is not small; narrower in one direction is.
    const auto exact = PolylineSpline({{0, 0}, {0.08, 0}, {0.08, 0.08}, {0, 0}});
    EXPECT_FALSE(Checker::CheckSplineSmallThanSampleTolerance(*exact, tol));
    const auto thin = PolylineSpline({{0, 0}, {0.0799, 0}, {0.0799, 5}, {0, 0}});
    EXPECT_TRUE(Checker::CheckSplineSmallThanSampleTolerance(*thin, tol));
    // Two control points are never small, however tiny.
    const auto tiny = PolylineSpline({{0, 0}, {1e-9, 1e-9}});
    EXPECT_FALSE(Checker::CheckSplineSmallThanSampleTolerance(*tiny, tol));

    // A composite counts when all its sub-curves are splines.
    std::vector<std::unique_ptr<TGeCurve2D>> parts;
    parts.push_back(PolylineSpline({{0, 0}, {0.01, 0}, {0.01, 0.01}}));
    parts.push_back(PolylineSpline({{0.01, 0.01}, {0, 0.01}, {0, 0}}));
    EXPECT_TRUE(Checker::CheckCompositeCurveSmallThanSampleTolerance(TGeCompositeCurve2D(std::move(parts)), tol));
    EXPECT_FALSE(Checker::CheckCompositeCurveSmallThanSampleTolerance(*LineLoop({{0, 0}, {1e-4, 0}, {0, 0}}), tol));
    EXPECT_THAT(messages.Texts(), IsEmpty());

    // Without sub-curves the read of the first point fails: its message is shown, answer False.
    EXPECT_FALSE(Checker::CheckCompositeCurveSmallThanSampleTolerance(TGeCompositeCurve2D({}), tol));
    EXPECT_THAT(messages.Texts(), ElementsAre("Argument out of range"));
    EXPECT_EQ(messages.Messages()[0].Kind, 0);
}

TEST(SurfaceTriangulatorCheckerTest, CircleTestMeasuresFromTheCentreOfTheBox)
{
    EXPECT_TRUE(Checker::AnalyCurveIsCircle(*CircleSpline({0.3, 0.4}, 0.1), 1e-9));
    // A half circle: the centre of its box is off the arc's centre.
    const double h = std::sqrt(0.5);
    const TGeSpline2D half(2, {0, 0, 0, .5, .5, 1, 1, 1}, {{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}},
                           {1, h, 1, h, 1});
    EXPECT_FALSE(Checker::AnalyCurveIsCircle(half, 1e-3));
    EXPECT_FALSE(Checker::AnalyCurveIsCircle(*LineLoop(kUnitSquare), 1e-3));
}

}  // namespace
}  // namespace orvane
