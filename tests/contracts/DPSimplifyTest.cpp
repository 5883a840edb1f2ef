#include <gtest/gtest.h>

#include <cmath>

#include "contracts/DPSimplify.h"
#include "contracts/GeBezier.h"

namespace orvane {
namespace {

// Distance from P to the polyline.
double DistanceTo(const TVPoint2DList& line, const TPoint2D& p)
{
    double best = INFINITY;
    for (int i = 0; i + 1 < line.Count(); ++i) best = std::min(best, ge::DistanceToSegment(p, line[i], line[i + 1]));
    return best;
}

// True when sub holds points of all, in their order, with the same ends.
bool IsOrderedSubset(const TVPoint2DList& sub, const TVPoint2DList& all)
{
    int j = 0;
    for (const TPoint2D& p : sub) {
        while (j < all.Count() && !(all[j] == p)) ++j;
        if (j++ == all.Count()) return false;
    }
    return sub.First() == all.First() && sub.Last() == all.Last();
}

TEST(DPSimplify, KeepsTheShapeWithinTolAndStraightRunsComeDownToTheirEnds)
{
    TVPoint2DList line, circle;
    for (int i = 0; i < 10; ++i) line.Add({0.1 * i, 0.3 + 0.05 * i});
    for (int i = 0; i <= 400; ++i) circle.Add({std::cos(2 * M_PI * i / 400), std::sin(2 * M_PI * i / 400)});
    for (bool quality : {true, false}) {
        EXPECT_EQ(DPSimplify(line, 0.001, quality)->Items(), (TDynPoints2D{line.First(), line.Last()}));
        const auto result = DPSimplify(circle, 0.001, quality);
        EXPECT_TRUE(IsOrderedSubset(*result, circle));
        EXPECT_LT(result->Count(), 200);
        EXPECT_GT(result->Count(), 20);  // a closed loop is not collapsed onto its end points
        // The radial pass before Douglas-Peucker may add up to one more tolerance.
        for (const TPoint2D& p : circle) EXPECT_LE(DistanceTo(*result, p), quality ? 0.001 : 0.002);
    }
}

TEST(DPSimplify, RadialPassDropsAPointCloseToItsPredecessorThatDouglasPeuckerKeeps)
{
    // (1.0001, 0.0016) stands 0.0016 off the chord but only 0.0008 from the point before it.
    const TVPoint2DList line({{0, 0}, {1, 0.0008}, {1.0001, 0.0016}, {2, 0}});
    const auto fine = DPSimplify(line, 0.001, true);
    ASSERT_EQ(fine->Count(), 3);
    EXPECT_EQ(fine->GetItem(1), TPoint2D(1.0001, 0.0016));
    EXPECT_EQ(DPSimplify(line, 0.001, false)->Count(), 2);
}

TEST(DPSimplify, ShortListsZeroAndNegativeTolerance)
{
    EXPECT_EQ(DPSimplify(TVPoint2DList(), 0.1, true)->Count(), 0);
    EXPECT_EQ(DPSimplify(TVPoint2DList({{1, 2}}), 0.1, true)->Count(), 1);
    EXPECT_EQ(DPSimplify(TVPoint2DList({{1, 2}, {1, 2}}), 0.1, true)->Count(), 2);
    const TVPoint2DList bent({{0, 0}, {1, 1}, {2, 2}, {3, 0}});
    EXPECT_EQ(DPSimplify(bent, 0.0, true)->Count(), 3);  // (1, 1) lies exactly on its segment
    EXPECT_EQ(DPSimplify(bent, -1.0, true)->Count(), 4);
}

}  // namespace
}  // namespace orvane
