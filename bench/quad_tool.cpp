// The quad tool on a unit square with 20 round holes of 64 points each, against the same
// square without holes, at XTol = YTol = 0.005. Counters give quads per second.
#include <benchmark/benchmark.h>

#include <cmath>

#include "contracts/TessQuadsTool.h"

namespace {

using orvane::TList;
using orvane::TPoint2D;
using orvane::TTessQuadsTool;
using orvane::TVPolyline2D;

constexpr double kTol = 0.005;

TList<TVPolyline2D> Square(int holes)
{
    TList<TVPolyline2D> polylines;
    polylines.Add(TVPolyline2D({{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}}));
    // Holes on a 5 x 4 grid of cells, each a circle of radius 0.07 with 64 points.
    for (int h = 0; h < holes; ++h) {
        const double cx = 0.1 + 0.2 * (h % 5);
        const double cy = 0.125 + 0.25 * (h / 5);
        TVPolyline2D hole;
        for (int i = 0; i < 64; ++i)
            hole.Add({cx + 0.07 * std::cos(2 * M_PI * i / 64), cy + 0.07 * std::sin(2 * M_PI * i / 64)});
        polylines.Add(hole);
    }
    return polylines;
}

void Run(benchmark::State& state, int holes)
{
    const TList<TVPolyline2D> polylines = Square(holes);
    long long quads = 0;
    for (auto _ : state) {
        const auto units = TTessQuadsTool::CreateDrawQuads(polylines, kTol, kTol, false);
        quads = units->First().Points2D.Count() / 4;
        benchmark::DoNotOptimize(units.get());
    }
    state.counters["quads"] = static_cast<double>(quads);
    state.counters["quads_per_second"] =
        benchmark::Counter(static_cast<double>(quads) * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

void SquareWithoutHoles(benchmark::State& state) { Run(state, 0); }
void SquareWith20RoundHoles(benchmark::State& state) { Run(state, 20); }

BENCHMARK(SquareWithoutHoles)->Unit(benchmark::kMillisecond);
BENCHMARK(SquareWith20RoundHoles)->Unit(benchmark::kMillisecond);

}  // namespace
