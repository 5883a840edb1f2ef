// Normals by surface type: UVDir takes one true surface normal for a whole view unit, VDir
// and UDir average the flat normals across the edges where the surface bends, NotExtrusion
// keeps the flat normals.
#include "tessellation/QuadNormals.h"
#include "tessellation/uTessQuadsTriangulator.h"

namespace orvane {

TQuadSurfaceTriangulator::TPointList TQuadSurfaceTriangulator::GetNormalList(TSurfacePoints& Points,
                                                                             const TList<TPoint3D>& Vertices,
                                                                             const TViewUnit& Unit) const
{
    if (FExtrusionType == TExtrusionType::UVDir && Vertices.Count() > 0)
        return GetNormalListBySurface(Points, Vertices.Count(), Unit.Points2D[0]);
    TPointList normals = TQuadNormals::GetNormalListFromVertexList(Vertices);
    if (normals->Count() > 0) FixNormalListAtCurve(*normals, Unit, Points);
    return normals;
}

// No test of its direction against the quads takes place.
TQuadSurfaceTriangulator::TPointList TQuadSurfaceTriangulator::GetNormalListBySurface(TSurfacePoints& Points,
                                                                                      int Count,
                                                                                      const TPoint2D& P) const
{
    const TPoint3D n = CalcSurfaceNormal(Points, P);
    auto normals = std::make_unique<TList<TPoint3D>>();
    for (int i = 0; i < Count; ++i) normals->Add(n);
    return normals;
}

// Forward differences in the tessellation plane, so for UDir the steps are exchanged too; the
// step stays inside the evaluator's band beyond the end knots.
TPoint3D TQuadSurfaceTriangulator::CalcSurfaceNormal(TSurfacePoints& Points, const TPoint2D& P) const
{
    const double d = FSampleTolerance;
    const TPoint3D p0 = Points.At(P);
    const TPoint3D px = Points.At({P.X + d, P.Y});
    const TPoint3D py = Points.At({P.X, P.Y + d});
    return TQuadNormals::CalcNormal(p0, py, px);
}

// S at the unit's first point, T at the third point of its last quad.
void TQuadSurfaceTriangulator::FixNormalListAtCurve(TList<TPoint3D>& N, const TViewUnit& Unit,
                                                    TSurfacePoints& Points) const
{
    if (FExtrusionType != TExtrusionType::VDir && FExtrusionType != TExtrusionType::UDir) return;
    const TPoint3D s = CalcSurfaceNormal(Points, Unit.Points2D[0]);
    const TPoint3D t = CalcSurfaceNormal(Points, Unit.Points2D[Unit.Points2D.Count() - 2]);
    TQuadNormals::FixNormalRuns(N, s, t);
}

}  // namespace orvane
