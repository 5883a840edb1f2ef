#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "tessellation/QuadNormals.h"

namespace orvane {
namespace {

using ::testing::MatchesRegex;

const TPoint3D kX{1, 0, 0};
const TPoint3D kY{0, 1, 0};
const TPoint3D kZ{0, 0, 1};

TList<TPoint3D> Quads(std::initializer_list<TPoint3D> Corners)
{
    return TList<TPoint3D>(Corners);
}

// A normal list of one flat normal a quad, four entries each.
TList<TPoint3D> Flat(std::initializer_list<TPoint3D> PerQuad)
{
    TList<TPoint3D> n;
    for (const TPoint3D& f : PerQuad)
        for (int k = 0; k < 4; ++k) n.Add(f);
    return n;
}

void ExpectQuad(const TList<TPoint3D>& N, int Quad, const TPoint3D& P0, const TPoint3D& P1, const TPoint3D& P2,
                const TPoint3D& P3)
{
    const TPoint3D expected[4] = {P0, P1, P2, P3};
    for (int k = 0; k < 4; ++k)
        EXPECT_LE(N[4 * Quad + k].DistanceTo(expected[k]), 1e-15) << "quad " << Quad << " point " << k;
}

TEST(QuadNormalsTest, CalcNormalNormalisesTheFirstEdgeOnlyBeforeTheCrossProduct)
{
    // The first edge made unit length, the second not: a long second edge changes nothing
    // in the direction, but the result is made unit length again.
    EXPECT_EQ(TQuadNormals::CalcNormal({0, 0, 0}, {5, 0, 0}, {0, 7, 0}), kZ);
    EXPECT_EQ(TQuadNormals::CalcNormal({0, 0, 0}, {0, 7, 0}, {5, 0, 0}), -kZ);
    EXPECT_EQ(TQuadNormals::CalcNormal({1, 1, 1}, {1, 1, 1}, {0, 7, 0}), TPoint3D::FZero);
}

TEST(QuadNormalsTest, DegenerateQuadsFallBackCornerByCornerAndThenToThePreviousQuad)
{
    // P0 = P1: the normal comes from P1, P2, P3. The quad lies in z = 0 and runs clockwise
    // seen from +Z (P0 top-left, P1 top-right, P2 bottom-right, P3 bottom-left).
    const TList<TPoint3D> collapsed = Quads({{1, 1, 0}, {1, 1, 0}, {1, 0, 0}, {0, 0, 0}});
    EXPECT_EQ(TQuadNormals::GetNormalListFromVertexList(collapsed)->First(),
              TQuadNormals::CalcNormal({1, 1, 0}, {1, 0, 0}, {0, 0, 0}));
    // P1 = P2 = P3 as well: only P3, P0, P2 is left, and it is zero.
    EXPECT_EQ(TQuadNormals::CalcNormal({0, 1, 0}, {1, 0, 0}, {1, 0, 0}, {1, 0, 0}), TPoint3D::FZero);

    // A wholly degenerate quad takes the previous quad's normal; a first one stays zero.
    const TList<TPoint3D> list = Quads({{2, 2, 2}, {2, 2, 2}, {2, 2, 2}, {2, 2, 2},   // degenerate first
                                        {0, 1, 0}, {1, 1, 0}, {1, 0, 0}, {0, 0, 0},   // flat, normal -Z
                                        {3, 3, 3}, {3, 3, 3}, {3, 3, 3}, {3, 3, 3}}); // degenerate again
    const auto normals = TQuadNormals::GetNormalListFromVertexList(list);
    ASSERT_EQ(normals->Count(), 12);
    ExpectQuad(*normals, 0, {}, {}, {}, {});
    ExpectQuad(*normals, 1, -kZ, -kZ, -kZ, -kZ);
    ExpectQuad(*normals, 2, -kZ, -kZ, -kZ, -kZ);

    EXPECT_EQ(TQuadNormals::GetNormalListFromVertexList(TList<TPoint3D>())->Count(), 0);
}

TEST(QuadNormalsTest, AVertexCountThatIsNoMultipleOfFourFailsTheAssertion)
{
    try {
        TQuadNormals::GetNormalListFromVertexList(Quads({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {2, 2, 2}}));
        FAIL() << "no assertion";
    } catch (const EAssertionFailed& e) {
        EXPECT_THAT(e.what(), MatchesRegex("得到四边形划分数据不为4的倍数 \\(uTessQuadsTriangulator, line [0-9]+\\)"));
    }
}

// Three columns of two quads, flat normals X, Y, Z: the middle column is a run with an edge
// on both sides.
TEST(QuadNormalsTest, RunsTakeSAndTAtTheEndsAndAveragesAcrossEveryEdge)
{
    TList<TPoint3D> n = Flat({kX, kX, kY, kY, kZ, kZ});
    const TPoint3D s{0.6, 0.8, 0};
    const TPoint3D t{0, 0.6, 0.8};
    TQuadNormals::FixNormalRuns(n, s, t);
    const double h = std::sqrt(0.5);
    const TPoint3D xy{h, h, 0};
    const TPoint3D yz{0, h, h};
    ExpectQuad(n, 0, s, xy, xy, s);
    ExpectQuad(n, 1, s, xy, xy, s);
    ExpectQuad(n, 2, xy, yz, yz, xy);
    ExpectQuad(n, 3, xy, yz, yz, xy);
    ExpectQuad(n, 4, yz, t, t, yz);
    ExpectQuad(n, 5, yz, t, t, yz);
}

TEST(QuadNormalsTest, EndNormalsTurnToTheFlatSideAndASingleRunTakesOnlyThem)
{
    // S and T point away from the flat normals: both are turned. One run: points 0 and 3 get
    // S, points 1 and 2 get T.
    TList<TPoint3D> n = Flat({kZ, kZ, kZ});
    const TPoint3D s{0, -0.6, -0.8};
    const TPoint3D t{-0.6, 0, -0.8};
    TQuadNormals::FixNormalRuns(n, s, t);
    for (int q = 0; q < 3; ++q) ExpectQuad(n, q, -s, -t, -t, -s);
}

TEST(QuadNormalsTest, OppositeFlatNormalsAverageToZero)
{
    // A fold back on itself: the sum of the two flat normals has no direction.
    TList<TPoint3D> n = Flat({kZ, -kZ});
    TQuadNormals::FixNormalRuns(n, kZ, -kZ);
    ExpectQuad(n, 0, kZ, {}, {}, kZ);
    ExpectQuad(n, 1, {}, -kZ, -kZ, {});
}

}  // namespace
}  // namespace orvane
