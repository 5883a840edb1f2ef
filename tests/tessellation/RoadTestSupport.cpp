#include "tests/tessellation/RoadTestSupport.h"

#include <cmath>

namespace orvane::testing {

namespace {

TQuadToolCall Record(std::span<const TVPoint2DList* const> APolylines, double XTol, double YTol, bool APerColumn)
{
    TQuadToolCall call;
    for (const TVPoint2DList* line : APolylines) call.Polylines.push_back(line->Items());
    call.XTol = XTol;
    call.YTol = YTol;
    call.UnitPerColumn = APerColumn;
    return call;
}

}  // namespace

TCreateDrawQuadsFunc RecordingQuadTool(std::shared_ptr<std::vector<TQuadToolCall>> Calls)
{
    return [Calls](std::span<const TVPoint2DList* const> APolylines, double XTol, double YTol, bool APerColumn) {
        std::unique_ptr<TViewUnitList> units = DefaultCreateDrawQuads()(APolylines, XTol, YTol, APerColumn);
        TQuadToolCall call = Record(APolylines, XTol, YTol, APerColumn);
        call.Units = *units;
        Calls->push_back(std::move(call));
        return units;
    };
}

TCreateDrawQuadsFunc FixedQuadTool(TViewUnitList Units, std::shared_ptr<std::vector<TQuadToolCall>> Calls)
{
    return [Units, Calls](std::span<const TVPoint2DList* const> APolylines, double XTol, double YTol,
                          bool APerColumn) {
        if (Calls) Calls->push_back(Record(APolylines, XTol, YTol, APerColumn));
        return std::make_unique<TViewUnitList>(Units);
    };
}

TViewUnit QuadUnit(const std::vector<TPoint2D>& Points, Cardinal DrawMode)
{
    TViewUnit unit;
    for (const TPoint2D& p : Points) unit.Points2D.Add(p);
    unit.DrawMode = DrawMode;
    return unit;
}

TPoint3D TForeignSurface::GetPoint(double U, double V) const
{
    if (FThrows) throw Exception("foreign surface refuses");
    return {U, V, 0.0};
}

std::unique_ptr<TGeNurbsSurface> FlatPatch(int Degree)
{
    const int n = Degree + 1;
    TArrayDouble knots(static_cast<std::size_t>(n), 0.0);
    knots.insert(knots.end(), static_cast<std::size_t>(n), 1.0);
    TDynPoints3D pts;
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) pts.push_back({3.0 * i / Degree, 2.0 * j / Degree, 0.0});
    return std::make_unique<TGeNurbsSurface>(n, n, Degree, Degree, knots, knots, pts);
}

std::unique_ptr<TGeCompositeCurve2D> LineLoop(const TDynPoints2D& Closed)
{
    std::vector<std::unique_ptr<TGeCurve2D>> lines;
    for (std::size_t i = 0; i + 1 < Closed.size(); ++i)
        lines.push_back(std::make_unique<TGeLine2D>(Closed[i], Closed[i + 1]));
    return std::make_unique<TGeCompositeCurve2D>(std::move(lines));
}

std::unique_ptr<TGeSpline2D> CircleSpline(const TPoint2D& Centre, double Radius, bool ASwapped)
{
    const double h = std::sqrt(0.5);
    const TDynPoints2D unit{{1, 0}, {1, -1}, {0, -1}, {-1, -1}, {-1, 0}, {-1, 1}, {0, 1}, {1, 1}, {1, 0}};
    TDynPoints2D pts;
    for (const TPoint2D& p : unit) pts.push_back(Centre + p * Radius);
    if (ASwapped)
        for (TPoint2D& p : pts) std::swap(p.X, p.Y);
    return std::make_unique<TGeSpline2D>(2, TArrayDouble{0, 0, 0, .25, .25, .5, .5, .75, .75, 1, 1, 1}, pts,
                                         TArrayDouble{1, h, 1, h, 1, h, 1, h, 1});
}

}  // namespace orvane::testing
