// Matrix layouts and the matrix arithmetic of the coordinate conversions.
#include <GL/glu.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "coordinates/GLMatrix.h"
#include "tests/coordinates/MatrixSamples.h"

namespace orvane {
namespace {

using testing::Identity;
using testing::MatrixSamples;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TMatrix3D DistinctKernelMatrix()
{
    TMatrix3D m;
    m.SetColVector(0, {1, 2, 3});
    m.SetColVector(1, {4, 5, 6});
    m.SetColVector(2, {7, 8, 9});
    m.SetRowVector(3, {10, 11, 12});
    return m;
}

TEST(GLMatrixLayout, KernelColumnsBecomeGlColumnsAndTranslationGoesToTwelve)
{
    TGlMatrix gl;
    gl.fill(kNaN);
    EXPECT_TRUE(GksMatrixToGl(DistinctKernelMatrix(), gl));
    const TGlMatrix expected{1, 2, 3, 0, 4, 5, 6, 0, 7, 8, 9, 0, 10, 11, 12, 1};
    EXPECT_EQ(gl, expected);

    // The bottom row is not read on the way back.
    gl[3] = gl[7] = gl[11] = gl[15] = kNaN;
    TMatrix3D back;
    EXPECT_TRUE(GlMatrixToGks(gl, back));
    EXPECT_TRUE(back == DistinctKernelMatrix());
}

TEST(GLMatrixLayout, TranslationRoundTripsThroughTheGlLayout)
{
    TMatrix3D translation;
    translation.SetRowVector(3, {-3.5, 0.25, 7});
    TGlMatrix gl;
    GksMatrixToGl(translation, gl);
    EXPECT_EQ(gl[12], -3.5);
    EXPECT_EQ(gl[13], 0.25);
    EXPECT_EQ(gl[14], 7.0);
    EXPECT_EQ(gl[3], 0.0);
    EXPECT_EQ(gl[7], 0.0);
    EXPECT_EQ(gl[11], 0.0);
    TMatrix3D back;
    back.RotateZ(1.0);  // every element is overwritten
    GlMatrixToGks(gl, back);
    EXPECT_TRUE(back == translation);
}

TEST(GLMatrixLayout, OpenGlMovesAPointWhereTheKernelTransformMovesIt)
{
    TMatrix3D m;
    m.RotateZ(std::numbers::pi / 6);
    m.SetRowVector(3, {5, -2, 3});
    TGlMatrix model;
    GksMatrixToGl(m, model);

    // GLU applies the model matrix as OpenGL does; an identity projection and the viewport
    // (-1, -1, 2, 2) make its window x and y the model-view coordinates themselves; the depth
    // is mapped from -1..1 to 0..1.
    const GLdouble projection[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    const GLint viewport[4] = {-1, -1, 2, 2};
    for (const TPoint3D p : {TPoint3D{1, 0, 0}, TPoint3D{0.3, -0.7, 0.2}, TPoint3D{-0.4, 0.1, -0.6}}) {
        GLdouble x, y, z;
        ASSERT_EQ(gluProject(p.X, p.Y, p.Z, model.data(), projection, viewport, &x, &y, &z), GL_TRUE);
        const TPoint3D expected = m.Transform(p);
        EXPECT_NEAR(x, expected.X, 1e-12);
        EXPECT_NEAR(y, expected.Y, 1e-12);
        EXPECT_NEAR(z, expected.Z * 0.5 + 0.5, 1e-12);
    }
}

TEST(GLMatrixArithmetic, MatrixTimesColumnVector)
{
    TGlMatrix m;
    for (int i = 0; i < 16; ++i) m[i] = i + 1;
    TGlVector out;
    EXPECT_TRUE(MultMatrixVecd(m, {1, 2, 3, 4}, out));
    // The columns 1..4, 5..8, 9..12, 13..16 weighted by 1, 2, 3, 4; a row-wise product gives 30.
    EXPECT_EQ(out, (TGlVector{90, 100, 110, 120}));
}

TEST(GLMatrixArithmetic, ProductAppliesTheFirstMatrixFirst)
{
    // A translation by +1 along x, then a doubling: the origin ends at x = 2, not 1.
    TGlMatrix translate = Identity();
    translate[12] = 1;
    TGlMatrix scale = Identity();
    scale[0] = scale[5] = scale[10] = 2;
    TGlMatrix product;
    EXPECT_TRUE(MultMatricesd(translate, scale, product));
    TGlVector origin;
    MultMatrixVecd(product, {0, 0, 0, 1}, origin);
    EXPECT_EQ(origin, (TGlVector{2, 0, 0, 1}));

    MatrixSamples samples(7);
    for (int n = 0; n < 20; ++n) {
        const TGlMatrix a = samples.General();
        const TGlMatrix b = samples.General();
        const TGlVector v{samples.Uniform(-1, 1), samples.Uniform(-1, 1), samples.Uniform(-1, 1), 1};
        TGlVector once, first, twice;
        MultMatricesd(a, b, product);
        MultMatrixVecd(product, v, once);
        MultMatrixVecd(a, v, first);
        MultMatrixVecd(b, first, twice);
        for (int i = 0; i < 4; ++i) EXPECT_NEAR(once[i], twice[i], 1e-12);
    }
}

void ExpectIdentity(const TGlMatrix& AMatrix, double ATolerance)
{
    const TGlMatrix identity = Identity();
    for (int i = 0; i < 16; ++i) EXPECT_NEAR(AMatrix[i], identity[i], ATolerance) << "element " << i;
}

TEST(GLMatrixInvert, RandomMatricesInvertAlsoInPlace)
{
    MatrixSamples samples(11);
    for (int n = 0; n < 50; ++n) {
        const TGlMatrix m = samples.General();
        TGlMatrix inverse;
        ASSERT_TRUE(InvertMatrixd(m, inverse));
        TGlMatrix product;
        MultMatricesd(m, inverse, product);
        ExpectIdentity(product, 1e-12);
        MultMatricesd(inverse, m, product);
        ExpectIdentity(product, 1e-12);

        TGlMatrix inPlace = m;
        ASSERT_TRUE(InvertMatrixd(inPlace, inPlace));
        EXPECT_EQ(inPlace, inverse);
    }
    TGlMatrix inverse;
    ASSERT_TRUE(InvertMatrixd(Identity(), inverse));
    EXPECT_EQ(inverse, Identity());
}

TEST(GLMatrixInvert, OnlyAnExactlyZeroDeterminantIsRejected)
{
    TGlMatrix untouched;
    untouched.fill(42);
    TGlMatrix out = untouched;
    EXPECT_FALSE(InvertMatrixd(TGlMatrix{}, out));
    EXPECT_EQ(out, untouched);

    // Rank 3: the second column is twice the first.
    const TGlMatrix rankThree{1, 2, 3, 4, 2, 4, 6, 8, 0, 1, 5, 2, 7, 1, 1, 3};
    EXPECT_FALSE(InvertMatrixd(rankThree, out));
    EXPECT_EQ(out, untouched);

    // A determinant of 1e-300 is inverted, not rejected.
    TGlMatrix tiny = Identity();
    tiny[0] = tiny[5] = tiny[10] = 1e-100;
    tiny[4] = 3e-100;  // off the diagonal, so the cofactors are not a plain diagonal
    ASSERT_TRUE(InvertMatrixd(tiny, out));
    EXPECT_DOUBLE_EQ(out[0], 1e100);
    EXPECT_DOUBLE_EQ(out[5], 1e100);
    EXPECT_DOUBLE_EQ(out[4], -3e100);
    EXPECT_DOUBLE_EQ(out[15], 1.0);
}

}  // namespace
}  // namespace orvane
