// Turns the UV region of a surface into polylines of the tessellation plane and has the quad
// tool split them into quads. The plane's X is U and its Y is V, except for UDir, where every
// polyline point is exchanged on the way in (X is V, Y is U), so that the straight direction
// of an extruded surface always lies along Y.
#pragma once

#include <functional>
#include <memory>
#include <span>

#include "contracts/Cadgeometry.h"
#include "contracts/Export.h"
#include "contracts/ViewUnits.h"
#include "tessellation/ExtrusionType.h"

namespace orvane {

// The quad tool as the quad road calls it: outer boundary first, then the holes; XTol, YTol
// and the one-unit-per-column flag. A seam, so that a test can hand back units of its own.
using TCreateDrawQuadsFunc = std::function<std::unique_ptr<TViewUnitList>(
    std::span<const TVPoint2DList* const> APolylines, double XTol, double YTol, bool AUnitPerColumn)>;

// TTessQuadsTool::CreateDrawQuads.
ORVANE_API TCreateDrawQuadsFunc DefaultCreateDrawQuads();

class ORVANE_API TTessQuadsInvoker {
public:
    TTessQuadsInvoker(TExtrusionType AExtrusionType, double ASampleTolerance,
                      TCreateDrawQuadsFunc ACreateDrawQuads = DefaultCreateDrawQuads());

    // The polyline's reach in X from its first point, and at least the sample tolerance.
    double GetXInternal(const TVPoint2DList& Polyline) const;

    // The quads of the surface's region, or nullptr for a surface of no known class or one
    // without polylines. What the kernel or the quad tool raises goes to the caller.
    std::unique_ptr<TViewUnitList> GetViewUnitListOfSurface(const TGeSurface* GeSurf, bool AIsSimpleSurface) const;

private:
    using TPolylines = TObjectList<TVPolyline2D>;

    void GetPolylinesOfNurbs(const TGeNurbsSurface& N, TPolylines& Polylines) const;
    void GetPolylinesOfTrimmed(const TGeTrimmedSurface& T, TPolylines& Polylines) const;
    std::unique_ptr<TViewUnitList> CreateQuads(const TPolylines& Polylines, bool AIsSimpleSurface,
                                               const TGeSurface* GeSurf) const;
    std::unique_ptr<TVPolyline2D> CreatePolyline(TDynPoints2D Points) const;
    static void SwapXY(TDynPoints2D& Points);
    std::unique_ptr<TVPolyline2D> GetTolPolyline(const TGeCurve2D& Curve) const;
    std::unique_ptr<TVPolyline2D> GetSamplePolyline(const TGeCurve2D& Curve) const;
    bool IsSmallCurve(const TGeCurve2D& Curve) const;

    TExtrusionType FExtrusionType;
    double FSampleTolerance;
    TCreateDrawQuadsFunc FCreateDrawQuads;
};

}  // namespace orvane
