// TDrawViewUnitTool: draws view units in OpenGL immediate mode, in a 2D or a 3D view.
//
// Unlike the rest of the system this unit calls the platform's OpenGL library directly, not
// through the entry-point table, so it works before and without the loader.
#pragma once

#include "contracts/Export.h"
#include "contracts/ViewUnits.h"

namespace orvane {

// Only class operations; never instantiated. A unit whose DrawMode is GL_LINES or
// GL_LINE_STRIP is a line unit, any other a surface unit.
class ORVANE_API TDrawViewUnitTool {
public:
    TDrawViewUnitTool() = delete;

    // The unit's 2D points twice: as its primitive, then as points of size 3.0, which stays
    // set. Culling, stipple and lighting are not touched.
    static void Draw2D(const TViewUnit& ViewUnit);
    static void Draw2D(const TViewUnitList& ViewUnitList);
    // The unit's 3D points with culling off; a line unit is drawn with line stipple and
    // lighting off, and both are on afterwards, whatever they were before.
    static void Draw3D(const TViewUnit& ViewUnit);
    // All units under one state change, which the first unit decides; an empty list makes no
    // OpenGL call at all.
    static void Draw3D(const TViewUnitList& ViewUnitList);

private:
    static void DrawViewUnit(const TViewUnit& ViewUnit);
    static void SetLineStippleAndLighting(const TViewUnit& ViewUnit, bool AEnable);
};

}  // namespace orvane
