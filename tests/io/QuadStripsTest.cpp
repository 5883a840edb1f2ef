#include <gtest/gtest.h>

#include <algorithm>

#include "io/QuadStrips.h"

namespace orvane::io {
namespace {

PlaneQuad Piece(double x0, double x1, double leftLo, double leftHi, double rightLo, double rightHi)
{
    return {TPoint2D{x0, leftHi}, TPoint2D{x1, rightHi}, TPoint2D{x1, rightLo}, TPoint2D{x0, leftLo}};
}

double Turn(const TPoint2D& a, const TPoint2D& b, const TPoint2D& c)
{
    return (b.X - a.X) * (c.Y - a.Y) - (c.X - a.X) * (b.Y - a.Y);
}

bool Has(const std::vector<TPoint2D>& points, const TPoint2D& p)
{
    return std::find(points.begin(), points.end(), p) != points.end();
}

TEST(QuadStrips, PiecesJoinOffColumnLinesAndRowPointsGoOnlyWhereNoPolygonNeedsThem)
{
    // Row 0..1: slivers cut at 0.5, 1.5, 2 (a column line) and 3 (a loop point below).
    // Row 1..2: a boundary runs up from (0, 1) to (1.5, 2): two sloped pieces, then a
    // rectangle. Every point of row line 1 but its ends and the loop point can go.
    const std::vector<PlaneQuad> quads{Piece(0, 0.5, 0, 1, 0, 1),   Piece(0.5, 1.5, 0, 1, 0, 1), Piece(1.5, 2, 0, 1, 0, 1),
                                       Piece(2, 3, 0, 1, 0, 1),     Piece(3, 4, 0, 1, 0, 1),     Piece(0, 0.5, 1, 1, 1, 1 + 1.0 / 3),
                                       Piece(0.5, 1.5, 1, 1 + 1.0 / 3, 1, 2), Piece(1.5, 2, 1, 2, 1, 2)};
    const auto polygons = JoinStrips(
        quads, [](double x) { return x == 2.0; }, [](const TPoint2D& p) { return p.X == 3.0 && p.Y == 0.0; });
    ASSERT_EQ(polygons.size(), 3u);  // [0,2] below, [0,2] above, [2,4] keeping (3, 0)
    double area = 0.0;
    for (const auto& polygon : polygons) {
        const std::vector<TPoint2D> corners = polygon.Corners();
        EXPECT_FALSE(Has(corners, {0.5, 1.0}) || Has(corners, {1.5, 1.0}) || Has(corners, {0.5, 0.0}));
        for (const auto& t : StripTriangles(polygon)) {
            const double turn = Turn(corners[static_cast<std::size_t>(t[0])], corners[static_cast<std::size_t>(t[1])],
                                     corners[static_cast<std::size_t>(t[2])]);
            EXPECT_LT(turn, 0.0);  // clockwise, as the quad tool's corners run
            area -= turn / 2.0;
        }
    }
    EXPECT_NEAR(area, 4.0 + 2.0 - 1.5 / 2.0, 1e-12);
    const bool loopPointKept = std::any_of(polygons.begin(), polygons.end(), [](const auto& p) { return Has(p.Corners(), {3, 0}); });
    EXPECT_TRUE(loopPointKept);
}

TEST(QuadStrips, ChainsThatBulgeTowardEachOtherStillGiveThePolygonsArea)
{
    // Near x = 12 neither next step of the zig-zag stays inside: ears are cut instead.
    const StripPolygon polygon{{{0, 1}, {11, 0.58}, {12, 0.92}, {16, 0.46}, {20, 1}},
                               {{0, 0}, {6, 0.31}, {8, 0.55}, {18, 0.34}, {20, 0}}};
    const auto corners = polygon.Corners();
    double area = 0.0;
    for (const auto& t : StripTriangles(polygon)) {
        const double turn = Turn(corners[static_cast<std::size_t>(t[0])], corners[static_cast<std::size_t>(t[1])],
                                 corners[static_cast<std::size_t>(t[2])]);
        EXPECT_LT(turn, 0.0);
        area -= turn / 2.0;
    }
    EXPECT_NEAR(area, 8.54, 1e-9);
}

}  // namespace
}  // namespace orvane::io
