#include "tests/glu_triangulation/GluTestView.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "opengl/dglOpenGL.h"

namespace orvane::testing {

namespace {

// Turns the view 30 degrees about X after 40 degrees about Z, so that no surface of the tests
// is seen exactly edge-on and GLU's projected lengths stay honest.
TPoint3D Rotate(const TPoint3D& P)
{
    const double cz = std::cos(40.0 * M_PI / 180), sz = std::sin(40.0 * M_PI / 180);
    const double cx = std::cos(30.0 * M_PI / 180), sx = std::sin(30.0 * M_PI / 180);
    const TPoint3D a{cz * P.X - sz * P.Y, sz * P.X + cz * P.Y, P.Z};
    return {a.X, cx * a.Y - sx * a.Z, sx * a.Y + cx * a.Z};
}

// The same rotation as a column-major OpenGL matrix.
std::array<double, 16> RotationMatrix()
{
    std::array<double, 16> m{};
    const TPoint3D ex = Rotate({1, 0, 0}), ey = Rotate({0, 1, 0}), ez = Rotate({0, 0, 1});
    m = {ex.X, ex.Y, ex.Z, 0, ey.X, ey.Y, ey.Z, 0, ez.X, ez.Y, ez.Z, 0, 0, 0, 0, 1};
    return m;
}

}  // namespace

const TGeNurbsSurface& NurbsOf(const TGeSurface& Surf)
{
    if (const auto* t = dynamic_cast<const TGeTrimmedSurface*>(&Surf)) return NurbsOf(*t->GetSurface());
    if (const auto* e = dynamic_cast<const TGeNurbsSurfaceExt*>(&Surf)) return *e->Surface;
    return dynamic_cast<const TGeNurbsSurface&>(Surf);
}

TDynPoints3D SamplePoints(const TGeSurface& Surf, int Count)
{
    const TGeNurbsSurface& nurbs = NurbsOf(Surf);
    const TRect2D domain = nurbs.GetDomain();
    TDynPoints3D points;
    for (int i = 0; i < Count; ++i)
        for (int j = 0; j < Count; ++j)
            points.push_back(nurbs.GetPoint(domain.Min.X + domain.Width() * i / (Count - 1),
                                            domain.Min.Y + domain.Height() * j / (Count - 1)));
    return points;
}

double BoxDiagonal(const TGeSurface& Surf)
{
    TPoint3D lo{1e300, 1e300, 1e300}, hi{-1e300, -1e300, -1e300};
    for (const TPoint3D& p : SamplePoints(Surf, 65)) {
        lo = {std::min(lo.X, p.X), std::min(lo.Y, p.Y), std::min(lo.Z, p.Z)};
        hi = {std::max(hi.X, p.X), std::max(hi.Y, p.Y), std::max(hi.Z, p.Z)};
    }
    return lo.DistanceTo(hi);
}

void FitViewToSurface(const TGeSurface& Surf, int Width, int Height)
{
    using namespace dglOpenGL;
    TPoint3D lo{1e300, 1e300, 1e300}, hi{-1e300, -1e300, -1e300};
    for (const TPoint3D& p : SamplePoints(Surf, 65)) {
        const TPoint3D r = Rotate(p);
        lo = {std::min(lo.X, r.X), std::min(lo.Y, r.Y), std::min(lo.Z, r.Z)};
        hi = {std::max(hi.X, r.X), std::max(hi.Y, r.Y), std::max(hi.Z, r.Z)};
    }
    const double aspect = static_cast<double>(Width) / Height;
    const double halfY = std::max((hi.Y - lo.Y) / 2, (hi.X - lo.X) / 2 / aspect);
    const double halfX = halfY * aspect;
    const double cx = (lo.X + hi.X) / 2, cy = (lo.Y + hi.Y) / 2;
    const double depth = (hi.Z - lo.Z) + 1.0;
    glViewport(0, 0, Width, Height);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(cx - halfX, cx + halfX, cy - halfY, cy + halfY, -hi.Z - depth, -lo.Z + depth);
    glMatrixMode(GL_MODELVIEW);
    const std::array<double, 16> m = RotationMatrix();
    glLoadMatrixd(m.data());
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
