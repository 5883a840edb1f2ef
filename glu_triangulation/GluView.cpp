#include "glu_triangulation/GluView.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "opengl/dglOpenGL.h"

namespace orvane {

namespace {

const TGeNurbsSurface* NurbsBase(const TGeSurface& Surface)
{
    if (const auto* t = dynamic_cast<const TGeTrimmedSurface*>(&Surface)) return NurbsBase(*t->GetSurface());
    if (const auto* e = dynamic_cast<const TGeNurbsSurfaceExt*>(&Surface)) return e->Surface;
    return dynamic_cast<const TGeNurbsSurface*>(&Surface);
}

}  // namespace

TPoint3D ObliqueViewTurn(const TPoint3D& P)
{
    constexpr double kDeg = std::numbers::pi / 180;
    const double cz = std::cos(40 * kDeg), sz = std::sin(40 * kDeg);
    const double cx = std::cos(30 * kDeg), sx = std::sin(30 * kDeg);
    const TPoint3D a{cz * P.X - sz * P.Y, sz * P.X + cz * P.Y, P.Z};
    return {a.X, cx * a.Y - sx * a.Z, sx * a.Y + cx * a.Z};
}

void LoadObliqueView(std::span<const TPoint3D> Points, int Width, int Height)
{
    using namespace dglOpenGL;
    TPoint3D lo{1e300, 1e300, 1e300}, hi{-1e300, -1e300, -1e300};
    for (const TPoint3D& p : Points) {
        const TPoint3D r = ObliqueViewTurn(p);
        lo = {std::min(lo.X, r.X), std::min(lo.Y, r.Y), std::min(lo.Z, r.Z)};
        hi = {std::max(hi.X, r.X), std::max(hi.Y, r.Y), std::max(hi.Z, r.Z)};
    }
    const double aspect = static_cast<double>(Width) / Height;
    const double halfY = std::max((hi.Y - lo.Y) / 2, (hi.X - lo.X) / 2 / aspect);
    const double halfX = halfY * aspect;
    const double cx = (lo.X + hi.X) / 2, cy = (lo.Y + hi.Y) / 2, depth = hi.Z - lo.Z + 1.0;
    glViewport(0, 0, Width, Height);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(cx - halfX, cx + halfX, cy - halfY, cy + halfY, -hi.Z - depth, -lo.Z + depth);
    glMatrixMode(GL_MODELVIEW);
    const TPoint3D ex = ObliqueViewTurn({1, 0, 0}), ey = ObliqueViewTurn({0, 1, 0}), ez = ObliqueViewTurn({0, 0, 1});
    const std::array<double, 16> m{ex.X, ex.Y, ex.Z, 0, ey.X, ey.Y, ey.Z, 0, ez.X, ez.Y, ez.Z, 0, 0, 0, 0, 1};
    glLoadMatrixd(m.data());
}

TDynPoints3D SurfaceGridPoints(const TGeSurface& Surface, int Count)
{
    const TGeNurbsSurface* nurbs = NurbsBase(Surface);
    if (nurbs == nullptr) throw EArgumentException("The view is fitted to NURBS and trimmed NURBS surfaces only");
    const TRect2D d = nurbs->GetDomain();
    TDynPoints3D points;
    for (int i = 0; i < Count; ++i)
        for (int j = 0; j < Count; ++j)
            points.push_back(nurbs->GetPoint(d.Min.X + d.Width() * i / (Count - 1), d.Min.Y + d.Height() * j / (Count - 1)));
    return points;
}

void FitObliqueView(const TGeSurface& Surface, int Width, int Height)
{
    LoadObliqueView(SurfaceGridPoints(Surface, 65), Width, Height);
}

}  // namespace orvane
