#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "contracts/Cadtypes.h"

namespace orvane {
namespace {

void ExpectNear(const TPoint3D& A, const TPoint3D& B, double Tol = 1e-12)
{
    EXPECT_TRUE(A.Equals(B, Tol)) << "(" << A.X << ", " << A.Y << ", " << A.Z << ") vs ("
                                  << B.X << ", " << B.Y << ", " << B.Z << ")";
}

TEST(KernelValues, ToleranceComparisonsReadAsAboveAndBelow)
{
    EXPECT_TRUE(fEqual(1.0, 1.0 + 1e-7, 1e-6));
    EXPECT_FALSE(fEqual(1.0, 1.0 + 2e-6, 1e-6));
    EXPECT_TRUE(fGreat(1.0 + 2e-6, 1.0, 1e-6));
    EXPECT_FALSE(fGreat(1.0 + 1e-7, 1.0, 1e-6));
    EXPECT_FALSE(fGreat(1.0, 2.0, 1e-6));
    EXPECT_TRUE(fSmall(1.0, 1.0 + 2e-6, 1e-6));
    EXPECT_FALSE(fSmall(1.0, 1.0 + 1e-7, 1e-6));
    EXPECT_FALSE(fSmall(2.0, 1.0, 1e-6));
    EXPECT_TRUE(fEqual(1.0f, 1.5f, 0.5f));
    EXPECT_FALSE(fEqual(1.0f, 1.5f, 0.25f));
    EXPECT_TRUE(fGreat(1.5f, 1.0f, 0.25f));
    EXPECT_TRUE(fSmall(1.0f, 1.5f, 0.25f));
}

TEST(KernelValues, NormalOfShortVectorIsZero)
{
    EXPECT_EQ(TPoint3D().Normal(), TPoint3D::FZero);
    EXPECT_EQ(TPoint3D(1e-13, 0, 0).Normal(), TPoint3D::FZero);
    EXPECT_EQ(TPoint3D(NAN, 0, 0).Normal(), TPoint3D::FZero);
    ExpectNear(TPoint3D(1e-9, 0, 0).Normal(), {1, 0, 0});
    ExpectNear(TPoint3D(3, 0, 4).Normal(), {0.6, 0, 0.8});
    ExpectNear(TPoint3D(1, 0, 0).CrossMul({0, 1, 0}), {0, 0, 1});
    EXPECT_DOUBLE_EQ(TPoint3D(1, 2, 2).DistanceTo({0, 0, 0}), 3.0);
    EXPECT_TRUE(TPoint2D(0, 0).Equals({0, 1e-6}, 1e-6));
    EXPECT_FALSE(TPoint2D(0, 0).Equals({0, 1.1e-6}, 1e-6));
    EXPECT_TRUE(DefTol.PointEquals(TPoint2D(1, 1), TPoint2D(1, 1 + 5e-7)));
}

TEST(KernelValues, RectanglesAndBoxes)
{
    const TRect2D r = TRect2D::CreateNormal({3, -1}, {1, 2});
    EXPECT_EQ(r.Min, TPoint2D(1, -1));
    EXPECT_EQ(r.Max, TPoint2D(3, 2));
    EXPECT_EQ(r.CenterPoint(), TPoint2D(2, 0.5));
    EXPECT_EQ(r.XMinYMax(), TPoint2D(1, 2));
    EXPECT_EQ(r.XMaxYMin(), TPoint2D(3, -1));
    const TRect2D box = CalcAABB({{0, 5}, {-2, 1}, {4, 3}});
    EXPECT_EQ(box.Min, TPoint2D(-2, 1));
    EXPECT_EQ(box.Max, TPoint2D(4, 5));
    try { CalcAABB({}); FAIL(); } catch (const EArgumentException& e) {
        EXPECT_STREQ(e.what(), "CalcAABB: the point list is empty");
    }
    EXPECT_DOUBLE_EQ((TGeInterval{0.25, 2.0}).GetLength(), 1.75);
}

TEST(KernelValues, LineIsOnSegmentButNeverOnAPoint)
{
    double param = -1;
    const TLine3D line({0, 0, 0}, {2, 0, 0});
    EXPECT_TRUE(line.IsOn({1, 5e-7, 0}, DefTol, param));
    EXPECT_DOUBLE_EQ(param, 0.5);
    EXPECT_FALSE(line.IsOn({1, 1e-5, 0}, DefTol, param));
    EXPECT_FALSE(line.IsOn({3, 0, 0}, DefTol, param));  // on the line, past the end
    EXPECT_DOUBLE_EQ(param, 1.5);
    // A closed cross-section: both ends coincide, so nothing is on it, not even that point.
    const TLine3D closed({1, 1, 1}, {1, 1, 1 + 1e-7});
    EXPECT_FALSE(closed.IsOn({1, 1, 1}, DefTol, param));
    EXPECT_FALSE(closed.IsOn({1, 2, 1}, DefTol, param));
    EXPECT_EQ(param, 0.0);
}

TEST(KernelMatrix, IdentityResetAndExactEquality)
{
    TMatrix3D m = TMatrix3D::CreateIdent();
    EXPECT_TRUE(m.IsIdent());
    m.RotateZ(0.3);
    EXPECT_FALSE(m.IsIdent());
    m.Reset();
    EXPECT_TRUE(m.IsIdent());
    EXPECT_TRUE(m == TMatrix3D::CreateIdent());
    TMatrix3D n;
    n.M[3][2] = 1e-300;  // equality is exact: no tolerance hides this
    EXPECT_FALSE(n == m);
    EXPECT_FALSE(n.IsIdent());
}

TEST(KernelMatrix, TransformUsesColumnsAsAxisImagesAndRowThreeAsTranslation)
{
    TMatrix3D m;
    m.SetColVector(0, {0, 1, 0});   // x -> y
    m.SetColVector(1, {-1, 0, 0});  // y -> -x
    m.SetColVector(2, {0, 0, 2});   // z -> 2z
    m.SetRowVector(3, {10, 20, 30});
    EXPECT_EQ(m.M[0][1], -1.0);  // row 0 holds the x components of the axis images
    EXPECT_EQ(m.M[1][0], 1.0);
    ExpectNear(m.Transform({1, 2, 3}), {10 - 2, 20 + 1, 30 + 6});
    ExpectNear(m.TransformVector({1, 2, 3}), {-2, 1, 6});
    EXPECT_EQ(m.GetRowVector(3), TPoint3D(10, 20, 30));
    EXPECT_EQ(m.GetRowVector(0), TPoint3D(0, -1, 0));
    EXPECT_EQ(m.GetColVector(2), TPoint3D(0, 0, 2));
    EXPECT_THROW(m.GetColVector(3), EArgumentOutOfRangeException);
    EXPECT_THROW(m.SetRowVector(4, {}), EArgumentOutOfRangeException);
    EXPECT_THROW(m.GetRowVector(-1), EArgumentOutOfRangeException);
}

TEST(KernelMatrix, RotateZIsCounterClockwiseInRadians)
{
    TMatrix3D m;
    m.RotateZ(std::numbers::pi / 2);
    ExpectNear(m.Transform({1, 0, 0}), {0, 1, 0});
    ExpectNear(m.GetColVector(0), {0, 1, 0});
    ExpectNear(m.Transform({0, 0, 5}), {0, 0, 5});
    m.RotateZ(std::numbers::pi / 2);  // composes: two quarter turns
    ExpectNear(m.Transform({1, 0, 0}), {-1, 0, 0});
}

TEST(KernelMatrix, MirrorsAndComposition)
{
    TMatrix3D mirror;
    mirror.ReflexXOZ();
    ExpectNear(mirror.Transform({1, 2, 3}), {1, -2, 3});
    TMatrix3D half;
    half.ReflexY();
    ExpectNear(half.Transform({1, 2, 3}), {-1, 2, -3});
    EXPECT_FALSE(mirror == half);

    TMatrix3D shift;
    shift.SetRowVector(3, {1, 0, 0});
    TMatrix3D turn;
    turn.RotateZ(std::numbers::pi / 2);
    TMatrix3D after = shift;
    after.Multiply(turn, true);  // shift first, then turn
    ExpectNear(after.Transform({0, 0, 0}), {0, 1, 0});
    TMatrix3D before = shift;
    before.Multiply(turn, false);  // turn first, then shift
    ExpectNear(before.Transform({0, 0, 0}), {1, 0, 0});
    ExpectNear(before.Transform({1, 0, 0}), {1, 1, 0});
    TMatrix3D ident;
    ident.Multiply(after, true);
    EXPECT_TRUE(ident == after);
}

}  // namespace
}  // namespace orvane
