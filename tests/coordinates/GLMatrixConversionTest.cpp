// Points between world, view, device and screen coordinates.
#include <GL/glu.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "coordinates/GLMatrix.h"
#include "tests/coordinates/MatrixSamples.h"

namespace orvane {
namespace {

using testing::Frustum;
using testing::Identity;
using testing::MatrixSamples;

const TPoint3D kUntouched{-123, -456, -789};
const TPoint2D kUntouched2D{-123, -456};

void ExpectRelative(double AActual, double AExpected, const char* AWhat)
{
    EXPECT_NEAR(AActual, AExpected, 1e-12 * std::max(1.0, std::fabs(AExpected))) << AWhat;
}

void ExpectPoint(const TPoint3D& AActual, const TPoint3D& AExpected, double ATolerance = 1e-12)
{
    EXPECT_NEAR(AActual.X, AExpected.X, ATolerance);
    EXPECT_NEAR(AActual.Y, AExpected.Y, ATolerance);
    EXPECT_NEAR(AActual.Z, AExpected.Z, ATolerance);
}

// The w of the point after the model-view and projection matrices.
double ClipW(const TPoint3D& APoint, const TGlMatrix& AModelView, const TGlMatrix& AProjection)
{
    TGlVector view, clip;
    MultMatrixVecd(AModelView, {APoint.X, APoint.Y, APoint.Z, 1}, view);
    MultMatrixVecd(AProjection, view, clip);
    return clip[3];
}

TEST(GLMatrixConversion, WorldToScreenAndBackAgreeWithGlu)
{
    MatrixSamples samples(2024);
    int compared = 0;
    for (int n = 0; n < 400; ++n) {
        const TGlMatrix model = samples.General();
        const TGlMatrix projection = samples.General();
        const TGlViewport viewport{static_cast<int>(samples.Uniform(-50, 50)),
                                   static_cast<int>(samples.Uniform(-50, 50)),
                                   static_cast<int>(samples.Uniform(1, 800)),
                                   static_cast<int>(samples.Uniform(1, 600))};
        const TPoint3D p = samples.Point(3);
        // Away from the w test, where GLU (exact 0) and these functions (1e-6) differ.
        if (std::fabs(ClipW(p, model, projection)) < 1e-3) continue;
        ++compared;

        GLdouble x, y, z;
        ASSERT_EQ(gluProject(p.X, p.Y, p.Z, model.data(), projection.data(), viewport.data(), &x, &y, &z),
                  GL_TRUE);
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

        const TPoint3D window{samples.Uniform(-100, 900), samples.Uniform(-100, 700), samples.Uniform(0, 1)};
        GLdouble wx, wy, wz;
        TPoint3D wcs;
        const bool gluOk = gluUnProject(window.X, window.Y, window.Z, model.data(), projection.data(),
                                        viewport.data(), &wx, &wy, &wz) == GL_TRUE;
        const bool ok = GlScrToWcs(window, model, projection, viewport, wcs);
        ASSERT_EQ(ok, gluOk);
        if (!ok) continue;
        // Near w = 0 both blow up; compare where the result is moderate.
        if (std::max({std::fabs(wx), std::fabs(wy), std::fabs(wz)}) > 1e3) continue;
        ExpectRelative(wcs.X, wx, "world x");
        ExpectRelative(wcs.Y, wy, "world y");
        ExpectRelative(wcs.Z, wz, "world z");
    }
    EXPECT_GT(compared, 300);
}

TEST(GLMatrixConversion, WorldToScreenToWorldRoundTripsWithTheDepthSupplied)
{
    // A camera 300 units from a scene 100 units wide, turned off the axes.
    constexpr double kExtent = 100;
    TMatrix3D camera;
    camera.RotateZ(0.7);
    camera.SetRowVector(3, {4, -9, -300});
    TGlMatrix model;
    GksMatrixToGl(camera, model);
    model[4 * 1 + 2] = 0.3;  // a shear in z, so that x and y are not alone in moving
    const TGlMatrix projection = Frustum(-0.5, 0.6, -0.4, 0.45, 1, 1000);
    const TGlViewport viewport{15, 30, 1024, 768};

    MatrixSamples samples(5);
    for (int n = 0; n < 100; ++n) {
        const TPoint3D p = samples.Point(kExtent / 2);
        TPoint2D scr;
        TPoint3D vcs, dcs, back;
        ASSERT_TRUE(GlWcsToScr(p, model, projection, viewport, scr));
        ASSERT_TRUE(GLWcsToVcs(p, model, vcs));
        ASSERT_TRUE(GLVcsToDcs(vcs, projection, viewport, dcs));
        TPoint3D scrWithDepth;
        ASSERT_TRUE(GLScrToDcs({scr.X, scr.Y, dcs.Z}, scrWithDepth));
        ASSERT_TRUE(GlScrToWcs(scrWithDepth, model, projection, viewport, back));
        ExpectPoint(back, p, 1e-9 * kExtent);
        ASSERT_TRUE(GLVcsToWcs(vcs, model, back));
        ExpectPoint(back, p, 1e-9 * kExtent);

        TPoint2D fromDevice;
        ASSERT_TRUE(GLDcsToScr(dcs, fromDevice));
        EXPECT_EQ(fromDevice, scr);
    }
}

TEST(GLMatrixConversion, WorldAndViewDivideByTheHomogeneousW)
{
    // Translation (2, 4, 6) and w = 2: the origin goes to (1, 2, 3).
    TGlMatrix model = Identity();
    model[12] = 2;
    model[13] = 4;
    model[14] = 6;
    model[15] = 2;
    TPoint3D p{0, 0, 0};
    ASSERT_TRUE(GLWcsToVcs(p, model, p));  // the output may be the input
    EXPECT_EQ(p, (TPoint3D{1, 2, 3}));
    ASSERT_TRUE(GLVcsToWcs(p, model, p));
    ExpectPoint(p, {0, 0, 0});

    // (1, 1, 1) goes to (3, 5, 7) / 2.
    TPoint3D vcs;
    ASSERT_TRUE(GLWcsToVcs({1, 1, 1}, model, vcs));
    EXPECT_EQ(vcs, (TPoint3D{1.5, 2.5, 3.5}));
}

TEST(GLMatrixConversion, ViewportMapsTheUnitCube)
{
    const TGlViewport viewport{10, 20, 200, 100};
    TPoint3D dcs;
    ASSERT_TRUE(GLVcsToDcs({0, 0, 0}, Identity(), viewport, dcs));
    EXPECT_EQ(dcs, (TPoint3D{110, 70, 0.5}));
    ASSERT_TRUE(GLVcsToDcs({-1, -1, -1}, Identity(), viewport, dcs));
    EXPECT_EQ(dcs, (TPoint3D{10, 20, 0}));
    TPoint3D wcs;
    ASSERT_TRUE(GlScrToWcs({110, 70, 0.5}, Identity(), Identity(), viewport, wcs));
    EXPECT_EQ(wcs, (TPoint3D{0, 0, 0}));
    TPoint2D scr;
    ASSERT_TRUE(GlWcsToScr({1, 1, 0}, Identity(), Identity(), viewport, scr));
    EXPECT_EQ(scr, (TPoint2D{210, 120}));
}

TEST(GLMatrixConversion, DeviceToViewReadsANormalisedHomogeneousPoint)
{
    const TGlMatrix projection{2, 0, 0, 0, 0, 4, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    // Neither the origin nor the size of the viewport enters: the same answer for both.
    for (const TGlViewport viewport : {TGlViewport{0, 0, 1, 1}, TGlViewport{10, 20, 200, 100}}) {
        TPoint3D vcs;
        // z of 0 leaves x and y alone and is the near plane.
        ASSERT_TRUE(GLDcsToVcs({0.25, 0.75, 0}, projection, viewport, vcs));
        ExpectPoint(vcs, {-0.25, 0.125, -1});
        // z of 2 halves x and y, and becomes the far plane.
        ASSERT_TRUE(GLDcsToVcs({0.5, 1.5, 2}, projection, viewport, vcs));
        ExpectPoint(vcs, {-0.25, 0.125, 1});
    }
}

TEST(GLMatrixConversion, WNearZeroIsRejectedAndTheOutputKept)
{
    // A point on the camera plane of a perspective projection.
    const TGlMatrix projection = Frustum(-1, 1, -1, 1, 1, 100);
    const TGlViewport viewport{0, 0, 640, 480};
    TPoint3D dcs = kUntouched;
    TPoint2D scr = kUntouched2D;
    EXPECT_FALSE(GLVcsToDcs({0.5, 0.5, 0}, projection, viewport, dcs));
    EXPECT_FALSE(GlWcsToScr({0.5, 0.5, 0}, Identity(), projection, viewport, scr));
    EXPECT_EQ(dcs, kUntouched);
    EXPECT_EQ(scr, kUntouched2D);

    // The tolerance is 1e-6 on w: just inside it fails, just outside passes.
    TGlMatrix small = Identity();
    small[15] = 0.9e-6;
    TPoint3D vcs = kUntouched;
    EXPECT_FALSE(GLWcsToVcs({0, 0, 0}, small, vcs));
    EXPECT_EQ(vcs, kUntouched);
    EXPECT_FALSE(GLVcsToDcs({0, 0, 0}, small, viewport, dcs));
    small[15] = -1.1e-6;
    EXPECT_TRUE(GLWcsToVcs({0, 0, 0}, small, vcs));
    EXPECT_TRUE(GLVcsToDcs({0, 0, 0}, small, viewport, dcs));
}

TEST(GLMatrixConversion, NegativeViewportSizesAreRejectedAndZeroPasses)
{
    for (const TGlViewport viewport : {TGlViewport{0, 0, -1, 100}, TGlViewport{0, 0, 100, -1}}) {
        TPoint3D dcs = kUntouched, vcs = kUntouched, wcs = kUntouched;
        TPoint2D scr = kUntouched2D;
        EXPECT_FALSE(GLVcsToDcs({0.1, 0.2, 0.3}, Identity(), viewport, dcs));
        EXPECT_FALSE(GlWcsToScr({0.1, 0.2, 0.3}, Identity(), Identity(), viewport, scr));
        EXPECT_FALSE(GLDcsToVcs({0.1, 0.2, 0.3}, Identity(), viewport, vcs));
        EXPECT_FALSE(GlScrToWcs({0.1, 0.2, 0.3}, Identity(), Identity(), viewport, wcs));
        EXPECT_EQ(dcs, kUntouched);
        EXPECT_EQ(scr, kUntouched2D);
        EXPECT_EQ(vcs, kUntouched);
        EXPECT_EQ(wcs, kUntouched);
    }

    // A zero size collapses every point onto the viewport's origin...
    const TGlViewport empty{10, 20, 0, 0};
    TPoint3D dcs;
    TPoint2D scr;
    ASSERT_TRUE(GLVcsToDcs({0.7, -0.3, 0}, Identity(), empty, dcs));
    EXPECT_EQ(dcs, (TPoint3D{10, 20, 0.5}));
    ASSERT_TRUE(GlWcsToScr({0.7, -0.3, 0}, Identity(), Identity(), empty, scr));
    EXPECT_EQ(scr, (TPoint2D{10, 20}));
    // ...and the way back divides by it: True with non-finite coordinates.
    TPoint3D wcs;
    ASSERT_TRUE(GlScrToWcs({11, 21, 0.5}, Identity(), Identity(), empty, wcs));
    EXPECT_FALSE(std::isfinite(wcs.X));
    EXPECT_FALSE(std::isfinite(wcs.Y));
}

TEST(GLMatrixConversion, SingularMatricesAreRejectedAndTheOutputKept)
{
    const TGlMatrix singular{1, 2, 3, 4, 2, 4, 6, 8, 0, 1, 5, 2, 7, 1, 1, 3};
    const TGlViewport good{0, 0, 100, 100};
    const TGlViewport bad{0, 0, -100, 100};
    TPoint3D out = kUntouched;
    EXPECT_FALSE(GLVcsToWcs({1, 2, 3}, singular, out));
    EXPECT_FALSE(GLDcsToVcs({0.1, 0.2, 0.3}, singular, good, out));
    EXPECT_FALSE(GLDcsToVcs({0.1, 0.2, 0.3}, singular, bad, out));
    EXPECT_FALSE(GlScrToWcs({1, 2, 0.5}, singular, Identity(), good, out));
    EXPECT_FALSE(GlScrToWcs({1, 2, 0.5}, Identity(), singular, bad, out));
    EXPECT_EQ(out, kUntouched);
}

}  // namespace
}  // namespace orvane
