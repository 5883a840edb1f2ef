// The service the host calls most: one kernel surface in, flat vertex and normal arrays out,
// as quads or as triangles; and the split of a 2D region into quads for any caller.
#pragma once

#include <memory>

#include "contracts/Cadgeometry.h"
#include "contracts/Export.h"
#include "contracts/Interfaces.h"
#include "contracts/ViewUnits.h"

namespace orvane {

class ORVANE_API IGeSurfaceTriangulator : public virtual IInterface {
public:
    static constexpr TGUID IID = TGUID::FromString("{8AA0B750-BCB5-41BA-90CC-75668870F362}");

    // Tri and Norm: x, y, z of one vertex after the other, and of its normal at the same
    // index; three vertices a triangle, values rounded through single precision.
    virtual void Triangulate(const TGeSurface* GeSurf, TFloatDynArray& Tri, TFloatDynArray& Norm) = 0;
    // The same with four vertices a quad, in full double precision.
    virtual void Quadrilateral(const TGeSurface* GeSurf, TFloatDynArray& Tri, TFloatDynArray& Norm) = 0;
    // The region of the polylines (the first the outer boundary, each further one a hole) as
    // quads, four points each, in the polylines' coordinates; the result is the caller's.
    // Columns as wide as the first polyline's reach in X, rows of DefaultSampleRange.
    virtual std::unique_ptr<TList<TPoint2D>> TriangulatePoint2DList(const TList<TVPolyline2D>& APoint2DList) = 0;
    // Columns XTol wide, rows of DefaultSampleRange.
    virtual std::unique_ptr<TList<TPoint2D>> TriangulatePoint2DListWithTol(const TList<TVPolyline2D>& APoint2DList,
                                                                           double XTol) = 0;
    virtual std::unique_ptr<TList<TPoint2D>> TriangulatePoint2DListWithTolXY(const TList<TVPolyline2D>& APoint2DList,
                                                                             double XTol, double YTol) = 0;

protected:
    ~IGeSurfaceTriangulator() override = default;
};

}  // namespace orvane
