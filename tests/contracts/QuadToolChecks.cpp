#include "tests/contracts/QuadToolChecks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <map>
#include <random>
#include <sstream>
#include <unordered_map>

#include "contracts/PrimitiveCodes.h"

namespace orvane::testing {
namespace {

struct Segment {
    TPoint2D A;
    TPoint2D B;
    int Loop;
    double Tol = INFINITY;  // the largest distance anybody asks about
};

std::vector<Segment> Segments(const QuadLoops& loops, double tol = INFINITY)
{
    std::vector<Segment> segs;
    for (std::size_t l = 0; l < loops.size(); ++l)
        for (std::size_t i = 0; i < loops[l].size(); ++i)
            segs.push_back({loops[l][i], loops[l][(i + 1) % loops[l].size()], static_cast<int>(l), tol});
    return segs;
}

struct EdgeKey {
    double AX, AY, BX, BY;
    bool operator==(const EdgeKey&) const = default;
};

struct EdgeHash {
    std::size_t operator()(const EdgeKey& k) const
    {
        std::size_t h = 0;
        for (double v : {k.AX, k.AY, k.BX, k.BY}) h = h * 1000003u ^ std::hash<double>()(v);
        return h;
    }
};

double Cross(const TPoint2D& a, const TPoint2D& b, const TPoint2D& c)
{
    return (b.X - a.X) * (c.Y - a.Y) - (b.Y - a.Y) * (c.X - a.X);
}

double SegmentDistance(const TPoint2D& p, const Segment& s)
{
    if (p.X < std::min(s.A.X, s.B.X) - s.Tol || p.X > std::max(s.A.X, s.B.X) + s.Tol ||
        p.Y < std::min(s.A.Y, s.B.Y) - s.Tol || p.Y > std::max(s.A.Y, s.B.Y) + s.Tol)
        return INFINITY;  // farther than any tolerance asked of it
    const TPoint2D d = s.B - s.A;
    const double len2 = d.X * d.X + d.Y * d.Y;
    const double t = len2 > 0 ? std::clamp(((p.X - s.A.X) * d.X + (p.Y - s.A.Y) * d.Y) / len2, 0.0, 1.0) : 0.0;
    return p.DistanceTo(s.A + d * t);
}

// Taken about P0, so that coordinates far from the origin cost no precision.
double SignedArea(const Quad& q)
{
    double a = 0;
    for (int i = 1; i < 3; ++i) a += Cross(q.P[0], q.P[i], q.P[i + 1]);
    return a / 2;
}

std::string Describe(const Quad& q)
{
    std::ostringstream s;
    s.precision(17);
    for (const TPoint2D& p : q.P) s << "(" << p.X << ", " << p.Y << ") ";
    return s.str();
}

bool LoopContains(const TDynPoints2D& loop, const TPoint2D& p)
{
    bool odd = false;
    for (std::size_t i = 0, j = loop.size() - 1; i < loop.size(); j = i++) {
        const TPoint2D& a = loop[i];
        const TPoint2D& b = loop[j];
        if ((a.Y > p.Y) != (b.Y > p.Y) && p.X < a.X + (p.Y - a.Y) * (b.X - a.X) / (b.Y - a.Y)) odd = !odd;
    }
    return odd;
}

// Length of {y : (x, y) in region} on a vertical line through no vertex or crossing.
double SectionLength(const QuadLoops& loops, const std::vector<Segment>& segs, double x)
{
    std::vector<std::pair<double, int>> ys;
    for (const Segment& s : segs)
        if ((s.A.X < x) != (s.B.X < x)) ys.emplace_back(s.A.Y + (x - s.A.X) * (s.B.Y - s.A.Y) / (s.B.X - s.A.X), s.Loop);
    std::sort(ys.begin(), ys.end());
    std::vector<bool> odd(loops.size(), false);
    double length = 0;
    for (std::size_t i = 0; i + 1 < ys.size(); ++i) {
        odd[static_cast<std::size_t>(ys[i].second)] = !odd[static_cast<std::size_t>(ys[i].second)];
        bool inside = odd[0];
        for (std::size_t l = 1; l < odd.size(); ++l) inside = inside && !odd[l];
        if (inside) length += ys[i + 1].first - ys[i].first;
    }
    return length;
}

double LoopWidth(const TDynPoints2D& loop, double TPoint2D::*axis)
{
    const auto [lo, hi] = std::minmax_element(loop.begin(), loop.end(),
                                              [&](const TPoint2D& a, const TPoint2D& b) { return a.*axis < b.*axis; });
    return (*hi).*axis - (*lo).*axis;
}

}  // namespace

std::vector<Quad> QuadsOf(const TViewUnitList& units)
{
    std::vector<Quad> quads;
    for (const TViewUnit& unit : units)
        for (int i = 0; i + 3 < unit.Points2D.Count(); i += 4)
            quads.push_back({{unit.Points2D[i], unit.Points2D[i + 1], unit.Points2D[i + 2], unit.Points2D[i + 3]}});
    return quads;
}

bool InRegion(const QuadLoops& loops, const TPoint2D& p)
{
    if (loops.empty() || !LoopContains(loops[0], p)) return false;
    for (std::size_t l = 1; l < loops.size(); ++l)
        if (LoopContains(loops[l], p)) return false;
    return true;
}

double RegionArea(const QuadLoops& loops)
{
    const std::vector<Segment> segs = Segments(loops);
    std::vector<double> xs;
    for (const Segment& s : segs) xs.push_back(s.A.X);
    for (std::size_t i = 0; i < segs.size(); ++i)
        for (std::size_t j = i + 1; j < segs.size(); ++j) {
            const Segment& s = segs[i];
            const Segment& r = segs[j];
            const double o1 = Cross(s.A, s.B, r.A), o2 = Cross(s.A, s.B, r.B);
            const double o3 = Cross(r.A, r.B, s.A), o4 = Cross(r.A, r.B, s.B);
            if (o1 * o2 < 0 && o3 * o4 < 0) xs.push_back(s.A.X + o3 / (o3 - o4) * (s.B.X - s.A.X));
        }
    std::sort(xs.begin(), xs.end());
    double area = 0;
    for (std::size_t i = 0; i + 1 < xs.size(); ++i)
        if (xs[i + 1] > xs[i]) area += SectionLength(loops, segs, (xs[i] + xs[i + 1]) / 2) * (xs[i + 1] - xs[i]);
    return area;
}

double QuadsArea(const std::vector<Quad>& quads)
{
    double area = 0;
    for (const Quad& q : quads) area -= SignedArea(q);
    return area;
}

std::string CheckShapes(const std::vector<Quad>& quads, double XTol, double YTol, double minWidth, double minSide)
{
    const double slack = 1 + 1e-9;
    for (const Quad& q : quads) {
        const TPoint2D* p = q.P;
        if (p[0].X != p[3].X || p[1].X != p[2].X || !(p[0].X < p[1].X)) return "sides not vertical: " + Describe(q);
        if (p[1].X - p[0].X < minWidth) return "sliver in X: " + Describe(q);
        for (double side : {p[0].Y - p[3].Y, p[1].Y - p[2].Y})
            if (side != 0 && side < minSide) return "sliver in Y: " + Describe(q);
        if (p[0].Y < p[3].Y || p[1].Y < p[2].Y) return "not top-left first: " + Describe(q);
        if (!(p[0].Y > p[3].Y || p[1].Y > p[2].Y)) return "no area: " + Describe(q);
        if (p[1].X - p[0].X > XTol * slack) return "wider than XTol: " + Describe(q);
        // A merge may lengthen a side by twice its tolerance: a billionth of a row, or ulps.
        const double yLimit = YTol * (1 + 3e-9) + 16 * DBL_EPSILON * std::fabs(p[0].Y);
        if (p[0].Y - p[3].Y > yLimit || p[1].Y - p[2].Y > yLimit) return "higher than YTol: " + Describe(q);
        if (!(SignedArea(q) < 0)) return "not clockwise: " + Describe(q);
        for (int i = 0; i < 4; ++i) {
            const TPoint2D& a = p[(i + 3) % 4];
            const TPoint2D& b = p[i];
            const TPoint2D& c = p[(i + 1) % 4];
            if (!(a == b) && !(b == c) && Cross(a, b, c) > 0) return "reflex corner " + std::to_string(i) + ": " + Describe(q);
        }
    }
    return "";
}

std::string CheckNoOverlap(const std::vector<Quad>& quads)
{
    std::map<std::pair<double, double>, std::vector<const Quad*>> slabs;
    for (const Quad& q : quads) slabs[{q.P[0].X, q.P[1].X}].push_back(&q);
    double lastRight = -INFINITY;
    for (auto& [range, pieces] : slabs) {
        if (range.first < lastRight) return "slabs interleave at X " + std::to_string(range.first);
        lastRight = range.second;
        auto height = [](const Quad* q) { return q->P[0].Y + q->P[1].Y + q->P[2].Y + q->P[3].Y; };
        std::sort(pieces.begin(), pieces.end(), [&](const Quad* a, const Quad* b) { return height(a) < height(b); });
        for (std::size_t i = 1; i < pieces.size(); ++i)
            if (pieces[i]->P[3].Y < pieces[i - 1]->P[0].Y || pieces[i]->P[2].Y < pieces[i - 1]->P[1].Y)
                return "overlap: " + Describe(*pieces[i - 1]) + "and " + Describe(*pieces[i]);
    }
    return "";
}

std::string CheckNoCracks(const std::vector<Quad>& quads, const QuadLoops& loops, double tol)
{
    std::unordered_map<EdgeKey, int, EdgeHash> edges;
    for (const Quad& q : quads)
        for (int i = 0; i < 4; ++i) {
            const TPoint2D& a = q.P[i];
            const TPoint2D& b = q.P[(i + 1) % 4];
            if (!(a == b)) ++edges[{a.X, a.Y, b.X, b.Y}];
        }
    const std::vector<Segment> segs = Segments(loops, tol);
    for (const auto& [key, count] : edges) {
        const auto reverse = edges.find({key.BX, key.BY, key.AX, key.AY});
        const int shared = reverse == edges.end() ? 0 : reverse->second;
        if (shared == 1 && count == 1) continue;
        // Collinear boundary segments may carry one quad edge between them: sample it.
        bool onBoundary = shared == 0;
        for (double t : {0.0, 0.25, 0.5, 0.75, 1.0}) {
            const TPoint2D p{key.AX + t * (key.BX - key.AX), key.AY + t * (key.BY - key.AY)};
            onBoundary = onBoundary && std::any_of(segs.begin(), segs.end(),
                                                   [&](const Segment& s) { return SegmentDistance(p, s) <= tol; });
        }
        if (onBoundary) continue;
        std::ostringstream where;
        where.precision(17);
        where << (shared == 0 ? "crack: unshared edge inside the region " : "edge used more than twice ") << "("
              << key.AX << ", " << key.AY << ")-(" << key.BX << ", " << key.BY << ")";
        return where.str();
    }
    return "";
}

std::string CheckCoverage(const std::vector<Quad>& quads, const QuadLoops& loops, int samples, std::uint32_t seed,
                          double tol)
{
    double xmin = INFINITY, xmax = -INFINITY, ymin = INFINITY, ymax = -INFINITY;
    for (const TPoint2D& p : loops[0]) {
        xmin = std::min(xmin, p.X), xmax = std::max(xmax, p.X);
        ymin = std::min(ymin, p.Y), ymax = std::max(ymax, p.Y);
    }
    std::vector<const Quad*> byLeft;
    for (const Quad& q : quads) byLeft.push_back(&q);
    std::sort(byLeft.begin(), byLeft.end(), [](const Quad* a, const Quad* b) { return a->P[0].X < b->P[0].X; });
    double widest = 0;
    for (const Quad& q : quads) widest = std::max(widest, q.P[1].X - q.P[0].X);
    const std::vector<Segment> segs = Segments(loops, tol);
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> ux(xmin, xmax), uy(ymin, ymax);
    for (int n = 0; n < samples; ++n) {
        const TPoint2D p{ux(random), uy(random)};
        if (std::any_of(segs.begin(), segs.end(), [&](const Segment& s) { return SegmentDistance(p, s) < tol; })) continue;
        int covering = 0;
        auto first = std::lower_bound(byLeft.begin(), byLeft.end(), p.X - widest,
                                      [](const Quad* q, double x) { return q->P[0].X < x; });
        for (auto it = first; it != byLeft.end() && (*it)->P[0].X < p.X; ++it) {
            const Quad& q = **it;
            if (!(p.X < q.P[1].X)) continue;
            const double t = (p.X - q.P[0].X) / (q.P[1].X - q.P[0].X);
            const double top = q.P[0].Y + t * (q.P[1].Y - q.P[0].Y);
            const double bottom = q.P[3].Y + t * (q.P[2].Y - q.P[3].Y);
            if (p.Y > bottom && p.Y < top) ++covering;
        }
        if (covering != (InRegion(loops, p) ? 1 : 0)) {
            std::ostringstream s;
            s.precision(17);
            s << "point (" << p.X << ", " << p.Y << ") lies in " << covering << " quads, in region: " << InRegion(loops, p);
            return s.str();
        }
    }
    return "";
}

std::string CheckColumnOrder(const std::vector<Quad>& quads)
{
    for (std::size_t i = 1; i < quads.size(); ++i)
        if (quads[i].P[0].X < quads[i - 1].P[0].X) return "column order broken at quad " + std::to_string(i);
    return "";
}

void ExpectQuadProperties(const QuadLoops& loops, double XTol, double YTol, const TViewUnitList& units,
                          std::uint32_t seed, double areaTol)
{
    for (const TViewUnit& unit : units) {
        EXPECT_EQ(unit.DrawMode, GL_QUADS);
        EXPECT_EQ(unit.Points2D.Count() % 4, 0);
        EXPECT_GT(unit.Points2D.Count(), 0);
    }
    const std::vector<Quad> quads = QuadsOf(units);
    double scale = 0;
    for (const TDynPoints2D& loop : loops)
        for (const TPoint2D& p : loop) scale = std::max({scale, std::fabs(p.X), std::fabs(p.Y)});
    const double area = RegionArea(loops);
    // The reference sums slabs in floating point: a region of no area may come out a few ulps.
    EXPECT_NEAR(QuadsArea(quads), area, std::max(areaTol * area, 1e-15 * scale * scale));
    const std::vector<double> extent = {std::min(XTol, LoopWidth(loops[0], &TPoint2D::X)),
                                        std::min(YTol, LoopWidth(loops[0], &TPoint2D::Y))};
    EXPECT_EQ(CheckShapes(quads, XTol, YTol, 1e-10 * extent[0], 1e-10 * extent[1]), "");
    EXPECT_EQ(CheckNoOverlap(quads), "");
    EXPECT_EQ(CheckNoCracks(quads, loops, 1e-8 * scale), "");
    EXPECT_EQ(CheckCoverage(quads, loops, 300, seed, 1e-7 * scale), "");
    EXPECT_EQ(CheckColumnOrder(quads), "");
}

}  // namespace orvane::testing
