#include "contracts/SurfaceArea.h"

#include <algorithm>
#include <cmath>

#include "contracts/GeQuadrature.h"

namespace orvane {

namespace {

// The knots of Knots strictly inside (A, B), with A and B around them: the smooth pieces.
std::vector<double> Breaks(const TArrayDouble& Knots, double A, double B)
{
    std::vector<double> out{A};
    for (double k : Knots)
        if (k > A && k < B && k != out.back()) out.push_back(k);
    out.push_back(B);
    return out;
}

double AreaDensity(const TGeNurbsSurface& S, double U, double V)
{
    TPoint3D p, su, sv;
    S.GetDerivatives(U, V, p, su, sv);
    return su.CrossMul(sv).Length();
}

// The integral of Density over [A, B] in V at U, split at the V knots.
double IntegrateV(const TGeNurbsSurface& S, double U, double A, double B, double Tol)
{
    const double sign = B < A ? -1.0 : 1.0;
    const std::vector<double> breaks = Breaks(S.KnotsV, std::min(A, B), std::max(A, B));
    double sum = 0.0;
    for (std::size_t i = 0; i + 1 < breaks.size(); ++i)
        sum += ge::IntegrateAdaptive([&](double v) { return AreaDensity(S, U, v); }, breaks[i], breaks[i + 1],
                                     Tol / static_cast<double>(breaks.size()));
    return sign * sum;
}

// A coarse midpoint estimate of the whole domain's area: the scale of the tolerances.
double RoughArea(const TGeNurbsSurface& S)
{
    const TRect2D d = S.GetDomain();
    constexpr int n = 16;
    double sum = 0.0;
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j)
            sum += AreaDensity(S, d.Min.X + d.Width() * (i + 0.5) / n, d.Min.Y + d.Height() * (j + 0.5) / n);
    return std::max(sum * d.Width() * d.Height() / (n * n), 1e-300);
}

double NurbsArea(const TGeNurbsSurface& S)
{
    const TRect2D d = S.GetDomain();
    const double scale = RoughArea(S);
    const double innerTol = 1e-14 * scale / d.Width();
    const std::vector<double> breaks = Breaks(S.KnotsU, d.Min.X, d.Max.X);
    double sum = 0.0;
    for (std::size_t i = 0; i + 1 < breaks.size(); ++i)
        sum += ge::IntegrateAdaptive([&](double u) { return IntegrateV(S, u, d.Min.Y, d.Max.Y, innerTol); },
                                     breaks[i], breaks[i + 1], 1e-12 * scale / static_cast<double>(breaks.size()));
    return sum;
}

const TGeNurbsSurface* NurbsOf(const TGeSurface* S)
{
    if (const auto* n = dynamic_cast<const TGeNurbsSurface*>(S)) return n;
    if (const auto* e = dynamic_cast<const TGeNurbsSurfaceExt*>(S)) return e->Surface;
    return nullptr;
}

void AppendPieces(const TGeCurve2D& Curve, ge::TBezierPieces& Pieces)
{
    if (const auto* line = dynamic_cast<const TGeLine2D*>(&Curve)) {
        Pieces.push_back(ge::LinePiece(line->GetStartPoint(), line->GetEndPoint(), 0.0, 1.0));
    } else if (const auto* spline = dynamic_cast<const TGeSpline2D*>(&Curve)) {
        Pieces.insert(Pieces.end(), spline->GetPieces().begin(), spline->GetPieces().end());
    } else if (const auto* composite = dynamic_cast<const TGeCompositeCurve2D*>(&Curve)) {
        for (int i = 0; i < composite->GetCurveCount(); ++i) AppendPieces(*composite->GetCurve(i), Pieces);
    } else {
        throw EArgumentException("SurfaceArea: a trim curve is of an unknown kind");
    }
}

// The local parameters in [0, 1] where the piece crosses a knot line u = k, with 0 and 1
// around them: F is smooth between them, so the quadrature need not hunt for the kinks.
std::vector<double> KnotCrossings(const ge::TBezier2D& B, const TArrayDouble& KnotsU)
{
    constexpr int samples = 32;
    std::vector<double> out{0.0};
    const auto u = [&](double s) { return B.PointAt(s).X; };
    for (int i = 0; i < samples; ++i) {
        double a = static_cast<double>(i) / samples, b = static_cast<double>(i + 1) / samples;
        const double ua = u(a), ub = u(b);
        for (double k : KnotsU) {
            if (!((ua < k && k < ub) || (ub < k && k < ua))) continue;
            double lo = a, hi = b;
            for (int it = 0; it < 60; ++it) {
                const double mid = 0.5 * (lo + hi);
                ((u(mid) < k) == (ua < k) ? lo : hi) = mid;
            }
            out.push_back(0.5 * (lo + hi));
        }
    }
    out.push_back(1.0);
    std::sort(out.begin(), out.end());
    out.erase(std::unique(out.begin(), out.end()), out.end());
    return out;
}

// The area that one closed loop encloses on S, signed by the loop's direction.
double LoopIntegral(const TGeNurbsSurface& S, const TGeCurve2D& Loop, double Scale)
{
    ge::TBezierPieces pieces;
    AppendPieces(Loop, pieces);
    if (pieces.empty()) return 0.0;
    const TPoint2D start = pieces.front().Start();
    const TPoint2D end = pieces.back().End();
    if (!(start == end)) pieces.push_back(ge::LinePiece(end, start, 0.0, 1.0));
    const TRect2D d = S.GetDomain();
    const double innerTol = 1e-14 * Scale / d.Width();
    double sum = 0.0;
    for (const ge::TBezier2D& b : pieces) {
        const auto integrand = [&](double s) {
            TPoint2D p, dp;
            b.PointAndDeriv(s, p, dp);
            if (dp.X == 0.0) return 0.0;
            return -IntegrateV(S, p.X, d.Min.Y, p.Y, innerTol) * dp.X;
        };
        const std::vector<double> breaks = KnotCrossings(b, S.KnotsU);
        for (std::size_t i = 0; i + 1 < breaks.size(); ++i)
            sum += ge::IntegrateAdaptive(integrand, breaks[i], breaks[i + 1],
                                         1e-12 * Scale / static_cast<double>(pieces.size() * (breaks.size() - 1)));
    }
    return sum;
}

double TrimmedArea(const TGeTrimmedSurface& T)
{
    const TGeNurbsSurface* base = NurbsOf(T.GetSurface());
    if (!base) throw EArgumentException("SurfaceArea: the base surface is no NURBS surface");
    const double scale = RoughArea(*base);
    double area = std::fabs(LoopIntegral(*base, *T.OuterBoundary.GetCurve(), scale));
    for (int i = 0; i < T.GetInnerBoundaryCount(); ++i)
        area -= std::fabs(LoopIntegral(*base, *T.GetInnerBoundary(i).GetCurve(), scale));
    return area;
}

}  // namespace

double SurfaceArea(const TGeSurface& Surface)
{
    if (const auto* t = dynamic_cast<const TGeTrimmedSurface*>(&Surface)) return TrimmedArea(*t);
    if (const TGeNurbsSurface* n = NurbsOf(&Surface)) return NurbsArea(*n);
    throw EArgumentException("SurfaceArea: the surface is no NURBS surface");
}

}  // namespace orvane
