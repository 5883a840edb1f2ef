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

namespace {

// The turned points' box and the half height of the view that fits it.
struct ObliqueFit {
    TPoint3D Lo{1e300, 1e300, 1e300};
    TPoint3D Hi{-1e300, -1e300, -1e300};
    double HalfY = 0.0;
};

ObliqueFit FitOblique(std::span<const TPoint3D> Points, int Width, int Height)
{
    ObliqueFit f;
    for (const TPoint3D& p : Points) {
        const TPoint3D r = ObliqueViewTurn(p);
        f.Lo = {std::min(f.Lo.X, r.X), std::min(f.Lo.Y, r.Y), std::min(f.Lo.Z, r.Z)};
        f.Hi = {std::max(f.Hi.X, r.X), std::max(f.Hi.Y, r.Y), std::max(f.Hi.Z, r.Z)};
    }
    const double aspect = static_cast<double>(Width) / Height;
    f.HalfY = std::max((f.Hi.Y - f.Lo.Y) / 2, (f.Hi.X - f.Lo.X) / 2 / aspect);
    return f;
}

}  // namespace

double ObliqueViewPixelsPerUnit(std::span<const TPoint3D> Points, int Width, int Height)
{
    const double halfY = FitOblique(Points, Width, Height).HalfY;
    return halfY > 0.0 ? Height / (2.0 * halfY) : 0.0;
}

void LoadObliqueView(std::span<const TPoint3D> Points, int Width, int Height)
{
    using namespace dglOpenGL;
    const ObliqueFit fit = FitOblique(Points, Width, Height);
    const TPoint3D lo = fit.Lo, hi = fit.Hi;
    const double aspect = static_cast<double>(Width) / Height;
    const double halfY = fit.HalfY;
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
