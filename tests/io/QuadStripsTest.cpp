#include <gtest/gtest.h>

#include "io/QuadStrips.h"

namespace orvane::io {
namespace {

PlaneQuad Rect(double x0, double x1, double lo, double hi)
{
    return {TPoint2D{x0, hi}, TPoint2D{x1, hi}, TPoint2D{x1, lo}, TPoint2D{x0, lo}};
}

double SignedArea(const TPoint2D& a, const TPoint2D& b, const TPoint2D& c)
{
    return 0.5 * ((b.X - a.X) * (c.Y - a.Y) - (c.X - a.X) * (b.Y - a.Y));
}

TEST(QuadStrips, SliversJoinUpToColumnLinesAndLoopPointsAndKeepTheirNeighboursCorners)
{
    // Row 0..1: four slivers, a column line at 2, a loop point at (3, 0). Row 1..2: a sloped
    // piece whose corners at 0.5 and 1.5 lie on the joined cell's top.
    const std::vector<PlaneQuad> quads{Rect(0, 0.5, 0, 1), Rect(0.5, 1.5, 0, 1), Rect(1.5, 2, 0, 1), Rect(2, 3, 0, 1),
                                       Rect(3, 4, 0, 1),
                                       {TPoint2D{0.5, 1.5}, TPoint2D{1.5, 2}, TPoint2D{1.5, 1}, TPoint2D{0.5, 1}}};
    const auto polygons = JoinStrips(
        quads, [](double x) { return x == 2.0; }, [](const TPoint2D& p) { return p.X == 3.0 && p.Y == 0.0; });
    ASSERT_EQ(polygons.size(), 4u);  // the sloped piece, [0,2] with two points on top, [2,3], [3,4]
    double area = 0.0;
    std::size_t quadsLeft = 0;
    for (const auto& polygon : polygons) {
        quadsLeft += polygon.size() == 4;
        if (polygon.size() == 4 && polygon[0].Y != polygon[1].Y) continue;  // the sloped piece as given
        for (const auto& t : StripTriangles(polygon)) {
            const double a = SignedArea(polygon[static_cast<std::size_t>(t[0])], polygon[static_cast<std::size_t>(t[1])],
                                        polygon[static_cast<std::size_t>(t[2])]);
            EXPECT_LT(a, 0.0);  // clockwise, as the quad tool's corners run
            area -= a;
        }
    }
    EXPECT_EQ(quadsLeft, 3u);
    EXPECT_DOUBLE_EQ(area, 4.0);
    const auto joined = std::find_if(polygons.begin(), polygons.end(), [](const auto& p) { return p.size() == 6; });
    ASSERT_NE(joined, polygons.end());
    EXPECT_EQ((*joined)[1].X, 0.5);
    EXPECT_EQ((*joined)[2].X, 1.5);
    EXPECT_EQ((*joined)[3].X, 2.0);
}

}  // namespace
}  // namespace orvane::io
