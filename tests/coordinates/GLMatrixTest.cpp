// The OpenGL matrix layout, the matrix arithmetic and the point conversions between world,
// view, device and screen coordinates, against GLU's own gluProject and gluUnProject.
#include <GL/glu.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <random>

#include "coordinates/GLMatrix.h"

namespace orvane {
namespace {

const TGlMatrix kIdentity{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
const TPoint3D kUntouched{-123, -456, -789};
const TPoint2D kUntouched2D{-123, -456};

// Random matrices with every element set (no symmetry, so a transposed layout or a swapped
// product order shows, and a projective bottom row), well conditioned.
class Samples {
public:
    explicit Samples(unsigned Seed) : FRandom(Seed) {}
    double Uniform(double Low, double High) { return std::uniform_real_distribution<double>(Low, High)(FRandom); }
    TGlMatrix General()
    {
        TGlMatrix m;
        for (double& e : m) e = Uniform(-0.5, 0.5);
        for (int i = 0; i < 4; ++i) m[5 * i] += Uniform(1.5, 2.5);
        return m;
    }
    TPoint3D Point(double Extent) { return {Uniform(-Extent, Extent), Uniform(-Extent, Extent), Uniform(-Extent, Extent)}; }

private:
    std::mt19937_64 FRandom;
};

// A projection as glFrustum builds it: the camera at the origin looking down -z.
TGlMatrix Frustum(double l, double r, double b, double t, double n, double f)
{
    return {2 * n / (r - l), 0, 0, 0, 0, 2 * n / (t - b), 0, 0, (r + l) / (r - l), (t + b) / (t - b),
            -(f + n) / (f - n), -1, 0, 0, -2 * f * n / (f - n), 0};
}

void ExpectPoint(const TPoint3D& Actual, const TPoint3D& Expected, double Tol = 1e-12)
{
    EXPECT_TRUE(Actual.Equals(Expected, Tol)) << "(" << Actual.X << ", " << Actual.Y << ", " << Actual.Z << ")";
}

void ExpectRelative(double Actual, double Expected, const char* What)
{
    EXPECT_NEAR(Actual, Expected, 1e-12 * std::max(1.0, std::fabs(Expected))) << What;
}

TEST(GLMatrixLayout, KernelColumnsBecomeGlColumnsAndOpenGlMovesPointsLikeTheKernel)
{
    TMatrix3D m;
    m.SetColVector(0, {1, 2, 3});
    m.SetColVector(1, {4, 5, 6});
    m.SetColVector(2, {7, 8, 9});
    m.SetRowVector(3, {10, 11, 12});
    TGlMatrix gl;
    gl.fill(NAN);
    EXPECT_TRUE(GksMatrixToGl(m, gl));
    EXPECT_EQ(gl, (TGlMatrix{1, 2, 3, 0, 4, 5, 6, 0, 7, 8, 9, 0, 10, 11, 12, 1}));
    // The bottom row is not read on the way back, and every element is overwritten.
    gl[3] = gl[7] = gl[11] = gl[15] = NAN;
    TMatrix3D back;
    back.RotateZ(1.0);
    EXPECT_TRUE(GlMatrixToGks(gl, back));
    EXPECT_TRUE(back == m);

    // GLU applies the model matrix as OpenGL does; an identity projection and the viewport
    // (-1, -1, 2, 2) make its window x and y the model-view coordinates; depth -1..1 to 0..1.
    TMatrix3D turn;
    turn.RotateZ(std::numbers::pi / 6);
    turn.SetRowVector(3, {5, -2, 3});
    GksMatrixToGl(turn, gl);
    const GLint viewport[4] = {-1, -1, 2, 2};
    for (const TPoint3D p : {TPoint3D{1, 0, 0}, TPoint3D{0.3, -0.7, 0.2}, TPoint3D{-0.4, 0.1, -0.6}}) {
        GLdouble x, y, z;
        ASSERT_EQ(gluProject(p.X, p.Y, p.Z, gl.data(), kIdentity.data(), viewport, &x, &y, &z), GL_TRUE);
        const TPoint3D expected = turn.Transform(p);
        ExpectPoint({x, y, z}, {expected.X, expected.Y, expected.Z * 0.5 + 0.5});
    }
}

TEST(GLMatrixArithmetic, ColumnVectorsProductOrderAndInverses)
{
    TGlMatrix m;
    for (int i = 0; i < 16; ++i) m[i] = i + 1;
    TGlVector out;
    EXPECT_TRUE(MultMatrixVecd(m, {1, 2, 3, 4}, out));
    EXPECT_EQ(out, (TGlVector{90, 100, 110, 120}));  // a row-wise product gives 30 first

    // A translation by +1 along x, then a doubling: the origin ends at x = 2, not 1.
    TGlMatrix translate = kIdentity, scale = kIdentity, product;
    translate[12] = 1;
    scale[0] = scale[5] = scale[10] = 2;
    EXPECT_TRUE(MultMatricesd(translate, scale, product));
    MultMatrixVecd(product, {0, 0, 0, 1}, out);
    EXPECT_EQ(out, (TGlVector{2, 0, 0, 1}));

    Samples samples(11);
    for (int n = 0; n < 30; ++n) {
        const TGlMatrix a = samples.General(), b = samples.General();
        const TGlVector v{samples.Uniform(-1, 1), samples.Uniform(-1, 1), samples.Uniform(-1, 1), 1};
        TGlVector once, first, twice;
        MultMatricesd(a, b, product);
        MultMatrixVecd(product, v, once);
        MultMatrixVecd(a, v, first);
        MultMatrixVecd(b, first, twice);
        for (int i = 0; i < 4; ++i) EXPECT_NEAR(once[i], twice[i], 1e-12);

        TGlMatrix inverse, inPlace = a;
        ASSERT_TRUE(InvertMatrixd(a, inverse));
        for (const auto& [x, y] : {std::pair<const TGlMatrix*, const TGlMatrix*>{&a, &inverse}, {&inverse, &a}}) {
            MultMatricesd(*x, *y, product);
            for (int i = 0; i < 16; ++i) EXPECT_NEAR(product[i], kIdentity[i], 1e-12) << i;
        }
        ASSERT_TRUE(InvertMatrixd(inPlace, inPlace));
        EXPECT_EQ(inPlace, inverse);
    }
}

TEST(GLMatrixArithmetic, OnlyAnExactlyZeroDeterminantIsRejected)
{
    TGlMatrix untouched, out;
    untouched.fill(42);
    out = untouched;
    EXPECT_FALSE(InvertMatrixd(TGlMatrix{}, out));
    // Rank 3: the second column is twice the first.
    EXPECT_FALSE(InvertMatrixd({1, 2, 3, 4, 2, 4, 6, 8, 0, 1, 5, 2, 7, 1, 1, 3}, out));
    EXPECT_EQ(out, untouched);
    // A determinant of 1e-300 is inverted; the off-diagonal entry makes the cofactors no plain diagonal.
    TGlMatrix tiny = kIdentity;
    tiny[0] = tiny[5] = tiny[10] = 1e-100;
    tiny[4] = 3e-100;
    ASSERT_TRUE(InvertMatrixd(tiny, out));
    EXPECT_DOUBLE_EQ(out[0], 1e100);
    EXPECT_DOUBLE_EQ(out[5], 1e100);
    EXPECT_DOUBLE_EQ(out[4], -3e100);
    EXPECT_DOUBLE_EQ(out[15], 1.0);
}

TEST(GLMatrixConversion, WorldToScreenAndBackAgreeWithGluAndRoundTrip)
{
    Samples samples(2024);
    int compared = 0;
    for (int n = 0; n < 400; ++n) {
        const TGlMatrix model = samples.General(), projection = samples.General();
        const TGlViewport viewport{static_cast<int>(samples.Uniform(-50, 50)), static_cast<int>(samples.Uniform(-50, 50)),
                                   static_cast<int>(samples.Uniform(1, 800)), static_cast<int>(samples.Uniform(1, 600))};
        const TPoint3D p = samples.Point(3);
        // Away from the w test, where GLU (exact 0) and these functions (1e-6) differ.
        TGlVector view, clip;
        MultMatrixVecd(model, {p.X, p.Y, p.Z, 1}, view);
        MultMatrixVecd(projection, view, clip);
        if (std::fabs(clip[3]) < 1e-3) continue;
        ++compared;

        GLdouble x, y, z;
        ASSERT_EQ(gluProject(p.X, p.Y, p.Z, model.data(), projection.data(), viewport.data(), &x, &y, &z), GL_TRUE);
        TPoint2D scr;
        ASSERT_TRUE(GlWcsToScr(p, model, projection, viewport, scr));
        ExpectRelative(scr.X, x, "screen x");
        ExpectRelative(scr.Y, y, "screen y");
        TPoint3D vcs, dcs;
        ASSERT_TRUE(GLWcsToVcs(p, model, vcs));
        ASSERT_TRUE(GLVcsToDcs(vcs, projection, viewport, dcs));
        ExpectRelative(dcs.X, x, "device x");
        ExpectRelative(dcs.Y, y, "device y");
        ExpectRelative(dcs.Z, z, "device depth");
        // Back with the depth supplied, and from view to world.
        TPoint2D fromDevice;
        TPoint3D withDepth, back;
        ASSERT_TRUE(GLDcsToScr(dcs, fromDevice));
        ExpectRelative(fromDevice.X, x, "device to screen x");
        ExpectRelative(fromDevice.Y, y, "device to screen y");
        ASSERT_TRUE(GLScrToDcs({scr.X, scr.Y, dcs.Z}, withDepth));
        ASSERT_TRUE(GlScrToWcs(withDepth, model, projection, viewport, back));
        ExpectPoint(back, p, 1e-8);
        ASSERT_TRUE(GLVcsToWcs(vcs, model, back));
        ExpectPoint(back, p, 1e-12);

        const TPoint3D window{samples.Uniform(-100, 900), samples.Uniform(-100, 700), samples.Uniform(0, 1)};
        GLdouble wx, wy, wz;
        TPoint3D wcs;
        const bool gluOk = gluUnProject(window.X, window.Y, window.Z, model.data(), projection.data(), viewport.data(),
                                        &wx, &wy, &wz) == GL_TRUE;
        ASSERT_EQ(GlScrToWcs(window, model, projection, viewport, wcs), gluOk);
        // Near w = 0 both blow up; compare where the result is moderate.
        if (!gluOk || std::max({std::fabs(wx), std::fabs(wy), std::fabs(wz)}) > 1e3) continue;
        ExpectRelative(wcs.X, wx, "world x");
        ExpectRelative(wcs.Y, wy, "world y");
        ExpectRelative(wcs.Z, wz, "world z");
    }
    EXPECT_GT(compared, 300);
}

TEST(GLMatrixConversion, OutputMayBeTheInputAndDeviceToViewReadsAHomogeneousPoint)
{
    // Translation (2, 4, 6) and w = 2: the origin goes to (1, 2, 3) and back.
    TGlMatrix model = kIdentity;
    model[12] = 2, model[13] = 4, model[14] = 6, model[15] = 2;
    TPoint3D p{0, 0, 0};
    ASSERT_TRUE(GLWcsToVcs(p, model, p));
    EXPECT_EQ(p, (TPoint3D{1, 2, 3}));
    ASSERT_TRUE(GLVcsToWcs(p, model, p));
    ExpectPoint(p, {0, 0, 0});

    // Not the inverse of view to device: x and y are divided by z where z is not 0, and the
    // viewport does not enter.
    const TGlMatrix projection{2, 0, 0, 0, 0, 4, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    for (const TGlViewport v : {TGlViewport{0, 0, 1, 1}, TGlViewport{10, 20, 200, 100}}) {
        ASSERT_TRUE(GLDcsToVcs({0.25, 0.75, 0}, projection, v, p));  // z = 0: the near plane
        ExpectPoint(p, {-0.25, 0.125, -1});
        ASSERT_TRUE(GLDcsToVcs({0.5, 1.5, 2}, projection, v, p));  // z = 2 halves x and y: the far plane
        ExpectPoint(p, {-0.25, 0.125, 1});
    }
}

TEST(GLMatrixConversion, RejectionsKeepTheOutput)
{
    const TGlMatrix frustum = Frustum(-1, 1, -1, 1, 1, 100);
    const TGlMatrix singular{1, 2, 3, 4, 2, 4, 6, 8, 0, 1, 5, 2, 7, 1, 1, 3};
    TGlMatrix nearZeroW = kIdentity;
    nearZeroW[15] = 0.9e-6;  // the w test's tolerance is 1e-6
    const TGlViewport good{0, 0, 640, 480}, narrow{0, 0, -1, 100}, flat{0, 0, 100, -1};
    TPoint3D out = kUntouched;
    TPoint2D scr = kUntouched2D;
    const std::function<bool()> rejected[] = {
        [&] { return GLVcsToDcs({0.5, 0.5, 0}, frustum, good, out); },  // on the camera plane
        [&] { return GlWcsToScr({0.5, 0.5, 0}, kIdentity, frustum, good, scr); },
        [&] { return GLWcsToVcs({0, 0, 0}, nearZeroW, out); },
        [&] { return GLVcsToDcs({0, 0, 0}, nearZeroW, good, out); },
        [&] { return GLVcsToWcs({1, 2, 3}, singular, out); },
        [&] { return GLDcsToVcs({0.1, 0.2, 0.3}, singular, good, out); },
        [&] { return GlScrToWcs({1, 2, 0.5}, singular, kIdentity, good, out); },
        [&] { return GlScrToWcs({1, 2, 0.5}, kIdentity, singular, good, out); },
    };
    for (std::size_t i = 0; i < std::size(rejected); ++i) EXPECT_FALSE(rejected[i]()) << "case " << i;
    for (const TGlViewport v : {narrow, flat}) {
        EXPECT_FALSE(GLVcsToDcs({0.1, 0.2, 0.3}, kIdentity, v, out));
        EXPECT_FALSE(GlWcsToScr({0.1, 0.2, 0.3}, kIdentity, kIdentity, v, scr));
        EXPECT_FALSE(GLDcsToVcs({0.1, 0.2, 0.3}, kIdentity, v, out));
        EXPECT_FALSE(GlScrToWcs({0.1, 0.2, 0.3}, kIdentity, kIdentity, v, out));
    }
    EXPECT_EQ(out, kUntouched);
    EXPECT_EQ(scr, kUntouched2D);

    // Just outside the w tolerance passes.
    nearZeroW[15] = -1.1e-6;
    EXPECT_TRUE(GLWcsToVcs({0, 0, 0}, nearZeroW, out));
    EXPECT_TRUE(GLVcsToDcs({0, 0, 0}, nearZeroW, good, out));
    // A viewport of size 0 passes: every point lands on its origin, and the way back divides by
    // the size, answering True with non-finite coordinates.
    const TGlViewport empty{10, 20, 0, 0};
    ASSERT_TRUE(GLVcsToDcs({0.7, -0.3, 0}, kIdentity, empty, out));
    EXPECT_EQ(out, (TPoint3D{10, 20, 0.5}));
    ASSERT_TRUE(GlWcsToScr({0.7, -0.3, 0}, kIdentity, kIdentity, empty, scr));
    EXPECT_EQ(scr, (TPoint2D{10, 20}));
    ASSERT_TRUE(GlScrToWcs({11, 21, 0.5}, kIdentity, kIdentity, empty, out));
    EXPECT_FALSE(std::isfinite(out.X) || std::isfinite(out.Y));
}

}  // namespace
}  // namespace orvane
