#include "contracts/GeBezier.h"

#include <algorithm>
#include <cmath>

#include "contracts/GeQuadrature.h"

namespace orvane::ge {

namespace {

// Halving stops at this depth whatever the tolerance; 2^-40 of a piece is below rounding.
constexpr int kMaxDepth = 40;

TPoint3D Lerp(const TPoint3D& A, const TPoint3D& B, double S) { return A + (B - A) * S; }

// Runs de Casteljau's triangle; Levels[r] holds the points of level r.
std::vector<std::vector<TPoint3D>> Casteljau(const std::vector<TPoint3D>& Ctrl, double S)
{
    std::vector<std::vector<TPoint3D>> levels{Ctrl};
    while (levels.back().size() > 1) {
        const auto& prev = levels.back();
        std::vector<TPoint3D> next(prev.size() - 1);
        for (std::size_t i = 0; i < next.size(); ++i) next[i] = Lerp(prev[i], prev[i + 1], S);
        levels.push_back(std::move(next));
    }
    return levels;
}

// Largest absolute coordinate of the Cartesian control points: the scale of rounding.
double Scale(const TBezierPieces& Pieces)
{
    double s = 0.0;
    for (const TBezier2D& b : Pieces)
        for (int i = 0; i <= b.Degree(); ++i) {
            const TPoint2D p = b.CtrlPoint(i);
            s = std::max({s, std::fabs(p.X), std::fabs(p.Y)});
        }
    return s;
}

void Include(TRect2D& Box, const TPoint2D& P)
{
    Box.Min = {std::min(Box.Min.X, P.X), std::min(Box.Min.Y, P.Y)};
    Box.Max = {std::max(Box.Max.X, P.X), std::max(Box.Max.Y, P.Y)};
}

void GrowBox(const TBezier2D& B, double Eps, int Depth, TRect2D& Found)
{
    TRect2D hull{B.Start(), B.Start()};
    for (int i = 1; i <= B.Degree(); ++i) Include(hull, B.CtrlPoint(i));
    const bool inside = hull.Min.X >= Found.Min.X - Eps && hull.Min.Y >= Found.Min.Y - Eps &&
                        hull.Max.X <= Found.Max.X + Eps && hull.Max.Y <= Found.Max.Y + Eps;
    if (inside || Depth == 0) return;
    TBezier2D left, right;
    B.Split(0.5, left, right);
    Include(Found, right.Start());
    GrowBox(left, Eps, Depth - 1, Found);
    GrowBox(right, Eps, Depth - 1, Found);
}

void Flatten(const TBezier2D& B, double Tol, int Depth, TDynPoints2D& Points)
{
    const TPoint2D a = B.Start();
    const TPoint2D e = B.End();
    double worst = 0.0;
    for (int i = 1; i < B.Degree(); ++i) worst = std::max(worst, DistanceToSegment(B.CtrlPoint(i), a, e));
    if (worst <= Tol || Depth == 0) {
        Points.push_back(e);
        return;
    }
    TBezier2D left, right;
    B.Split(0.5, left, right);
    Flatten(left, Tol, Depth - 1, Points);
    Flatten(right, Tol, Depth - 1, Points);
}

// Inserts knot U once (Boehm); U lies strictly inside the knot range.
void InsertKnot(double U, int Degree, std::vector<double>& Knots, std::vector<TPoint3D>& Ctrl)
{
    const int n = static_cast<int>(Ctrl.size());
    int k = Degree;
    while (k + 1 < n && Knots[k + 1] <= U) ++k;
    std::vector<TPoint3D> q(n + 1);
    for (int i = 0; i <= n; ++i) {
        if (i <= k - Degree) q[i] = Ctrl[i];
        else if (i >= k + 1) q[i] = Ctrl[i - 1];
        else {
            const double alpha = (U - Knots[i]) / (Knots[i + Degree] - Knots[i]);
            q[i] = Ctrl[i] * alpha + Ctrl[i - 1] * (1.0 - alpha);
        }
    }
    Knots.insert(Knots.begin() + k + 1, U);
    Ctrl = std::move(q);
}

// Relative tolerance of a piece's length and the most intervals its quadrature may use: a
// smooth piece needs one or two, a cusp or a sharp rational peak draws the halvings to itself
// and reaches far below 1e-12 of the piece long before the limit.
constexpr double kLengthRelTol = 1e-12;
constexpr int kLengthMaxIntervals = 100;

// The length of one piece. The piece is first moved to its first control point and divided by
// its extent, and its weights by the largest: the speed is then of order one at any scale of
// coordinates (no overflow at 1e150, no underflow at 1e-300) and the tolerance is relative.
double PieceLength(const TBezier2D& B)
{
    const int n = B.Degree();
    if (n < 1) return 0.0;
    const TPoint2D o = B.Start();
    double extent = 0.0;
    double wmax = 0.0;
    for (int i = 0; i <= n; ++i) {
        const TPoint2D p = B.CtrlPoint(i);
        extent = std::max({extent, std::fabs(p.X - o.X), std::fabs(p.Y - o.Y)});
        wmax = std::max(wmax, std::fabs(B.Ctrl[i].Z));
    }
    if (!(extent > 0.0) || !std::isfinite(extent) || !(wmax > 0.0) || !std::isfinite(wmax)) return 0.0;
    std::vector<TPoint3D> ctrl(static_cast<std::size_t>(n) + 1);
    double polygon = 0.0;
    TPoint2D prev{0.0, 0.0};
    for (int i = 0; i <= n; ++i) {
        const TPoint2D p = B.CtrlPoint(i);
        const TPoint2D q{(p.X - o.X) / extent, (p.Y - o.Y) / extent};
        const double w = B.Ctrl[i].Z / wmax;
        ctrl[static_cast<std::size_t>(i)] = {q.X * w, q.Y * w, w};
        if (i > 0) polygon += std::hypot(q.X - prev.X, q.Y - prev.Y);
        prev = q;
    }
    std::vector<TPoint3D> work(ctrl.size());
    // |dC/dS| by de Casteljau down to the last two points: C = h / h.Z, dh = n (b - a).
    const auto speed = [&](double s) {
        work = ctrl;
        for (int level = n; level > 1; --level)
            for (int i = 0; i < level; ++i) work[i] = Lerp(work[i], work[i + 1], s);
        const TPoint3D h = Lerp(work[0], work[1], s);
        const TPoint3D dh = (work[1] - work[0]) * n;
        const double x = h.X / h.Z, y = h.Y / h.Z;
        return std::hypot((dh.X - dh.Z * x) / h.Z, (dh.Y - dh.Z * y) / h.Z);
    };
    const double length = IntegrateBounded(speed, 0.0, 1.0, kLengthRelTol * polygon, kLengthMaxIntervals);
    // Weights so far apart that the speed overflows: the control polygon bounds the length.
    return extent * (std::isfinite(length) ? length : polygon);
}

}  // namespace

TPoint2D TBezier2D::PointAt(double S) const
{
    const TPoint3D h = Casteljau(Ctrl, S).back()[0];
    return {h.X / h.Z, h.Y / h.Z};
}

void TBezier2D::PointAndDeriv(double S, TPoint2D& P, TPoint2D& D) const
{
    const auto levels = Casteljau(Ctrl, S);
    const TPoint3D h = levels.back()[0];
    P = {h.X / h.Z, h.Y / h.Z};
    if (Degree() == 0) {
        D = {0.0, 0.0};
        return;
    }
    const auto& last = levels[levels.size() - 2];
    const TPoint3D dh = (last[1] - last[0]) * Degree();
    D = {(dh.X - dh.Z * P.X) / h.Z, (dh.Y - dh.Z * P.Y) / h.Z};
}

void TBezier2D::Split(double S, TBezier2D& Left, TBezier2D& Right) const
{
    const auto levels = Casteljau(Ctrl, S);
    const std::size_t n = levels.size();
    Left.Ctrl.resize(n);
    Right.Ctrl.resize(n);
    for (std::size_t r = 0; r < n; ++r) {
        Left.Ctrl[r] = levels[r].front();
        Right.Ctrl[n - 1 - r] = levels[r].back();
    }
    const double mid = T0 + (T1 - T0) * S;
    Left.T0 = T0;
    Left.T1 = mid;
    Right.T0 = mid;
    Right.T1 = T1;
}

TBezier2D LinePiece(const TPoint2D& A, const TPoint2D& B, double T0, double T1)
{
    return {{{A.X, A.Y, 1.0}, {B.X, B.Y, 1.0}}, T0, T1};
}

TBezierPieces DecomposeSpline(int Degree, const std::vector<double>& Knots,
                              const std::vector<TPoint3D>& HomCtrl)
{
    std::vector<double> knots = Knots;
    std::vector<TPoint3D> ctrl = HomCtrl;
    const double first = Knots.front();
    const double last = Knots.back();
    // Raise every interior knot to multiplicity Degree: the control points then fall into
    // consecutive groups of Degree + 1 sharing their ends.
    std::vector<double> interior;
    for (double k : Knots)
        if (k > first && k < last && (interior.empty() || interior.back() != k)) interior.push_back(k);
    for (double u : interior) {
        const auto mult = std::count(knots.begin(), knots.end(), u);
        for (auto m = mult; m < Degree; ++m) InsertKnot(u, Degree, knots, ctrl);
    }
    TBezierPieces pieces;
    std::vector<double> breaks{first};
    breaks.insert(breaks.end(), interior.begin(), interior.end());
    breaks.push_back(last);
    for (std::size_t j = 0; j + 1 < breaks.size(); ++j) {
        TBezier2D b;
        const auto from = ctrl.begin() + static_cast<std::ptrdiff_t>(j * Degree);
        b.Ctrl.assign(from, from + Degree + 1);
        b.T0 = breaks[j];
        b.T1 = breaks[j + 1];
        pieces.push_back(std::move(b));
    }
    return pieces;
}

TRect2D PiecesBoundRect(const TBezierPieces& Pieces)
{
    TRect2D found{Pieces.front().Start(), Pieces.front().Start()};
    for (const TBezier2D& b : Pieces) {
        Include(found, b.Start());
        Include(found, b.End());
    }
    const double eps = 1e-13 * std::max(Scale(Pieces), 1e-300);
    for (const TBezier2D& b : Pieces) GrowBox(b, eps, kMaxDepth, found);
    return found;
}

double PiecesLength(const TBezierPieces& Pieces)
{
    double total = 0.0;
    for (const TBezier2D& b : Pieces) total += PieceLength(b);
    return total;
}

void PiecesTolPoints(const TBezierPieces& Pieces, double Tol, bool AddStart, TDynPoints2D& Points)
{
    if (Pieces.empty()) return;
    // Below the rounding of the coordinates no halving can get closer.
    const double tol = std::max(Tol, 1e-13 * Scale(Pieces));
    if (AddStart) Points.push_back(Pieces.front().Start());
    for (const TBezier2D& b : Pieces) Flatten(b, tol, kMaxDepth, Points);
}

double DistanceToSegment(const TPoint2D& P, const TPoint2D& A, const TPoint2D& B)
{
    const TPoint2D d = B - A;
    const double len2 = d.X * d.X + d.Y * d.Y;
    if (len2 == 0.0) return P.DistanceTo(A);
    const double t = std::clamp(((P.X - A.X) * d.X + (P.Y - A.Y) * d.Y) / len2, 0.0, 1.0);
    return P.DistanceTo(A + d * t);
}

}  // namespace orvane::ge
