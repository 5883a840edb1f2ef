// This file binds to the platform's OpenGL library; it must never include opengl/dglOpenGL.h.
#include "immediate/UDrawViewUnitTool.h"

#include <GL/gl.h>

namespace orvane {

namespace {

bool IsLineUnit(const TViewUnit& AViewUnit)
{
    return AViewUnit.DrawMode == GL_LINES || AViewUnit.DrawMode == GL_LINE_STRIP;
}

void Vertices2D(const TVPoint2DList& APoints)
{
    for (const TPoint2D& p : APoints) {
        const GLdouble xy[2] = {p.X, p.Y};
        glVertex2dv(xy);
    }
}

}  // namespace

void TDrawViewUnitTool::Draw2D(const TViewUnit& ViewUnit)
{
    glBegin(ViewUnit.DrawMode);
    Vertices2D(ViewUnit.Points2D);
    glEnd();
    glPointSize(3.0f);
    glBegin(GL_POINTS);
    Vertices2D(ViewUnit.Points2D);
    glEnd();
}

void TDrawViewUnitTool::Draw2D(const TViewUnitList& ViewUnitList)
{
    for (const TViewUnit& unit : ViewUnitList) Draw2D(unit);
}

void TDrawViewUnitTool::Draw3D(const TViewUnit& ViewUnit)
{
    glDisable(GL_CULL_FACE);
    SetLineStippleAndLighting(ViewUnit, false);
    DrawViewUnit(ViewUnit);
    SetLineStippleAndLighting(ViewUnit, true);
}

void TDrawViewUnitTool::Draw3D(const TViewUnitList& ViewUnitList)
{
    if (ViewUnitList.Count() == 0) return;
    glDisable(GL_CULL_FACE);
    SetLineStippleAndLighting(ViewUnitList.First(), false);
    for (const TViewUnit& unit : ViewUnitList) DrawViewUnit(unit);
    SetLineStippleAndLighting(ViewUnitList.First(), true);
}

void TDrawViewUnitTool::DrawViewUnit(const TViewUnit& ViewUnit)
{
    const bool lineUnit = IsLineUnit(ViewUnit);
    glBegin(ViewUnit.DrawMode);
    for (int i = 0; i < ViewUnit.Points3D.Count(); ++i) {
        if (!lineUnit) {
            const TPoint3D& n = ViewUnit.Normals.GetItem(i);
            glNormal3d(n.X, n.Y, n.Z);
        }
        const TPoint3D& p = ViewUnit.Points3D.GetItem(i);
        const GLdouble xyz[3] = {p.X, p.Y, p.Z};
        glVertex3dv(xyz);
    }
    glEnd();
}

void TDrawViewUnitTool::SetLineStippleAndLighting(const TViewUnit& ViewUnit, bool AEnable)
{
    if (!IsLineUnit(ViewUnit)) return;
    if (AEnable) {
        glEnable(GL_LINE_STIPPLE);
        glEnable(GL_LIGHTING);
    } else {
        glDisable(GL_LIGHTING);
        glDisable(GL_LINE_STIPPLE);
    }
}

}  // namespace orvane
