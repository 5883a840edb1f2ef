#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

#include "contracts/AppSystem.h"
#include "contracts/PrimitiveCodes.h"
#include "contracts/Shapes.h"
#include "tessellation/TriangleArrays.h"
#include "tests/support/MessageCapture.h"
#include "tests/tessellation/RoadTestSupport.h"

namespace orvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::SizeIs;
using testing::FixedQuadTool;
using testing::LineLoop;
using testing::MessageCapture;
using testing::QuadUnit;
using testing::TForeignSurface;
using testing::TQuadToolCall;
using testing::TServiceUnderTest;

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const std::vector<TPoint2D> kQuadA{{0.1, 0.6}, {0.2, 0.6}, {0.2, 0.5}, {0.1, 0.5}};
const std::vector<TPoint2D> kQuadB{{0.3, 0.6}, {0.4, 0.6}, {0.4, 0.5}, {0.3, 0.5}};

std::vector<TPoint2D> Join(const std::vector<TPoint2D>& A, const std::vector<TPoint2D>& B)
{
    std::vector<TPoint2D> all = A;
    all.insert(all.end(), B.begin(), B.end());
    return all;
}

// A surface whose kernel evaluation fails, so that its classification raises.
class TFailingNurbsSurface : public TGeNurbsSurface {
public:
    TFailingNurbsSurface()
        : TGeNurbsSurface(2, 2, 1, 1, {0, 0, 1, 1}, {0, 0, 1, 1}, {{0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {1, 1, 0}})
    {
    }
    TPoint3D GetPoint(double, double) const override { throw EArgumentException("kernel refuses"); }
};

struct Arrays {
    TFloatDynArray Tri{1.5, 2.5, 3.5};
    TFloatDynArray Norm{4.5};
};

TEST(QuadSurfaceTriangulatorTest, IsRegisteredAsTheRootInterfaceAndReachedByQueryInterface)
{
    AppSys.ClearServices();
    StartUnit_uTessQuadsTriangulator();
    IInterface* root = AppSys.GetService(IGeSurfaceTriangulator::IID);
    ASSERT_NE(root, nullptr);
    void* obj = nullptr;
    ASSERT_EQ(root->QueryInterface(IGeSurfaceTriangulator::IID, &obj), S_OK);
    auto* service = static_cast<IGeSurfaceTriangulator*>(obj);
    EXPECT_NE(dynamic_cast<TQuadSurfaceTriangulator*>(service), nullptr);
    // The registry's reference and the one QueryInterface added: the unit keeps none.
    EXPECT_EQ(service->_Release(), 1);
    EXPECT_EQ(root->QueryInterface(TGUID::FromString("{00000000-0000-0000-0000-000000000001}"), &obj),
              E_NOINTERFACE);
    EXPECT_EQ(obj, nullptr);
    StopUnit_uTessQuadsTriangulator();
    EXPECT_EQ(AppSys.GetService(IGeSurfaceTriangulator::IID), root);
    AppSys.ClearServices();
}

TEST(QuadSurfaceTriangulatorTest, GivenToleranceIsAHundredTimesTheOneUsed)
{
    EXPECT_EQ(TServiceUnderTest(0.1)->SampleTolerance(), TServiceUnderTest()->SampleTolerance());
    EXPECT_DOUBLE_EQ(TServiceUnderTest()->SampleTolerance(), 0.001);
    EXPECT_EQ(TServiceUnderTest()->ExtrusionType(), TExtrusionType::VDir);
    EXPECT_FALSE(TServiceUnderTest()->IsSimpleSurface());
}

TEST(QuadSurfaceTriangulatorTest, WithoutViewUnitsTheArraysAreUntouchedButAnEmptyListEmptiesThem)
{
    MessageCapture messages;
    TServiceUnderTest svc;
    const TForeignSurface foreign;
    for (const TGeSurface* s : {static_cast<const TGeSurface*>(&foreign), static_cast<const TGeSurface*>(nullptr)}) {
        Arrays a;
        svc->Quadrilateral(s, a.Tri, a.Norm);
        EXPECT_THAT(a.Tri, ElementsAre(1.5, 2.5, 3.5));
        Arrays b;
        svc->Triangulate(s, b.Tri, b.Norm);
        EXPECT_THAT(b.Norm, ElementsAre(4.5));
    }
    const auto plane = MakeShape("plane");
    svc->SetCreateDrawQuads(FixedQuadTool({}));
    Arrays a;
    svc->Quadrilateral(plane.get(), a.Tri, a.Norm);
    EXPECT_THAT(a.Tri, IsEmpty());
    EXPECT_THAT(a.Norm, IsEmpty());
    EXPECT_THAT(messages.Texts(), IsEmpty());
}

TEST(QuadSurfaceTriangulatorTest, AUnitWithANaNVertexIsDroppedWholeAndOnlyIt)
{
    const auto cylinder = MakeShape("cylinder");
    TServiceUnderTest svc;
    TFloatDynArray alone, aloneNorm;
    svc->SetCreateDrawQuads(FixedQuadTool({QuadUnit(kQuadA), QuadUnit(kQuadB)}));
    svc->Quadrilateral(cylinder.get(), alone, aloneNorm);
    ASSERT_THAT(alone, SizeIs(24));

    // The NaN stands in the last quad of the middle unit: not even its first quad is kept.
    std::vector<TPoint2D> broken = Join(kQuadB, kQuadA);
    broken[6] = {kNaN, 0.5};
    // An empty unit adds nothing either, and asks for no normal repair.
    svc->SetCreateDrawQuads(FixedQuadTool({QuadUnit(kQuadA), QuadUnit({}), QuadUnit(broken), QuadUnit(kQuadB)}));
    TFloatDynArray tri, norm;
    svc->Quadrilateral(cylinder.get(), tri, norm);
    EXPECT_EQ(tri, alone);
    EXPECT_EQ(norm, aloneNorm);
}

TEST(QuadSurfaceTriangulatorTest, FailuresWhileBuildingTheDataAreShownAndKeepTheFinishedUnits)
{
    const auto cylinder = MakeShape("cylinder");
    TServiceUnderTest svc;
    std::vector<TPoint2D> five = kQuadB;
    five.push_back({0.5, 0.5});
    svc->SetCreateDrawQuads(FixedQuadTool({QuadUnit(kQuadA), QuadUnit(five), QuadUnit(kQuadB)}));
    const char* const countPattern =
        "得到四边形划分数据不为4的倍数 \\(uTessQuadsTriangulator, line [0-9]+\\) at do (quadrilateral|triangulate)";
    {
        MessageCapture messages;
        Arrays a;
        svc->Quadrilateral(cylinder.get(), a.Tri, a.Norm);
        EXPECT_THAT(a.Tri, SizeIs(12));
        EXPECT_THAT(a.Norm, SizeIs(12));
        ASSERT_THAT(messages.Texts(), ElementsAre(MatchesRegex(countPattern)));
        EXPECT_THAT(messages.Texts()[0], ::testing::EndsWith(" at do quadrilateral"));
        EXPECT_EQ(messages.Messages()[0].Kind, 0);
    }
    {
        MessageCapture messages;
        Arrays a;
        svc->Triangulate(cylinder.get(), a.Tri, a.Norm);
        EXPECT_THAT(a.Tri, SizeIs(18));
        EXPECT_THAT(a.Norm, SizeIs(18));
        ASSERT_THAT(messages.Texts(), ElementsAre(MatchesRegex(countPattern)));
        EXPECT_THAT(messages.Texts()[0], ::testing::EndsWith(" at do triangulate"));
    }
}

TEST(QuadSurfaceTriangulatorTest, ARefusedDrawModeStopsOnlyTheTriangleRoad)
{
    const auto plane = MakeShape("plane");
    TServiceUnderTest svc;
    svc->SetCreateDrawQuads(FixedQuadTool({QuadUnit(kQuadA), QuadUnit(kQuadB, GL_LINES)}));
    MessageCapture messages;
    Arrays a;
    svc->Triangulate(plane.get(), a.Tri, a.Norm);
    EXPECT_THAT(messages.Texts(), ElementsAre("Error Message at do triangulate"));
    EXPECT_THAT(a.Tri, SizeIs(18));
    EXPECT_THAT(a.Norm, SizeIs(18));
    // The quad road does not look at DrawMode.
    svc->Quadrilateral(plane.get(), a.Tri, a.Norm);
    EXPECT_THAT(a.Tri, SizeIs(24));
    EXPECT_THAT(messages.Texts(), SizeIs(1));
}

TEST(QuadSurfaceTriangulatorTest, ATrimmedSurfaceOverAnotherKindOfBaseEndsInTheAssertion)
{
    const TGeTrimmedSurface trimmed(std::make_unique<TForeignSurface>(),
                                    LineLoop({{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}}));
    TServiceUnderTest svc;
    MessageCapture messages;
    Arrays a;
    svc->Quadrilateral(&trimmed, a.Tri, a.Norm);
    Arrays b;
    svc->Triangulate(&trimmed, b.Tri, b.Norm);
    const std::string text = "TessQuadsTriangulator, GetPoint3D can not get GeNurbsSurface "
                             "\\(uTessQuadsTriangulator, line [0-9]+\\) at do ";
    EXPECT_THAT(messages.Texts(),
                ElementsAre(MatchesRegex(text + "quadrilateral"), MatchesRegex(text + "triangulate")));
    EXPECT_THAT(a.Tri, IsEmpty());
    EXPECT_THAT(b.Norm, IsEmpty());
}

TEST(QuadSurfaceTriangulatorTest, FailuresOfClassificationAndQuadToolReachTheCallerWithArraysUntouched)
{
    MessageCapture messages;
    TServiceUnderTest svc;
    const TFailingNurbsSurface failing;
    Arrays a;
    EXPECT_THROW(svc->Quadrilateral(&failing, a.Tri, a.Norm), EArgumentException);
    EXPECT_THROW(svc->Triangulate(&failing, a.Tri, a.Norm), EArgumentException);

    const auto plane = MakeShape("plane");
    svc->SetCreateDrawQuads([](auto, double, double, bool) -> std::unique_ptr<TViewUnitList> {
        throw EArgumentException("quad tool refuses");
    });
    EXPECT_THROW(svc->Quadrilateral(plane.get(), a.Tri, a.Norm), EArgumentException);
    EXPECT_THROW(svc->Triangulate(plane.get(), a.Tri, a.Norm), EArgumentException);
    // What is no Exception passes every guard.
    svc->SetCreateDrawQuads([](auto, double, double, bool) -> std::unique_ptr<TViewUnitList> {
        throw std::runtime_error("not ours");
    });
    EXPECT_THROW(svc->Quadrilateral(plane.get(), a.Tri, a.Norm), std::runtime_error);

    EXPECT_THAT(a.Tri, ElementsAre(1.5, 2.5, 3.5));
    EXPECT_THAT(a.Norm, ElementsAre(4.5));
    EXPECT_THAT(messages.Texts(), IsEmpty());
}

TEST(QuadSurfaceTriangulatorTest, UDirEvaluatesThePlanePointWithUAndVExchanged)
{
    const auto transposed = MakeShape("cylinder-transposed");
    TServiceUnderTest svc;
    svc->SetCreateDrawQuads(FixedQuadTool({QuadUnit(kQuadA)}));
    TFloatDynArray tri, norm;
    svc->Quadrilateral(transposed.get(), tri, norm);
    ASSERT_EQ(svc->ExtrusionType(), TExtrusionType::UDir);
    ASSERT_THAT(tri, SizeIs(12));
    for (int k = 0; k < 4; ++k) {
        const TPoint3D expected = transposed->GetPoint(kQuadA[k].Y, kQuadA[k].X);
        const TPoint3D got{tri[3 * k], tri[3 * k + 1], tri[3 * k + 2]};
        EXPECT_LE(got.DistanceTo(expected), 1e-14) << k;
    }
}

TEST(QuadSurfaceTriangulatorTest, NormalsFollowTheSurfaceType)
{
    TServiceUnderTest svc;
    const std::vector<TPoint2D> quads = Join(kQuadA, kQuadB);
    // An empty unit takes the branch of the flat normals and gives nothing.
    svc->SetCreateDrawQuads(FixedQuadTool({QuadUnit({}), QuadUnit(quads)}));
    MessageCapture messages;

    // UVDir: one surface normal, at the first point, on every vertex.
    const auto bilinear = MakeShape("bilinear");
    TFloatDynArray tri, norm;
    svc->Quadrilateral(bilinear.get(), tri, norm);
    ASSERT_EQ(svc->ExtrusionType(), TExtrusionType::UVDir);
    ASSERT_THAT(norm, SizeIs(24));
    EXPECT_THAT(messages.Texts(), IsEmpty());
    for (std::size_t i = 3; i < norm.size(); ++i) EXPECT_EQ(norm[i], norm[i % 3]) << i;

    // NotExtrusion: the four normals of a quad are its flat normal, and quads differ.
    const auto sphere = MakeShape("sphere");
    svc->Quadrilateral(sphere.get(), tri, norm);
    ASSERT_EQ(svc->ExtrusionType(), TExtrusionType::NotExtrusion);
    for (std::size_t q = 0; q < 2; ++q)
        for (std::size_t i = 12 * q + 3; i < 12 * q + 12; ++i) EXPECT_EQ(norm[i], norm[12 * q + i % 3]) << i;
    EXPECT_NE(norm[0], norm[12]);
}

TEST(QuadSurfaceTriangulatorTest, EachCallClassifiesAfresh)
{
    const auto cylinder = MakeShape("cylinder");
    const auto plane = MakeShape("plane");
    TServiceUnderTest fresh;
    TFloatDynArray expected, expectedNorm;
    fresh->Quadrilateral(plane.get(), expected, expectedNorm);

    TServiceUnderTest svc;
    TFloatDynArray tri, norm;
    svc->Quadrilateral(cylinder.get(), tri, norm);
    EXPECT_EQ(svc->ExtrusionType(), TExtrusionType::VDir);
    EXPECT_FALSE(svc->IsSimpleSurface());
    svc->Quadrilateral(plane.get(), tri, norm);
    EXPECT_EQ(svc->ExtrusionType(), TExtrusionType::UVDir);
    EXPECT_TRUE(svc->IsSimpleSurface());
    EXPECT_EQ(tri, expected);
    EXPECT_EQ(norm, expectedNorm);
}

TEST(QuadSurfaceTriangulatorTest, PointListsPassTheirTolerancesAndComeBackAsQuads)
{
    auto calls = std::make_shared<std::vector<TQuadToolCall>>();
    TServiceUnderTest svc;
    svc->SetCreateDrawQuads(FixedQuadTool({QuadUnit(kQuadA), QuadUnit(kQuadB)}, calls));
    const TList<TVPolyline2D> rectangle{TVPolyline2D({{0, 0}, {3, 0}, {3, 1}, {0, 1}, {0, 0}})};

    const auto points = svc.Service().TriangulatePoint2DList(rectangle);
    EXPECT_EQ(points->Items(), Join(kQuadA, kQuadB));
    svc.Service().TriangulatePoint2DListWithTol(rectangle, 0.25);
    svc.Service().TriangulatePoint2DListWithTolXY(rectangle, 0.25, 0.03);
    ASSERT_THAT(*calls, SizeIs(3));
    // The polyline's reach in X from its first point, and rows of 0.1.
    EXPECT_EQ((*calls)[0].XTol, 3.0);
    EXPECT_EQ((*calls)[0].YTol, 0.1);
    EXPECT_EQ((*calls)[1].XTol, 0.25);
    EXPECT_EQ((*calls)[1].YTol, 0.1);
    EXPECT_EQ((*calls)[2].YTol, 0.03);
    EXPECT_FALSE((*calls)[2].UnitPerColumn);
    EXPECT_EQ((*calls)[2].Polylines[0], rectangle[0].Items());

    EXPECT_THROW(svc.Service().TriangulatePoint2DList(TList<TVPolyline2D>()), EArgumentOutOfRangeException);
}

TEST(QuadSurfaceTriangulatorTest, PointListsAreNeverExchangedAfterAUDirSurface)
{
    TServiceUnderTest svc;
    const auto transposed = MakeShape("cylinder-transposed");
    TFloatDynArray tri, norm;
    svc->Quadrilateral(transposed.get(), tri, norm);
    ASSERT_EQ(svc->ExtrusionType(), TExtrusionType::UDir);

    const TList<TVPolyline2D> region{TVPolyline2D({{0, 0}, {3, 0}, {3, 1}, {0, 1}, {0, 0}}),
                                     TVPolyline2D({{1, 0.2}, {1, 0.8}, {2, 0.8}, {2, 0.2}, {1, 0.2}})};
    const auto points = svc.Service().TriangulatePoint2DListWithTolXY(region, 0.5, 0.25);
    ASSERT_FALSE(points->IsEmpty());
    EXPECT_EQ(points->Count() % 4, 0);
    double area = 0.0;
    for (int q = 0; q < points->Count(); q += 4) {
        for (int k = 0; k < 4; ++k) {
            EXPECT_GE((*points)[q + k].X, 0.0);
            EXPECT_LE((*points)[q + k].X, 3.0);
            EXPECT_LE((*points)[q + k].Y, 1.0);
        }
        for (int k = 0; k < 4; ++k) {
            const TPoint2D& a = (*points)[q + k];
            const TPoint2D& b = (*points)[q + (k + 1) % 4];
            area += a.X * b.Y - b.X * a.Y;
        }
    }
    EXPECT_NEAR(std::abs(area) / 2, 3.0 - 0.6, 1e-12);
}

TEST(QuadSurfaceTriangulatorTest, OnePrimitiveBecomesTrianglesAlongTheDiagonalFromP0)
{
    TDynGLFloat vert{0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
    TDynGLFloat norm{0, 0, 1, 0, 0, 2, 0, 0, 3, 0, 0, 4};
    TTriangleArrays::TriangulateVertexAndNormal(GL_QUADS, vert, norm);
    EXPECT_THAT(vert, ElementsAre(0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 0, 0, 1, 1, 0, 0, 1, 0));
    EXPECT_THAT(norm, ElementsAre(0, 0, 1, 0, 0, 2, 0, 0, 3, 0, 0, 1, 0, 0, 3, 0, 0, 4));

    const TDynGLFloat triangle{0, 0, 0, 1, 0, 0, 1, 1, 0};
    TDynGLFloat v = triangle;
    TDynGLFloat n = triangle;
    TTriangleArrays::TriangulateVertexAndNormal(GL_TRIANGLES, v, n);
    EXPECT_EQ(v, triangle);

    TDynGLFloat empty, emptyNorm;
    TTriangleArrays::TriangulateVertexAndNormal(GL_QUADS, empty, emptyNorm);
    EXPECT_THAT(empty, IsEmpty());

    TDynGLFloat shortNorm{0, 0, 1};
    try {
        TTriangleArrays::TriangulateVertexAndNormal(GL_TRIANGLES, v, shortNorm);
        FAIL() << "no assertion";
    } catch (const EAssertionFailed& e) {
        EXPECT_THAT(e.what(), MatchesRegex("Assertion failure \\(uTessQuadsTriangulator, line [0-9]+\\)"));
    }
}

}  // namespace
}  // namespace orvane
