// Immediate drawing on Mesa, read back from a 64 x 64 view: a line, a filled rectangle, a Bezier
// curve, a textured quad, the text texture, and view units with the state the tool leaves behind.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory>

#include "immediate/TextRaster.h"
#include "immediate/TextureLoadUnit.h"
#include "immediate/UDrawViewUnitTool.h"
#include "immediate/zqglUtils.h"
#include "opengl/dglOpenGL.h"
#include "tests/support/OffscreenGL.h"

namespace orvane {
namespace {

namespace gl = dglOpenGL;
using Rgba = std::array<std::uint8_t, 4>;
using Flags = std::vector<bool>;  // culling, lighting, line stipple

constexpr int kSize = 64;

class ImmediatePixels : public ::testing::Test {
protected:
    // One unit a pixel.
    ImmediatePixels()
    {
        gl::glMatrixMode(gl::GL_PROJECTION);
        gl::glOrtho(0, kSize, 0, kSize, -1, 1);
        gl::glMatrixMode(gl::GL_MODELVIEW);
        zqglSetClearColor(0);
        gl::glClear(gl::GL_COLOR_BUFFER_BIT);
    }

    testing::OffscreenGL FGL{kSize, kSize};
};

TEST_F(ImmediatePixels, LineFilledRectangleAndBezierCurveInTheirColours)
{
    zqglSetColor(0x0000FF);
    zqglDrawLine(TPoint2D{0, 10.5}, TPoint2D{64, 10.5});
    zqglDrawFilledRect({40, 30}, {50, 40}, 0x00FF00);
    gl::glDisableClientState(gl::GL_COLOR_ARRAY);
    const struct { int X, Y; Rgba Colour; } expected[] = {
        {5, 10, {255, 0, 0, 255}}, {60, 10, {255, 0, 0, 255}}, {5, 12, {0, 0, 0, 255}}, {45, 35, {0, 255, 0, 255}}, {45, 45, {0, 0, 0, 255}}};
    for (const auto& e : expected) EXPECT_EQ(FGL.Pixel(e.X, e.Y), e.Colour) << e.X << ", " << e.Y;

    // Control points (8, 8), (8, 56), (56, 56), (56, 8): the curve passes (32, 44), not its polygon.
    gl::glClear(gl::GL_COLOR_BUFFER_BIT);
    zqglSetColor(0xFFFFFF);
    zqglSetLineWidth(3);
    zqglDrawBezier({{8, 8, 0}, {8, 56, 0}, {56, 56, 0}, {56, 8, 0}}, 32);
    EXPECT_EQ((std::vector<int>{FGL.Pixel(32, 44)[0], FGL.Pixel(9, 9)[0], FGL.Pixel(8, 55)[0], FGL.Pixel(32, 55)[0]}),
              (std::vector<int>{255, 255, 0, 0}));
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
    for (int i = 0; i < 4; ++i) EXPECT_EQ(FGL.Pixel(i % 2 ? 50 : 10, i / 2 ? 50 : 10), (Rgba{texels[4 * i], texels[4 * i + 1], texels[4 * i + 2], 255}));
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
    EXPECT_TRUE(level(0, gl::GL_TEXTURE_WIDTH) == raster.Width && level(0, gl::GL_TEXTURE_HEIGHT) == raster.Height);
    EXPECT_EQ(level(1, gl::GL_TEXTURE_WIDTH), raster.Width / 2) << "mipmaps were made";
    std::vector<std::uint8_t> pixels(raster.Pixels.size());
    gl::glPixelStorei(gl::GL_PACK_ALIGNMENT, 1);
    gl::glGetTexImage(gl::GL_TEXTURE_2D, 0, gl::GL_BGRA, gl::GL_UNSIGNED_BYTE, pixels.data());
    EXPECT_EQ(pixels, raster.Pixels);
    entity.reset();
    EXPECT_EQ(gl::glIsTexture(name), gl::GL_FALSE);
}

// The centre of a pixel in normalised device coordinates, for the identity matrices.
double Ndc(int APixel) { return (APixel + 0.5) / (kSize / 2.0) - 1.0; }

TViewUnit Unit(Cardinal AMode, std::initializer_list<TPoint3D> APoints, bool AWithNormals)
{
    TViewUnit unit;
    unit.DrawMode = AMode;
    for (const TPoint3D& p : APoints) {
        unit.Points2D.Add({p.X, p.Y});
        unit.Points3D.Add(p);
        if (AWithNormals) unit.Normals.Add({0, 0, 1});
    }
    return unit;
}

// A horizontal line through the centres of row APixelRow, from column 8 to column 56; no normals.
TViewUnit LineUnit(Cardinal AMode, int APixelRow) { return Unit(AMode, {{Ndc(8), Ndc(APixelRow), 0}, {Ndc(56), Ndc(APixelRow), 0}}, false); }

// A clockwise triangle, a back face, over the middle of the surface.
TViewUnit BackFacingTriangle() { return Unit(gl::GL_TRIANGLES, {{-0.5, -0.5, 0}, {0, 0.5, 0}, {0.5, -0.5, 0}}, true); }

// View units with identity matrices.
class DrawViewUnit : public ::testing::Test {
protected:
    DrawViewUnit()
    {
        gl::glClearColor(0, 0, 0, 1);
        gl::glClear(gl::GL_COLOR_BUFFER_BIT);
        gl::glColor3ub(0, 255, 0);
        gl::glCullFace(gl::GL_BACK);
        // With stipple on, this pattern hides every line: a line that shows was drawn without it.
        gl::glLineStipple(1, 0x0000);
    }

    static constexpr gl::GLenum kCaps[] = {gl::GL_CULL_FACE, gl::GL_LIGHTING, gl::GL_LINE_STIPPLE};
    static void Set(const Flags& AState)
    {
        for (int i = 0; i < 3; ++i) (AState[i] ? gl::glEnable : gl::glDisable)(kCaps[i]);
    }
    static Flags State()
    {
        Flags state;
        for (gl::GLenum cap : kCaps) state.push_back(gl::glIsEnabled(cap) == gl::GL_TRUE);
        return state;
    }
    static float PointSize()
    {
        gl::GLfloat size = 0;
        gl::glGetFloatv(gl::GL_POINT_SIZE, &size);
        return size;
    }
    // 'g': the current colour, drawn unlit; 'k': black, nothing drawn; 'l': lit with no light
    // on, the faint ambient grey; '?': anything else.
    char Seen(int x, int y) const
    {
        const auto p = FGL.Pixel(x, y);
        if (p[0] == 0 && p[1] == 255 && p[2] == 0) return 'g';
        if (p[0] == 0 && p[1] == 0 && p[2] == 0) return 'k';
        return p[0] > 0 && p[0] < 40 && p[0] == p[1] ? 'l' : '?';
    }

    testing::OffscreenGL FGL{kSize, kSize};
};

TEST_F(DrawViewUnit, TwoDimensionalUnitIsItsPrimitiveAndItsPointsOfSizeThreeAndTouchesNoState)
{
    Set({true, false, false});
    TDrawViewUnitTool::Draw3D(TViewUnitList());  // empty lists make no call
    TDrawViewUnitTool::Draw2D(TViewUnitList());
    EXPECT_EQ(PointSize(), 1.0f);
    TViewUnitList units;
    units.Add(LineUnit(gl::GL_LINES, 20));
    units.Add(LineUnit(gl::GL_LINE_STRIP, 44));
    TDrawViewUnitTool::Draw2D(units);
    for (int row : {20, 44}) {
        // The line one pixel wide, and the end points again as 3 by 3 points beyond its width and end.
        const std::string seen{Seen(30, row), Seen(30, row + 1), Seen(57, row + 1), Seen(7, row - 1), Seen(58, row + 2)};
        EXPECT_EQ(seen, "gkggk") << "row " << row;
    }
    EXPECT_EQ(PointSize(), 3.0f);
    EXPECT_EQ(State(), (Flags{true, false, false}));

    // Stipple and lighting stay on, and the line is hidden.
    gl::glClear(gl::GL_COLOR_BUFFER_BIT);
    Set({true, true, true});
    TDrawViewUnitTool::Draw2D(LineUnit(gl::GL_LINES, 20));
    EXPECT_EQ(Seen(30, 20), 'k');
    EXPECT_EQ(State(), (Flags{true, true, true}));
}

TEST_F(DrawViewUnit, SurfaceIsDrawnWithCullingOffLineWithoutStippleAndLightingWhichComeOnAfterwards)
{
    Set({true, false, true});
    TDrawViewUnitTool::Draw3D(BackFacingTriangle());
    EXPECT_EQ(Seen(32, 32), 'g') << "a back face shows: culling was off";
    EXPECT_EQ(Seen(2, 2), 'k');
    EXPECT_EQ(State(), (Flags{false, false, true}));

    for (const Flags& before : {Flags{false, true, true}, Flags{false, false, false}}) {
        gl::glClear(gl::GL_COLOR_BUFFER_BIT);
        Set(before);
        TDrawViewUnitTool::Draw3D(LineUnit(gl::GL_LINE_STRIP, 20));
        EXPECT_EQ(Seen(30, 20), 'g');
        EXPECT_EQ(State(), (Flags{false, true, true}));
    }
}

TEST_F(DrawViewUnit, FirstUnitOfAListDecidesTheStateForAll)
{
    // A surface first: the line after it is drawn lit, as lighting stood, and nothing changes.
    // A line first: the surface after it is drawn unlit too, and both are on afterwards.
    const struct { bool SurfaceFirst; std::string Seen; Flags After; } cases[] = {{true, "ll", {false, true, false}}, {false, "gg", {false, true, true}}};
    Set({true, true, false});
    for (const auto& c : cases) {
        gl::glClear(gl::GL_COLOR_BUFFER_BIT);
        TViewUnitList units;
        units.Add(c.SurfaceFirst ? BackFacingTriangle() : LineUnit(gl::GL_LINES, 50));
        units.Add(c.SurfaceFirst ? LineUnit(gl::GL_LINES, 50) : BackFacingTriangle());
        TDrawViewUnitTool::Draw3D(units);
        EXPECT_EQ((std::string{Seen(30, 50), Seen(32, 32)}), c.Seen) << c.SurfaceFirst;
        EXPECT_EQ(State(), c.After) << c.SurfaceFirst;
    }
}

}  // namespace
}  // namespace orvane
