#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "contracts/PrimitiveCodes.h"
#include "contracts/TessQuadsTool.h"
#include "tests/contracts/QuadToolChecks.h"

namespace orvane {
namespace {

using testing::ExpectQuadProperties;
using testing::Quad;
using testing::QuadLoops;
using testing::QuadsOf;

std::unique_ptr<TViewUnitList> Quads(const QuadLoops& loops, double xtol, double ytol, bool perColumn = false)
{
    TList<TVPolyline2D> polylines;
    for (const TDynPoints2D& loop : loops) polylines.Add(TVPolyline2D(loop));
    return TTessQuadsTool::CreateDrawQuads(polylines, xtol, ytol, perColumn);
}

std::string MessageOf(const QuadLoops& loops, double xtol, double ytol)
{
    try {
        Quads(loops, xtol, ytol);
    } catch (const EArgumentException& e) {
        return e.Message();
    }
    return "no exception";
}

TDynPoints2D Square(double x0, double y0, double x1, double y1) { return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}}; }

TDynPoints2D Circle(double cx, double cy, double r, int n)
{
    TDynPoints2D points;
    for (int i = 0; i < n; ++i)
        points.push_back({cx + r * std::cos(2 * M_PI * i / n), cy + r * std::sin(2 * M_PI * i / n)});
    return points;
}

TEST(QuadTool, SquareGivesRowsAndColumnsOfRectanglesTopLeftFirst)
{
    const auto units = Quads({Square(0, 0, 1, 1)}, 0.25, 0.25);
    ASSERT_EQ(units->Count(), 1);
    EXPECT_EQ(units->First().DrawMode, GL_QUADS);
    const std::vector<Quad> quads = QuadsOf(*units);
    ASSERT_EQ(quads.size(), 16u);
    // P0 top-left, P1 top-right, P2 bottom-right, P3 bottom-left; column by column, upwards.
    EXPECT_EQ(quads[0].P[0], TPoint2D(0, 0.25));
    EXPECT_EQ(quads[0].P[1], TPoint2D(0.25, 0.25));
    EXPECT_EQ(quads[0].P[2], TPoint2D(0.25, 0));
    EXPECT_EQ(quads[0].P[3], TPoint2D(0, 0));
    EXPECT_EQ(quads[3].P[0], TPoint2D(0, 1));
    EXPECT_EQ(quads[4].P[3], TPoint2D(0.25, 0));
    // Where columns meet, P1 and P2 of one are P0 and P3 of the next, bit for bit.
    for (int q = 0; q < 12; ++q) {
        EXPECT_EQ(quads[static_cast<std::size_t>(q)].P[1], quads[static_cast<std::size_t>(q) + 4].P[0]);
        EXPECT_EQ(quads[static_cast<std::size_t>(q)].P[2], quads[static_cast<std::size_t>(q) + 4].P[3]);
    }
    ExpectQuadProperties({Square(0, 0, 1, 1)}, 0.25, 0.25, *units);
}

TEST(QuadTool, WindingClosureDuplicatesAndCollinearPointsDoNotChangeTheResult)
{
    const std::vector<Quad> plain = QuadsOf(*Quads({Square(0, 0, 2, 1), Circle(1, 0.5, 0.3, 12)}, 0.2, 0.15));
    const TDynPoints2D messy = {{0, 0}, {0, 1}, {0, 1}, {1, 1}, {2, 1}, {2, 0.4}, {2, 0}, {0, 0}, {0, 0}};
    TDynPoints2D hole = Circle(1, 0.5, 0.3, 12);
    std::reverse(hole.begin(), hole.end());
    hole.push_back(hole.front());
    const std::vector<Quad> other = QuadsOf(*Quads({messy, hole}, 0.2, 0.15));
    ASSERT_EQ(other.size(), plain.size());
    for (std::size_t i = 0; i < plain.size(); ++i)
        for (int k = 0; k < 4; ++k) EXPECT_EQ(other[i].P[k], plain[i].P[k]) << "quad " << i << " corner " << k;
}

TEST(QuadTool, ListsOfPolylineObjectsAndUnitsPerColumnGiveTheSameQuads)
{
    const QuadLoops loops = {Circle(0, 0, 1, 40), Square(-0.3, -0.2, 0.4, 0.1)};
    const std::vector<Quad> one = QuadsOf(*Quads(loops, 0.3, 0.2));
    TObjectList<TVPolyline2D> owned;
    for (const TDynPoints2D& loop : loops) owned.Add(new TVPolyline2D(loop));
    const auto fromObjects = TTessQuadsTool::CreateDrawQuads(owned, 0.3, 0.2, false);
    const auto perColumn = Quads(loops, 0.3, 0.2, true);
    // The circle is 2 wide: 7 columns of at most 0.3.
    EXPECT_EQ(perColumn->Count(), 7);
    for (const TViewUnit& unit : *perColumn) {
        double left = INFINITY, right = -INFINITY;
        for (const TPoint2D& p : unit.Points2D) left = std::min(left, p.X), right = std::max(right, p.X);
        EXPECT_LE(right - left, 0.3 * (1 + 1e-9));
    }
    for (const auto* units : {fromObjects.get(), perColumn.get()}) {
        const std::vector<Quad> quads = QuadsOf(*units);
        ASSERT_EQ(quads.size(), one.size());
        for (std::size_t i = 0; i < one.size(); ++i)
            for (int k = 0; k < 4; ++k) EXPECT_EQ(quads[i].P[k], one[i].P[k]);
    }
}

TEST(QuadTool, RegionNoWiderThanXTolIsOneColumnHoweverItsBoundaryRuns)
{
    // A slanted, bent strip exactly XTol wide.
    const QuadLoops loops = {{{0, 0}, {0.1, 0.5}, {0.02, 1.2}, {0.05, 1.3}, {0.13, 0.6}, {0.13, 0.1}}};
    const auto units = Quads(loops, 0.13, 0.1, true);
    EXPECT_EQ(units->Count(), 1);
    ExpectQuadProperties(loops, 0.13, 0.1, *units);
}

TEST(QuadTool, VerticalEdgesAndVerticesOnColumnLinesAndHoleTouchingTheOuterBoundary)
{
    // An L shape whose corners lie on column lines, a hole touching the outer boundary at one
    // point on an edge and one at a corner, and a hole whose vertex sits on a column line.
    const QuadLoops loops = {{{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}},
                             {{0.5, 0}, {0.8, 0.3}, {0.2, 0.3}},
                             {{2, 1}, {1.7, 0.8}, {1.9, 0.6}},
                             {{0.25, 1.25}, {0.5, 1.0}, {0.75, 1.25}, {0.5, 1.5}}};
    const auto units = Quads(loops, 0.25, 0.25);
    ExpectQuadProperties(loops, 0.25, 0.25, *units);
    const double area = 3 - 0.09 - 0.05 - 0.125;
    EXPECT_NEAR(testing::QuadsArea(QuadsOf(*units)), area, 1e-12);
}

TEST(QuadTool, CrossingLoopsFollowTheInsideOuterAndNoHoleRule)
{
    // Overlapping holes, a hole reaching out of the outer boundary, a hole inside a hole.
    ExpectQuadProperties({Square(0, 0, 4, 3), Square(0.5, 0.5, 2, 2), Square(1.5, 1, 3, 2.5), Square(3.5, -1, 5, 1),
                          Square(0.7, 0.7, 0.9, 0.9)},
                         0.3, 0.4, *Quads({Square(0, 0, 4, 3), Square(0.5, 0.5, 2, 2), Square(1.5, 1, 3, 2.5),
                                           Square(3.5, -1, 5, 1), Square(0.7, 0.7, 0.9, 0.9)},
                                          0.3, 0.4));
    // A self-crossing outer loop: a bow tie of two triangles of area 1 each.
    const QuadLoops bowTie = {{{0, 0}, {2, 2}, {2, 0}, {0, 2}}};
    const auto units = Quads(bowTie, 0.3, 0.3);
    ExpectQuadProperties(bowTie, 0.3, 0.3, *units);
    EXPECT_NEAR(testing::QuadsArea(QuadsOf(*units)), 2.0, 1e-12);
}

TEST(QuadTool, BreakpointsNearColumnLinesAndRowsMergeInsteadOfMakingSlivers)
{
    const double e = 1e-14;
    const QuadLoops loops = {{{0, 0}, {0.5 + e, 0.3}, {1, 0}, {1, 1 + e}, {0.25 - e, 0.5 - e}, {0.25 + e, 1}, {0, 1}}};
    const auto units = Quads(loops, 0.25, 0.25);
    ExpectQuadProperties(loops, 0.25, 0.25, *units);
    for (const Quad& q : QuadsOf(*units)) {
        EXPECT_GT(q.P[1].X - q.P[0].X, 1e-6);
        for (double side : {q.P[0].Y - q.P[3].Y, q.P[1].Y - q.P[2].Y}) EXPECT_TRUE(side == 0 || side > 1e-9) << side;
    }
}

// The tessellation takes a quad's flat normal from its corners, (P1 - P0) x (P3 - P0) first,
// and a surface normal from steps along Y, then X: (F(P + dY) - F(P)) x (F(P + dX) - F(P)).
// P0 top-left and clockwise corners make the two agree for every map F of the plane onto a
// surface, whichever plane axis runs straight.
TEST(QuadTool, FlatNormalsOfTheQuadsPointLikeTheSurfaceNormals)
{
    using Map = TPoint3D (*)(const TPoint2D&);
    const Map maps[] = {
        [](const TPoint2D& p) { return TPoint3D(std::cos(p.X), std::sin(p.X), p.Y); },    // straight along Y
        [](const TPoint2D& p) { return TPoint3D(p.X, std::cos(p.Y), std::sin(p.Y)); },    // straight along X
        [](const TPoint2D& p) { return TPoint3D(p.Y, p.X, 0.3 * std::sin(p.X) * p.Y); },  // mirrored, curved
    };
    auto normal = [](const TPoint3D& a, const TPoint3D& b, const TPoint3D& c) { return (b - a).Normal().CrossMul(c - a).Normal(); };
    const QuadLoops loops = {Circle(1, 1, 0.9, 30), Circle(1.2, 0.9, 0.3, 9)};
    const std::vector<Quad> quads = QuadsOf(*Quads(loops, 0.2, 0.15));
    ASSERT_GT(quads.size(), 50u);
    for (Map map : maps)
        for (const Quad& q : quads) {
            TPoint3D v[4];
            for (int k = 0; k < 4; ++k) v[k] = map(q.P[k]);
            TPoint3D flat = normal(v[0], v[1], v[3]);
            if (flat.Equals(TPoint3D::FZero, 1e-6)) flat = normal(v[1], v[2], v[3]);
            const TPoint3D p0 = map(q.P[0]);
            const double d = 1e-4;
            const TPoint3D surface = normal(p0, map({q.P[0].X, q.P[0].Y + d}), map({q.P[0].X + d, q.P[0].Y}));
            EXPECT_GT(flat.DotMul(surface), 0.5);
        }
}

TEST(QuadTool, RegionsOfNoAreaGiveAnEmptyList)
{
    EXPECT_EQ(Quads({}, 0.1, 0.1)->Count(), 0);
    EXPECT_EQ(Quads({{{0, 0}, {1, 1}}}, 0.1, 0.1)->Count(), 0);
    EXPECT_EQ(Quads({{{0, 0}, {1, 1}, {0, 0}, {1, 1}}}, 0.1, 0.1)->Count(), 0);
    EXPECT_EQ(Quads({{{0, 0}, {0.3, 0.1}, {0.9, 0.3}, {0.6, 0.2}}}, 0.1, 0.1)->Count(), 0);
    EXPECT_EQ(Quads({{{0, 0}, {1, 0}, {0.5, 0}}}, 0.1, 0.1)->Count(), 0);
    // A hole that covers the whole outer boundary.
    EXPECT_EQ(Quads({Square(0, 0, 1, 1), Square(-1, -1, 2, 2)}, 0.1, 0.1)->Count(), 0);
}

TEST(QuadTool, RaisesOnBadArgumentsAndTooManyQuads)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    EXPECT_EQ(MessageOf({Square(0, 0, 1, 1), {{0.2, 0.2}, {0.3, nan}, {0.4, 0.2}}}, 0.1, 0.1),
              "CreateDrawQuads: point 1 of polyline 1 has a coordinate that is not finite");
    EXPECT_EQ(MessageOf({{{inf, 0}, {1, 0}, {1, 1}}}, 0.1, 0.1),
              "CreateDrawQuads: point 0 of polyline 0 has a coordinate that is not finite");
    for (double bad : {0.0, -0.1, nan, inf}) {
        EXPECT_EQ(MessageOf({Square(0, 0, 1, 1)}, bad, 0.1), "CreateDrawQuads: XTol must be a positive finite number");
        EXPECT_EQ(MessageOf({Square(0, 0, 1, 1)}, 0.1, bad), "CreateDrawQuads: YTol must be a positive finite number");
    }
    EXPECT_EQ(MessageOf({Square(0, 0, 1, 1)}, 1e-4, 1e-4), "CreateDrawQuads: the region needs more than 20000000 quads");
    EXPECT_EQ(MessageOf({Square(0, 0, 1, 1)}, 1e-8, 1), "CreateDrawQuads: the region needs more than 20000000 columns");
    EXPECT_EQ(MessageOf({Square(1e6, 0, 1e6 + 1e-6, 1)}, 1e-12, 1),
              "CreateDrawQuads: XTol is too small for the coordinates of the region");
}

TEST(QuadTool, CountsQuadsOfTheRegionNotOfItsBoundingBox)
{
    // A thin diagonal band: its box would hold 2.5e7 quads, the band itself some 1e4.
    const QuadLoops band = {{{0, 0}, {0.001, 0}, {5, 4.999}, {5, 5}, {4.999, 5}, {0, 0.001}}};
    const auto units = Quads(band, 1e-3, 1e-3);
    const std::size_t count = QuadsOf(*units).size();
    EXPECT_GT(count, 5000u);
    EXPECT_LT(count, 50000u);
    EXPECT_NEAR(testing::QuadsArea(QuadsOf(*units)), testing::RegionArea(band), 1e-9 * testing::RegionArea(band));
}

}  // namespace
}  // namespace orvane
