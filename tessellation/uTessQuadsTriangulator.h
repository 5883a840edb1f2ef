// The quad triangulator: the object behind the service IGeSurfaceTriangulator. The road of
// one surface: classify it, turn its UV region into quads, map every quad corner to 3D with
// a normal, write the flat arrays. Needs no rendering context.
//
// Calls are made one at a time: the classification of the running call is kept in fields.
// Failures while the vertex data is built are shown through AppSys.ShowMsg and end the call
// normally with the view units finished so far; failures of the classification and of the
// quad tool reach the caller with Tri and Norm untouched.
#pragma once

#include <memory>

#include "contracts/Cadgeometry.h"
#include "contracts/Export.h"
#include "contracts/ViewUnits.h"
#include "immediate/zqglTypes.h"
#include "tessellation/ExtrusionType.h"
#include "tessellation/IGeSurfaceTriangulator.h"
#include "tessellation/SurfacePoints.h"
#include "tessellation/TessQuadsInvoker.h"

namespace orvane {

class ORVANE_API TQuadSurfaceTriangulator : public TInterfacedObject, public IGeSurfaceTriangulator {
public:
    // Sample tolerance DefaultSampleRange / 100.
    TQuadSurfaceTriangulator();
    // A caller gives a tolerance 100 times the one that is used.
    explicit TQuadSurfaceTriangulator(double ASampleTolerance);

    int QueryInterface(const TGUID& iid, void** obj) override;

    void Triangulate(const TGeSurface* GeSurf, TFloatDynArray& Tri, TFloatDynArray& Norm) override;
    void Quadrilateral(const TGeSurface* GeSurf, TFloatDynArray& Tri, TFloatDynArray& Norm) override;
    std::unique_ptr<TList<TPoint2D>> TriangulatePoint2DList(const TList<TVPolyline2D>& APoint2DList) override;
    std::unique_ptr<TList<TPoint2D>> TriangulatePoint2DListWithTol(const TList<TVPolyline2D>& APoint2DList,
                                                                   double XTol) override;
    std::unique_ptr<TList<TPoint2D>> TriangulatePoint2DListWithTolXY(const TList<TVPolyline2D>& APoint2DList,
                                                                     double XTol, double YTol) override;

    // The classification of the last call (VDir and False before the first one).
    TExtrusionType ExtrusionType() const noexcept { return FExtrusionType; }
    bool IsSimpleSurface() const noexcept { return FIsSimpleSurface; }
    double SampleTolerance() const noexcept { return FSampleTolerance; }

    // The quad tool this object calls; TTessQuadsTool::CreateDrawQuads unless replaced.
    void SetCreateDrawQuads(TCreateDrawQuadsFunc ACreateDrawQuads) { FCreateDrawQuads = std::move(ACreateDrawQuads); }

protected:
    ~TQuadSurfaceTriangulator() override = default;

private:
    using TPointList = std::unique_ptr<TList<TPoint3D>>;

    void Classify(const TGeSurface* GeSurf);
    void DoQuadrilateral(const TGeSurface* GeSurf, TFloatDynArray& Tri, TFloatDynArray& Norm);
    void GetVertexNormalDataQuadsFromViewUnit(const TViewUnitList& Units, TFloatDynArray& Tri, TFloatDynArray& Norm,
                                              const TGeSurface* GeSurf);
    // The points of GeSurf for one call over Units.
    TSurfacePoints SurfacePointsOf(const TViewUnitList& Units, const TGeSurface* GeSurf) const;
    TPointList GetVertexList(const TViewUnit& Unit, TSurfacePoints& Points) const;

    // Normals by surface type.
    TPointList GetNormalList(TSurfacePoints& Points, const TList<TPoint3D>& Vertices, const TViewUnit& Unit) const;
    TPointList GetNormalListBySurface(TSurfacePoints& Points, int Count, const TPoint2D& P) const;
    TPoint3D CalcSurfaceNormal(TSurfacePoints& Points, const TPoint2D& P) const;
    void FixNormalListAtCurve(TList<TPoint3D>& N, const TViewUnit& Unit, TSurfacePoints& Points) const;

    // The triangle road.
    void DoTriangulate(const TGeSurface* GeSurf, TFloatDynArray& Tri, TFloatDynArray& Norm);
    void GetVertexNormalDataFromViewUnit(const TViewUnitList& Units, TFloatDynArray& Tri, TFloatDynArray& Norm,
                                         const TGeSurface* GeSurf);

    using TFillArrays = void (TQuadSurfaceTriangulator::*)(const TViewUnitList&, TFloatDynArray&, TFloatDynArray&,
                                                           const TGeSurface*);
    // The common road of both operations: view units from the invoker, then Fill inside the
    // guard, which shows a failure with Where behind its message.
    void RunRoad(const TGeSurface* GeSurf, TFloatDynArray& Tri, TFloatDynArray& Norm, TFillArrays Fill,
                 const char* Where);

    const double FPrecisionAmplify = 100.0;
    double FSampleTolerance;
    TExtrusionType FExtrusionType = TExtrusionType::VDir;
    bool FIsSimpleSurface = false;
    TCreateDrawQuadsFunc FCreateDrawQuads = DefaultCreateDrawQuads();
};

// Package start-up: registers one TQuadSurfaceTriangulator with AppSys under the GUID of
// IGeSurfaceTriangulator, by its root interface. Shut-down leaves the registration alone.
void StartUnit_uTessQuadsTriangulator();
void StopUnit_uTessQuadsTriangulator();

}  // namespace orvane
