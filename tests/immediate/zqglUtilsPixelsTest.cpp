// A few drawing functions on Mesa, read back as pixels: a line, a filled rectangle, a
// textured quad and a Bezier curve in a 64 x 64 view with one unit a pixel.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>

#include "immediate/zqglUtils.h"
#include "opengl/dglOpenGL.h"
#include "tests/support/OffscreenGL.h"

namespace orvane {
namespace {

namespace gl = dglOpenGL;
using Rgba = std::array<std::uint8_t, 4>;

class zqglUtilsPixels : public ::testing::Test {
protected:
    zqglUtilsPixels()
    {
        gl::glMatrixMode(gl::GL_PROJECTION);
        gl::glLoadIdentity();
        gl::glOrtho(0, 64, 0, 64, -1, 1);
        gl::glMatrixMode(gl::GL_MODELVIEW);
        gl::glLoadIdentity();
        zqglSetClearColor(0);
        gl::glClear(gl::GL_COLOR_BUFFER_BIT);
    }

    testing::OffscreenGL FGL{64, 64};
};

TEST_F(zqglUtilsPixels, LineAndFilledRectangleInTheirColours)
{
    zqglSetColor(0x0000FF);
    zqglDrawLine(TPoint2D{0, 10.5}, TPoint2D{64, 10.5});
    zqglDrawFilledRect({40, 30}, {50, 40}, 0x00FF00);
    EXPECT_EQ(FGL.Pixel(5, 10), (Rgba{255, 0, 0, 255}));
    EXPECT_EQ(FGL.Pixel(60, 10), (Rgba{255, 0, 0, 255}));
    EXPECT_EQ(FGL.Pixel(5, 12), (Rgba{0, 0, 0, 255}));
    EXPECT_EQ(FGL.Pixel(45, 35), (Rgba{0, 255, 0, 255}));
    EXPECT_EQ(FGL.Pixel(45, 45), (Rgba{0, 0, 0, 255}));
    gl::glDisableClientState(gl::GL_COLOR_ARRAY);
}

TEST_F(zqglUtilsPixels, TexturedQuadTakesItsTexels)
{
    // 2 x 2 texels: red, green / blue, white; nearest filtering.
    const std::uint8_t texels[] = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255, 255, 255, 255};
    gl::GLuint texture = 0;
    gl::glGenTextures(1, &texture);
    gl::glBindTexture(gl::GL_TEXTURE_2D, texture);
    gl::glTexParameteri(gl::GL_TEXTURE_2D, gl::GL_TEXTURE_MIN_FILTER, gl::GL_NEAREST);
    gl::glTexParameteri(gl::GL_TEXTURE_2D, gl::GL_TEXTURE_MAG_FILTER, gl::GL_NEAREST);
    gl::glTexImage2D(gl::GL_TEXTURE_2D, 0, gl::GL_RGBA, 2, 2, 0, gl::GL_RGBA, gl::GL_UNSIGNED_BYTE, texels);
    gl::glBindTexture(gl::GL_TEXTURE_2D, 0);
    zqglSetColor(0xFFFFFF);

    zqglDrawTexture({{0, 0, 0}, {64, 0, 0}, {64, 64, 0}, {0, 64, 0}}, {{0, 0}, {1, 0}, {1, 1}, {0, 1}}, texture, false);
    EXPECT_EQ(FGL.Pixel(10, 10), (Rgba{255, 0, 0, 255}));
    EXPECT_EQ(FGL.Pixel(50, 10), (Rgba{0, 255, 0, 255}));
    EXPECT_EQ(FGL.Pixel(10, 50), (Rgba{0, 0, 255, 255}));
    EXPECT_EQ(FGL.Pixel(50, 50), (Rgba{255, 255, 255, 255}));
    EXPECT_TRUE(gl::glIsEnabled(gl::GL_TEXTURE_2D));
    gl::GLint bound = -1;
    gl::glGetIntegerv(gl::GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(bound, 0);
    gl::glDeleteTextures(1, &texture);
}

TEST_F(zqglUtilsPixels, BezierCurvePassesItsMidpointNotItsControlPolygon)
{
    zqglSetColor(0xFFFFFF);
    zqglSetLineWidth(3);
    // Control points (8, 8), (8, 56), (56, 56), (56, 8): the middle of the curve is (32, 44).
    zqglDrawBezier({{8, 8, 0}, {8, 56, 0}, {56, 56, 0}, {56, 8, 0}}, 32);
    EXPECT_EQ(FGL.Pixel(32, 44)[0], 255);
    EXPECT_EQ(FGL.Pixel(9, 9)[0], 255);
    EXPECT_EQ(FGL.Pixel(8, 55)[0], 0);
    EXPECT_EQ(FGL.Pixel(32, 55)[0], 0);
    EXPECT_FALSE(gl::glIsEnabled(gl::GL_MAP1_VERTEX_3));
}

}  // namespace
}  // namespace orvane
