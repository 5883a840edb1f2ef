// The triangle road: the quad road with each view unit turned into triangles on the way, and
// the split of plain 2D polylines into quads.
#include <vector>

#include "tessellation/TriangleArrays.h"
#include "tessellation/uTessQuadsTriangulator.h"

namespace orvane {

void TQuadSurfaceTriangulator::Triangulate(const TGeSurface* GeSurf, TFloatDynArray& Tri, TFloatDynArray& Norm)
{
    Classify(GeSurf);
    DoTriangulate(GeSurf, Tri, Norm);
}

void TQuadSurfaceTriangulator::DoTriangulate(const TGeSurface* GeSurf, TFloatDynArray& Tri, TFloatDynArray& Norm)
{
    RunRoad(GeSurf, Tri, Norm, &TQuadSurfaceTriangulator::GetVertexNormalDataFromViewUnit, " at do triangulate");
}

// The values pass through single precision and are widened again.
void TQuadSurfaceTriangulator::GetVertexNormalDataFromViewUnit(const TViewUnitList& Units, TFloatDynArray& Tri,
                                                               TFloatDynArray& Norm, const TGeSurface* GeSurf)
{
    Tri.clear();
    Norm.clear();
    TSurfacePoints points = SurfacePointsOf(Units, GeSurf);
    for (const TViewUnit& unit : Units) {
        const TPointList vertices = GetVertexList(unit, points);
        const TPointList normals = GetNormalList(points, *vertices, unit);
        TTriangleArrays::AppendTriangles(unit.DrawMode, *vertices, *normals, Tri, Norm);
    }
}

std::unique_ptr<TList<TPoint2D>> TQuadSurfaceTriangulator::TriangulatePoint2DList(
    const TList<TVPolyline2D>& APoint2DList)
{
    const TTessQuadsInvoker invoker(FExtrusionType, FSampleTolerance, FCreateDrawQuads);
    return TriangulatePoint2DListWithTol(APoint2DList, invoker.GetXInternal(APoint2DList.First()));
}

// Rows of 0.1, twice the 0.05 that the surface road passes.
std::unique_ptr<TList<TPoint2D>> TQuadSurfaceTriangulator::TriangulatePoint2DListWithTol(
    const TList<TVPolyline2D>& APoint2DList, double XTol)
{
    return TriangulatePoint2DListWithTolXY(APoint2DList, XTol, DefaultSampleRange);
}

// Quads, four points each, in the coordinates of the polylines: nothing is exchanged or
// mapped and no classification runs.
std::unique_ptr<TList<TPoint2D>> TQuadSurfaceTriangulator::TriangulatePoint2DListWithTolXY(
    const TList<TVPolyline2D>& APoint2DList, double XTol, double YTol)
{
    auto result = std::make_unique<TList<TPoint2D>>();
    std::vector<const TVPoint2DList*> lines;
    for (const TVPolyline2D& polyline : APoint2DList) lines.push_back(&polyline);
    const std::unique_ptr<TViewUnitList> units = FCreateDrawQuads(lines, XTol, YTol, false);
    for (const TViewUnit& unit : *units) result->AddRange(unit.Points2D);
    return result;
}

}  // namespace orvane
