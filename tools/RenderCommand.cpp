// orvane render SHAPE [SHAPE...] -o out.png [--size WxH] [--view iso|front|top|side]: built-in
// surfaces tessellated by the quad road, merged and uploaded as a host does it, drawn side by
// side in a headless GL context and written as PNG.
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
    std::string Size = "960x640";
    std::string View = "iso";
};

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

void ParseSize(const std::string& text, int& width, int& height)
{
    char x = 0;
    char rest = 0;
    if (std::sscanf(text.c_str(), "%d%c%d%c", &width, &x, &height, &rest) != 3 || (x != 'x' && x != 'X') ||
        width <= 0 || height <= 0 || width > 8192 || height > 8192)
        throw std::runtime_error("--size wants WIDTHxHEIGHT, each 1 to 8192, not \"" + text + "\"");
}

TSceneMesh Tessellate(const std::string& name)
{
    if (IsCadFileName(name)) return CadSceneMesh(name);
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

void Run(const TRenderOptions& options)
{
    int width = 0, height = 0;
    ParseSize(options.Size, width, height);
    const auto view = Views().find(options.View);
    if (view == Views().end()) throw std::runtime_error("--view is one of iso, front, side, top");

    std::vector<TSceneMesh> meshes;
    for (std::size_t i = 0; i < options.Shapes.size(); ++i) {
        meshes.push_back(Tessellate(options.Shapes[i]));
        meshes.back().Color = kPalette[i % std::size(kPalette)];
    }
    if (meshes.size() > 1) LayOut(meshes, view->second);

    TSceneRenderer renderer(width, height);
    int triangles = 0;
    for (const TSceneMesh& mesh : meshes) triangles += renderer.AddMesh(mesh);
    WritePng(options.Output, width, height, renderer.Render(view->second));
    std::printf("%d shape%s, %d triangles, %zu vertices after merging -> %s (%dx%d)\n", renderer.MeshCount(),
                renderer.MeshCount() == 1 ? "" : "s", triangles, renderer.VertexCount(), options.Output.c_str(), width,
                height);
}

}  // namespace

void AddRenderCommand(CLI::App& app)
{
    auto options = std::make_shared<TRenderOptions>();
    CLI::App* render =
        app.add_subcommand("render", "Tessellate built-in shapes by the quad road and draw them as PNG");
    render->add_option("shapes", options->Shapes, "Shape names (see orvane shapes) or IGES/STEP files, drawn side by side")
        ->required();
    render->add_option("-o,--output", options->Output, "The PNG file to write")->required();
    render->add_option("--size", options->Size, "Picture size WIDTHxHEIGHT")->capture_default_str();
    render->add_option("--view", options->View, "iso, front, side or top")->capture_default_str();
    render->callback([options] { Run(*options); });
}

}  // namespace orvane::tools
