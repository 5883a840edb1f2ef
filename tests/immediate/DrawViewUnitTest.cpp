// View units drawn into a real offscreen context: the pixels show them where they belong, and
// the state that the tool leaves behind is read back from the context.
#include <gtest/gtest.h>

#include "immediate/UDrawViewUnitTool.h"
#include "opengl/dglOpenGL.h"
#include "tests/support/OffscreenGL.h"

namespace orvane {
namespace {

namespace gl = dglOpenGL;

constexpr int kSize = 64;

// The centre of pixel (x, y) in normalised device coordinates, for the identity matrices.
double Ndc(int APixel)
{
    return (APixel + 0.5) / (kSize / 2.0) - 1.0;
}

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

// A horizontal line through the centres of row APixelRow, from column 8 to column 56.
TViewUnit LineUnit(Cardinal AMode, int APixelRow)
{
    return Unit(AMode, {{Ndc(8), Ndc(APixelRow), 0}, {Ndc(56), Ndc(APixelRow), 0}}, false);
}

// A clockwise triangle, a back face, over the middle of the surface.
TViewUnit BackFacingTriangle()
{
    return Unit(gl::GL_TRIANGLES, {{-0.5, -0.5, 0}, {0, 0.5, 0}, {0.5, -0.5, 0}}, true);
}

class DrawViewUnit : public ::testing::Test {
protected:
    DrawViewUnit() : FGL(kSize, kSize)
    {
        gl::glClearColor(0, 0, 0, 1);
        gl::glClear(gl::GL_COLOR_BUFFER_BIT);
        gl::glColor3ub(0, 255, 0);
        gl::glCullFace(gl::GL_BACK);
        // With stipple on, this pattern hides every line: a line that shows was drawn without it.
        gl::glLineStipple(1, 0x0000);
    }

    static void Set(gl::GLenum ACapability, bool AEnabled)
    {
        (AEnabled ? gl::glEnable : gl::glDisable)(ACapability);
    }
    static bool Enabled(gl::GLenum ACapability) { return gl::glIsEnabled(ACapability) == gl::GL_TRUE; }
    // Drawn in the current colour (lighting off) rather than black.
    bool Green(int x, int y) const
    {
        const auto pixel = FGL.Pixel(x, y);
        return pixel[0] == 0 && pixel[1] == 255 && pixel[2] == 0;
    }
    bool Black(int x, int y) const
    {
        const auto pixel = FGL.Pixel(x, y);
        return pixel[0] == 0 && pixel[1] == 0 && pixel[2] == 0;
    }
    // Lit with no light on: the faint ambient grey, neither black nor the current colour.
    bool Lit(int x, int y) const
    {
        const auto pixel = FGL.Pixel(x, y);
        return pixel[0] > 0 && pixel[0] < 40 && pixel[0] == pixel[1];
    }

    testing::OffscreenGL FGL;
};

TEST_F(DrawViewUnit, TwoDimensionalUnitIsItsPrimitiveAndItsPointsOfSizeThree)
{
    Set(gl::GL_CULL_FACE, true);
    Set(gl::GL_LIGHTING, false);
    Set(gl::GL_LINE_STIPPLE, false);
    TViewUnitList units;
    units.Add(LineUnit(gl::GL_LINES, 20));
    units.Add(LineUnit(gl::GL_LINE_STRIP, 44));
    TDrawViewUnitTool::Draw2D(units);

    for (int row : {20, 44}) {
        EXPECT_TRUE(Green(30, row)) << "the line itself, row " << row;
        EXPECT_TRUE(Black(30, row + 1)) << "one pixel wide, row " << row;
        // The end points again, as 3 by 3 points: they reach beyond the line's width and end.
        EXPECT_TRUE(Green(57, row + 1)) << row;
        EXPECT_TRUE(Green(7, row - 1)) << row;
        EXPECT_TRUE(Black(58, row + 2)) << row;
    }
    gl::GLfloat pointSize = 0;
    gl::glGetFloatv(gl::GL_POINT_SIZE, &pointSize);
    EXPECT_EQ(pointSize, 3.0f);
    EXPECT_TRUE(Enabled(gl::GL_CULL_FACE));
    EXPECT_FALSE(Enabled(gl::GL_LIGHTING));
    EXPECT_FALSE(Enabled(gl::GL_LINE_STIPPLE));

    // The 2D road touches no state: stipple and lighting stay on, and the line is hidden.
    gl::glClear(gl::GL_COLOR_BUFFER_BIT);
    Set(gl::GL_LINE_STIPPLE, true);
    Set(gl::GL_LIGHTING, true);
    TDrawViewUnitTool::Draw2D(LineUnit(gl::GL_LINES, 20));
    EXPECT_TRUE(Black(30, 20));
    EXPECT_TRUE(Enabled(gl::GL_LINE_STIPPLE));
    EXPECT_TRUE(Enabled(gl::GL_LIGHTING));
    EXPECT_TRUE(Enabled(gl::GL_CULL_FACE));
}

TEST_F(DrawViewUnit, EmptyListsMakeNoCall)
{
    Set(gl::GL_CULL_FACE, true);
    TDrawViewUnitTool::Draw3D(TViewUnitList());
    TDrawViewUnitTool::Draw2D(TViewUnitList());
    EXPECT_TRUE(Enabled(gl::GL_CULL_FACE));
    gl::GLfloat pointSize = 0;
    gl::glGetFloatv(gl::GL_POINT_SIZE, &pointSize);
    EXPECT_EQ(pointSize, 1.0f);
}

TEST_F(DrawViewUnit, SurfaceUnitIsDrawnWithCullingOffAndLeavesStippleAndLighting)
{
    Set(gl::GL_CULL_FACE, true);
    Set(gl::GL_LIGHTING, false);
    Set(gl::GL_LINE_STIPPLE, true);
    TDrawViewUnitTool::Draw3D(BackFacingTriangle());
    EXPECT_TRUE(Green(32, 32)) << "a back face shows: culling was off";
    EXPECT_TRUE(Black(2, 2));
    EXPECT_FALSE(Enabled(gl::GL_CULL_FACE));
    EXPECT_FALSE(Enabled(gl::GL_LIGHTING));
    EXPECT_TRUE(Enabled(gl::GL_LINE_STIPPLE));
}

TEST_F(DrawViewUnit, LineUnitIsDrawnWithoutStippleAndLightingWhichAreOnAfterwards)
{
    Set(gl::GL_LIGHTING, true);
    Set(gl::GL_LINE_STIPPLE, true);
    const TViewUnit line = LineUnit(gl::GL_LINE_STRIP, 20);  // no normals at all
    ASSERT_EQ(line.Normals.Count(), 0);
    TDrawViewUnitTool::Draw3D(line);
    EXPECT_TRUE(Green(30, 20));
    EXPECT_TRUE(Enabled(gl::GL_LIGHTING));
    EXPECT_TRUE(Enabled(gl::GL_LINE_STIPPLE));

    // Both come on afterwards even where they were off before.
    Set(gl::GL_LIGHTING, false);
    Set(gl::GL_LINE_STIPPLE, false);
    TDrawViewUnitTool::Draw3D(LineUnit(gl::GL_LINES, 40));
    EXPECT_TRUE(Green(30, 40));
    EXPECT_TRUE(Enabled(gl::GL_LIGHTING));
    EXPECT_TRUE(Enabled(gl::GL_LINE_STIPPLE));
}

TEST_F(DrawViewUnit, FirstUnitOfAListDecidesTheStateForAll)
{
    // A surface first: the line after it is drawn lit, as lighting stood, and nothing changes.
    Set(gl::GL_CULL_FACE, true);
    Set(gl::GL_LIGHTING, true);
    Set(gl::GL_LINE_STIPPLE, false);
    TViewUnitList surfaceFirst;
    surfaceFirst.Add(BackFacingTriangle());
    surfaceFirst.Add(LineUnit(gl::GL_LINES, 50));
    TDrawViewUnitTool::Draw3D(surfaceFirst);
    EXPECT_TRUE(Lit(30, 50));
    EXPECT_TRUE(Lit(32, 32));
    EXPECT_FALSE(Enabled(gl::GL_CULL_FACE));
    EXPECT_TRUE(Enabled(gl::GL_LIGHTING));
    EXPECT_FALSE(Enabled(gl::GL_LINE_STIPPLE));

    // A line first: the surface after it is drawn unlit too, and both are on afterwards.
    gl::glClear(gl::GL_COLOR_BUFFER_BIT);
    TViewUnitList lineFirst;
    lineFirst.Add(LineUnit(gl::GL_LINES, 50));
    lineFirst.Add(BackFacingTriangle());
    TDrawViewUnitTool::Draw3D(lineFirst);
    EXPECT_TRUE(Green(30, 50));
    EXPECT_TRUE(Green(32, 32));
    EXPECT_TRUE(Enabled(gl::GL_LIGHTING));
    EXPECT_TRUE(Enabled(gl::GL_LINE_STIPPLE));
}

}  // namespace
}  // namespace orvane
