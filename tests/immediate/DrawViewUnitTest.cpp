// View units drawn into a real offscreen context: the pixels show them where they belong, and
// the state that the tool leaves behind is read back from the context.
#include <gtest/gtest.h>

#include "immediate/UDrawViewUnitTool.h"
#include "opengl/dglOpenGL.h"
#include "tests/support/OffscreenGL.h"

namespace orvane {
namespace {

namespace gl = dglOpenGL;
using Flags = std::vector<bool>;  // culling, lighting, line stipple

constexpr int kSize = 64;

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
    DrawViewUnit()
    {
        gl::glClearColor(0, 0, 0, 1);
        gl::glClear(gl::GL_COLOR_BUFFER_BIT);
        gl::glColor3ub(0, 255, 0);
        gl::glCullFace(gl::GL_BACK);
        // With stipple on, this pattern hides every line: a line that shows was drawn without it.
        gl::glLineStipple(1, 0x0000);
    }

    static void Set(const Flags& AState)
    {
        const gl::GLenum caps[] = {gl::GL_CULL_FACE, gl::GL_LIGHTING, gl::GL_LINE_STIPPLE};
        for (int i = 0; i < 3; ++i) (AState[i] ? gl::glEnable : gl::glDisable)(caps[i]);
    }
    static Flags State()
    {
        return {gl::glIsEnabled(gl::GL_CULL_FACE) == gl::GL_TRUE, gl::glIsEnabled(gl::GL_LIGHTING) == gl::GL_TRUE,
                gl::glIsEnabled(gl::GL_LINE_STIPPLE) == gl::GL_TRUE};
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
        EXPECT_EQ(Seen(30, row), 'g') << "the line itself, row " << row;
        EXPECT_EQ(Seen(30, row + 1), 'k') << "one pixel wide, row " << row;
        // The end points again, as 3 by 3 points: they reach beyond the line's width and end.
        EXPECT_EQ(Seen(57, row + 1), 'g') << row;
        EXPECT_EQ(Seen(7, row - 1), 'g') << row;
        EXPECT_EQ(Seen(58, row + 2), 'k') << row;
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
    Set({true, true, false});
    TViewUnitList surfaceFirst;
    surfaceFirst.Add(BackFacingTriangle());
    surfaceFirst.Add(LineUnit(gl::GL_LINES, 50));
    TDrawViewUnitTool::Draw3D(surfaceFirst);
    EXPECT_EQ(Seen(30, 50), 'l');
    EXPECT_EQ(Seen(32, 32), 'l');
    EXPECT_EQ(State(), (Flags{false, true, false}));

    // A line first: the surface after it is drawn unlit too, and both are on afterwards.
    gl::glClear(gl::GL_COLOR_BUFFER_BIT);
    TViewUnitList lineFirst;
    lineFirst.Add(LineUnit(gl::GL_LINES, 50));
    lineFirst.Add(BackFacingTriangle());
    TDrawViewUnitTool::Draw3D(lineFirst);
    EXPECT_EQ(Seen(30, 50), 'g');
    EXPECT_EQ(Seen(32, 32), 'g');
    EXPECT_EQ(State(), (Flags{false, true, true}));
}

}  // namespace
}  // namespace orvane
