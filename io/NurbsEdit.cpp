#include "io/NurbsEdit.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace orvane::io {
namespace {

using Homogeneous = std::array<double, 4>;

Homogeneous Lift(const NurbsSurfaceData& S, std::size_t k)
{
    const double w = S.Weights.empty() ? 1.0 : S.Weights[k];
    const TPoint3D& p = S.Poles[k];
    return {p.X * w, p.Y * w, p.Z * w, w};
}

Homogeneous Blend(const Homogeneous& a, const Homogeneous& b, double alpha)
{
    Homogeneous r;
    for (int c = 0; c < 4; ++c) r[c] = alpha * a[c] + (1.0 - alpha) * b[c];
    return r;
}

// The span k with knots[k] <= t < knots[k + 1], among the spans of the curve's range.
std::size_t FindSpan(const std::vector<double>& knots, int degree, int count, double t)
{
    const auto it = std::upper_bound(knots.begin() + degree, knots.begin() + count, t);
    return static_cast<std::size_t>(it - knots.begin()) - 1;
}

}  // namespace

void MapParameter(FaceData& F, ParamDir Dir, double Scale, double Offset)
{
    std::vector<double>& knots = Dir == ParamDir::U ? F.Surface.KnotsU : F.Surface.KnotsV;
    for (double& k : knots) k = Scale * k + Offset;
    for (TrimLoopData& loop : F.Loops)
        for (TrimCurveData& c : loop)
            for (TPoint2D& p : c.Poles) {
                double& x = Dir == ParamDir::U ? p.X : p.Y;
                x = Scale * x + Offset;
            }
}

void InsertKnot(NurbsSurfaceData& S, ParamDir Dir, double T)
{
    const bool alongU = Dir == ParamDir::U;
    std::vector<double>& knots = alongU ? S.KnotsU : S.KnotsV;
    const int p = alongU ? S.DegreeU : S.DegreeV;
    const int n = alongU ? S.CountU : S.CountV;
    if (!(T > knots.front() && T < knots.back())) throw std::invalid_argument("knot outside the range");
    const int lines = alongU ? S.CountV : S.CountU;
    const std::size_t k = FindSpan(knots, p, n, T);
    // Index of pole i of line l, before (count n) and after (count n + 1) the insertion.
    auto at = [&](int i, int l, int count) {
        return alongU ? static_cast<std::size_t>(i) * S.CountV + l : static_cast<std::size_t>(l) * count + i;
    };
    const bool rational = !S.Weights.empty();
    std::vector<TPoint3D> poles(static_cast<std::size_t>(lines) * (n + 1));
    std::vector<double> weights(rational ? poles.size() : 0);
    for (int l = 0; l < lines; ++l)
        for (int i = 0; i <= n; ++i) {
            Homogeneous h;
            if (i <= static_cast<int>(k) - p) {
                h = Lift(S, at(i, l, n));
            } else if (i > static_cast<int>(k)) {
                h = Lift(S, at(i - 1, l, n));
            } else {
                const double alpha = (T - knots[i]) / (knots[i + p] - knots[i]);
                h = Blend(Lift(S, at(i, l, n)), Lift(S, at(i - 1, l, n)), alpha);
            }
            const std::size_t dst = at(i, l, n + 1);
            poles[dst] = {h[0] / h[3], h[1] / h[3], h[2] / h[3]};
            if (rational) weights[dst] = h[3];
        }
    knots.insert(knots.begin() + static_cast<long>(k) + 1, T);
    (alongU ? S.CountU : S.CountV) = n + 1;
    S.Poles = std::move(poles);
    S.Weights = std::move(weights);
}

void InsertKnots(NurbsSurfaceData& S, ParamDir Dir, int Count)
{
    for (int c = 0; c < Count; ++c) {
        const std::vector<double>& knots = Dir == ParamDir::U ? S.KnotsU : S.KnotsV;
        std::size_t widest = 0;
        for (std::size_t i = 1; i + 1 < knots.size(); ++i)
            if (knots[i + 1] - knots[i] > knots[widest + 1] - knots[widest]) widest = i;
        InsertKnot(S, Dir, 0.5 * (knots[widest] + knots[widest + 1]));
    }
}

}  // namespace orvane::io

