#include "contracts/TessQuadsTool.h"

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "contracts/PrimitiveCodes.h"
#include "contracts/QuadCells.h"
#include "contracts/QuadColumns.h"
#include "contracts/QuadEdges.h"
#include "contracts/QuadGrid.h"
#include "contracts/QuadLoops.h"

namespace orvane {
namespace {

void CheckTolerance(double tol, const char* name)
{
    if (!std::isfinite(tol) || !(tol > 0.0))
        throw EArgumentException(std::string("CreateDrawQuads: ") + name + " must be a positive finite number");
}

[[noreturn]] void TooManyQuads()
{
    throw EArgumentException("CreateDrawQuads: the region needs more than " +
                             std::to_string(TTessQuadsTool::MaxQuadCount) + " quads");
}

// Sums a lower bound of the quads without walking a single row, so that an absurd request
// fails at once.
class QuadBound : public QuadTrapezoidVisitor {
public:
    explicit QuadBound(const QuadGrid& grid) : FGrid(grid) {}

    void Visit(long long, const QuadLine& left, const QuadLine& right, const QuadTrapezoid& piece) override
    {
        FTotal += MinQuadCells(FGrid, left, right, piece);
        if (FTotal > TTessQuadsTool::MaxQuadCount) TooManyQuads();
    }

private:
    const QuadGrid& FGrid;
    long long FTotal = 0;
};

// Counts the quads exactly, and stops as soon as they exceed MaxQuadCount.
class QuadCounter : public QuadTrapezoidVisitor {
public:
    explicit QuadCounter(const QuadGrid& grid) : FGrid(grid) {}
    long long Total() const { return FTotal; }

    void Visit(long long, const QuadLine& left, const QuadLine& right, const QuadTrapezoid& piece) override
    {
        QuadCellWalker walker(FGrid, left, right, piece);
        QuadCell cell{};
        while (walker.Next(cell))
            if (++FTotal > TTessQuadsTool::MaxQuadCount) TooManyQuads();
    }

private:
    const QuadGrid& FGrid;
    long long FTotal = 0;
};

// Stores the quads: P0 top-left, P1 top-right, P2 bottom-right, P3 bottom-left.
class QuadEmitter : public QuadTrapezoidVisitor {
public:
    QuadEmitter(const QuadGrid& grid, bool unitPerColumn, long long total, TViewUnitList& units)
        : FGrid(grid), FUnitPerColumn(unitPerColumn), FUnits(units)
    {
        if (!unitPerColumn) FPoints.reserve(static_cast<std::size_t>(total) * 4);
    }

    void Visit(long long column, const QuadLine& left, const QuadLine& right, const QuadTrapezoid& piece) override
    {
        if (FUnitPerColumn && column != FColumn) Flush();
        FColumn = column;
        QuadCellWalker walker(FGrid, left, right, piece);
        QuadCell cell{};
        while (walker.Next(cell)) {
            FPoints.emplace_back(left.X, cell.LeftHi);
            FPoints.emplace_back(right.X, cell.RightHi);
            FPoints.emplace_back(right.X, cell.RightLo);
            FPoints.emplace_back(left.X, cell.LeftLo);
        }
    }

    // The unit is added first and filled in place: list items are copied, not moved.
    void Flush()
    {
        if (FPoints.empty()) return;
        TViewUnit& unit = FUnits.GetItem(FUnits.Add(TViewUnit()));
        unit.DrawMode = GL_QUADS;
        unit.Points2D.AddRange(FPoints);
        FPoints.clear();
    }

private:
    const QuadGrid& FGrid;
    bool FUnitPerColumn;
    TViewUnitList& FUnits;
    std::vector<TPoint2D> FPoints;
    long long FColumn = -1;
};

}  // namespace

std::unique_ptr<TViewUnitList> TTessQuadsTool::CreateDrawQuads(std::span<const TVPoint2DList* const> APolylines,
                                                               double XTol, double YTol, bool AUnitPerColumn)
{
    CheckTolerance(XTol, "XTol");
    CheckTolerance(YTol, "YTol");
    const std::vector<QuadLoop> loops = CleanQuadLoops(APolylines);
    auto units = std::make_unique<TViewUnitList>();
    if (loops.empty()) return units;
    const QuadExtent extent = LoopExtent(loops.front());
    if (!(extent.XMax > extent.XMin) || !(extent.YMax > extent.YMin)) return units;
    const QuadGrid grid = MakeQuadGrid(extent, XTol, YTol, MaxQuadCount);
    const QuadEdges edges = BuildQuadEdges(loops, grid);
    QuadBound bound(grid);
    SweepQuadColumns(edges, grid, bound);
    QuadCounter counter(grid);
    SweepQuadColumns(edges, grid, counter);
    if (counter.Total() == 0) return units;
    QuadEmitter emitter(grid, AUnitPerColumn, counter.Total(), *units);
    SweepQuadColumns(edges, grid, emitter);
    emitter.Flush();
    return units;
}

std::unique_ptr<TViewUnitList> TTessQuadsTool::CreateDrawQuads(const TList<TVPolyline2D>& APolylines, double XTol,
                                                               double YTol, bool AUnitPerColumn)
{
    std::vector<const TVPoint2DList*> polylines;
    for (const TVPolyline2D& polyline : APolylines) polylines.push_back(&polyline);
    return CreateDrawQuads(polylines, XTol, YTol, AUnitPerColumn);
}

std::unique_ptr<TViewUnitList> TTessQuadsTool::CreateDrawQuads(const TObjectList<TVPolyline2D>& APolylines,
                                                               double XTol, double YTol, bool AUnitPerColumn)
{
    std::vector<const TVPoint2DList*> polylines;
    for (const TVPolyline2D* polyline : APolylines) polylines.push_back(polyline);
    return CreateDrawQuads(polylines, XTol, YTol, AUnitPerColumn);
}

}  // namespace orvane
