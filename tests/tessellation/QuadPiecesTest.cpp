// The pieces of the quad road: the point evaluation that extrapolates a little past the knot
// range (inside it, it is checked against the kernel at every quad corner of the shape
// library's meshes), the quad normals and their repair along runs, and quads split into
// triangles.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "contracts/PrimitiveCodes.h"
#include "tessellation/QuadNormals.h"
#include "tessellation/TempNurbsPointEval.h"
#include "tessellation/TriangleArrays.h"
#include "tests/support/MessageCapture.h"

namespace orvane {
namespace {

using ::testing::MatchesRegex;
using testing::Raised;

TEST(TempNurbsPointEval, ExtrapolatesInsideTheBandAndClampsBeyondIt)
{
    // x = u^2 along U (a quadratic Bezier with x-coordinates 0, 0, 1), y = v.
    TDynPoints3D pts;
    for (double x : {0.0, 0.0, 1.0})
        for (int j = 0; j < 2; ++j) pts.push_back({x, 1.0 * j, 0.0});
    const TGeNurbsSurface parabola(3, 2, 2, 1, {0, 0, 0, 1, 1, 1}, {0, 0, 1, 1}, pts);
    const double tol = 0.001;
    const TTempNurbsPointEval eval(tol), wide(0.01);
    auto x = [&](const TTempNurbsPointEval& e, double u) { return e.EvalPointOnNurbsSurface(parabola, {u, 0.5}).X; };
    // Up to two tolerances (the band's edge, within 1e-6) past either end the end span's
    // polynomial goes on, where the kernel clamps.
    for (double u : {1.0 + tol, -tol, 1.0 + 2 * tol}) EXPECT_NEAR(x(eval, u), u * u, 1e-15) << u;
    EXPECT_EQ(parabola.GetPoint(1.0 + tol, 0.5).X, 1.0);
    // Three tolerances out, the end control point stands alone; the band scales with the tolerance.
    EXPECT_EQ(x(eval, 1.0 + 3 * tol), 1.0);
    EXPECT_EQ(x(eval, -3 * tol), 0.0);
    EXPECT_NEAR(x(wide, 1.0 + 3 * tol), std::pow(1.0 + 3 * tol, 2), 1e-15);
}

const TPoint3D kX{1, 0, 0}, kY{0, 1, 0}, kZ{0, 0, 1};

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
    for (int k = 0; k < 4; ++k) EXPECT_LE(N[4 * Quad + k].DistanceTo(expected[k]), 1e-15) << "quad " << Quad << " point " << k;
}

TEST(QuadNormals, FlatNormalsFallBackCornerByCornerAndThenToThePreviousQuad)
{
    // The first edge is made unit length before the cross product, and the result again.
    EXPECT_EQ(TQuadNormals::CalcNormal({0, 0, 0}, {5, 0, 0}, {0, 7, 0}), kZ);
    EXPECT_EQ(TQuadNormals::CalcNormal({0, 0, 0}, {0, 7, 0}, {5, 0, 0}), -kZ);
    EXPECT_EQ(TQuadNormals::CalcNormal({1, 1, 1}, {1, 1, 1}, {0, 7, 0}), TPoint3D::FZero);
    // P0 = P1: the normal comes from P1, P2, P3; with P1 = P2 = P3 only P3, P0, P2 is left, and it is zero.
    const TList<TPoint3D> collapsed({{1, 1, 0}, {1, 1, 0}, {1, 0, 0}, {0, 0, 0}});
    EXPECT_EQ(TQuadNormals::GetNormalListFromVertexList(collapsed)->First(),
              TQuadNormals::CalcNormal({1, 1, 0}, {1, 0, 0}, {0, 0, 0}));
    EXPECT_EQ(TQuadNormals::CalcNormal({0, 1, 0}, {1, 0, 0}, {1, 0, 0}, {1, 0, 0}), TPoint3D::FZero);

    // A wholly degenerate quad takes the previous quad's normal; a first one stays zero.
    const auto normals = TQuadNormals::GetNormalListFromVertexList(TList<TPoint3D>({{2, 2, 2}, {2, 2, 2}, {2, 2, 2}, {2, 2, 2},
                                                                                   {0, 1, 0}, {1, 1, 0}, {1, 0, 0}, {0, 0, 0},
                                                                                   {3, 3, 3}, {3, 3, 3}, {3, 3, 3}, {3, 3, 3}}));
    ASSERT_EQ(normals->Count(), 12);
    ExpectQuad(*normals, 0, {}, {}, {}, {});
    ExpectQuad(*normals, 1, -kZ, -kZ, -kZ, -kZ);
    ExpectQuad(*normals, 2, -kZ, -kZ, -kZ, -kZ);
    EXPECT_EQ(TQuadNormals::GetNormalListFromVertexList(TList<TPoint3D>())->Count(), 0);
    const TList<TPoint3D> five({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {2, 2, 2}});
    EXPECT_THAT(Raised<EAssertionFailed>([&] { TQuadNormals::GetNormalListFromVertexList(five); }),
                MatchesRegex("得到四边形划分数据不为4的倍数 \\(uTessQuadsTriangulator, line [0-9]+\\)"));
}

TEST(QuadNormals, RunsTakeSAndTAtTheEndsAndAverageAcrossEveryEdge)
{
    // Three columns of two quads, flat normals X, Y, Z: the middle column has an edge on both sides.
    TList<TPoint3D> n = Flat({kX, kX, kY, kY, kZ, kZ});
    const TPoint3D s{0.6, 0.8, 0}, t{0, 0.6, 0.8};
    TQuadNormals::FixNormalRuns(n, s, t);
    const double h = std::sqrt(0.5);
    const TPoint3D xy{h, h, 0}, yz{0, h, h};
    for (int q = 0; q < 2; ++q) {
        ExpectQuad(n, q, s, xy, xy, s);
        ExpectQuad(n, 2 + q, xy, yz, yz, xy);
        ExpectQuad(n, 4 + q, yz, t, t, yz);
    }
    // S and T pointing away from the flat normals are turned; a single run takes only them.
    n = Flat({kZ, kZ, kZ});
    const TPoint3D away{0, -0.6, -0.8}, back{-0.6, 0, -0.8};
    TQuadNormals::FixNormalRuns(n, away, back);
    for (int q = 0; q < 3; ++q) ExpectQuad(n, q, -away, -back, -back, -away);
    // A fold back on itself: the sum of the two flat normals has no direction.
    n = Flat({kZ, -kZ});
    TQuadNormals::FixNormalRuns(n, kZ, -kZ);
    ExpectQuad(n, 0, kZ, {}, {}, kZ);
    ExpectQuad(n, 1, {}, -kZ, -kZ, {});
}

// Quads split along the diagonal from P0 are checked on every shape's mesh.
TEST(TriangleArrays, TrianglesPassAndNormalsMustMatchTheVertices)
{
    const TDynGLFloat triangle{0, 0, 0, 1, 0, 0, 1, 1, 0};
    TDynGLFloat v = triangle, n = triangle, shortNorm{0, 0, 1};
    TTriangleArrays::TriangulateVertexAndNormal(GL_TRIANGLES, v, n);
    EXPECT_EQ(v, triangle);
    EXPECT_THAT(Raised<EAssertionFailed>([&] { TTriangleArrays::TriangulateVertexAndNormal(GL_TRIANGLES, v, shortNorm); }),
                MatchesRegex("Assertion failure \\(uTessQuadsTriangulator, line [0-9]+\\)"));
}

}  // namespace
}  // namespace orvane
