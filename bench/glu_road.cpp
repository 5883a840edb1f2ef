// The GLU road against the quad road on every shape of the shape library, in triangles per
// second, in one run. The GLU road runs in a headless context whose 1024 x 1024 view is fitted
// to each shape, as `orvane tessellate --road glu` does: GLU samples in pixels of that view.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "contracts/Shapes.h"
#include "glu_triangulation/uTriangulate.h"
#include "opengl/Platform.h"
#include "opengl/dglOpenGL.h"
#include "tessellation/uTessQuadsTriangulator.h"

namespace {

using namespace orvane;

constexpr int kView = 1024;
constexpr double kPi = 3.14159265358979323846;

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

TPoint3D Rotate(const TPoint3D& P)
{
    const double cz = std::cos(40.0 * kPi / 180), sz = std::sin(40.0 * kPi / 180);
    const double cx = std::cos(30.0 * kPi / 180), sx = std::sin(30.0 * kPi / 180);
    const TPoint3D a{cz * P.X - sz * P.Y, sz * P.X + cz * P.Y, P.Z};
    return {a.X, cx * a.Y - sx * a.Z, sx * a.Y + cx * a.Z};
}

// The oblique view of the tool, the shape spanning the viewport.
void FitView(const TGeSurface& Shape)
{
    using namespace dglOpenGL;
    const TGeSurface* base = &Shape;
    if (const auto* t = dynamic_cast<const TGeTrimmedSurface*>(base)) base = t->GetSurface();
    const auto& nurbs = dynamic_cast<const TGeNurbsSurface&>(*base);
    const TRect2D d = nurbs.GetDomain();
    TPoint3D lo{1e300, 1e300, 1e300}, hi{-1e300, -1e300, -1e300};
    for (int i = 0; i <= 64; ++i)
        for (int j = 0; j <= 64; ++j) {
            const TPoint3D r = Rotate(nurbs.GetPoint(d.Min.X + d.Width() * i / 64, d.Min.Y + d.Height() * j / 64));
            lo = {std::min(lo.X, r.X), std::min(lo.Y, r.Y), std::min(lo.Z, r.Z)};
            hi = {std::max(hi.X, r.X), std::max(hi.Y, r.Y), std::max(hi.Z, r.Z)};
        }
    const double half = std::max(hi.X - lo.X, hi.Y - lo.Y) / 2, depth = hi.Z - lo.Z + 1.0;
    const double cx = (lo.X + hi.X) / 2, cy = (lo.Y + hi.Y) / 2;
    glViewport(0, 0, kView, kView);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(cx - half, cx + half, cy - half, cy + half, -hi.Z - depth, -lo.Z + depth);
    glMatrixMode(GL_MODELVIEW);
    const TPoint3D ex = Rotate({1, 0, 0}), ey = Rotate({0, 1, 0}), ez = Rotate({0, 0, 1});
    const std::array<double, 16> m{ex.X, ex.Y, ex.Z, 0, ey.X, ey.Y, ey.Z, 0, ez.X, ez.Y, ez.Z, 0, 0, 0, 0, 1};
    glLoadMatrixd(m.data());
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
    FitView(*shape);
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
