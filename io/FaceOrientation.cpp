#include "io/FaceOrientation.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>

#include <GeomAPI_ProjectPointOnSurf.hxx>

#include "io/OcctSurface.h"

namespace orvane::io {
namespace {

constexpr std::size_t kVotes = 7;  // triangles that judge a face

// The face's exact normal at the surface point nearest P, out of the material; none where the
// surface has no normal there (a pole).
class ExactNormals {
public:
    explicit ExactNormals(const FaceData& f) : FSurface(OcctSurface(f.Surface)), FSign(f.Reversed ? -1.0 : 1.0)
    {
        const TRect2D d = f.Surface.Domain();
        FProjection.Init(FSurface, d.Min.X, d.Max.X, d.Min.Y, d.Max.Y);
    }

    std::optional<TPoint3D> At(const TPoint3D& p)
    {
        FProjection.Perform(gp_Pnt(p.X, p.Y, p.Z));
        if (FProjection.NbPoints() == 0) return std::nullopt;
        double u, v;
        FProjection.LowerDistanceParameters(u, v);
        gp_Pnt point;
        gp_Vec su, sv;
        FSurface->D1(u, v, point, su, sv);
        const gp_Vec n = su.Crossed(sv);
        if (n.Magnitude() <= 1e-12 * std::max(1.0, su.SquareMagnitude() + sv.SquareMagnitude())) return std::nullopt;
        const gp_Vec unit = n.Normalized() * FSign;
        return TPoint3D{unit.X(), unit.Y(), unit.Z()};
    }

private:
    Handle(Geom_BSplineSurface) FSurface;
    double FSign;
    GeomAPI_ProjectPointOnSurf FProjection;
};

TPoint3D Vertex(const TFloatDynArray& a, std::size_t v)
{
    return {a[3 * v], a[3 * v + 1], a[3 * v + 2]};
}

void SetVertex(TFloatDynArray& a, std::size_t v, const TPoint3D& p)
{
    a[3 * v] = p.X;
    a[3 * v + 1] = p.Y;
    a[3 * v + 2] = p.Z;
}

// Twice the triangle's area along its normal, by its winding.
TPoint3D AreaVector(const TFloatDynArray& tri, std::size_t t)
{
    const TPoint3D a = Vertex(tri, 3 * t), b = Vertex(tri, 3 * t + 1), c = Vertex(tri, 3 * t + 2);
    return (b - a).CrossMul(c - a);
}

bool IsUsable(const TPoint3D& n)
{
    return std::isfinite(n.X) && std::isfinite(n.Y) && std::isfinite(n.Z) && n.Length() > 1e-12;
}

std::vector<std::size_t> LargestTriangles(const TFloatDynArray& tri)
{
    std::vector<std::size_t> order(tri.size() / 9);
    std::iota(order.begin(), order.end(), 0);
    std::vector<double> area(order.size());
    for (std::size_t t : order) area[t] = AreaVector(tri, t).Length();
    const std::size_t n = std::min(kVotes, order.size());
    std::partial_sort(order.begin(), order.begin() + static_cast<long>(n), order.end(),
                      [&](std::size_t a, std::size_t b) { return area[a] > area[b]; });
    order.resize(n);
    return order;
}

void FlipWinding(TFloatDynArray& tri, TFloatDynArray& norm)
{
    for (std::size_t t = 0; t < tri.size() / 9; ++t) {
        for (int c = 0; c < 3; ++c) {
            std::swap(tri[9 * t + 3 + c], tri[9 * t + 6 + c]);
            std::swap(norm[9 * t + 3 + c], norm[9 * t + 6 + c]);
        }
    }
}

int MendNormals(ExactNormals& exact, const TFloatDynArray& tri, TFloatDynArray& norm)
{
    int mended = 0;
    for (std::size_t v = 0; v < tri.size() / 3; ++v) {
        if (IsUsable(Vertex(norm, v))) continue;
        TPoint3D n = AreaVector(tri, v / 3).Normal();
        if (!IsUsable(n)) n = exact.At(Vertex(tri, v)).value_or(TPoint3D{0, 0, 1});
        SetVertex(norm, v, n);
        ++mended;
    }
    return mended;
}

}  // namespace

OrientationResult OrientFaceMesh(const FaceData& F, TFloatDynArray& Tri, TFloatDynArray& Norm)
{
    OrientationResult result;
    if (Tri.size() < 9 || Tri.size() != Norm.size()) return result;
    ExactNormals exact(F);
    double normalVote = 0.0, windingVote = 0.0;
    for (std::size_t t : LargestTriangles(Tri)) {
        const TPoint3D centre = (Vertex(Tri, 3 * t) + Vertex(Tri, 3 * t + 1) + Vertex(Tri, 3 * t + 2)) / 3.0;
        const std::optional<TPoint3D> n = exact.At(centre);
        if (!n) continue;
        const TPoint3D out = Vertex(Norm, 3 * t) + Vertex(Norm, 3 * t + 1) + Vertex(Norm, 3 * t + 2);
        if (IsUsable(out)) normalVote += out.DotMul(*n) >= 0.0 ? 1.0 : -1.0;
        windingVote += AreaVector(Tri, t).DotMul(*n) >= 0.0 ? 1.0 : -1.0;
    }
    result.FlippedNormals = normalVote < 0.0;
    result.FlippedWinding = windingVote < 0.0;
    if (result.FlippedNormals)
        for (double& c : Norm) c = -c;
    if (result.FlippedWinding) FlipWinding(Tri, Norm);
    result.MendedNormals = MendNormals(exact, Tri, Norm);
    return result;
}

}  // namespace orvane::io
