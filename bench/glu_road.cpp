// The GLU road against the quad road on every shape of the shape library, in triangles per
// second, in one run. The GLU road runs in a headless context whose 1024 x 1024 view is fitted
// to each shape, as `orvane tessellate --road glu` does: GLU samples in pixels of that view.
// When the run ends, a table gives the quad road's rate over GLU's per shape and over all
// shapes (triangles of all shapes over the time of all shapes).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <map>
#include <string>

#include <time.h>

#include "contracts/Shapes.h"
#include "glu_triangulation/GluView.h"
#include "glu_triangulation/uTriangulate.h"
#include "opengl/Platform.h"
#include "opengl/dglOpenGL.h"
#include "tessellation/uTessQuadsTriangulator.h"

namespace {

using namespace orvane;

constexpr int kView = 1024;

// A current context for the whole run, made at the first GLU benchmark.
// Seconds of processor time of the process, as the benchmark library's rates count them: the
// machine may be shared.
double CpuSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

void EnsureContext()
{
    static const bool made = [] {
        auto* dc = new TOffscreenDC(kView, kView);
        const HGLRC rc = dglOpenGL::CreateRenderingContextVersion(dc->Handle(), {}, 3, 3, false, 32, 24, 8, 0, 0, 0);
        dglOpenGL::ActivateRenderingContext(dc->Handle(), rc, true);
        return true;
    }();
    (void)made;
}

// Triangles and seconds of one call, by shape; printed as ratios when the program ends.
struct Rate {
    double Triangles = 0.0;
    double Seconds = 0.0;
};

struct Table {
    std::map<std::string, Rate> Glu, Quad;
    ~Table()
    {
        Rate glu, quad;
        std::printf("\n%-24s %12s %12s %7s\n", "shape", "GLU tri/s", "quad tri/s", "ratio");
        for (const auto& [name, q] : Quad) {
            if (!Glu.count(name)) continue;
            const Rate& g = Glu.at(name);
            std::printf("%-24s %12.3g %12.3g %7.2f\n", name.c_str(), g.Triangles / g.Seconds, q.Triangles / q.Seconds,
                        (q.Triangles / q.Seconds) / (g.Triangles / g.Seconds));
            glu = {glu.Triangles + g.Triangles, glu.Seconds + g.Seconds};
            quad = {quad.Triangles + q.Triangles, quad.Seconds + q.Seconds};
        }
        if (glu.Seconds > 0 && quad.Seconds > 0)
            std::printf("%-24s %12.3g %12.3g %7.2f\n", "all shapes", glu.Triangles / glu.Seconds,
                        quad.Triangles / quad.Seconds, (quad.Triangles / quad.Seconds) / (glu.Triangles / glu.Seconds));
    }
};

Table& Results()
{
    static Table table;
    return table;
}

void Report(benchmark::State& state, const TFloatDynArray& Tri, std::map<std::string, Rate>& Rates,
            const std::string& Name, double Seconds)
{
    const double triangles = static_cast<double>(Tri.size()) / 9;
    Rates[Name] = {triangles, Seconds / static_cast<double>(state.iterations())};
    state.counters["triangles"] = triangles;
    state.counters["triangles/s"] =
        benchmark::Counter(triangles * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

void GluRoad(benchmark::State& state, const std::string& Name)
{
    EnsureContext();
    const auto shape = MakeShape(Name);
    FitObliqueView(*shape, kView, kView);
    TGLSurfaceTriangulator triangulator;
    TFloatDynArray tri, norm;
    const double start = CpuSeconds();
    for (auto _ : state) {
        triangulator.Triangulate(shape.get(), tri, norm);
        benchmark::DoNotOptimize(tri.data());
    }
    Report(state, tri, Results().Glu, Name, CpuSeconds() - start);
}

void QuadRoad(benchmark::State& state, const std::string& Name)
{
    const auto shape = MakeShape(Name);
    const TInterfacePtr<IGeSurfaceTriangulator> service(new TQuadSurfaceTriangulator());
    TFloatDynArray tri, norm;
    const double start = CpuSeconds();
    for (auto _ : state) {
        service->Triangulate(shape.get(), tri, norm);
        benchmark::DoNotOptimize(tri.data());
    }
    Report(state, tri, Results().Quad, Name, CpuSeconds() - start);
}

const bool kRegistered = [] {
    for (const std::string& name : ShapeNames()) {
        benchmark::RegisterBenchmark(("GluRoad/" + name).c_str(), GluRoad, name)->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("QuadRoad/" + name).c_str(), QuadRoad, name)->Unit(benchmark::kMillisecond);
    }
    return true;
}();

}  // namespace
