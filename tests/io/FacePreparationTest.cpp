#include <gtest/gtest.h>

#include <cmath>

#include "contracts/Interfaces.h"
#include "io/CadModelReader.h"
#include "io/FacePreparation.h"
#include "tessellation/uTessQuadsTriangulator.h"
#include "tests/io/parts/TestShapes.h"

namespace orvane::io {
namespace {

// A face over a cubic x cubic patch with 4 x 5 poles on [0, 2] x [10, 13], with given bounds.
FaceData Patch(double maxSu, double maxSv, double maxSuu, double maxSvv)
{
    FaceData f;
    NurbsSurfaceData& s = f.Surface;
    s.DegreeU = s.DegreeV = 3;
    s.CountU = 4;
    s.CountV = 5;
    s.KnotsU = {0, 0, 0, 0, 2, 2, 2, 2};
    s.KnotsV = {10, 10, 10, 10, 11, 13, 13, 13, 13};
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 5; ++j) s.Poles.push_back({double(i), double(j), 0.1 * i * j});
    f.Loops = {{TrimCurveData{1, {0, 0, 1, 1}, {{0, 10}, {2, 10}}, {}, -1, false, {}}, TrimCurveData{1, {0, 0, 1, 1}, {{2, 10}, {2, 13}}, {}, -1, false, {}},
                TrimCurveData{1, {0, 0, 1, 1}, {{2, 13}, {0, 13}}, {}, -1, false, {}}, TrimCurveData{1, {0, 0, 1, 1}, {{0, 13}, {0, 10}}, {}, -1, false, {}}}};
    f.Bounds = {maxSu, maxSv, maxSuu, maxSvv};
    return f;
}

TEST(FacePreparation, PlansRowsByScalingAndColumnsByKnotsAsTheFormulasSay)
{
    PreparationSettings s;
    s.Tolerance = 0.04;
    // Chords within T / 4 = 0.01. U: 2 * sqrt(200 / 0.08) = 100 parts needed; D = (4 + 3) * 8 = 56 is too few, 13 * 8 is
    // enough: 6 knots. V: 3 * sqrt(0.08 / 0.08) = 3 parts.
    const PreparationPlan p = PlanPreparation(Patch(1.0, 5000.0, 200.0, 0.08), TExtrusionType::NotExtrusion, false, s);
    EXPECT_TRUE(p.XIsU);
    EXPECT_NEAR(p.X.Needed, 100.0, 1e-9);
    EXPECT_EQ(p.X.InsertedKnots, 6);
    EXPECT_EQ(p.X.Parts, 100);
    EXPECT_NEAR(p.X.Scale, 2.5, 1e-12);  // L = 0.05 * 100 over a span of 2
    EXPECT_NEAR(p.X.Chord, 0.01, 1e-12);
    EXPECT_NEAR(p.Y.Needed, 3.0, 1e-9);
    EXPECT_NEAR(p.Y.Scale, 0.05, 1e-12);
    EXPECT_EQ(p.Y.Parts, 3);
    EXPECT_EQ(p.Quads(), 300);

    // Straight along U only: X is V. A simple surface gets one column whatever it needs.
    const PreparationPlan t = PlanPreparation(Patch(1.0, 1.0, 200.0, 0.08), TExtrusionType::UDir, false, s);
    EXPECT_FALSE(t.XIsU);
    EXPECT_NEAR(t.X.Needed, 3.0, 1e-9);
    EXPECT_EQ(t.X.InsertedKnots, 0);
    EXPECT_EQ(t.X.Parts, 3);
    EXPECT_EQ(t.Y.Parts, 100);
    EXPECT_EQ(PlanPreparation(Patch(1.0, 1.0, 200.0, 0.08), TExtrusionType::UVDir, true, s).X.Parts, 1);

    // A normal turning 1.4 rad per unit of V over a span of 3 needs 3 * 1.4 / 0.35 = 12 parts,
    // more than the chords ask for.
    FaceData turning = Patch(1.0, 5000.0, 200.0, 0.08);
    turning.Bounds.MaxTurnV = 1.4;
    EXPECT_NEAR(PlanPreparation(turning, TExtrusionType::NotExtrusion, false, s).Y.Needed, 12.0, 1e-9);
}

TEST(FacePreparation, AppliedPlanGivesTheRoadThePlannedColumnsAndRows)
{
    FaceData f = Patch(1.0, 1.0, 200.0, 0.5);
    PreparationSettings s;
    s.Tolerance = 0.01;
    const PreparationPlan p = PlanPreparation(f, TExtrusionType::NotExtrusion, false, s);
    ApplyPreparation(f, p);
    EXPECT_EQ(f.Surface.CountU, 4 + p.X.InsertedKnots);
    EXPECT_DOUBLE_EQ(f.Surface.KnotsU.front(), 0.0);
    EXPECT_NEAR(f.Surface.KnotsU.back(), 0.05 * p.X.Parts, 1e-9);
    EXPECT_NEAR(f.Surface.KnotsV.back(), 3.0 * p.Y.Scale, 1e-9);
    EXPECT_NEAR(f.Loops[0][1].Start().X, f.Surface.KnotsU.back(), 1e-12);
}

TEST(FacePreparation, RefusesAFaceBeyondTheQuadBoundBeforeBuildingIt)
{
    PreparationSettings s;
    s.Tolerance = 1e-9;
    s.MaxQuads = 1000;
    try {
        PrepareFace(Patch(1.0, 1.0, 200.0, 1.0), s);
        FAIL() << "prepared";
    } catch (const EFaceRefused& e) {
        const std::string text = e.what();
        EXPECT_EQ(text.rfind("needs about ", 0), 0u) << text;
        EXPECT_TRUE(text.ends_with(" quads, more than the 1000 a face may have")) << text;
    }
}

// Largest distance of a quad edge's midpoint inside the round surface, from Inside(p) >= 0.
template <typename F>
double WorstSag(const TFloatDynArray& tri, F inside)
{
    double worst = 0.0;
    for (std::size_t q = 0; q + 12 <= tri.size(); q += 12)
        for (int e = 0; e < 4; ++e) {
            const std::size_t a = q + 3 * e, b = q + 3 * ((e + 1) % 4);
            const TPoint3D mid{(tri[a] + tri[b]) / 2, (tri[a + 1] + tri[b + 1]) / 2, (tri[a + 2] + tri[b + 2]) / 2};
            worst = std::max(worst, inside(mid));
        }
    return worst;
}

// Through the quad road, the prepared faces of a cylinder, a sphere and a torus keep every
// chord within a quarter of the tolerance and are not much finer than that.
TEST(FacePreparation, QuadRoadChordsStayWithinTheTolerance)
{
    testing::TempDir dir;
    struct Case {
        TopoDS_Shape shape;
        std::function<double(const TPoint3D&)> inside;
    };
    const Case cases[] = {
        {testing::Cylinder(), [](const TPoint3D& p) { return 25.0 - std::hypot(p.X, p.Y); }},
        {testing::Sphere(), [](const TPoint3D& p) { return 40.0 - p.DistanceTo({10, -5, 3}); }},
        {testing::Torus(), [](const TPoint3D& p) { return 15.0 - std::hypot(std::hypot(p.X, p.Y) - 50.0, p.Z); }},
    };
    TInterfacePtr<IGeSurfaceTriangulator> road(new TQuadSurfaceTriangulator());
    for (const Case& c : cases) {
        testing::WriteStep(c.shape, dir.File("part.stp"));
        const CadModelData model = ReadCadModel(dir.File("part.stp"));
        for (const double tolerance : {0.5, 0.05}) {
            PreparationSettings s;
            s.Tolerance = tolerance;
            for (const FaceData& f : model.Faces) {
                const PreparedFace prepared = PrepareFace(f, s);
                if (prepared.Plan.Type == TExtrusionType::UVDir) continue;  // the cylinder's caps
                TFloatDynArray tri, norm;
                road->Quadrilateral(prepared.Surface.get(), tri, norm);
                SCOPED_TRACE(f.Name + " at " + std::to_string(tolerance));
                ASSERT_GT(tri.size(), 0u);
                const double sag = WorstSag(tri, c.inside);
                EXPECT_LE(sag, tolerance / 4.0);  // the planned chord
                EXPECT_GE(sag, tolerance / 16.0);
                // Every column and row as planned; trim vertices cut a few quads further.
                const auto quads = static_cast<long long>(tri.size() / 12);
                EXPECT_GE(quads, prepared.Plan.Quads());
                EXPECT_LE(quads, prepared.Plan.Quads() * 5 / 4);
            }
        }
    }
}

}  // namespace
}  // namespace orvane::io
