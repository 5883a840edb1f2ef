// The quad road on every shape of the shape library: Quadrilateral in quads per second and
// Triangulate in triangles per second; and the road's own NURBS point evaluation against the
// kernel's GetPoint, in nanoseconds a point, over the same grid of parameters: point by point,
// and through the road's table of a surface's points, which computes the basis functions once
// a grid line and each point once.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "contracts/Shapes.h"
#include "tessellation/SurfacePoints.h"
#include "tessellation/TempNurbsPointEval.h"
#include "tessellation/uTessQuadsTriangulator.h"

namespace {

using namespace orvane;

void RunRoad(benchmark::State& state, const std::string& Name, bool Quads)
{
    const auto shape = MakeShape(Name);
    const TInterfacePtr<IGeSurfaceTriangulator> service(new TQuadSurfaceTriangulator());
    TFloatDynArray tri, norm;
    for (auto _ : state) {
        if (Quads)
            service->Quadrilateral(shape.get(), tri, norm);
        else
            service->Triangulate(shape.get(), tri, norm);
        benchmark::DoNotOptimize(tri.data());
    }
    const double faces = static_cast<double>(tri.size()) / (Quads ? 12 : 9);
    state.counters[Quads ? "quads" : "triangles"] = faces;
    state.counters[Quads ? "quads/s" : "triangles/s"] =
        benchmark::Counter(faces * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

// A 64 x 64 grid over the knot range.
std::vector<TPoint2D> Grid(const TGeNurbsSurface& N)
{
    const TRect2D d = N.GetDomain();
    std::vector<TPoint2D> uv;
    for (int i = 0; i < 64; ++i)
        for (int j = 0; j < 64; ++j) uv.push_back({d.Min.X + d.Width() * i / 63, d.Min.Y + d.Height() * j / 63});
    return uv;
}

// Seconds a point, printed with an SI prefix ("31n" is 31 ns).
void PerPoint(benchmark::State& state, std::size_t Points)
{
    state.counters["s/point"] = benchmark::Counter(static_cast<double>(Points) * static_cast<double>(state.iterations()),
                                                   benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void RunEvaluator(benchmark::State& state, const std::string& Name, bool Kernel)
{
    const auto shape = MakeShape(Name);
    const auto& nurbs = dynamic_cast<const TGeNurbsSurface&>(*shape);
    const std::vector<TPoint2D> uv = Grid(nurbs);
    const TTempNurbsPointEval eval(0.001);
    for (auto _ : state)
        for (const TPoint2D& p : uv) {
            const TPoint3D q = Kernel ? nurbs.GetPoint(p.X, p.Y) : eval.EvalPointOnNurbsSurface(nurbs, p);
            benchmark::DoNotOptimize(q);
        }
    PerPoint(state, uv.size());
}

// A fresh table for each pass, as the road makes one a call.
void RunSurfacePoints(benchmark::State& state, const std::string& Name)
{
    const auto shape = MakeShape(Name);
    const std::vector<TPoint2D> uv = Grid(dynamic_cast<const TGeNurbsSurface&>(*shape));
    for (auto _ : state) {
        TSurfacePoints points(*shape, 0.001, false, uv.size());
        for (const TPoint2D& p : uv) benchmark::DoNotOptimize(points.At(p));
    }
    PerPoint(state, uv.size());
}

const bool kRegistered = [] {
    for (const std::string& name : ShapeNames()) {
        benchmark::RegisterBenchmark(("Quadrilateral/" + name).c_str(),
                                     [name](benchmark::State& s) { RunRoad(s, name, true); })
            ->Unit(benchmark::kMicrosecond);
        benchmark::RegisterBenchmark(("Triangulate/" + name).c_str(),
                                     [name](benchmark::State& s) { RunRoad(s, name, false); })
            ->Unit(benchmark::kMicrosecond);
    }
    for (const std::string name : {"cylinder", "sphere", "torus", "freeform"}) {
        benchmark::RegisterBenchmark(("EvalPointOnNurbsSurface/" + name).c_str(),
                                     [name](benchmark::State& s) { RunEvaluator(s, name, false); });
        benchmark::RegisterBenchmark(("SurfacePoints/" + name).c_str(),
                                     [name](benchmark::State& s) { RunSurfacePoints(s, name); });
        benchmark::RegisterBenchmark(("KernelGetPoint/" + name).c_str(),
                                     [name](benchmark::State& s) { RunEvaluator(s, name, true); });
    }
    return true;
}();

}  // namespace
