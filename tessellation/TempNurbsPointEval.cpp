#include "tessellation/TempNurbsPointEval.h"

#include <algorithm>
#include <array>

#include "contracts/Cadtypes.h"

namespace orvane {

namespace {

// Basis values and the recursion's scratch of one direction.
class TScratch {
public:
    explicit TScratch(int Degree)
    {
        const std::size_t need = 3 * static_cast<std::size_t>(Degree) + 5;
        double* base = FLocal.data();
        if (need > FLocal.size()) {
            FHeap.resize(need);
            base = FHeap.data();
        }
        N = base;
        Left = base + Degree + 1;
        Right = Left + Degree + 2;
    }
    TScratch(const TScratch&) = delete;
    TScratch& operator=(const TScratch&) = delete;

    double* N;
    double* Left;
    double* Right;

private:
    std::array<double, 32> FLocal;  // filled before it is read
    std::vector<double> FHeap;
};

}  // namespace

TPoint3D TTempNurbsPointEval::EvalPointOnNurbsSurface(const TGeNurbsSurface& ANurbsSurface,
                                                        const TPoint2D& APoint) const
{
    const TGeNurbsSurface& s = ANurbsSurface;
    const int spanU = FindKnotSpan(APoint.X, s.KnotsU, s.DegreeU);
    const int spanV = FindKnotSpan(APoint.Y, s.KnotsV, s.DegreeV);
    // Scratch on the stack for usual degrees, on the heap beyond them.
    TScratch nu(s.DegreeU);
    TScratch nv(s.DegreeV);
    BasisFunctionsInto(spanU, APoint.X, s.DegreeU, s.KnotsU, nu.N, nu.Left, nu.Right);
    BasisFunctionsInto(spanV, APoint.Y, s.DegreeV, s.KnotsV, nv.N, nv.Left, nv.Right);

    TPoint3D result = TPoint3D::FZero;
    double w = 0.0;
    for (int l = 0; l <= s.DegreeV; ++l) {
        TPoint3D row = TPoint3D::FZero;
        double rowW = 0.0;
        const int j = spanV - s.DegreeV + l;
        for (int m = 0; m <= s.DegreeU; ++m) {
            const int i = spanU - s.DegreeU + m;
            const double t = nu.N[m] * s.GetWeight(i, j);
            rowW += t;
            row += t * s.GetCtrlPoint(i, j);
        }
        w += rowW * nv.N[l];
        result += row * nv.N[l];
    }
    // Control points are Cartesian and weighted above; a non-rational surface has weights 1.
    if (s.GetRational()) result = result / w;
    return result;
}

int TTempNurbsPointEval::FindKnotSpan(double U, const std::vector<double>& K, int P)
{
    const int n = static_cast<int>(K.size()) - P - 1;
    auto at = [&K](int i) { return K[static_cast<std::size_t>(i)]; };
    if (U >= at(n)) return n - 1;
    if (at(P) > U) return P;
    int low = P;
    int high = n;
    int mid = (low + high) / 2;
    while (at(mid) > U || U >= at(mid + 1)) {
        if (at(mid) > U)
            high = mid;
        else
            low = mid;
        mid = (low + high) / 2;
    }
    return mid;
}

std::vector<double> TTempNurbsPointEval::BasisFunctions(int Span, double U, int P,
                                                        const std::vector<double>& K) const
{
    const std::size_t p = static_cast<std::size_t>(P);
    std::vector<double> n(p + 1);
    std::vector<double> left(p + 2);
    std::vector<double> right(p + 2);
    BasisFunctionsInto(Span, U, P, K, n.data(), left.data(), right.data());
    return n;
}

void TTempNurbsPointEval::BasisFunctionsInto(int Span, double U, int P, const std::vector<double>& K, double* N,
                                             double* Left, double* Right) const
{
    const std::size_t p = static_cast<std::size_t>(P);
    std::fill(N, N + p + 1, 0.0);
    if (fSmall(U, K.front() - 2 * FSampleTolerance, 1e-6)) {
        N[0] = 1.0;
        return;
    }
    if (fGreat(U, K.back() + 2 * FSampleTolerance, 1e-6)) {
        N[p] = 1.0;
        return;
    }
    std::fill(Left, Left + p + 2, 0.0);
    std::fill(Right, Right + p + 2, 0.0);
    const std::size_t span = static_cast<std::size_t>(Span);
    N[0] = 1.0;
    for (std::size_t j = 1; j <= p; ++j) {
        Left[j] = U - K[span + 1 - j];
        Right[j] = K[span + j] - U;
        double saved = 0.0;
        for (std::size_t r = 0; r < j; ++r) {
            const double temp = N[r] / (Right[r + 1] + Left[j - r]);
            N[r] = saved + Right[r + 1] * temp;
            saved = Left[j - r] * temp;
        }
        N[j] = saved;
    }
}

}  // namespace orvane
