#include "io/FaceBoundary.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvane::io {
namespace {

// Appends P unless it repeats the loop's last point.
void Append(BoundaryLoop& loop, const TPoint2D& p, const LoopSegment& segment)
{
    if (!loop.UV.empty() && loop.UV.back() == p) return;
    if (!loop.UV.empty()) loop.Segments.push_back(segment);
    loop.UV.push_back(p);
}

void AppendCurve(BoundaryLoop& loop, const TrimCurveData& c)
{
    if (c.Edge < 0 || c.EdgeUV.size() < 2) {
        Append(loop, c.Start(), {});
        Append(loop, c.End(), {});
        return;
    }
    const int n = static_cast<int>(c.EdgeUV.size());
    auto sigma = [&](int k) { return static_cast<double>(c.AgainstEdge ? n - 1 - k : k); };
    Append(loop, c.EdgeUV[0], {});
    for (int k = 1; k < n; ++k) Append(loop, c.EdgeUV[static_cast<std::size_t>(k)], {c.Edge, sigma(k - 1), sigma(k)});
}

// Twice the signed area of the closed polyline.
double SignedArea(const std::vector<TPoint2D>& uv)
{
    double a = 0.0;
    for (std::size_t i = 0; i + 1 < uv.size(); ++i) a += uv[i].X * uv[i + 1].Y - uv[i + 1].X * uv[i].Y;
    return a;
}

}  // namespace

std::vector<BoundaryLoop> FaceBoundary(const FaceData& F)
{
    std::vector<BoundaryLoop> loops;
    for (const TrimLoopData& curves : F.Loops) {
        BoundaryLoop loop;
        for (const TrimCurveData& c : curves) AppendCurve(loop, c);
        if (loop.UV.size() < 3) continue;
        // Close it: the last point onto the first.
        if (loop.UV.back() != loop.UV.front()) loop.Segments.push_back({});
        else loop.UV.pop_back();
        loop.UV.push_back(loop.UV.front());
        if (loop.SegmentCount() < 2 || SignedArea(loop.UV) == 0.0) continue;
        loops.push_back(std::move(loop));
    }
    return loops;
}

TPoint3D EdgePoint(const EdgeData& E, double Sigma)
{
    const double last = static_cast<double>(E.Points.size() - 1);
    Sigma = std::clamp(Sigma, 0.0, last);
    const double whole = std::floor(Sigma);
    const auto i = static_cast<std::size_t>(whole);
    const double f = Sigma - whole;
    if (f == 0.0 || i + 1 >= E.Points.size()) return E.Points[i];
    const TPoint3D& a = E.Points[i];
    const TPoint3D& b = E.Points[i + 1];
    return {a.X + (b.X - a.X) * f, a.Y + (b.Y - a.Y) * f, a.Z + (b.Z - a.Z) * f};
}

BoundaryLocator::BoundaryLocator(const std::vector<BoundaryLoop>& Loops,
                                 const std::vector<std::vector<TPoint2D>>& Mapped, double Tol)
    : FMapped(Mapped), FTol(Tol)
{
    double minX = std::numeric_limits<double>::max(), minY = minX, maxX = -minX, maxY = -minX;
    std::size_t count = 0;
    for (const auto& loop : Mapped)
        for (const TPoint2D& p : loop) {
            minX = std::min(minX, p.X), minY = std::min(minY, p.Y), maxX = std::max(maxX, p.X), maxY = std::max(maxY, p.Y);
            ++count;
        }
    FOrigin = {minX, minY};
    // About one segment a cell along the extent.
    const double extent = std::max(maxX - minX, maxY - minY);
    FCell = std::max(extent / std::max(1.0, std::sqrt(static_cast<double>(count))), 1e-12 * std::max(1.0, extent));
    for (int l = 0; l < static_cast<int>(Loops.size()); ++l) {
        const auto& uv = Mapped[static_cast<std::size_t>(l)];
        for (int s = 0; s + 1 < static_cast<int>(uv.size()); ++s) {
            const TPoint2D& a = uv[static_cast<std::size_t>(s)];
            const TPoint2D& b = uv[static_cast<std::size_t>(s) + 1];
            const auto i0 = static_cast<long long>(std::floor((std::min(a.X, b.X) - FTol - FOrigin.X) / FCell));
            const auto i1 = static_cast<long long>(std::floor((std::max(a.X, b.X) + FTol - FOrigin.X) / FCell));
            const auto j0 = static_cast<long long>(std::floor((std::min(a.Y, b.Y) - FTol - FOrigin.Y) / FCell));
            const auto j1 = static_cast<long long>(std::floor((std::max(a.Y, b.Y) + FTol - FOrigin.Y) / FCell));
            // A segment's cells: its box's, bounded so that a stray long segment stays cheap.
            if ((i1 - i0 + 1) * (j1 - j0 + 1) > 1'000'000) continue;
            for (long long i = i0; i <= i1; ++i)
                for (long long j = j0; j <= j1; ++j) FCells[i * 2'000'003LL + j].push_back({l, s});
        }
    }
}

long long BoundaryLocator::CellOf(double X, double Y) const
{
    const auto i = static_cast<long long>(std::floor((X - FOrigin.X) / FCell));
    const auto j = static_cast<long long>(std::floor((Y - FOrigin.Y) / FCell));
    return i * 2'000'003LL + j;
}

std::optional<LoopLocation> BoundaryLocator::Locate(const TPoint2D& P) const
{
    const auto found = FCells.find(CellOf(P.X, P.Y));
    if (found == FCells.end()) return std::nullopt;
    std::optional<LoopLocation> best;
    double bestDistance = FTol;
    for (const auto& [l, s] : found->second) {
        const auto& uv = FMapped[static_cast<std::size_t>(l)];
        const TPoint2D& a = uv[static_cast<std::size_t>(s)];
        const TPoint2D& b = uv[static_cast<std::size_t>(s) + 1];
        const double dx = b.X - a.X, dy = b.Y - a.Y;
        const double length2 = dx * dx + dy * dy;
        double t = length2 > 0.0 ? ((P.X - a.X) * dx + (P.Y - a.Y) * dy) / length2 : 0.0;
        t = std::clamp(t, 0.0, 1.0);
        const double d = std::hypot(a.X + dx * t - P.X, a.Y + dy * t - P.Y);
        if (d <= bestDistance) {
            bestDistance = d;
            best = LoopLocation{l, s, t};
        }
    }
    if (best && best->S == 1.0) {  // the next segment's start, so that a loop point has one place
        best->S = 0.0;
        best->Segment = (best->Segment + 1) % static_cast<int>(FMapped[static_cast<std::size_t>(best->Loop)].size() - 1);
    }
    return best;
}

}  // namespace orvane::io
