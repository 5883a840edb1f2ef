// The quad tool: splits a 2D region (an outer boundary with holes) into quads arranged in
// columns along X, for the quad tessellation road.
#pragma once

#include <memory>
#include <span>

#include "contracts/Export.h"
#include "contracts/ViewUnits.h"

namespace orvane {

class ORVANE_API TTessQuadsTool {
public:
    // No request may produce more quads than this; it raises EArgumentException instead.
    static constexpr long long MaxQuadCount = 20'000'000;

    // Splits the region of APolylines into quads and returns them in a new list owned by the
    // caller. The first polyline is the outer boundary, each further one a hole; a polyline
    // may repeat its first point at its end or not, and run either way round. The region is
    // the set of points inside the outer boundary and inside no hole, each loop's inside taken
    // by the even-odd rule (so loops that cross themselves or each other are allowed).
    //
    // The result:
    // - Columns of width at most XTol cut the region's X extent into equal parts. Each quad
    //   has a vertical left side P3-P0 and a vertical right side P2-P1, each at most YTol
    //   long (plus twice the merge tolerance below where a merge took place); P0 is top-left, P1 top-right, P2 bottom-right, P3 bottom-left, clockwise with Y
    //   up, whatever the input's winding: so a quad's flat normal (P1 - P0) x (P3 - P0) on a
    //   surface points like the surface normal taken from its Y step before its X step. A
    //   quad may be a triangle (P0 = P3 or P1 = P2); none has zero area, and every quad is
    //   convex (a trapezoid with vertical sides).
    // - The quads cover the region exactly and do not overlap. Any quad edge that is not on
    //   the region's boundary is shared, with bit-identical end points, by exactly one other
    //   quad's edge: where a column meets the next, P1/P2 of one meet P0/P3 of the other.
    // - Inside a column the region is cut further at the X of every boundary vertex, so the
    //   boundary runs straight across each quad. No quad is a sliver: vertex X closer to a
    //   column line or to each other than a billionth of a column width (and never less than
    //   a few ulps) are merged, and so are boundary crossings of a vertical line closer than a
    //   billionth of a row; a row line that close to a crossing gives way to it.
    // - Quads of one column follow one another; columns follow one another along X.
    //   AUnitPerColumn False: one view unit holds all quads (every caller of the tessellation
    //   road passes False); True: one unit for each column that holds quads. Units have
    //   DrawMode GL_QUADS and 4 points a quad in Points2D; Points3D and Normals stay empty.
    // - A region of no area gives an empty list.
    //
    // Raises EArgumentException when a coordinate is not finite, when XTol or YTol is not a
    // positive finite number or too small to be told apart at the region's coordinates, or
    // when the region needs more than MaxQuadCount quads (counted exactly, before the quads
    // are stored) or more than MaxQuadCount columns.
    static std::unique_ptr<TViewUnitList> CreateDrawQuads(std::span<const TVPoint2DList* const> APolylines,
                                                          double XTol, double YTol, bool AUnitPerColumn);
    static std::unique_ptr<TViewUnitList> CreateDrawQuads(const TList<TVPolyline2D>& APolylines, double XTol,
                                                          double YTol, bool AUnitPerColumn);
    static std::unique_ptr<TViewUnitList> CreateDrawQuads(const TObjectList<TVPolyline2D>& APolylines,
                                                          double XTol, double YTol, bool AUnitPerColumn);
};

}  // namespace orvane
