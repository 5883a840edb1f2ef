// The GLU road against the quad road on every shape of the shape library, in triangles per
// second, in one run. The GLU road runs in a headless context whose 1024 x 1024 view is fitted
// to each shape, as `orvane tessellate --road glu` does: GLU samples in pixels of that view.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

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

void Report(benchmark::State& state, const TFloatDynArray& Tri)
{
    const double triangles = static_cast<double>(Tri.size()) / 9;
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
    for (auto _ : state) {
        triangulator.Triangulate(shape.get(), tri, norm);
        benchmark::DoNotOptimize(tri.data());
    }
    Report(state, tri);
}

void QuadRoad(benchmark::State& state, const std::string& Name)
{
    const auto shape = MakeShape(Name);
    const TInterfacePtr<IGeSurfaceTriangulator> service(new TQuadSurfaceTriangulator());
    TFloatDynArray tri, norm;
    for (auto _ : state) {
        service->Triangulate(shape.get(), tri, norm);
        benchmark::DoNotOptimize(tri.data());
    }
    Report(state, tri);
}

const bool kRegistered = [] {
    for (const std::string& name : ShapeNames()) {
        benchmark::RegisterBenchmark(("GluRoad/" + name).c_str(), GluRoad, name)->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("QuadRoad/" + name).c_str(), QuadRoad, name)->Unit(benchmark::kMillisecond);
    }
    return true;
}();

}  // namespace
