#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "contracts/TessQuadsTool.h"
#include "tests/contracts/QuadToolChecks.h"

namespace orvane {
namespace {

using testing::QuadLoops;

struct RandomRegion {
    QuadLoops Loops;     // as the tool sees them, quirks included
    double XTol;
    double YTol;
    bool Shaken;  // points moved by less than the merge tolerances
};

class RegionMaker {
public:
    explicit RegionMaker(unsigned seed) : FRandom(seed) {}

    // Kinds by index: every third region lies on a coarse binary lattice, so that vertices
    // fall exactly on column lines, edges run vertical and loops touch and overlap along
    // edges, and every sixth is that lattice shaken by tiny amounts; every fifth has a
    // self-crossing outer loop; some sit far from the origin.
    RandomRegion Make(int index)
    {
        const bool lattice = index % 3 == 0;
        FJitter = index % 6 == 3;
        const double scale = index % 7 == 0 ? 1000.0 : (index % 11 == 0 ? 0.001 : 1.0);
        const double offset = index % 13 == 0 ? 5000.0 * scale : 0.0;
        RandomRegion region;
        region.Shaken = FJitter;
        region.Loops.push_back(Star({offset, offset}, scale, Uniform(3, 40), index % 5 == 0, lattice, scale));
        const int holes = Uniform(0, 6);
        for (int h = 0; h < holes; ++h) {
            const TPoint2D centre{offset + Real(-0.9, 0.9) * scale, offset + Real(-0.9, 0.9) * scale};
            region.Loops.push_back(Star(centre, Real(0.05, 0.45) * scale, Uniform(3, 20), false, lattice, scale));
        }
        if (lattice) {
            region.XTol = Uniform(2, 16) / 64.0 * scale;
            region.YTol = Uniform(2, 16) / 64.0 * scale;
        } else {
            region.XTol = Real(0.05, 0.6) * scale;
            region.YTol = Real(0.05, 0.6) * scale;
        }
        return region;
    }

    // The same loops with the quirks of real trim curves: either winding, a repeated closing
    // point, duplicate and collinear points.
    QuadLoops WithQuirks(const QuadLoops& loops)
    {
        QuadLoops result;
        for (TDynPoints2D loop : loops) {
            TDynPoints2D out;
            for (std::size_t i = 0; i < loop.size(); ++i) {
                out.push_back(loop[i]);
                if (Chance(0.1)) out.push_back(loop[i]);
                if (Chance(0.1)) out.push_back((loop[i] + loop[(i + 1) % loop.size()]) * 0.5);
            }
            if (Chance(0.5)) std::reverse(out.begin(), out.end());
            if (Chance(0.5)) out.push_back(out.front());
            result.push_back(out);
        }
        return result;
    }

private:
    int Uniform(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(FRandom); }
    double Real(double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(FRandom); }
    bool Chance(double p) { return Real(0, 1) < p; }

    // On every other lattice region, half the points are moved by a few ulps to a few
    // billionths of a column, around the merge tolerances.
    double Jitter(double scale) { return FJitter && Chance(0.5) ? Real(-1e-11, 1e-11) * scale : 0.0; }

    TDynPoints2D Star(TPoint2D centre, double radius, int n, bool crossing, bool lattice, double scale)
    {
        std::vector<double> angles;
        for (int i = 0; i < n; ++i) angles.push_back(Real(0, 2 * M_PI));
        std::sort(angles.begin(), angles.end());
        if (crossing) std::swap(angles[0], angles[static_cast<std::size_t>(n / 2)]);
        TDynPoints2D points;
        for (double a : angles) {
            const double r = radius * Real(0.3, 1.0);
            TPoint2D p{centre.X + r * std::cos(a), centre.Y + r * std::sin(a)};
            if (lattice) {
                const double step = scale / 16.0;
                p = {std::round(p.X / step) * step + Jitter(scale), std::round(p.Y / step) * step + Jitter(scale)};
            }
            points.push_back(p);
        }
        return points;
    }

    std::mt19937 FRandom;
    bool FJitter = false;
};

std::unique_ptr<TViewUnitList> Quads(const QuadLoops& loops, double xtol, double ytol, bool perColumn)
{
    TList<TVPolyline2D> polylines;
    for (const TDynPoints2D& loop : loops) polylines.Add(TVPolyline2D(loop));
    return TTessQuadsTool::CreateDrawQuads(polylines, xtol, ytol, perColumn);
}

TEST(QuadToolRandom, SeededRegionsWithHolesKeepEveryProperty)
{
    RegionMaker maker(20240611);
    for (int index = 0; index < 200; ++index) {
        SCOPED_TRACE("region " + std::to_string(index));
        const RandomRegion region = maker.Make(index);
        const QuadLoops quirky = maker.WithQuirks(region.Loops);
        const auto units = Quads(quirky, region.XTol, region.YTol, false);
        ASSERT_LE(units->Count(), 1);
        testing::ExpectQuadProperties(region.Loops, region.XTol, region.YTol, *units, static_cast<std::uint32_t>(index),
                                      region.Shaken ? 1e-8 : 1e-9);
        if (::testing::Test::HasFailure()) break;
        if (index % 2 != 0) continue;
        // One unit per column: the same quads, each unit within one column.
        const auto columns = Quads(quirky, region.XTol, region.YTol, true);
        std::size_t total = 0;
        double lastRight = -INFINITY;
        for (const TViewUnit& unit : *columns) {
            double left = INFINITY, right = -INFINITY;
            for (const TPoint2D& p : unit.Points2D) left = std::min(left, p.X), right = std::max(right, p.X);
            EXPECT_LE(right - left, region.XTol * (1 + 1e-9));
            EXPECT_GE(left, lastRight);
            lastRight = right;
            total += static_cast<std::size_t>(unit.Points2D.Count());
        }
        EXPECT_EQ(total, units->Count() == 0 ? 0u : static_cast<std::size_t>(units->First().Points2D.Count()));
    }
}

}  // namespace
}  // namespace orvane
