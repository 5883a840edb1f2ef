#include "tessellation/uTessQuadsTriangulator.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "contracts/AppSystem.h"
#include "tessellation/QuadNormals.h"
#include "tessellation/SurfaceTriangulatorChecker.h"

namespace orvane {

namespace {

constexpr const char* kUnitName = "uTessQuadsTriangulator";

bool IsNaNPoint(const TPoint3D& P)
{
    return std::isnan(P.X) || std::isnan(P.Y) || std::isnan(P.Z);
}

void AppendPoints(const TList<TPoint3D>& Points, TFloatDynArray& Array)
{
    Array.reserve(Array.size() + 3 * static_cast<std::size_t>(Points.Count()));
    for (const TPoint3D& p : Points) Array.insert(Array.end(), {p.X, p.Y, p.Z});
}

}  // namespace

TQuadSurfaceTriangulator::TQuadSurfaceTriangulator() : FSampleTolerance(DefaultSampleRange / FPrecisionAmplify) {}

TQuadSurfaceTriangulator::TQuadSurfaceTriangulator(double ASampleTolerance)
    : FSampleTolerance(ASampleTolerance / FPrecisionAmplify)
{
}

int TQuadSurfaceTriangulator::QueryInterface(const TGUID& iid, void** obj)
{
    *obj = nullptr;
    if (Answer<IGeSurfaceTriangulator>(iid, obj) == S_OK) return S_OK;
    return TInterfacedObject::QueryInterface(iid, obj);
}

void TQuadSurfaceTriangulator::Classify(const TGeSurface* GeSurf)
{
    FExtrusionType = TSurfaceTriangulatorChecker::CheckExtrusionDirection(GeSurf);
    FIsSimpleSurface = TSurfaceTriangulatorChecker::CheckSimpleSurface(GeSurf, FExtrusionType);
}

void TQuadSurfaceTriangulator::Quadrilateral(const TGeSurface* GeSurf, TFloatDynArray& Tri, TFloatDynArray& Norm)
{
    Classify(GeSurf);
    DoQuadrilateral(GeSurf, Tri, Norm);
}

void TQuadSurfaceTriangulator::DoQuadrilateral(const TGeSurface* GeSurf, TFloatDynArray& Tri, TFloatDynArray& Norm)
{
    RunRoad(GeSurf, Tri, Norm, &TQuadSurfaceTriangulator::GetVertexNormalDataQuadsFromViewUnit,
            " at do quadrilateral");
}

// Without view units Tri and Norm stay exactly as the caller passed them.
void TQuadSurfaceTriangulator::RunRoad(const TGeSurface* GeSurf, TFloatDynArray& Tri, TFloatDynArray& Norm,
                                       TFillArrays Fill, const char* Where)
{
    const TTessQuadsInvoker invoker(FExtrusionType, FSampleTolerance, FCreateDrawQuads);
    const std::unique_ptr<TViewUnitList> units = invoker.GetViewUnitListOfSurface(GeSurf, FIsSimpleSurface);
    if (!units) return;
    try {
        (this->*Fill)(*units, Tri, Norm, GeSurf);
    } catch (const Exception& e) {
        AppSys.ShowMsg(e.Message() + Where, 0);
    }
}

// DrawMode is not looked at: four consecutive vertices are one quad.
void TQuadSurfaceTriangulator::GetVertexNormalDataQuadsFromViewUnit(const TViewUnitList& Units, TFloatDynArray& Tri,
                                                                    TFloatDynArray& Norm, const TGeSurface* GeSurf)
{
    Tri.clear();
    Norm.clear();
    TSurfacePoints points = SurfacePointsOf(Units, GeSurf);
    for (const TViewUnit& unit : Units) {
        const TPointList vertices = GetVertexList(unit, points);
        const TPointList normals = GetNormalList(points, *vertices, unit);
        AppendPoints(*vertices, Tri);
        AppendPoints(*normals, Norm);
    }
}

// Every point a unit names, and three for each surface normal. Every surface class ends in the
// same evaluator; trim curves play no part once the quads exist, and seams and poles evaluate
// like any other point.
TSurfacePoints TQuadSurfaceTriangulator::SurfacePointsOf(const TViewUnitList& Units, const TGeSurface* GeSurf) const
{
    // Most quad corners are shared by four quads.
    std::size_t expected = 0;
    for (const TViewUnit& unit : Units) expected += static_cast<std::size_t>(unit.Points2D.Count()) / 4 + 3;
    // For UDir the plane's X is V and its Y is U.
    return TSurfacePoints(*GeSurf, FSampleTolerance, FExtrusionType == TExtrusionType::UDir, expected);
}

// A NaN vertex drops its whole unit.
TQuadSurfaceTriangulator::TPointList TQuadSurfaceTriangulator::GetVertexList(const TViewUnit& Unit,
                                                                             TSurfacePoints& Points) const
{
    std::vector<TPoint3D> vertices;
    vertices.reserve(static_cast<std::size_t>(Unit.Points2D.Count()));
    Points.AddAll(Unit.Points2D.Items(), vertices);
    if (std::any_of(vertices.begin(), vertices.end(), IsNaNPoint)) vertices.clear();
    return std::make_unique<TList<TPoint3D>>(std::move(vertices));
}

void StartUnit_uTessQuadsTriangulator()
{
    // The registry's reference is the only one: the unit keeps none of its own.
    IInterface* service = new TQuadSurfaceTriangulator();
    AppSys.RegisterService(IGeSurfaceTriangulator::IID, service);
}

void StopUnit_uTessQuadsTriangulator() {}

}  // namespace orvane
