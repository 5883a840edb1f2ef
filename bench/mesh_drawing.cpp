// Vertex merging of the collected mesh against meshoptimizer on the same data, and the upload
// and first draw of a mesh on the machine's GL (llvmpipe on Mesa), per mesh size.
#include <benchmark/benchmark.h>
#include <meshoptimizer.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <vector>

#include "mesh_drawing/GLVAOManager.h"
#include "opengl/Platform.h"
#include "opengl/dglOpenGL.h"
#include "tests/mesh_drawing/CollectedTriProbe.h"

namespace orvane {
namespace {

// A wavy sheet of side x side quads, each as two triangles of flat arrays, the way the quad
// road delivers it: six input vertices a quad, about four of them shared with neighbours.
struct TSheet {
    TFloatDynArray Tri;
    TFloatDynArray Norm;
};

TSheet MakeSheet(int side)
{
    TSheet sheet;
    auto put = [&](int i, int j) {
        const double x = i / double(side), y = j / double(side);
        const double z = 0.1 * std::sin(6 * x) * std::cos(5 * y);
        const double nx = -0.6 * std::cos(6 * x) * std::cos(5 * y), ny = 0.5 * std::sin(6 * x) * std::sin(5 * y);
        const double len = std::sqrt(nx * nx + ny * ny + 1);
        sheet.Tri.insert(sheet.Tri.end(), {x, y, z});
        sheet.Norm.insert(sheet.Norm.end(), {nx / len, ny / len, 1 / len});
    };
    for (int i = 0; i < side; ++i)
        for (int j = 0; j < side; ++j) {
            put(i, j), put(i + 1, j), put(i + 1, j + 1);
            put(i, j), put(i + 1, j + 1), put(i, j + 1);
        }
    return sheet;
}

int SideFor(std::int64_t vertices) { return static_cast<int>(std::sqrt(vertices / 6.0)); }

void SetVertexRate(benchmark::State& state, std::size_t vertices)
{
    state.counters["vertices/s"] =
        benchmark::Counter(static_cast<double>(vertices), benchmark::Counter::kIsIterationInvariantRate);
    state.counters["input vertices"] = static_cast<double>(vertices);
}

// The buffers live across iterations in both merges, so that neither pays for fresh pages;
// the copy of the input is inside the loop in both, as the merge overwrites its input.
void BM_ExtractIndexInVertexArray(benchmark::State& state)
{
    const TSheet sheet = MakeSheet(SideFor(state.range(0)));
    TFloatDynArray tri, norm;
    TDynGLinteger index;
    for (auto _ : state) {
        tri.assign(sheet.Tri.begin(), sheet.Tri.end());
        norm.assign(sheet.Norm.begin(), sheet.Norm.end());
        TCollectedTriProbe::ExtractIndexInVertexArray(tri, norm, index);
        benchmark::DoNotOptimize(index.data());
    }
    SetVertexRate(state, sheet.Tri.size() / 3);
    state.counters["unique vertices"] = static_cast<double>(tri.size() / 3);
}

// The same work through meshoptimizer: the remap table over both streams (position, normal)
// and the two compacted streams.
void BM_MeshoptGenerateVertexRemapMulti(benchmark::State& state)
{
    const TSheet sheet = MakeSheet(SideFor(state.range(0)));
    const std::size_t count = sheet.Tri.size() / 3;
    TFloatDynArray tri, norm, outTri(sheet.Tri.size()), outNorm(sheet.Norm.size());
    std::vector<unsigned> remap(count);
    std::size_t unique = 0;
    for (auto _ : state) {
        tri.assign(sheet.Tri.begin(), sheet.Tri.end());
        norm.assign(sheet.Norm.begin(), sheet.Norm.end());
        const meshopt_Stream streams[2] = {{tri.data(), 24, 24}, {norm.data(), 24, 24}};
        unique = meshopt_generateVertexRemapMulti(remap.data(), nullptr, count, count, streams, 2);
        meshopt_remapVertexBuffer(outTri.data(), tri.data(), count, 24, remap.data());
        meshopt_remapVertexBuffer(outNorm.data(), norm.data(), count, 24, remap.data());
        benchmark::DoNotOptimize(outNorm.data());
    }
    SetVertexRate(state, count);
    state.counters["unique vertices"] = static_cast<double>(unique);
}

// meshoptimizer's single-stream form on the same vertices interleaved (position then normal,
// 48 bytes); the interleaving is done once, outside the loop.
void BM_MeshoptGenerateVertexRemap(benchmark::State& state)
{
    const TSheet sheet = MakeSheet(SideFor(state.range(0)));
    const std::size_t count = sheet.Tri.size() / 3;
    std::vector<double> interleaved(count * 6), out(count * 6);
    for (std::size_t i = 0; i < count; ++i) {
        std::memcpy(&interleaved[6 * i], &sheet.Tri[3 * i], 24);
        std::memcpy(&interleaved[6 * i + 3], &sheet.Norm[3 * i], 24);
    }
    std::vector<unsigned> remap(count);
    for (auto _ : state) {
        meshopt_generateVertexRemap(remap.data(), nullptr, count, interleaved.data(), count, 48);
        meshopt_remapVertexBuffer(out.data(), interleaved.data(), count, 48, remap.data());
        benchmark::DoNotOptimize(out.data());
    }
    SetVertexRate(state, count);
}

// A 3.3 compatibility context on an offscreen surface, current for the benchmark's length.
class TBenchContext {
public:
    TBenchContext() : FDC(64, 64)
    {
        FRC = dglOpenGL::CreateRenderingContextVersion(FDC.Handle(), {}, 3, 3, false, 32, 24, 8, 0, 0, 0);
        dglOpenGL::ActivateRenderingContext(FDC.Handle(), FRC);
    }
    ~TBenchContext()
    {
        dglOpenGL::DeactivateRenderingContext();
        dglOpenGL::DestroyRenderingContext(FRC);
    }

private:
    TOffscreenDC FDC;
    HGLRC FRC = nullptr;
};

// Upload (merged, indexed) and one draw of the mesh, finished by glFinish: llvmpipe defers work.
void BM_GenerateTriVAOAndDraw(benchmark::State& state)
{
    TBenchContext context;
    TGLVAOManager manager;
    const TSheet sheet = MakeSheet(SideFor(state.range(0)));
    TFloatDynArray tri = sheet.Tri, norm = sheet.Norm;
    TDynGLinteger index;
    TCollectedTriProbe::ExtractIndexInVertexArray(tri, norm, index);
    TDynGLFloat triF, normF;
    FloatDynArrayToDynGLFloat(tri, triF);
    FloatDynArrayToDynGLFloat(norm, normF);
    dglOpenGL::TGLMatrixf4 identity;
    identity.Reset();
    dglOpenGL::glMatrixMode(dglOpenGL::GL_PROJECTION);
    dglOpenGL::glLoadIdentity();
    dglOpenGL::glOrtho(-0.1, 1.1, -0.1, 1.1, -10, 10);
    for (auto _ : state) {
        Cardinal id = 0;
        manager.GenerateTriVAO(triF, normF, index, id);
        manager.DrawVAO(id, {0, 0, 1}, {0, 1, 0}, identity, 0x3080C0, true, 0.0);
        dglOpenGL::glFinish();
        manager.DeleteVAO(id);
    }
    SetVertexRate(state, sheet.Tri.size() / 3);
    state.counters["triangles"] = static_cast<double>(index.size() / 3);
}

void Sizes(benchmark::internal::Benchmark* b)
{
    for (std::int64_t n : {6'000, 60'000, 600'000, 6'000'000}) b->Arg(n);
    // Wall time: llvmpipe draws on threads of its own.
    b->Unit(benchmark::kMicrosecond)->UseRealTime();
}

BENCHMARK(BM_ExtractIndexInVertexArray)->Apply(Sizes);
BENCHMARK(BM_MeshoptGenerateVertexRemapMulti)->Apply(Sizes);
BENCHMARK(BM_MeshoptGenerateVertexRemap)->Apply(Sizes);
BENCHMARK(BM_GenerateTriVAOAndDraw)->Apply(Sizes);

}  // namespace
}  // namespace orvane
