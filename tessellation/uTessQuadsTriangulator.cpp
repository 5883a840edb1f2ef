#include "tessellation/uTessQuadsTriangulator.h"

#include <cmath>

#include "contracts/AppSystem.h"
#include "tessellation/QuadNormals.h"
#include "tessellation/SurfaceTriangulatorChecker.h"
#include "tessellation/TempNurbsPointEval.h"

namespace orvane {

namespace {

constexpr const char* kUnitName = "uTessQuadsTriangulator";

bool IsNaNPoint(const TPoint3D& P)
{
    return std::isnan(P.X) || std::isnan(P.Y) || std::isnan(P.Z);
}

// The NURBS surface every surface class ends in, or nullptr.
const TGeNurbsSurface* FindNurbsSurface(const TGeSurface* GeSurf)
{
    if (auto* trimmed = dynamic_cast<const TGeTrimmedSurface*>(GeSurf)) {
        const TGeSurface* base = trimmed->GetSurface();
        if (auto* nurbs = dynamic_cast<const TGeNurbsSurface*>(base)) return nurbs;
        if (auto* ext = dynamic_cast<const TGeNurbsSurfaceExt*>(base)) return ext->Surface;
        return nullptr;
    }
    if (auto* nurbs = dynamic_cast<const TGeNurbsSurface*>(GeSurf)) return nurbs;
    if (auto* ext = dynamic_cast<const TGeNurbsSurfaceExt*>(GeSurf)) return ext->Surface;
    return nullptr;
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
    for (const TViewUnit& unit : Units) {
        const TPointList vertices = GetVertexList(unit, GeSurf);
        const TPointList normals = GetNormalList(GeSurf, *vertices, unit);
        AppendPoints(*vertices, Tri);
        AppendPoints(*normals, Norm);
    }
}

// A NaN vertex drops its whole unit.
TQuadSurfaceTriangulator::TPointList TQuadSurfaceTriangulator::GetVertexList(const TViewUnit& Unit,
                                                                             const TGeSurface* GeSurf) const
{
    auto vertices = std::make_unique<TList<TPoint3D>>();
    for (const TPoint2D& uv : Unit.Points2D) {
        const TPoint3D p = GetPoint3DOfPoint2DUV(uv, GeSurf);
        if (IsNaNPoint(p)) {
            vertices->Clear();
            break;
        }
        vertices->Add(p);
    }
    return vertices;
}

// Every surface class ends in the same evaluator; trim curves play no part once the quads
// exist, and seams and poles evaluate like any other point.
TPoint3D TQuadSurfaceTriangulator::GetPoint3DOfPoint2DUV(const TPoint2D& P, const TGeSurface* GeSurf) const
{
    const TGeNurbsSurface* nurbs = FindNurbsSurface(GeSurf);
    Assert(nurbs != nullptr, "TessQuadsTriangulator, GetPoint3D can not get GeNurbsSurface");
    const TTempNurbsPointEval eval(FSampleTolerance);
    // For UDir the plane's X is V and its Y is U.
    if (FExtrusionType == TExtrusionType::UDir) return eval.EvalPointOnNurbsSurface(*nurbs, {P.Y, P.X});
    return eval.EvalPointOnNurbsSurface(*nurbs, P);
}

void StartUnit_uTessQuadsTriangulator()
{
    // The registry's reference is the only one: the unit keeps none of its own.
    IInterface* service = new TQuadSurfaceTriangulator();
    AppSys.RegisterService(IGeSurfaceTriangulator::IID, service);
}

void StopUnit_uTessQuadsTriangulator() {}

}  // namespace orvane
