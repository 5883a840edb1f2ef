#include "tessellation/TempNurbsPointEval.h"

#include "contracts/Cadtypes.h"

namespace orvane {

TPoint3D TTempNurbsPointEval::EvalPointOnNurbsSurface(const TGeNurbsSurface& ANurbsSurface,
                                                        const TPoint2D& APoint) const
{
    const TGeNurbsSurface& s = ANurbsSurface;
    const int spanU = FindKnotSpan(APoint.X, s.KnotsU, s.DegreeU);
    const int spanV = FindKnotSpan(APoint.Y, s.KnotsV, s.DegreeV);
    const std::vector<double> nu = BasisFunctions(spanU, APoint.X, s.DegreeU, s.KnotsU);
    const std::vector<double> nv = BasisFunctions(spanV, APoint.Y, s.DegreeV, s.KnotsV);

    TPoint3D result = TPoint3D::FZero;
    double w = 0.0;
    for (int l = 0; l <= s.DegreeV; ++l) {
        TPoint3D row = TPoint3D::FZero;
        double rowW = 0.0;
        const int j = spanV - s.DegreeV + l;
        for (int m = 0; m <= s.DegreeU; ++m) {
            const int i = spanU - s.DegreeU + m;
            const double t = nu[static_cast<std::size_t>(m)] * s.GetWeight(i, j);
            rowW += t;
            row += t * s.GetCtrlPoint(i, j);
        }
        w += rowW * nv[static_cast<std::size_t>(l)];
        result += row * nv[static_cast<std::size_t>(l)];
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
    std::vector<double> n(p + 1, 0.0);
    if (fSmall(U, K.front() - 2 * FSampleTolerance, 1e-6)) {
        n[0] = 1.0;
        return n;
    }
    if (fGreat(U, K.back() + 2 * FSampleTolerance, 1e-6)) {
        n[p] = 1.0;
        return n;
    }
    std::vector<double> left(p + 2, 0.0);
    std::vector<double> right(p + 2, 0.0);
    const std::size_t span = static_cast<std::size_t>(Span);
    n[0] = 1.0;
    for (std::size_t j = 1; j <= p; ++j) {
        left[j] = U - K[span + 1 - j];
        right[j] = K[span + j] - U;
        double saved = 0.0;
        for (std::size_t r = 0; r < j; ++r) {
            const double temp = n[r] / (right[r + 1] + left[j - r]);
            n[r] = saved + right[r + 1] * temp;
            saved = left[j - r] * temp;
        }
        n[j] = saved;
    }
    return n;
}

}  // namespace orvane
