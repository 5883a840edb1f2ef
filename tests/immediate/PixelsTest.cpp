// Immediate drawing on Mesa, read back from a 64 x 64 view with one unit a pixel: a line, a
// filled rectangle, a Bezier curve, a textured quad, and the text texture in a real context.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory>

#include "immediate/TextRaster.h"
#include "immediate/TextureLoadUnit.h"
#include "immediate/zqglUtils.h"
#include "opengl/dglOpenGL.h"
#include "tests/support/OffscreenGL.h"

namespace orvane {
namespace {

namespace gl = dglOpenGL;
using Rgba = std::array<std::uint8_t, 4>;

class ImmediatePixels : public ::testing::Test {
protected:
    ImmediatePixels()
    {
        gl::glMatrixMode(gl::GL_PROJECTION);
        gl::glOrtho(0, 64, 0, 64, -1, 1);
        gl::glMatrixMode(gl::GL_MODELVIEW);
        zqglSetClearColor(0);
        gl::glClear(gl::GL_COLOR_BUFFER_BIT);
    }

    testing::OffscreenGL FGL{64, 64};
};

TEST_F(ImmediatePixels, LineFilledRectangleAndBezierCurveInTheirColours)
{
    zqglSetColor(0x0000FF);
    zqglDrawLine(TPoint2D{0, 10.5}, TPoint2D{64, 10.5});
    zqglDrawFilledRect({40, 30}, {50, 40}, 0x00FF00);
    gl::glDisableClientState(gl::GL_COLOR_ARRAY);
    EXPECT_EQ(FGL.Pixel(5, 10), (Rgba{255, 0, 0, 255}));
    EXPECT_EQ(FGL.Pixel(60, 10), (Rgba{255, 0, 0, 255}));
    EXPECT_EQ(FGL.Pixel(5, 12), (Rgba{0, 0, 0, 255}));
    EXPECT_EQ(FGL.Pixel(45, 35), (Rgba{0, 255, 0, 255}));
    EXPECT_EQ(FGL.Pixel(45, 45), (Rgba{0, 0, 0, 255}));

    // Control points (8, 8), (8, 56), (56, 56), (56, 8): the curve passes (32, 44), not its polygon.
    gl::glClear(gl::GL_COLOR_BUFFER_BIT);
    zqglSetColor(0xFFFFFF);
    zqglSetLineWidth(3);
    zqglDrawBezier({{8, 8, 0}, {8, 56, 0}, {56, 56, 0}, {56, 8, 0}}, 32);
    EXPECT_EQ(FGL.Pixel(32, 44)[0], 255);
    EXPECT_EQ(FGL.Pixel(9, 9)[0], 255);
    EXPECT_EQ(FGL.Pixel(8, 55)[0], 0);
    EXPECT_EQ(FGL.Pixel(32, 55)[0], 0);
    EXPECT_FALSE(gl::glIsEnabled(gl::GL_MAP1_VERTEX_3));
}

TEST_F(ImmediatePixels, TexturedQuadTakesItsTexels)
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

TEST_F(ImmediatePixels, TextTextureHoldsTheRasterBoundWithMipmapsAndGoesWithTheEntity)
{
    auto entity = std::make_unique<TTextureEntity>();
    entity->AssignTextureContent("Tg", "DejaVu Sans");
    entity->AssignTextureAttrib(1, 7);
    ASSERT_TRUE(entity->LoadTexture());
    const gl::GLuint name = entity->GetTextureId();
    gl::GLint bound = 0, wrap = 0;
    gl::glGetIntegerv(gl::GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(static_cast<gl::GLuint>(bound), name);
    gl::glGetTexParameteriv(gl::GL_TEXTURE_2D, gl::GL_TEXTURE_WRAP_T, &wrap);
    EXPECT_EQ(wrap, static_cast<gl::GLint>(gl::GL_CLAMP_TO_BORDER));
    const auto level = [](gl::GLint ALevel, gl::GLenum AName) {
        gl::GLint value = -1;
        gl::glGetTexLevelParameteriv(gl::GL_TEXTURE_2D, ALevel, AName, &value);
        return value;
    };
    const TTextRaster raster = RenderTextLine("Tg", "DejaVu Sans", 27);
    EXPECT_EQ(level(0, gl::GL_TEXTURE_WIDTH), raster.Width);
    EXPECT_EQ(level(0, gl::GL_TEXTURE_HEIGHT), raster.Height);
    EXPECT_EQ(level(1, gl::GL_TEXTURE_WIDTH), raster.Width / 2) << "mipmaps were made";
    std::vector<std::uint8_t> pixels(raster.Pixels.size());
    gl::glPixelStorei(gl::GL_PACK_ALIGNMENT, 1);
    gl::glGetTexImage(gl::GL_TEXTURE_2D, 0, gl::GL_BGRA, gl::GL_UNSIGNED_BYTE, pixels.data());
    EXPECT_EQ(pixels, raster.Pixels);
    entity.reset();
    EXPECT_EQ(gl::glIsTexture(name), gl::GL_FALSE);
}

}  // namespace
}  // namespace orvane
