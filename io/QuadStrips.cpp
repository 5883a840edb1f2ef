#include "io/QuadStrips.h"

#include <algorithm>
#include <map>
#include <utility>

namespace orvane::io {
namespace {

struct Cell {
    double X0, X1, Lo, Hi;
};

// Row lines and pieces' sides are the quad tool's own doubles: equal means bit for bit.
bool IsRectangle(const PlaneQuad& q)
{
    return q[0].Y == q[1].Y && q[3].Y == q[2].Y && q[0].X == q[3].X && q[1].X == q[2].X && q[0].Y > q[3].Y &&
           q[1].X > q[0].X;
}

// Rectangles of one row (same bottom and top), left to right, joined where they touch, except
// across a column line or a loop's point: the boundary keeps every point it has.
std::vector<Cell> JoinRectangles(const std::vector<PlaneQuad>& quads, const std::function<bool(double)>& isColumnLine,
                                 const std::function<bool(const TPoint2D&)>& isLoopPoint)
{
    std::map<std::pair<double, double>, std::vector<Cell>> rows;
    for (const PlaneQuad& q : quads)
        if (IsRectangle(q)) rows[{q[3].Y, q[0].Y}].push_back({q[0].X, q[1].X, q[3].Y, q[0].Y});
    std::vector<Cell> joined;
    for (auto& [band, cells] : rows) {
        std::sort(cells.begin(), cells.end(), [](const Cell& a, const Cell& b) { return a.X0 < b.X0; });
        for (const Cell& c : cells) {
            const bool next = !joined.empty() && joined.back().Lo == c.Lo && joined.back().Hi == c.Hi &&
                              joined.back().X1 == c.X0 && !isColumnLine(c.X0) &&
                              !isLoopPoint({c.X0, c.Lo}) && !isLoopPoint({c.X0, c.Hi});
            if (next)
                joined.back().X1 = c.X1;
            else
                joined.push_back(c);
        }
    }
    return joined;
}

// The X of every corner, by the Y of its row line.
using CornerIndex = std::map<double, std::vector<double>>;

void AddCorner(CornerIndex& index, const TPoint2D& p)
{
    index[p.Y].push_back(p.X);
}

// Corners strictly between X0 and X1 on line Y, ascending.
std::vector<double> Between(const CornerIndex& index, double y, double x0, double x1)
{
    const auto line = index.find(y);
    if (line == index.end()) return {};
    const std::vector<double>& xs = line->second;
    return {std::upper_bound(xs.begin(), xs.end(), x0), std::lower_bound(xs.begin(), xs.end(), x1)};
}

}  // namespace

std::vector<std::vector<TPoint2D>> JoinStrips(const std::vector<PlaneQuad>& Quads,
                                              const std::function<bool(double X)>& IsColumnLine,
                                              const std::function<bool(const TPoint2D&)>& IsLoopPoint)
{
    const std::vector<Cell> cells = JoinRectangles(Quads, IsColumnLine, IsLoopPoint);
    CornerIndex corners;
    std::vector<std::vector<TPoint2D>> polygons;
    for (const PlaneQuad& q : Quads) {
        if (IsRectangle(q)) continue;
        polygons.emplace_back(q.begin(), q.end());
        for (const TPoint2D& p : q) AddCorner(corners, p);
    }
    for (const Cell& c : cells)
        for (const TPoint2D& p : {TPoint2D{c.X0, c.Hi}, TPoint2D{c.X1, c.Hi}, TPoint2D{c.X1, c.Lo}, TPoint2D{c.X0, c.Lo}})
            AddCorner(corners, p);
    for (auto& [y, xs] : corners) {
        std::sort(xs.begin(), xs.end());
        xs.erase(std::unique(xs.begin(), xs.end()), xs.end());
    }
    for (const Cell& c : cells) {
        std::vector<TPoint2D>& polygon = polygons.emplace_back();
        polygon.push_back({c.X0, c.Hi});
        for (const double x : Between(corners, c.Hi, c.X0, c.X1)) polygon.push_back({x, c.Hi});
        polygon.push_back({c.X1, c.Hi});
        polygon.push_back({c.X1, c.Lo});
        const std::vector<double> below = Between(corners, c.Lo, c.X0, c.X1);
        for (auto x = below.rbegin(); x != below.rend(); ++x) polygon.push_back({*x, c.Lo});
        polygon.push_back({c.X0, c.Lo});
    }
    return polygons;
}

std::vector<std::array<int, 3>> StripTriangles(const std::vector<TPoint2D>& Polygon)
{
    // Top chain: indices 0..top-1 left to right; bottom chain: the rest, right to left.
    const int n = static_cast<int>(Polygon.size());
    int top = 1;
    while (top < n && Polygon[static_cast<std::size_t>(top)].Y == Polygon[0].Y) ++top;
    auto bottom = [&](int k) { return n - 1 - k; };  // k-th bottom point from the left
    auto x = [&](int index) { return Polygon[static_cast<std::size_t>(index)].X; };
    std::vector<std::array<int, 3>> triangles;
    int i = 0, j = 0;
    const int lastBottom = n - top - 1;
    while (i < top - 1 || j < lastBottom) {
        if (i < top - 1 && (j == lastBottom || x(i + 1) <= x(bottom(j + 1)))) {
            triangles.push_back({i, i + 1, bottom(j)});
            ++i;
        } else {
            triangles.push_back({i, bottom(j + 1), bottom(j)});
            ++j;
        }
    }
    return triangles;
}

}  // namespace orvane::io
