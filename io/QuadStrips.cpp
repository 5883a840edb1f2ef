#include "io/QuadStrips.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>
#include <utility>

namespace orvane::io {
namespace {

// A piece's sides: X0 from LeftLo to LeftHi, X1 from RightLo to RightHi. The quad tool gives
// every line's crossings as one set of doubles, so sides that meet are equal bit for bit.
struct Piece {
    double X0, X1, LeftLo, LeftHi, RightLo, RightHi;
};

Piece PieceOf(const PlaneQuad& q)
{
    return {q[0].X, q[1].X, q[3].Y, q[0].Y, q[2].Y, q[1].Y};
}

// Runs of pieces that share a whole side off the column lines, each as one polygon.
std::vector<StripPolygon> Runs(const std::vector<Piece>& pieces, const std::function<bool(double)>& isColumnLine)
{
    std::map<std::tuple<double, double, double>, int> byLeft;
    for (int i = 0; i < static_cast<int>(pieces.size()); ++i) {
        const Piece& p = pieces[static_cast<std::size_t>(i)];
        byLeft.emplace(std::tuple{p.X0, p.LeftLo, p.LeftHi}, i);
    }
    std::vector<int> next(pieces.size(), -1);
    std::vector<bool> follows(pieces.size(), false);
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const Piece& p = pieces[i];
        if (!(p.RightLo < p.RightHi) || isColumnLine(p.X1)) continue;
        const auto found = byLeft.find({p.X1, p.RightLo, p.RightHi});
        if (found == byLeft.end()) continue;
        next[i] = found->second;
        follows[static_cast<std::size_t>(found->second)] = true;
    }
    std::vector<StripPolygon> runs;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (follows[i]) continue;
        StripPolygon& run = runs.emplace_back();
        run.Top.push_back({pieces[i].X0, pieces[i].LeftHi});
        run.Bottom.push_back({pieces[i].X0, pieces[i].LeftLo});
        for (int k = static_cast<int>(i); k >= 0; k = next[static_cast<std::size_t>(k)]) {
            const Piece& p = pieces[static_cast<std::size_t>(k)];
            run.Top.push_back({p.X1, p.RightHi});
            run.Bottom.push_back({p.X1, p.RightLo});
        }
    }
    return runs;
}

// Whether point k of a chain lies inside a level stretch of it: on a row line between two
// other points of that row line.
bool InsideLevelStretch(const std::vector<TPoint2D>& chain, std::size_t k)
{
    return k > 0 && k + 1 < chain.size() && chain[k - 1].Y == chain[k].Y && chain[k + 1].Y == chain[k].Y;
}

// Drops every point that lies inside a level stretch of each polygon it is on and is no
// loop's point: then no polygon keeps it, and no neighbour is left with a point on its side.
void DropLevelPoints(std::vector<StripPolygon>& polygons, const std::function<bool(const TPoint2D&)>& isLoopPoint)
{
    std::map<std::pair<double, double>, std::pair<int, int>> uses;  // point -> (uses, inside a level stretch)
    for (const StripPolygon& p : polygons)
        for (const auto* chain : {&p.Top, &p.Bottom})
            for (std::size_t k = 0; k < chain->size(); ++k) {
                auto& [all, level] = uses[{(*chain)[k].X, (*chain)[k].Y}];
                ++all;
                level += InsideLevelStretch(*chain, k);
            }
    for (StripPolygon& p : polygons)
        for (auto* chain : {&p.Top, &p.Bottom}) {
            std::vector<TPoint2D> kept;
            for (const TPoint2D& q : *chain) {
                const auto& [all, level] = uses[{q.X, q.Y}];
                if (all != level || isLoopPoint(q)) kept.push_back(q);
            }
            *chain = std::move(kept);
        }
}

// The polygon's distinct corners clockwise, with where each chain point went.
struct CornerList {
    std::vector<TPoint2D> Points;
    std::vector<int> Top, Bottom;
};

CornerList ListCorners(const StripPolygon& p)
{
    CornerList c;
    auto add = [&c](const TPoint2D& q) {
        if (c.Points.empty() || !(c.Points.back() == q)) c.Points.push_back(q);
        return static_cast<int>(c.Points.size()) - 1;
    };
    for (const TPoint2D& q : p.Top) c.Top.push_back(add(q));
    c.Bottom.resize(p.Bottom.size());
    for (std::size_t k = p.Bottom.size(); k-- > 0;) c.Bottom[k] = add(p.Bottom[k]);
    const int last = static_cast<int>(c.Points.size()) - 1;
    if (last > 0 && c.Points.back() == c.Points.front()) {
        c.Points.pop_back();
        for (auto* list : {&c.Top, &c.Bottom}) std::replace(list->begin(), list->end(), last, 0);
    }
    return c;
}

// Twice the signed area: negative where a, b, c run clockwise.
double Turn(const TPoint2D& a, const TPoint2D& b, const TPoint2D& c)
{
    return (b.X - a.X) * (c.Y - a.Y) - (c.X - a.X) * (b.Y - a.Y);
}

bool Clockwise(const std::vector<TPoint2D>& points, const std::array<int, 3>& t)
{
    const TPoint2D &a = points[static_cast<std::size_t>(t[0])], &b = points[static_cast<std::size_t>(t[1])],
                   &c = points[static_cast<std::size_t>(t[2])];
    const double scale = std::max(std::fabs(b.X - a.X) + std::fabs(b.Y - a.Y), std::fabs(c.X - a.X) + std::fabs(c.Y - a.Y));
    return Turn(a, b, c) < -1e-12 * scale * scale;
}

bool Inside(const TPoint2D& p, const TPoint2D& a, const TPoint2D& b, const TPoint2D& c)
{
    return Turn(a, b, p) < 0.0 && Turn(b, c, p) < 0.0 && Turn(c, a, p) < 0.0;
}

// Ears of a clockwise simple polygon, cut off one by one.
std::vector<std::array<int, 3>> Ears(const std::vector<TPoint2D>& points)
{
    std::vector<int> ring(points.size());
    for (std::size_t k = 0; k < ring.size(); ++k) ring[k] = static_cast<int>(k);
    std::vector<std::array<int, 3>> triangles;
    while (ring.size() >= 3) {
        bool cut = false;
        for (std::size_t k = 0; k < ring.size() && !cut; ++k) {
            const std::array<int, 3> t{ring[(k + ring.size() - 1) % ring.size()], ring[k], ring[(k + 1) % ring.size()]};
            if (!Clockwise(points, t)) continue;
            const auto& p = points;
            const bool empty = std::none_of(ring.begin(), ring.end(), [&](int v) {
                return v != t[0] && v != t[1] && v != t[2] &&
                       Inside(p[static_cast<std::size_t>(v)], p[static_cast<std::size_t>(t[0])], p[static_cast<std::size_t>(t[1])],
                              p[static_cast<std::size_t>(t[2])]);
            });
            if (!empty) continue;
            triangles.push_back(t);
            ring.erase(ring.begin() + static_cast<std::ptrdiff_t>(k));
            cut = true;
        }
        if (!cut) break;
    }
    return triangles;
}

}  // namespace

std::vector<TPoint2D> StripPolygon::Corners() const
{
    return ListCorners(*this).Points;
}

std::vector<StripPolygon> JoinStrips(const std::vector<PlaneQuad>& Quads, const std::function<bool(double X)>& IsColumnLine,
                                     const std::function<bool(const TPoint2D&)>& IsLoopPoint)
{
    std::vector<Piece> pieces;
    for (const PlaneQuad& q : Quads) pieces.push_back(PieceOf(q));
    std::vector<StripPolygon> polygons = Runs(pieces, IsColumnLine);
    DropLevelPoints(polygons, IsLoopPoint);
    return polygons;
}

std::vector<std::array<int, 3>> StripTriangles(const StripPolygon& Polygon)
{
    const CornerList c = ListCorners(Polygon);
    const std::size_t lastTop = c.Top.size() - 1, lastBottom = c.Bottom.size() - 1;
    std::vector<std::array<int, 3>> triangles;
    std::size_t i = 0, j = 0;
    auto along = [&](bool top) {
        return top ? std::array<int, 3>{c.Top[i], c.Top[i + 1], c.Bottom[j]} : std::array<int, 3>{c.Top[i], c.Bottom[j + 1], c.Bottom[j]};
    };
    auto distinct = [](const std::array<int, 3>& t) { return t[0] != t[1] && t[1] != t[2] && t[0] != t[2]; };
    while (i < lastTop || j < lastBottom) {
        const bool canTop = i < lastTop, canBottom = j < lastBottom;
        bool top = canTop && (!canBottom || Polygon.Top[i + 1].X <= Polygon.Bottom[j + 1].X);
        if (distinct(along(top)) && !Clockwise(c.Points, along(top))) {
            if (!(top ? canBottom : canTop) || !Clockwise(c.Points, along(!top))) return Ears(c.Points);
            top = !top;
        }
        if (distinct(along(top))) triangles.push_back(along(top));
        top ? ++i : ++j;
    }
    return triangles;
}

}  // namespace orvane::io
