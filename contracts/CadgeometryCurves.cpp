// Planar curves of the kernel (line, spline, composite) and the space spline.
#include <algorithm>
#include <cmath>

#include "contracts/Cadgeometry.h"
#include "contracts/GeBasis.h"

namespace orvane {

namespace {

void CheckIndex(bool Ok)
{
    if (!Ok) throw EArgumentOutOfRangeException(SArgumentOutOfRange);
}

void CheckTol(const char* Owner, double Tol)
{
    if (!(Tol > 0.0))
        throw EArgumentException(std::string(Owner) + ": the tolerance is " + ge::FormatNumber(Tol) +
                                 "; it must be positive");
}

// Count points evenly in the parameter; the last one exactly at the end of the range.
void SampleEvenly(const TGeCurve2D& Curve, int Count, TDynPoints2D& Points, TFloatDynArray& Params)
{
    Points.clear();
    Params.clear();
    if (Count <= 0) return;
    const TGeInterval range = Curve.GetInterval();
    for (int i = 0; i < Count; ++i) {
        const double t = i == Count - 1 && Count > 1
                             ? range.High
                             : range.Low + range.GetLength() * (static_cast<double>(i) / std::max(Count - 1, 1));
        Params.push_back(t);
        Points.push_back(Curve.GetPoint(t));
    }
}

// A parameter brought into [Lo, Hi]; NaN counts as the start.
double ClampParam(double T, double Lo, double Hi) { return std::isnan(T) ? Lo : std::clamp(T, Lo, Hi); }

void Include(TRect2D& Box, const TRect2D& Other)
{
    Box.Min = {std::min(Box.Min.X, Other.Min.X), std::min(Box.Min.Y, Other.Min.Y)};
    Box.Max = {std::max(Box.Max.X, Other.Max.X), std::max(Box.Max.Y, Other.Max.Y)};
}

}  // namespace

// --- TGeLine2D --------------------------------------------------------------------------

TGeLine2D::TGeLine2D(const TPoint2D& AStart, const TPoint2D& AEnd) : FStart(AStart), FEnd(AEnd)
{
    ge::CheckFinite("TGeLine2D", "0", FStart);
    ge::CheckFinite("TGeLine2D", "1", FEnd);
}

double TGeLine2D::GetLength() const { return FStart.DistanceTo(FEnd); }

TRect2D TGeLine2D::GetBoundRect() const { return TRect2D::CreateNormal(FStart, FEnd); }

void TGeLine2D::GetSamplePoints(int Count, TDynPoints2D& Points, TFloatDynArray& Params) const
{
    SampleEvenly(*this, Count, Points, Params);
}

void TGeLine2D::GetTolPoints(double Tol, TDynPoints2D& Points) const
{
    CheckTol("TGeLine2D", Tol);
    Points = {FStart, FEnd};
}

TPoint2D TGeLine2D::GetPoint(double T) const
{
    const double t = ClampParam(T, 0.0, 1.0);
    return t == 1.0 ? FEnd : FStart + (FEnd - FStart) * t;
}

// --- TGeSpline2D ------------------------------------------------------------------------

TGeSpline2D::TGeSpline2D(int ADegree, TArrayDouble AKnots, TDynPoints2D ACtrlPoints, TArrayDouble AWeights)
    : Degree(ADegree), FKnots(std::move(AKnots)), FCtrlPoints(std::move(ACtrlPoints)), FWeights(std::move(AWeights))
{
    constexpr const char* owner = "TGeSpline2D";
    ge::CheckKnots(owner, "", Degree, GetCtrlPointCount(), FKnots);
    if (!FWeights.empty() && FWeights.size() != FCtrlPoints.size())
        throw EArgumentException(std::string(owner) + ": " + std::to_string(FWeights.size()) + " weights given; " +
                                 std::to_string(FCtrlPoints.size()) + " or none expected");
    std::vector<TPoint3D> hom;
    for (int i = 0; i < GetCtrlPointCount(); ++i) {
        ge::CheckFinite(owner, std::to_string(i), FCtrlPoints[i]);
        if (GetRational()) ge::CheckWeight(owner, std::to_string(i), FWeights[i]);
        hom.push_back(GetCtrlPointW(i));
    }
    FPieces = ge::DecomposeSpline(Degree, FKnots, hom);
}

TPoint2D TGeSpline2D::GetStartPoint() const { return FCtrlPoints.front(); }

TPoint2D TGeSpline2D::GetEndPoint() const { return FCtrlPoints.back(); }

double TGeSpline2D::GetLength() const { return ge::PiecesLength(FPieces); }

TRect2D TGeSpline2D::GetBoundRect() const { return ge::PiecesBoundRect(FPieces); }

void TGeSpline2D::GetSamplePoints(int Count, TDynPoints2D& Points, TFloatDynArray& Params) const
{
    SampleEvenly(*this, Count, Points, Params);
}

void TGeSpline2D::GetTolPoints(double Tol, TDynPoints2D& Points) const
{
    CheckTol("TGeSpline2D", Tol);
    Points.clear();
    ge::PiecesTolPoints(FPieces, Tol, true, Points);
}

TGeInterval TGeSpline2D::GetInterval() const { return {FKnots.front(), FKnots.back()}; }

TPoint2D TGeSpline2D::GetPoint(double T) const
{
    const double t = ClampParam(T, FKnots.front(), FKnots.back());
    // A clamped curve passes through its end control points exactly.
    if (t == FKnots.front()) return GetStartPoint();
    if (t == FKnots.back()) return GetEndPoint();
    const int span = ge::FindSpan(t, Degree, GetCtrlPointCount(), FKnots);
    ge::TScratch n(static_cast<std::size_t>(Degree) + 1);
    ge::BasisFuns(span, t, Degree, FKnots, n.Data());
    TPoint3D h;
    for (int m = 0; m <= Degree; ++m) h += GetCtrlPointW(span - Degree + m) * n[m];
    return {h.X / h.Z, h.Y / h.Z};
}

TPoint2D TGeSpline2D::GetCtrlPoint(int I) const
{
    CheckIndex(I >= 0 && I < GetCtrlPointCount());
    return FCtrlPoints[I];
}

TPoint3D TGeSpline2D::GetCtrlPointW(int I) const
{
    const TPoint2D p = GetCtrlPoint(I);
    const double w = GetWeight(I);
    return {p.X * w, p.Y * w, w};
}

double TGeSpline2D::GetWeight(int I) const
{
    CheckIndex(I >= 0 && I < GetCtrlPointCount());
    return GetRational() ? FWeights[I] : 1.0;
}

double TGeSpline2D::GetKnots(int I) const
{
    CheckIndex(I >= 0 && I < GetKnotCount());
    return FKnots[I];
}

// --- TGeCompositeCurve2D ----------------------------------------------------------------

TGeCompositeCurve2D::TGeCompositeCurve2D(std::vector<std::unique_ptr<TGeCurve2D>> ACurves)
    : FCurves(std::move(ACurves))
{
    for (std::size_t i = 0; i < FCurves.size(); ++i)
        if (!FCurves[i])
            throw EArgumentException("TGeCompositeCurve2D: sub-curve " + std::to_string(i) + " is missing");
}

const TGeCurve2D* TGeCompositeCurve2D::GetCurve(int I) const
{
    CheckIndex(I >= 0 && I < GetCurveCount());
    return FCurves[I].get();
}

TPoint2D TGeCompositeCurve2D::GetStartPoint() const { return GetCurve(0)->GetStartPoint(); }

TPoint2D TGeCompositeCurve2D::GetEndPoint() const { return GetCurve(GetCurveCount() - 1)->GetEndPoint(); }

double TGeCompositeCurve2D::GetLength() const
{
    double total = 0.0;
    for (const auto& c : FCurves) total += c->GetLength();
    return total;
}

TRect2D TGeCompositeCurve2D::GetBoundRect() const
{
    TRect2D box = GetCurve(0)->GetBoundRect();
    for (const auto& c : FCurves) Include(box, c->GetBoundRect());
    return box;
}

void TGeCompositeCurve2D::GetSamplePoints(int Count, TDynPoints2D& Points, TFloatDynArray& Params) const
{
    if (FCurves.empty()) {
        Points.clear();
        Params.clear();
        return;
    }
    SampleEvenly(*this, Count, Points, Params);
}

void TGeCompositeCurve2D::GetTolPoints(double Tol, TDynPoints2D& Points) const
{
    CheckTol("TGeCompositeCurve2D", Tol);
    Points.clear();
    TDynPoints2D part;
    for (const auto& c : FCurves) {
        c->GetTolPoints(Tol, part);
        auto from = part.begin();
        if (!Points.empty() && !part.empty()) {
            const TPoint2D last = Points.back();
            const double scale = 1.0 + std::max(std::fabs(last.X), std::fabs(last.Y));
            if (last.DistanceTo(part.front()) <= 1e-12 * scale) ++from;
        }
        Points.insert(Points.end(), from, part.end());
    }
}

TPoint2D TGeCompositeCurve2D::GetPoint(double T) const
{
    const int n = GetCurveCount();
    const double t = ClampParam(T, 0.0, static_cast<double>(n));
    const int i = std::clamp(static_cast<int>(std::floor(t)), 0, std::max(n - 1, 0));
    const TGeCurve2D* c = GetCurve(i);
    const TGeInterval range = c->GetInterval();
    const double local = t - i;
    return local >= 1.0 ? c->GetEndPoint() : c->GetPoint(range.Low + range.GetLength() * local);
}

// --- TGeSpline3D ------------------------------------------------------------------------

namespace {

constexpr const char* kSpline3D = "TGeSpline3D";

int CheckedSpline3DDegree(int CtrlCount, int Degree)
{
    if (Degree < 1)
        throw EArgumentException(std::string(kSpline3D) + ": degree is " + std::to_string(Degree) +
                                 "; it must be at least 1");
    if (static_cast<long long>(CtrlCount) < static_cast<long long>(Degree) + 1)
        throw EArgumentException(std::string(kSpline3D) + ": " + std::to_string(CtrlCount) +
                                 " control points; degree " + std::to_string(Degree) + " needs at least " +
                                 std::to_string(Degree + 1));
    return Degree;
}

}  // namespace

TGeSpline3D::TGeSpline3D(int ACtrlPointCount, int ADegree)
    : Degree(CheckedSpline3DDegree(ACtrlPointCount, ADegree)),
      FCtrlPoints(static_cast<std::size_t>(ACtrlPointCount)),
      FWeights(static_cast<std::size_t>(ACtrlPointCount), 1.0),
      FKnots(static_cast<std::size_t>(ACtrlPointCount) + static_cast<std::size_t>(ADegree) + 1, 0.0)
{
}

void TGeSpline3D::SetCtrlPoint(int I, const TPoint3D& P)
{
    CheckIndex(I >= 0 && I < GetCtrlPointCount());
    ge::CheckFinite(kSpline3D, std::to_string(I), P);
    FCtrlPoints[I] = P;
}

void TGeSpline3D::SetWeight(int I, double W)
{
    CheckIndex(I >= 0 && I < GetCtrlPointCount());
    ge::CheckWeight(kSpline3D, std::to_string(I), W);
    FWeights[I] = W;
}

void TGeSpline3D::SetKnots(int I, double K)
{
    CheckIndex(I >= 0 && I < GetKnotCount());
    if (!std::isfinite(K))
        throw EArgumentException(std::string(kSpline3D) + ": knot " + std::to_string(I) + " is not finite");
    FKnots[I] = K;
}

TPoint3D TGeSpline3D::GetCtrlPoint(int I) const
{
    CheckIndex(I >= 0 && I < GetCtrlPointCount());
    return FCtrlPoints[I];
}

double TGeSpline3D::GetWeight(int I) const
{
    CheckIndex(I >= 0 && I < GetCtrlPointCount());
    return FWeights[I];
}

double TGeSpline3D::GetKnots(int I) const
{
    CheckIndex(I >= 0 && I < GetKnotCount());
    return FKnots[I];
}

TGeInterval TGeSpline3D::GetInterval() const
{
    return {FKnots[static_cast<std::size_t>(Degree)], FKnots[FCtrlPoints.size()]};
}

}  // namespace orvane
