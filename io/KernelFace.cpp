#include "io/KernelFace.h"

namespace orvane::io {

std::unique_ptr<TGeNurbsSurface> BuildKernelSurface(const NurbsSurfaceData& S)
{
    return std::make_unique<TGeNurbsSurface>(S.CountU, S.CountV, S.DegreeU, S.DegreeV, S.KnotsU, S.KnotsV,
                                             S.Poles, S.Weights);
}

std::unique_ptr<TGeCurve2D> BuildKernelCurve(const TrimCurveData& C)
{
    if (C.IsLine()) return std::make_unique<TGeLine2D>(C.Start(), C.End());
    return std::make_unique<TGeSpline2D>(C.Degree, C.Knots, C.Poles, C.Weights);
}

std::unique_ptr<TGeCurve2D> BuildKernelLoop(const TrimLoopData& L)
{
    if (L.size() == 1) return BuildKernelCurve(L.front());
    std::vector<std::unique_ptr<TGeCurve2D>> curves;
    curves.reserve(L.size());
    for (const TrimCurveData& c : L) curves.push_back(BuildKernelCurve(c));
    return std::make_unique<TGeCompositeCurve2D>(std::move(curves));
}

std::unique_ptr<TGeTrimmedSurface> BuildKernelFace(const FaceData& F)
{
    std::vector<std::unique_ptr<TGeCurve2D>> holes;
    for (std::size_t l = 1; l < F.Loops.size(); ++l) holes.push_back(BuildKernelLoop(F.Loops[l]));
    return std::make_unique<TGeTrimmedSurface>(BuildKernelSurface(F.Surface), BuildKernelLoop(F.Loops.front()),
                                               std::move(holes));
}

}  // namespace orvane::io
