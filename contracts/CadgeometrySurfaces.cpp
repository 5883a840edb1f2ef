// Surfaces of the kernel: the NURBS surface, its wrapper and the trimmed surface.
#include <algorithm>
#include <cmath>

#include "contracts/Cadgeometry.h"
#include "contracts/GeBasis.h"

namespace orvane {

namespace {

constexpr const char* kNurbs = "TGeNurbsSurface";

// Runs the knot checks before any member is built from the arguments.
int CheckedCount(int Count, int Degree, const TArrayDouble& Knots, const char* Direction)
{
    ge::CheckKnots(kNurbs, Direction, Degree, Count, Knots);
    return Count;
}

std::string PointName(int I, int J) { return "(" + std::to_string(I) + ", " + std::to_string(J) + ")"; }

void CheckIndex(bool Ok)
{
    if (!Ok) throw EArgumentOutOfRangeException(SArgumentOutOfRange);
}

}  // namespace

TGeNurbsSurface::TGeNurbsSurface(int ACtrlCountU, int ACtrlCountV, int ADegreeU, int ADegreeV,
                                 TArrayDouble AKnotsU, TArrayDouble AKnotsV, TDynPoints3D ACtrlPoints,
                                 TArrayDouble AWeights)
    : CtrlCountU(CheckedCount(ACtrlCountU, ADegreeU, AKnotsU, " in U")),
      CtrlCountV(CheckedCount(ACtrlCountV, ADegreeV, AKnotsV, " in V")),
      DegreeU(ADegreeU),
      DegreeV(ADegreeV),
      KnotsU(std::move(AKnotsU)),
      KnotsV(std::move(AKnotsV)),
      FCtrlPoints(std::move(ACtrlPoints)),
      FWeights(std::move(AWeights))
{
    const std::size_t count = static_cast<std::size_t>(CtrlCountU) * static_cast<std::size_t>(CtrlCountV);
    if (FCtrlPoints.size() != count)
        throw EArgumentException(std::string(kNurbs) + ": " + std::to_string(FCtrlPoints.size()) +
                                 " control points given; " + std::to_string(CtrlCountU) + " x " +
                                 std::to_string(CtrlCountV) + " needs " + std::to_string(count));
    if (!FWeights.empty() && FWeights.size() != count)
        throw EArgumentException(std::string(kNurbs) + ": " + std::to_string(FWeights.size()) +
                                 " weights given; " + std::to_string(count) + " or none expected");
    for (int i = 0; i < CtrlCountU; ++i)
        for (int j = 0; j < CtrlCountV; ++j) {
            ge::CheckFinite(kNurbs, PointName(i, j), FCtrlPoints[Index(i, j)]);
            if (GetRational()) ge::CheckWeight(kNurbs, PointName(i, j), FWeights[Index(i, j)]);
        }
}

std::size_t TGeNurbsSurface::Index(int I, int J) const
{
    return static_cast<std::size_t>(I) * static_cast<std::size_t>(CtrlCountV) + static_cast<std::size_t>(J);
}

TPoint3D TGeNurbsSurface::GetCtrlPoint(int I, int J) const
{
    CheckIndex(I >= 0 && I < CtrlCountU && J >= 0 && J < CtrlCountV);
    return FCtrlPoints[Index(I, J)];
}

double TGeNurbsSurface::GetWeight(int I, int J) const
{
    CheckIndex(I >= 0 && I < CtrlCountU && J >= 0 && J < CtrlCountV);
    return GetRational() ? FWeights[Index(I, J)] : 1.0;
}

double TGeNurbsSurface::GetKnotsU(int I) const
{
    CheckIndex(I >= 0 && I < GetKnotCountU());
    return KnotsU[static_cast<std::size_t>(I)];
}

double TGeNurbsSurface::GetKnotsV(int I) const
{
    CheckIndex(I >= 0 && I < GetKnotCountV());
    return KnotsV[static_cast<std::size_t>(I)];
}

TRect2D TGeNurbsSurface::GetDomain() const
{
    return {{KnotsU.front(), KnotsV.front()}, {KnotsU.back(), KnotsV.back()}};
}

TPoint3D TGeNurbsSurface::GetPoint(double U, double V) const
{
    TPoint3D p, su, sv;
    GetDerivatives(U, V, p, su, sv);
    return p;
}

void TGeNurbsSurface::GetDerivatives(double U, double V, TPoint3D& P, TPoint3D& Su, TPoint3D& Sv) const
{
    const double u = std::clamp(U, KnotsU.front(), KnotsU.back());
    const double v = std::clamp(V, KnotsV.front(), KnotsV.back());
    const int spanU = ge::FindSpan(u, DegreeU, CtrlCountU, KnotsU);
    const int spanV = ge::FindSpan(v, DegreeV, CtrlCountV, KnotsV);
    const std::size_t countU = static_cast<std::size_t>(DegreeU) + 1, countV = static_cast<std::size_t>(DegreeV) + 1;
    ge::TScratch nu(countU), du(countU), nv(countV), dv(countV);
    ge::BasisFunsAndDerivs(spanU, u, DegreeU, KnotsU, nu.Data(), du.Data());
    ge::BasisFunsAndDerivs(spanV, v, DegreeV, KnotsV, nv.Data(), dv.Data());
    TPoint3D a, au, av;
    double w = 0.0, wu = 0.0, wv = 0.0;
    for (int l = 0; l <= DegreeV; ++l) {
        const int j = spanV - DegreeV + l;
        for (int m = 0; m <= DegreeU; ++m) {
            const std::size_t k = Index(spanU - DegreeU + m, j);
            const double weight = GetRational() ? FWeights[k] : 1.0;
            const TPoint3D hp = FCtrlPoints[k] * weight;
            const double b = nu[m] * nv[l], bu = du[m] * nv[l], bv = nu[m] * dv[l];
            a += hp * b;
            w += weight * b;
            au += hp * bu;
            wu += weight * bu;
            av += hp * bv;
            wv += weight * bv;
        }
    }
    // Quotient rule on A / W.
    P = a / w;
    Su = (au - P * wu) / w;
    Sv = (av - P * wv) / w;
}

TGeNurbsSurfaceExt::TGeNurbsSurfaceExt(std::unique_ptr<TGeNurbsSurface> ASurface)
    : Surface(ASurface ? ASurface.get()
                       : throw EArgumentException("TGeNurbsSurfaceExt: the wrapped surface is missing")),
      FSurface(std::move(ASurface))
{
}

namespace {

std::unique_ptr<TGeCurve2D> CheckedOuter(std::unique_ptr<TGeCurve2D> Curve)
{
    if (!Curve) throw EArgumentException("TGeTrimmedSurface: the outer boundary is missing");
    return Curve;
}

}  // namespace

TGeCurveOnSurface::TGeCurveOnSurface(std::unique_ptr<TGeCurve2D> ACurve) : FCurve(std::move(ACurve))
{
    if (!FCurve) throw EArgumentException("TGeCurveOnSurface: the curve is missing");
}

TGeTrimmedSurface::TGeTrimmedSurface(std::unique_ptr<TGeSurface> ASurface, std::unique_ptr<TGeCurve2D> AOuter,
                                     std::vector<std::unique_ptr<TGeCurve2D>> AInner)
    : OuterBoundary(CheckedOuter(std::move(AOuter))), FSurface(std::move(ASurface))
{
    if (!FSurface) throw EArgumentException("TGeTrimmedSurface: the base surface is missing");
    for (std::size_t i = 0; i < AInner.size(); ++i) {
        if (!AInner[i])
            throw EArgumentException("TGeTrimmedSurface: inner boundary " + std::to_string(i) + " is missing");
        FInner.emplace_back(std::move(AInner[i]));
    }
}

const TGeCurveOnSurface& TGeTrimmedSurface::GetInnerBoundary(int I) const
{
    CheckIndex(I >= 0 && I < GetInnerBoundaryCount());
    return FInner[static_cast<std::size_t>(I)];
}

TGeSurfaceTriangulator* GeSurfTri = nullptr;

}  // namespace orvane
