#include "io/FaceValidation.h"

#include <cmath>
#include <sstream>

namespace orvane::io {
namespace {

std::string Text(const auto&... parts)
{
    std::ostringstream out;
    (out << ... << parts);
    return out.str();
}

// Degree, count and a clamped, non-decreasing, finite knot vector of sane size.
std::string FindKnotProblem(const char* dir, int degree, int count, const std::vector<double>& knots)
{
    if (degree < 1 || degree > kMaxDegree) return Text("degree ", degree, " in ", dir, " is out of range");
    if (count < degree + 1) return Text(count, " poles in ", dir, " are too few for degree ", degree);
    if (knots.size() != static_cast<std::size_t>(count + degree + 1))
        return Text(knots.size(), " knots in ", dir, " do not fit ", count, " poles of degree ", degree);
    for (double k : knots)
        if (!std::isfinite(k) || std::fabs(k) > kMaxAbsKnot) return Text("absurd knots: a ", dir, " knot is ", k);
    for (std::size_t i = 1; i < knots.size(); ++i)
        if (knots[i] < knots[i - 1]) return Text("absurd knots: the ", dir, " knots decrease");
    const double range = knots.back() - knots.front();
    if (!(range >= kMinKnotRange)) return Text("absurd knots: the ", dir, " knots span ", range);
    for (int i = 1; i <= degree; ++i)
        if (knots[i] != knots[0] || knots[knots.size() - 1 - i] != knots.back())
            return Text("the ", dir, " knots are not clamped");
    return {};
}

bool IsSanePoint(double x) { return std::isfinite(x) && std::fabs(x) <= kMaxAbsCoordinate; }

std::string FindWeightProblem(const std::vector<double>& weights, std::size_t poleCount)
{
    if (weights.empty()) return {};
    if (weights.size() != poleCount) return Text(weights.size(), " weights for ", poleCount, " poles");
    for (double w : weights)
        if (!std::isfinite(w) || w <= 0.0 || w > kMaxAbsCoordinate) return Text("a weight is ", w);
    return {};
}

}  // namespace

std::string FindSurfaceProblem(const NurbsSurfaceData& S)
{
    if (auto p = FindKnotProblem("U", S.DegreeU, S.CountU, S.KnotsU); !p.empty()) return p;
    if (auto p = FindKnotProblem("V", S.DegreeV, S.CountV, S.KnotsV); !p.empty()) return p;
    const long long count = static_cast<long long>(S.CountU) * S.CountV;
    if (count > kMaxPoleCount) return Text(count, " poles are too many");
    if (S.Poles.size() != static_cast<std::size_t>(count)) return Text(S.Poles.size(), " poles for a net of ", count);
    for (const TPoint3D& p : S.Poles)
        if (!IsSanePoint(p.X) || !IsSanePoint(p.Y) || !IsSanePoint(p.Z)) return "a pole lies at infinity";
    return FindWeightProblem(S.Weights, S.Poles.size());
}

std::string FindCurveProblem(const TrimCurveData& C)
{
    const int count = static_cast<int>(C.Poles.size());
    if (auto p = FindKnotProblem("curve", C.Degree, count, C.Knots); !p.empty()) return p;
    for (const TPoint2D& p : C.Poles)
        if (!IsSanePoint(p.X) || !IsSanePoint(p.Y)) return "a boundary curve reaches infinity";
    return FindWeightProblem(C.Weights, C.Poles.size());
}

std::string FindFaceProblem(const FaceData& F, double Tol)
{
    if (auto p = FindSurfaceProblem(F.Surface); !p.empty()) return p;
    if (F.Loops.empty()) return "no boundary loop";
    const TRect2D box = F.Surface.Domain();
    for (std::size_t l = 0; l < F.Loops.size(); ++l) {
        const TrimLoopData& loop = F.Loops[l];
        if (loop.empty()) return Text("boundary loop ", l + 1, " is empty");
        for (const TrimCurveData& c : loop) {
            if (auto p = FindCurveProblem(c); !p.empty()) return Text("boundary loop ", l + 1, ": ", p);
            // The ends only: a control polygon may bulge out of the range where its curve does not.
            for (const TPoint2D& q : {c.Start(), c.End()})
                if (q.X < box.Min.X - Tol || q.X > box.Max.X + Tol || q.Y < box.Min.Y - Tol || q.Y > box.Max.Y + Tol)
                    return Text("boundary loop ", l + 1, " leaves the surface's parameter range");
        }
        for (std::size_t i = 0; i < loop.size(); ++i) {
            const TPoint2D end = loop[i].End();
            const TPoint2D next = loop[(i + 1) % loop.size()].Start();
            if (!end.Equals(next, Tol)) return Text("open trim loop: loop ", l + 1, " has a gap of ", end.DistanceTo(next));
        }
    }
    return {};
}

}  // namespace orvane::io
