#include "io/KernelFace.h"

#include <algorithm>
#include <cmath>

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

namespace {

// Whether every pole of C lies on one and the same edge of D, within Tol.
bool LiesOnOneEdge(const TrimCurveData& C, const TRect2D& D, double TolU, double TolV)
{
    auto all = [&](auto on) { return std::all_of(C.Poles.begin(), C.Poles.end(), on); };
    return all([&](const TPoint2D& p) { return std::fabs(p.X - D.Min.X) <= TolU; }) ||
           all([&](const TPoint2D& p) { return std::fabs(p.X - D.Max.X) <= TolU; }) ||
           all([&](const TPoint2D& p) { return std::fabs(p.Y - D.Min.Y) <= TolV; }) ||
           all([&](const TPoint2D& p) { return std::fabs(p.Y - D.Max.Y) <= TolV; });
}

}  // namespace

bool CoversWholeDomain(const FaceData& F)
{
    if (F.Loops.size() != 1) return false;
    const TRect2D d = F.Surface.Domain();
    const double tolU = 1e-9 * std::max(1.0, d.Width()), tolV = 1e-9 * std::max(1.0, d.Height());
    return std::all_of(F.Loops[0].begin(), F.Loops[0].end(),
                       [&](const TrimCurveData& c) { return LiesOnOneEdge(c, d, tolU, tolV); });
}

std::unique_ptr<TGeTrimmedSurface> BuildKernelFace(const FaceData& F)
{
    std::vector<std::unique_ptr<TGeCurve2D>> holes;
    for (std::size_t l = 1; l < F.Loops.size(); ++l) holes.push_back(BuildKernelLoop(F.Loops[l]));
    return std::make_unique<TGeTrimmedSurface>(BuildKernelSurface(F.Surface), BuildKernelLoop(F.Loops.front()),
                                               std::move(holes));
}

}  // namespace orvane::io
