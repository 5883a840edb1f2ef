#include "contracts/QuadEdges.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvane {
namespace {

struct Segment {
    TPoint2D A;
    TPoint2D B;
    int Loop;
};

// A point where a segment is to be split, at parameter T along it.
struct SplitPoint {
    double T;
    TPoint2D P;
};

double Orient(const TPoint2D& a, const TPoint2D& b, const TPoint2D& c)
{
    return (b.X - a.X) * (c.Y - a.Y) - (b.Y - a.Y) * (c.X - a.X);
}

double ParameterOf(const Segment& s, const TPoint2D& p)
{
    const double dx = s.B.X - s.A.X;
    const double dy = s.B.Y - s.A.Y;
    return std::fabs(dx) >= std::fabs(dy) ? (p.X - s.A.X) / dx : (p.Y - s.A.Y) / dy;
}

bool StrictlyInside(const Segment& s, const TPoint2D& p)
{
    if (p == s.A || p == s.B) return false;
    const double t = ParameterOf(s, p);
    return t > 0.0 && t < 1.0;
}

bool BoxesOverlap(const Segment& s, const Segment& r)
{
    return std::max(std::min(s.A.X, s.B.X), std::min(r.A.X, r.B.X)) <=
               std::min(std::max(s.A.X, s.B.X), std::max(r.A.X, r.B.X)) &&
           std::max(std::min(s.A.Y, s.B.Y), std::min(r.A.Y, r.B.Y)) <=
               std::min(std::max(s.A.Y, s.B.Y), std::max(r.A.Y, r.B.Y));
}

// The crossing point of two segments that cross properly, kept inside both boxes so that
// rounding cannot move it off either segment's extent.
TPoint2D CrossingPoint(const Segment& s, const Segment& r, double os, double oe)
{
    const double t = os / (os - oe);
    TPoint2D p{s.A.X + t * (s.B.X - s.A.X), s.A.Y + t * (s.B.Y - s.A.Y)};
    const double xLo = std::max(std::min(s.A.X, s.B.X), std::min(r.A.X, r.B.X));
    const double xHi = std::min(std::max(s.A.X, s.B.X), std::max(r.A.X, r.B.X));
    const double yLo = std::max(std::min(s.A.Y, s.B.Y), std::min(r.A.Y, r.B.Y));
    const double yHi = std::min(std::max(s.A.Y, s.B.Y), std::max(r.A.Y, r.B.Y));
    return {std::clamp(p.X, xLo, xHi), std::clamp(p.Y, yLo, yHi)};
}

void AddTouch(const Segment& s, const TPoint2D& p, std::vector<SplitPoint>& splits)
{
    if (Orient(s.A, s.B, p) == 0.0 && StrictlyInside(s, p)) splits.push_back({ParameterOf(s, p), p});
}

// Records where segments i and j must be split so that they meet only at end points.
void SplitPair(const std::vector<Segment>& segs, std::size_t i, std::size_t j,
               std::vector<std::vector<SplitPoint>>& splits)
{
    const Segment& s = segs[i];
    const Segment& r = segs[j];
    if (!BoxesOverlap(s, r)) return;
    const double o1 = Orient(s.A, s.B, r.A);
    const double o2 = Orient(s.A, s.B, r.B);
    const double o3 = Orient(r.A, r.B, s.A);
    const double o4 = Orient(r.A, r.B, s.B);
    if (((o1 < 0.0 && o2 > 0.0) || (o1 > 0.0 && o2 < 0.0)) && ((o3 < 0.0 && o4 > 0.0) || (o3 > 0.0 && o4 < 0.0))) {
        const TPoint2D p = CrossingPoint(s, r, o3, o4);
        if (StrictlyInside(s, p)) splits[i].push_back({ParameterOf(s, p), p});
        if (StrictlyInside(r, p)) splits[j].push_back({ParameterOf(r, p), p});
        return;
    }
    AddTouch(s, r.A, splits[i]);
    AddTouch(s, r.B, splits[i]);
    AddTouch(r, s.A, splits[j]);
    AddTouch(r, s.B, splits[j]);
}

std::vector<Segment> LoopSegments(const std::vector<QuadLoop>& loops)
{
    std::vector<Segment> segs;
    for (std::size_t l = 0; l < loops.size(); ++l) {
        const QuadLoop& loop = loops[l];
        for (std::size_t i = 0; i < loop.size(); ++i)
            segs.push_back({loop[i], loop[(i + 1) % loop.size()], static_cast<int>(l)});
    }
    return segs;
}

// Splits the segments where they cross or touch, visiting only pairs whose X ranges overlap.
std::vector<Segment> SplitSegments(const std::vector<Segment>& segs)
{
    std::vector<std::size_t> order(segs.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    auto left = [&](std::size_t i) { return std::min(segs[i].A.X, segs[i].B.X); };
    auto right = [&](std::size_t i) { return std::max(segs[i].A.X, segs[i].B.X); };
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return left(a) < left(b); });
    std::vector<std::vector<SplitPoint>> splits(segs.size());
    std::vector<std::size_t> active;
    for (std::size_t i : order) {
        std::erase_if(active, [&](std::size_t a) { return right(a) < left(i); });
        for (std::size_t a : active) SplitPair(segs, a, i, splits);
        active.push_back(i);
    }
    std::vector<Segment> result;
    for (std::size_t i = 0; i < segs.size(); ++i) {
        auto& points = splits[i];
        std::sort(points.begin(), points.end(), [](const SplitPoint& a, const SplitPoint& b) { return a.T < b.T; });
        TPoint2D from = segs[i].A;
        for (const SplitPoint& sp : points) {
            if (!(sp.P == from)) result.push_back({from, sp.P, segs[i].Loop});
            from = sp.P;
        }
        if (!(segs[i].B == from)) result.push_back({from, segs[i].B, segs[i].Loop});
    }
    return result;
}

// Maps each distinct X to its merged value; see BuildQuadEdges.
class XMerger {
public:
    XMerger(const std::vector<Segment>& segs, const QuadGrid& grid)
    {
        for (const Segment& s : segs) {
            FFrom.push_back(s.A.X);
            FFrom.push_back(s.B.X);
        }
        std::sort(FFrom.begin(), FFrom.end());
        FFrom.erase(std::unique(FFrom.begin(), FFrom.end()), FFrom.end());
        FTo.resize(FFrom.size());
        bool open = false;
        double start = 0.0;
        for (std::size_t i = 0; i < FFrom.size(); ++i) {
            const double x = FFrom[i];
            const double line = grid.ColumnX(grid.NearestColumn(x));
            if (std::fabs(x - line) <= grid.XMergeTol) {
                FTo[i] = line;
                open = false;
            } else {
                if (!open || x - start > grid.XMergeTol) start = x;
                open = true;
                FTo[i] = start;
            }
        }
    }
    double operator()(double x) const
    {
        return FTo[static_cast<std::size_t>(std::lower_bound(FFrom.begin(), FFrom.end(), x) - FFrom.begin())];
    }

private:
    std::vector<double> FFrom;
    std::vector<double> FTo;
};

void AddEdge(QuadEdges& edges, TPoint2D a, TPoint2D b, int loop)
{
    if (a.X == b.X) return;
    if (b.X < a.X) std::swap(a, b);
    edges.Sloped.push_back({a.X, a.Y, b.X, b.Y, loop});
}

}  // namespace

QuadEdges BuildQuadEdges(const std::vector<QuadLoop>& loops, const QuadGrid& grid)
{
    const std::vector<Segment> segs = SplitSegments(LoopSegments(loops));
    const XMerger merge(segs, grid);
    QuadEdges edges;
    edges.LoopCount = static_cast<int>(loops.size());
    for (const Segment& s : segs)
        AddEdge(edges, {merge(s.A.X), s.A.Y}, {merge(s.B.X), s.B.Y}, s.Loop);
    auto byX0 = [](const QuadEdge& a, const QuadEdge& b) { return a.X0 < b.X0; };
    std::sort(edges.Sloped.begin(), edges.Sloped.end(), byX0);
    for (const QuadEdge& e : edges.Sloped)
        for (double x : {e.X0, e.X1})
            if (x > grid.XMin && x < grid.XMax && x != grid.ColumnX(grid.NearestColumn(x))) edges.BreakX.push_back(x);
    std::sort(edges.BreakX.begin(), edges.BreakX.end());
    edges.BreakX.erase(std::unique(edges.BreakX.begin(), edges.BreakX.end()), edges.BreakX.end());
    return edges;
}

}  // namespace orvane
