#include "contracts/GeBasis.h"

#include <cmath>
#include <sstream>

#include "contracts/SysUtils.h"

namespace orvane::ge {

int FindSpan(double U, int Degree, int CtrlCount, const std::vector<double>& Knots)
{
    const int n = CtrlCount;
    if (U >= Knots[n]) return n - 1;
    if (U < Knots[Degree]) return Degree;
    int low = Degree;
    int high = n;
    int mid = (low + high) / 2;
    while (U < Knots[mid] || U >= Knots[mid + 1]) {
        if (U < Knots[mid]) high = mid; else low = mid;
        mid = (low + high) / 2;
    }
    return mid;
}

void BasisFuns(int Span, double U, int Degree, const std::vector<double>& Knots, double* N)
{
    // The denominators are knot differences that include the span itself, hence positive;
    // U outside the span gives the span's polynomial continued.
    TScratch left(static_cast<std::size_t>(Degree) + 1), right(static_cast<std::size_t>(Degree) + 1);
    N[0] = 1.0;
    for (int j = 1; j <= Degree; ++j) {
        left[j] = U - Knots[Span + 1 - j];
        right[j] = Knots[Span + j] - U;
        double saved = 0.0;
        for (int r = 0; r < j; ++r) {
            const double temp = N[r] / (right[r + 1] + left[j - r]);
            N[r] = saved + right[r + 1] * temp;
            saved = left[j - r] * temp;
        }
        N[j] = saved;
    }
}

void BasisFunsAndDerivs(int Span, double U, int Degree, const std::vector<double>& Knots,
                        double* N, double* D)
{
    BasisFuns(Span, U, Degree, Knots, N);
    // N'(i,p) = p (N(i,p-1) / (k[i+p] - k[i]) - N(i+1,p-1) / (k[i+p+1] - k[i+1])).
    TScratch lower(static_cast<std::size_t>(Degree) + 1);
    BasisFuns(Span, U, Degree - 1, Knots, lower.Data());
    for (int j = 0; j <= Degree; ++j) {
        const int i = Span - Degree + j;
        double d = 0.0;
        if (j >= 1) d += lower[j - 1] / (Knots[i + Degree] - Knots[i]);
        if (j <= Degree - 1) d -= lower[j] / (Knots[i + Degree + 1] - Knots[i + 1]);
        D[j] = Degree * d;
    }
}

std::string FormatNumber(double X)
{
    std::ostringstream s;
    s << X;
    return s.str();
}

namespace {

[[noreturn]] void Fail(const std::string& Owner, const std::string& What)
{
    throw EArgumentException(Owner + ": " + What);
}

int Multiplicity(const std::vector<double>& Knots, std::size_t First)
{
    std::size_t k = First;
    while (k + 1 < Knots.size() && Knots[k + 1] == Knots[First]) ++k;
    return static_cast<int>(k - First + 1);
}

}  // namespace

void CheckKnots(const std::string& Owner, const std::string& Direction, int Degree,
                int CtrlCount, const std::vector<double>& Knots)
{
    const std::string dir = Direction;
    if (Degree < 1) Fail(Owner, "degree" + dir + " is " + std::to_string(Degree) + "; it must be at least 1");
    if (static_cast<long long>(CtrlCount) < static_cast<long long>(Degree) + 1)
        Fail(Owner, std::to_string(CtrlCount) + " control points" + dir + "; degree " +
                        std::to_string(Degree) + " needs at least " + std::to_string(Degree + 1));
    const std::size_t expected = static_cast<std::size_t>(CtrlCount) + static_cast<std::size_t>(Degree) + 1;
    if (Knots.size() != expected)
        Fail(Owner, std::to_string(Knots.size()) + " knots" + dir + "; " + std::to_string(CtrlCount) +
                        " control points of degree " + std::to_string(Degree) + " need " +
                        std::to_string(expected));
    for (std::size_t k = 0; k < Knots.size(); ++k) {
        if (!std::isfinite(Knots[k])) Fail(Owner, "knot " + std::to_string(k) + dir + " is not finite");
        if (k > 0 && Knots[k] < Knots[k - 1])
            Fail(Owner, "knots" + dir + " decrease at index " + std::to_string(k));
    }
    const int startMult = Multiplicity(Knots, 0);
    if (startMult != Degree + 1)
        Fail(Owner, "the first knot" + dir + " has multiplicity " + std::to_string(startMult) +
                        "; a clamped vector of degree " + std::to_string(Degree) + " needs exactly " +
                        std::to_string(Degree + 1));
    std::size_t k = static_cast<std::size_t>(startMult);
    while (k < Knots.size()) {
        const int mult = Multiplicity(Knots, k);
        const bool last = k + mult == Knots.size();
        if (last && mult != Degree + 1)
            Fail(Owner, "the last knot" + dir + " has multiplicity " + std::to_string(mult) +
                            "; a clamped vector of degree " + std::to_string(Degree) +
                            " needs exactly " + std::to_string(Degree + 1));
        if (!last && mult > Degree)
            Fail(Owner, "the interior knot " + FormatNumber(Knots[k]) + dir + " has multiplicity " +
                            std::to_string(mult) + ", more than the degree " + std::to_string(Degree));
        k += static_cast<std::size_t>(mult);
    }
}

void CheckWeight(const std::string& Owner, const std::string& Which, double W)
{
    if (!(std::isfinite(W) && W > 0.0))
        Fail(Owner, "the weight of control point " + Which + " is " + FormatNumber(W) +
                        "; weights must be positive and finite");
}

void CheckFinite(const std::string& Owner, const std::string& Which, const TPoint3D& P)
{
    if (!(std::isfinite(P.X) && std::isfinite(P.Y) && std::isfinite(P.Z)))
        Fail(Owner, "control point " + Which + " is not finite");
}

void CheckFinite(const std::string& Owner, const std::string& Which, const TPoint2D& P)
{
    if (!(std::isfinite(P.X) && std::isfinite(P.Y))) Fail(Owner, "control point " + Which + " is not finite");
}

}  // namespace orvane::ge
