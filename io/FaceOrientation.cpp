#include "io/FaceOrientation.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>

#include <gp_Pnt2d.hxx>

#include "io/OcctSurface.h"

namespace orvane::io {
namespace {

constexpr std::size_t kVotes = 7;  // triangles that judge a face
// A mesh vertex lies on its surface to the rounding of single precision, which the roads pass.
double VertexReach(const TPoint3D& p)
{
    return 1e-5 * (1.0 + p.Length());
}

// The face's exact normal at the surface point nearest P, out of the material; none where the
// surface has no normal there (a pole).
class ExactNormals {
public:
    explicit ExactNormals(const FaceData& f) : FSurface(OcctSurface(f.Surface)), FSign(f.Reversed ? -1.0 : 1.0)
    {
        FDomain = f.Surface.Domain();
        FCountU = std::clamp(static_cast<int>(f.Surface.KnotsU.size()) * 2 + 1, 9, 33);
        FCountV = std::clamp(static_cast<int>(f.Surface.KnotsV.size()) * 2 + 1, 9, 33);
    }

    // The normal where P lies on the surface; none where the surface has no normal there, or
    // where no point of the surface lies within Reach of P.
    std::optional<TPoint3D> At(const TPoint3D& p, double reach)
    {
        const gp_Pnt target(p.X, p.Y, p.Z);
        gp_Pnt2d uv = NearestSample(target);
        Refine(target, uv);
        gp_Pnt point;
        gp_Vec su, sv;
        FSurface->D1(uv.X(), uv.Y(), point, su, sv);
        if (point.Distance(target) > reach) return std::nullopt;
        const gp_Vec n = su.Crossed(sv);
        if (n.Magnitude() <= 1e-12 * std::max(1.0, su.SquareMagnitude() + sv.SquareMagnitude())) return std::nullopt;
        const gp_Vec unit = n.Normalized() * FSign;
        return TPoint3D{unit.X(), unit.Y(), unit.Z()};
    }

private:
    gp_Pnt2d Param(int i, int j) const
    {
        return {FDomain.Min.X + FDomain.Width() * i / (FCountU - 1), FDomain.Min.Y + FDomain.Height() * j / (FCountV - 1)};
    }

    // The grid sample nearest to P; the grid is evaluated once, on first use.
    gp_Pnt2d NearestSample(const gp_Pnt& p)
    {
        if (FGrid.empty())
            for (int i = 0; i < FCountU; ++i)
                for (int j = 0; j < FCountV; ++j) FGrid.push_back(FSurface->Value(Param(i, j).X(), Param(i, j).Y()));
        std::size_t best = 0;
        for (std::size_t k = 1; k < FGrid.size(); ++k)
            if (FGrid[k].SquareDistance(p) < FGrid[best].SquareDistance(p)) best = k;
        return Param(static_cast<int>(best) / FCountV, static_cast<int>(best) % FCountV);
    }

    // Newton steps towards the foot of P on the surface, kept inside the domain.
    void Refine(const gp_Pnt& p, gp_Pnt2d& uv) const
    {
        for (int step = 0; step < 12; ++step) {
            gp_Pnt s;
            gp_Vec su, sv, suu, svv, suv;
            FSurface->D2(uv.X(), uv.Y(), s, su, sv, suu, svv, suv);
            const gp_Vec d(p, s);
            const double a = su.Dot(su) + suu.Dot(d), b = su.Dot(sv) + suv.Dot(d), c = sv.Dot(sv) + svv.Dot(d);
            const double gu = su.Dot(d), gv = sv.Dot(d), det = a * c - b * b;
            if (!(std::fabs(det) > 1e-300)) return;
            const double du = (c * gu - b * gv) / det, dv = (a * gv - b * gu) / det;
            uv.SetCoord(std::clamp(uv.X() - du, FDomain.Min.X, FDomain.Max.X),
                        std::clamp(uv.Y() - dv, FDomain.Min.Y, FDomain.Max.Y));
            if (std::fabs(du) < 1e-12 * std::max(1.0, FDomain.Width()) &&
                std::fabs(dv) < 1e-12 * std::max(1.0, FDomain.Height()))
                return;
        }
    }

    Handle(Geom_BSplineSurface) FSurface;
    double FSign;
    TRect2D FDomain;
    int FCountU;
    int FCountV;
    std::vector<gp_Pnt> FGrid;
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
        if (!IsUsable(n)) n = exact.At(Vertex(tri, v), VertexReach(Vertex(tri, v))).value_or(TPoint3D{0, 0, 1});
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
        // The centre lies off the surface by the triangle's sag, which its size bounds.
        const double size = (Vertex(Tri, 3 * t + 1) - Vertex(Tri, 3 * t)).Length() +
                            (Vertex(Tri, 3 * t + 2) - Vertex(Tri, 3 * t)).Length();
        const std::optional<TPoint3D> n = exact.At(centre, size);
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
