// Point lists, polylines and view units: the drawable pieces of a part that the quad tool
// produces and the drawing functions consume.
#pragma once

#include "contracts/Cadtypes.h"
#include "contracts/Export.h"
#include "contracts/Generics.h"
#include "contracts/SysUtils.h"

namespace orvane {

// A growable list of 2D points.
class ORVANE_API TVPoint2DList : public TList<TPoint2D> {
public:
    using TList<TPoint2D>::TList;
};

// A polyline: its points in order. A closed one may or may not repeat its first point.
class ORVANE_API TVPolyline2D : public TVPoint2DList {
public:
    TVPolyline2D() = default;
    // Holds the given points, in that order.
    explicit TVPolyline2D(const TDynPoints2D& Points);
};

// One drawable piece: 2D points (the plane of the piece), 3D points with one normal each,
// and the OpenGL primitive that the points form.
struct ORVANE_API TViewUnit {
    TVPoint2DList Points2D;
    TList<TPoint3D> Points3D;
    TList<TPoint3D> Normals;
    Cardinal DrawMode = 0;  // 0 is GL_POINTS; producers set the primitive they fill in
};

// The units of one part, in drawing order. The list holds the units by value: freeing the
// list frees them.
class ORVANE_API TViewUnitList : public TList<TViewUnit> {
public:
    using TList<TViewUnit>::TList;
};

}  // namespace orvane
