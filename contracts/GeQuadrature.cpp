#include "contracts/GeQuadrature.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace orvane::ge {

namespace {

// Nodes on [-1, 1] (positive half, the last is 0) and weights of the Kronrod rule; the
// odd-indexed nodes are the 7-point Gauss rule, with the weights kGauss.
constexpr double kNodes[8] = {
    0.991455371120812639206854697526329, 0.949107912342758524526189684047851,
    0.864864423359769072789712788640926, 0.741531185599394439863864773280788,
    0.586087235467691130294144845693013, 0.405845151377397166906606412076961,
    0.207784955007898467600689403773245, 0.0};
constexpr double kKronrod[8] = {
    0.022935322010529224963732008058970, 0.063092092629978553290700663189204,
    0.104790010322250183839876322541518, 0.140653259715525918745189590510238,
    0.169004726639267902826583426598550, 0.190350578064785409913256402421014,
    0.204432940075298892414161999234649, 0.209482141084727828012999174891714};
constexpr double kGauss[4] = {0.129484966168869693270611432679082, 0.279705391489276667901467771423780,
                              0.381830050505118944950369775488975, 0.417959183673469387755102040816327};

double Adaptive(const std::function<double(double)>& F, double A, double B, double Tol, int Depth)
{
    double err = 0.0;
    const double whole = KronrodSum(F, A, B, err);
    if (err <= Tol || Depth <= 0 || !std::isfinite(whole)) return whole;
    const double mid = 0.5 * (A + B);
    return Adaptive(F, A, mid, 0.5 * Tol, Depth - 1) + Adaptive(F, mid, B, 0.5 * Tol, Depth - 1);
}

}  // namespace

double KronrodSum(const std::function<double(double)>& F, double A, double B, double& ErrorEstimate)
{
    const double half = 0.5 * (B - A);
    const double centre = 0.5 * (A + B);
    const double fc = F(centre);
    double kronrod = kKronrod[7] * fc;
    double gauss = kGauss[3] * fc;
    for (int i = 0; i < 7; ++i) {
        const double f = F(centre - half * kNodes[i]) + F(centre + half * kNodes[i]);
        kronrod += kKronrod[i] * f;
        if (i % 2 == 1) gauss += kGauss[i / 2] * f;
    }
    ErrorEstimate = std::fabs((kronrod - gauss) * half);
    return kronrod * half;
}

double IntegrateAdaptive(const std::function<double(double)>& F, double A, double B, double AbsTol,
                         int MaxDepth)
{
    if (A == B) return 0.0;
    return Adaptive(F, A, B, AbsTol, MaxDepth);
}

double IntegrateBounded(const std::function<double(double)>& F, double A, double B, double AbsTol,
                        int MaxIntervals)
{
    if (A == B) return 0.0;
    struct Piece {
        double A, B, Sum, Err;
    };
    std::vector<Piece> pieces;
    pieces.reserve(static_cast<std::size_t>(std::max(MaxIntervals, 1)));
    const auto add = [&](double a, double b) {
        double err = 0.0;
        const double sum = KronrodSum(F, a, b, err);
        pieces.push_back({a, b, sum, err});
    };
    add(A, B);
    while (static_cast<int>(pieces.size()) < MaxIntervals) {
        double err = 0.0;
        std::size_t worst = 0;
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            err += pieces[i].Err;
            if (pieces[i].Err > pieces[worst].Err) worst = i;
        }
        if (!(err > AbsTol) || !std::isfinite(err)) break;
        const Piece p = pieces[worst];
        const double mid = 0.5 * (p.A + p.B);
        // An interval too narrow to halve in floating point is as good as it gets.
        if (!(p.A < mid && mid < p.B)) break;
        pieces.erase(pieces.begin() + static_cast<std::ptrdiff_t>(worst));
        add(p.A, mid);
        add(mid, p.B);
    }
    double total = 0.0;
    for (const Piece& p : pieces) total += p.Sum;
    return total;
}

}  // namespace orvane::ge
