// orvane render SHAPE|FILE [SHAPE|FILE...] -o out.png [--size WxH] [--view iso|front|top|side]
// and the options of `mesh`: built-in surfaces and IGES or STEP files tessellated (the files as
// `mesh` does it), merged and uploaded as a host does it, drawn side by side in a headless GL
// context and written as PNG.
#include <algorithm>
#include <array>
#include <cstdio>
#include <limits>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "contracts/Shapes.h"
#include "io/AtomicFile.h"
#include "tessellation/uTessQuadsTriangulator.h"
#include "tools/CadFileTools.h"
#include "tools/Commands.h"
#include "tools/PngWriter.h"
#include "tools/SceneRenderer.h"

namespace orvane::tools {

namespace {

struct TRenderOptions {
    std::vector<std::string> Shapes;
    std::string Output;
    TCadOptions Cad;
    std::string View = "iso";
};

// Bytes of memory a pixel of the picture takes: four samples (drawn at twice the size each
// way) of colour and depth on the card and read back, the picture and its PNG rows.
constexpr double kBytesPerPixel = 64.0;

// Colours for the shapes in turn, 00BBGGRR: sky blue, coral, leaf green, gold, lavender, aqua.
// Light ones: the lighting model is a metallic one and darkens what it does not reflect.
constexpr TColor kPalette[] = {0xE6965A, 0x5A78F0, 0x78C878, 0x46BEF0, 0xDC82B4, 0xC8C850};

const std::map<std::string, TSceneView>& Views()
{
    static const std::map<std::string, TSceneView> views = [] {
        std::map<std::string, TSceneView> v;
        v["iso"] = TSceneView{};
        v["front"].ViewDirection = {0, -1, 0};
        v["side"].ViewDirection = {1, 0, 0};
        v["top"].ViewDirection = {0, 0, 1};
        v["top"].Up = {0, 1, 0};
        return v;
    }();
    return views;
}

TSceneMesh Tessellate(const std::string& name, const TCadRun& run, int& code)
{
    if (IsCadFileName(name)) return run.SceneMesh(name, code);
    std::unique_ptr<TGeSurface> surface;
    try {
        surface = MakeShape(name);
    } catch (const Exception& e) {
        throw std::runtime_error(e.Message());
    }
    const TInterfacePtr<IGeSurfaceTriangulator> service(new TQuadSurfaceTriangulator());
    TSceneMesh mesh;
    service->Triangulate(surface.get(), mesh.Tri, mesh.Norm);
    if (mesh.Tri.empty()) throw std::runtime_error("the quad road gave no triangles for " + name);
    return mesh;
}

// Puts the meshes in a row that runs left to right on the picture (along the view's right
// axis laid flat), with a gap between them, centred across the row, standing on Z = 0.
void LayOut(std::vector<TSceneMesh>& meshes, const TSceneView& view)
{
    TPoint3D row = view.Up.CrossMul(view.ViewDirection);
    row.Z = 0;
    row = row.Normal();
    if (row == TPoint3D::FZero) row = {1, 0, 0};
    const TPoint3D across = TPoint3D(0, 0, 1).CrossMul(row);
    struct TExtent {
        double Low = std::numeric_limits<double>::max(), High = std::numeric_limits<double>::lowest();
        void Add(double v) { Low = std::min(Low, v), High = std::max(High, v); }
        double Size() const { return High - Low; }
    };
    std::vector<std::array<TExtent, 3>> extents;
    double largest = 0;
    for (const TSceneMesh& m : meshes) {
        std::array<TExtent, 3> e;
        for (std::size_t i = 0; i + 2 < m.Tri.size(); i += 3) {
            const TPoint3D p(m.Tri[i], m.Tri[i + 1], m.Tri[i + 2]);
            e[0].Add(p.DotMul(row));
            e[1].Add(p.DotMul(across));
            e[2].Add(p.Z);
        }
        largest = std::max({largest, e[0].Size(), e[1].Size()});
        extents.push_back(e);
    }
    double cursor = 0;
    for (std::size_t i = 0; i < meshes.size(); ++i) {
        const auto& e = extents[i];
        meshes[i].Offset =
            row * (cursor - e[0].Low) - across * ((e[1].Low + e[1].High) / 2) + TPoint3D(0, 0, -e[2].Low);
        cursor += e[0].Size() + 0.3 * largest;
    }
}

void CheckOptions(const CLI::App& command, const TRenderOptions& options, const TCadRun& run)
{
    CheckCadOptions(command, options.Cad, true);
    if (std::none_of(options.Shapes.begin(), options.Shapes.end(), IsCadFileName))
        RefuseOptions(command, {"--tolerance", "--road", "--time-limit", "--unit"},
                      "applies to IGES and STEP files; only built-in shapes are drawn");
    const double bytes = kBytesPerPixel * options.Cad.Size.Width * options.Cad.Size.Height;
    if (bytes > run.MaxBytes())
        throw std::runtime_error("the picture " + std::to_string(options.Cad.Size.Width) + "x" +
                                 std::to_string(options.Cad.Size.Height) + " needs about " + std::to_string(static_cast<long long>(bytes / 1048576.0)) +
                                 " MiB, " + Number(bytes / run.MaxBytes()) + " times the --max-memory " +
                                 Number(options.Cad.MaxMemoryMiB) + " MiB");
    for (const std::string& shape : options.Shapes) io::RefuseToWriteOverInputs(options.Output, {shape});
}

int Run(const CLI::App& command, const TRenderOptions& options, TVerbosity verbosity)
{
    const TCadRun run(options.Cad, verbosity, options.Output);
    CheckOptions(command, options, run);
    const int width = options.Cad.Size.Width, height = options.Cad.Size.Height;
    const auto view = Views().find(options.View);
    int code = kExitDone;
    std::vector<TSceneMesh> meshes;
    for (std::size_t i = 0; i < options.Shapes.size(); ++i) {
        meshes.push_back(Tessellate(options.Shapes[i], run, code));
        meshes.back().Color = kPalette[i % std::size(kPalette)];
    }
    if (meshes.size() > 1) LayOut(meshes, view->second);

    TSceneRenderer renderer(width, height);
    int triangles = 0;
    for (const TSceneMesh& mesh : meshes) triangles += renderer.AddMesh(mesh);
    WritePng(options.Output, width, height, renderer.Render(view->second));
    if (verbosity == TVerbosity::Quiet) return code;
    std::printf("%d shape%s, %d triangles, %zu vertices after merging -> %s (%dx%d)\n", renderer.MeshCount(),
                renderer.MeshCount() == 1 ? "" : "s", triangles, renderer.VertexCount(), options.Output.c_str(), width,
                height);
    return code;
}

}  // namespace

void AddRenderCommand(CLI::App& app, TToolRun& tool)
{
    auto options = std::make_shared<TRenderOptions>();
    options->Cad.Size = {960, 640};
    CLI::App* render = app.add_subcommand(
        "render", "Tessellate built-in shapes and IGES or STEP files (as mesh does) and draw them side by side as PNG");
    render->add_option("shapes", options->Shapes, "Shape names (see orvane shapes) or IGES/STEP files, drawn side by side")
        ->required();
    AddOutput(*render, "-o,--output", options->Output, {".png"}, "The PNG file to write")->required();
    AddCadOptions(*render, options->Cad,
                  "the picture WIDTHxHEIGHT in pixels; on the glu road also the view GLU samples files in");
    AddChoice(*render, "--view", options->View, {"iso", "front", "side", "top"}, "Where the picture looks from");
    render->callback([render, options, &tool] {
        tool.Command = [render, options, &tool] { return Run(*render, *options, tool.Verbosity); };
    });
}

}  // namespace orvane::tools
