#include "contracts/QuadColumns.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace orvane {
namespace {

// Y of a sloped edge at X within [X0, X1]: its end points exactly, elsewhere kept within
// the edge's Y range against rounding.
double EdgeY(const QuadEdge& e, double x)
{
    if (x == e.X0) return e.Y0;
    if (x == e.X1) return e.Y1;
    const double t = (x - e.X0) / (e.X1 - e.X0);
    return std::clamp(e.Y0 + t * (e.Y1 - e.Y0), std::min(e.Y0, e.Y1), std::max(e.Y0, e.Y1));
}

// The sweep lines from XMin to XMax: every column line and every breakpoint, in order, each
// with the column that the slab to its right belongs to.
class LineSequence {
public:
    LineSequence(const QuadGrid& grid, const std::vector<double>& breakX) : FGrid(grid), FBreakX(breakX) {}

    bool Next(double& x, long long& column)
    {
        const bool columnsLeft = FColumn <= FGrid.Columns;
        if (!columnsLeft && FBreak >= FBreakX.size()) return false;
        if (columnsLeft && (FBreak >= FBreakX.size() || FGrid.ColumnX(FColumn) <= FBreakX[FBreak])) {
            x = FGrid.ColumnX(FColumn);
            column = FColumn++;
            while (FBreak < FBreakX.size() && FBreakX[FBreak] <= x) ++FBreak;
        } else {
            x = FBreakX[FBreak++];
            column = FColumn - 1;
        }
        return true;
    }

private:
    const QuadGrid& FGrid;
    const std::vector<double>& FBreakX;
    long long FColumn = 0;
    std::size_t FBreak = 0;
};

// Inside the outer loop and inside no hole, each loop by the parity of the edges crossed.
class InsideRule {
public:
    explicit InsideRule(int loops) : FOdd(static_cast<std::size_t>(loops), false) {}
    void Toggle(int loop)
    {
        const bool odd = !FOdd[static_cast<std::size_t>(loop)];
        FOdd[static_cast<std::size_t>(loop)] = odd;
        if (loop > 0) FOddHoles += odd ? 1 : -1;
    }
    bool Inside() const { return FOdd[0] && FOddHoles == 0; }

private:
    std::vector<bool> FOdd;
    int FOddHoles = 0;
};

struct SlabEdge {
    double YL;
    double YR;
    int Loop;
};

class ColumnSweep {
public:
    ColumnSweep(const QuadEdges& edges, const QuadGrid& grid, QuadTrapezoidVisitor& visitor)
        : FEdges(edges), FGrid(grid), FVisitor(visitor), FYPrev(edges.Sloped.size()), FYCur(edges.Sloped.size()),
          FRule(edges.LoopCount)
    {
    }

    void Run()
    {
        LineSequence lines(FGrid, FEdges.BreakX);
        double x = 0.0;
        long long column = 0;
        long long slabColumn = 0;
        bool first = true;
        while (lines.Next(x, column)) {
            ReadLine(x);
            if (!first) VisitSlab(slabColumn);
            FSpanning.clear();
            for (std::size_t e : FTouching)
                if (FEdges.Sloped[e].X1 > x) FSpanning.push_back(e);
            std::swap(FYPrev, FYCur);
            std::swap(FPrev, FCur);
            slabColumn = column;
            first = false;
        }
    }

private:
    // The edges on line x and their crossings, each computed once.
    void ReadLine(double x)
    {
        const auto& sloped = FEdges.Sloped;
        FTouching = FSpanning;
        for (; FNextSloped < sloped.size() && sloped[FNextSloped].X0 <= x; ++FNextSloped)
            if (sloped[FNextSloped].X1 >= x) FTouching.push_back(FNextSloped);
        FCur.X = x;
        FRaw.clear();
        for (std::size_t e : FTouching) {
            FYCur[e] = EdgeY(sloped[e], x);
            FRaw.push_back(FYCur[e]);
        }
        MergeCrossings();
    }

    // Crossings closer than YMergeTol (a cluster counted from its smallest value) become that
    // smallest value, for the line and for every edge on it, so that no quad side is a few
    // ulps long.
    void MergeCrossings()
    {
        std::sort(FRaw.begin(), FRaw.end());
        FRaw.erase(std::unique(FRaw.begin(), FRaw.end()), FRaw.end());
        FMerged.resize(FRaw.size());
        FCur.Crossings.clear();
        for (std::size_t i = 0; i < FRaw.size(); ++i) {
            if (i == 0 || FRaw[i] - FCur.Crossings.back() > FGrid.YMergeTol) FCur.Crossings.push_back(FRaw[i]);
            FMerged[i] = FCur.Crossings.back();
        }
        for (std::size_t e : FTouching)
            FYCur[e] = FMerged[static_cast<std::size_t>(std::lower_bound(FRaw.begin(), FRaw.end(), FYCur[e]) - FRaw.begin())];
    }

    // The trapezoids between the previous line and the current one. Edges are ordered by
    // their middle; should rounding have left two of them crossed at a line, each side is
    // kept monotonic by taking the greatest value so far, which is always one of the line's
    // crossings.
    void VisitSlab(long long column)
    {
        FSlab.clear();
        for (std::size_t e : FSpanning) FSlab.push_back({FYPrev[e], FYCur[e], FEdges.Sloped[e].Loop});
        std::sort(FSlab.begin(), FSlab.end(), [](const SlabEdge& a, const SlabEdge& b) {
            const double ma = a.YL + a.YR;
            const double mb = b.YL + b.YR;
            if (ma != mb) return ma < mb;
            if (a.YL != b.YL) return a.YL < b.YL;
            return a.YR < b.YR;
        });
        double lastL = -std::numeric_limits<double>::infinity();
        double lastR = lastL;
        bool inside = false;
        QuadTrapezoid piece{};
        for (std::size_t i = 0; i < FSlab.size();) {
            const SlabEdge group = FSlab[i];
            for (; i < FSlab.size() && FSlab[i].YL == group.YL && FSlab[i].YR == group.YR; ++i)
                FRule.Toggle(FSlab[i].Loop);
            lastL = std::max(lastL, group.YL);
            lastR = std::max(lastR, group.YR);
            const bool now = FRule.Inside();
            if (now && !inside) {
                piece.LeftLo = lastL;
                piece.RightLo = lastR;
            } else if (!now && inside) {
                piece.LeftHi = lastL;
                piece.RightHi = lastR;
                if (piece.LeftHi - piece.LeftLo > FGrid.YMergeTol || piece.RightHi - piece.RightLo > FGrid.YMergeTol)
                    FVisitor.Visit(column, FPrev, FCur, piece);
            }
            inside = now;
        }
    }

    const QuadEdges& FEdges;
    const QuadGrid& FGrid;
    QuadTrapezoidVisitor& FVisitor;
    std::vector<double> FYPrev;
    std::vector<double> FYCur;
    InsideRule FRule;
    std::vector<std::size_t> FSpanning;
    std::vector<std::size_t> FTouching;
    std::vector<SlabEdge> FSlab;
    std::vector<double> FRaw;
    std::vector<double> FMerged;
    QuadLine FPrev;
    QuadLine FCur;
    std::size_t FNextSloped = 0;
};

}  // namespace

void SweepQuadColumns(const QuadEdges& edges, const QuadGrid& grid, QuadTrapezoidVisitor& visitor)
{
    ColumnSweep(edges, grid, visitor).Run();
}

}  // namespace orvane
