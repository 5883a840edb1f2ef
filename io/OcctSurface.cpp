#include "io/OcctSurface.h"

#include <TColStd_Array1OfInteger.hxx>
#include <TColStd_Array1OfReal.hxx>
#include <TColStd_Array2OfReal.hxx>
#include <TColgp_Array2OfPnt.hxx>

namespace orvane::io {
namespace {

// Knot values and multiplicities from a knot vector written out by multiplicity.
void Compress(const std::vector<double>& flat, std::vector<double>& knots, std::vector<int>& mults)
{
    for (double k : flat) {
        if (!knots.empty() && k == knots.back()) {
            ++mults.back();
        } else {
            knots.push_back(k);
            mults.push_back(1);
        }
    }
}

TColStd_Array1OfReal RealArray(const std::vector<double>& v)
{
    TColStd_Array1OfReal a(1, static_cast<int>(v.size()));
    for (std::size_t i = 0; i < v.size(); ++i) a(static_cast<int>(i) + 1) = v[i];
    return a;
}

TColStd_Array1OfInteger IntArray(const std::vector<int>& v)
{
    TColStd_Array1OfInteger a(1, static_cast<int>(v.size()));
    for (std::size_t i = 0; i < v.size(); ++i) a(static_cast<int>(i) + 1) = v[i];
    return a;
}

}  // namespace

Handle(Geom_BSplineSurface) OcctSurface(const NurbsSurfaceData& S)
{
    TColgp_Array2OfPnt poles(1, S.CountU, 1, S.CountV);
    TColStd_Array2OfReal weights(1, S.CountU, 1, S.CountV);
    for (int i = 0; i < S.CountU; ++i)
        for (int j = 0; j < S.CountV; ++j) {
            const TPoint3D& p = S.Pole(i, j);
            poles(i + 1, j + 1) = gp_Pnt(p.X, p.Y, p.Z);
            weights(i + 1, j + 1) = S.Weight(i, j);
        }
    std::vector<double> ku, kv;
    std::vector<int> mu, mv;
    Compress(S.KnotsU, ku, mu);
    Compress(S.KnotsV, kv, mv);
    if (S.Weights.empty())
        return new Geom_BSplineSurface(poles, RealArray(ku), RealArray(kv), IntArray(mu), IntArray(mv), S.DegreeU,
                                       S.DegreeV);
    return new Geom_BSplineSurface(poles, weights, RealArray(ku), RealArray(kv), IntArray(mu), IntArray(mv), S.DegreeU,
                                   S.DegreeV);
}

}  // namespace orvane::io
