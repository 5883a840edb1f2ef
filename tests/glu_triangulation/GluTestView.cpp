#include "tests/glu_triangulation/GluTestView.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "glu_triangulation/GluView.h"

namespace orvane::testing {

const TGeNurbsSurface& NurbsOf(const TGeSurface& Surf)
{
    if (const auto* t = dynamic_cast<const TGeTrimmedSurface*>(&Surf)) return NurbsOf(*t->GetSurface());
    if (const auto* e = dynamic_cast<const TGeNurbsSurfaceExt*>(&Surf)) return *e->Surface;
    return dynamic_cast<const TGeNurbsSurface&>(Surf);
}

double BoxDiagonal(const TGeSurface& Surf)
{
    TPoint3D lo{1e300, 1e300, 1e300}, hi{-1e300, -1e300, -1e300};
    for (const TPoint3D& p : SurfaceGridPoints(Surf, 65)) {
        lo = {std::min(lo.X, p.X), std::min(lo.Y, p.Y), std::min(lo.Z, p.Z)};
        hi = {std::max(hi.X, p.X), std::max(hi.Y, p.Y), std::max(hi.Z, p.Z)};
    }
    return lo.DistanceTo(hi);
}

double MeshArea(const std::vector<double>& Tri)
{
    double area = 0.0;
    for (std::size_t i = 0; i + 9 <= Tri.size(); i += 9) {
        const TPoint3D a{Tri[i], Tri[i + 1], Tri[i + 2]};
        const TPoint3D b{Tri[i + 3], Tri[i + 4], Tri[i + 5]};
        const TPoint3D c{Tri[i + 6], Tri[i + 7], Tri[i + 8]};
        area += (b - a).CrossMul(c - a).Length() / 2;
    }
    return area;
}

TSurfaceProjector::TSurfaceProjector(const TGeNurbsSurface& Surf) : FSurf(Surf), FDomain(Surf.GetDomain())
{
    constexpr int kGrid = 32;
    for (int i = 0; i <= kGrid; ++i)
        for (int j = 0; j <= kGrid; ++j) {
            const TPoint2D uv{FDomain.Min.X + FDomain.Width() * i / kGrid, FDomain.Min.Y + FDomain.Height() * j / kGrid};
            FGridUV.push_back(uv);
            FGrid.push_back(Surf.GetPoint(uv.X, uv.Y));
        }
}

double TSurfaceProjector::Distance(const TPoint3D& P) const
{
    std::size_t nearest = 0;
    for (std::size_t k = 1; k < FGrid.size(); ++k)
        if (FGrid[k].DistanceTo(P) < FGrid[nearest].DistanceTo(P)) nearest = k;
    double u = FGridUV[nearest].X, v = FGridUV[nearest].Y;
    for (int step = 0; step < 20; ++step) {
        TPoint3D s, su, sv;
        FSurf.GetDerivatives(u, v, s, su, sv);
        const TPoint3D r = P - s;
        const double a = su.DotMul(su), b = su.DotMul(sv), c = sv.DotMul(sv);
        const double det = a * c - b * b;
        if (std::abs(det) < 1e-30) break;
        u = std::clamp(u + (c * su.DotMul(r) - b * sv.DotMul(r)) / det, FDomain.Min.X, FDomain.Max.X);
        v = std::clamp(v + (a * sv.DotMul(r) - b * su.DotMul(r)) / det, FDomain.Min.Y, FDomain.Max.Y);
    }
    return std::min(FGrid[nearest].DistanceTo(P), FSurf.GetPoint(u, v).DistanceTo(P));
}

}  // namespace orvane::testing
