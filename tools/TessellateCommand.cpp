// orvane tessellate SHAPE [--mode quads|triangles] [--road quad|glu] [--size WxH] -o FILE: runs a built-in
// surface of the shape library through a triangulator and writes the mesh as Wavefront OBJ
// with normals, then one summary line.
#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>

#include "contracts/Shapes.h"
#include "tessellation/uTessQuadsTriangulator.h"
#include "tools/Commands.h"
#include "tools/GluTessellate.h"
#include "tools/ObjWriter.h"

namespace orvane::tools {

namespace {

struct TTessellateOptions {
    std::string Shape;
    std::string Mode = "quads";
    std::string Road = "quad";
    TViewSize Size;
    std::string Output;
};

// What one road delivered: the flat arrays, how many vertices a face, and what the road
// wants said about the surface.
struct TRoadResult {
    TFloatDynArray Tri;
    TFloatDynArray Norm;
    int VerticesPerFace = 0;
    std::string About;
    double Seconds = 0.0;
};

using TRoad = TRoadResult (*)(const TGeSurface& Surface, const TViewSize& Size, bool Quads);

template <typename F>
double Timed(F Call)
{
    const auto start = std::chrono::steady_clock::now();
    Call();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

TRoadResult QuadRoad(const TGeSurface& Surface, const TViewSize&, bool Quads)
{
    auto* object = new TQuadSurfaceTriangulator();
    const TInterfacePtr<IGeSurfaceTriangulator> service(object);
    TRoadResult r;
    r.VerticesPerFace = Quads ? 4 : 3;
    r.Seconds = Timed([&] {
        if (Quads)
            service->Quadrilateral(&Surface, r.Tri, r.Norm);
        else
            service->Triangulate(&Surface, r.Tri, r.Norm);
    });
    r.About = std::string(ExtrusionTypeName(object->ExtrusionType())) + ", " +
              (object->IsSimpleSurface() ? "simple" : "not simple");
    return r;
}

TRoadResult GluRoad(const TGeSurface& Surface, const TViewSize& Size, bool Quads)
{
    TRoadResult r;
    r.VerticesPerFace = Quads ? 4 : 3;
    r.About = GluTessellate(Surface, Size, Quads, r.Tri, r.Norm, r.Seconds);
    return r;
}

// The triangulators by the name --road takes.
const std::map<std::string, TRoad>& Roads()
{
    static const std::map<std::string, TRoad> roads{{"quad", QuadRoad}, {"glu", GluRoad}};
    return roads;
}

int Run(const CLI::App& command, const TTessellateOptions& O, TVerbosity verbosity)
{
    if (O.Road == "quad") RefuseOptions(command, {"--size"}, "sets the view of the glu road only; the quad road does not use it");
    const bool quads = O.Mode == "quads";
    const auto shape = MakeShape(O.Shape);
    const TRoadResult r = Roads().at(O.Road)(*shape, O.Size, quads);
    const std::size_t faces = r.Tri.size() / (3 * static_cast<std::size_t>(r.VerticesPerFace));
    WriteObjFile(O.Output, [&](TObjWriter& w) {
        w.Comment("orvane tessellate " + O.Shape + " --mode " + O.Mode + " --road " + O.Road);
        w.AddMesh(O.Shape, r.Tri, r.Norm, r.VerticesPerFace);
    });
    if (verbosity != TVerbosity::Quiet)
        std::printf("%s: %s, %zu %s, %.3f ms\n", O.Shape.c_str(), r.About.c_str(), faces,
                    quads ? "quads" : "triangles", r.Seconds * 1e3);
    return kExitDone;
}

}  // namespace

void AddTessellateCommand(CLI::App& app, TToolRun& tool)
{
    auto options = std::make_shared<TTessellateOptions>();
    CLI::App* cmd = app.add_subcommand("tessellate", "Tessellate a surface of the shape library into an OBJ file");
    cmd->add_option("shape", options->Shape, "Shape name (see orvane shapes)")
        ->required()
        ->check(CLI::IsMember(ShapeNames()));
    AddChoice(*cmd, "--mode", options->Mode, {"quads", "triangles"}, "What the mesh is made of");
    std::vector<std::string> roads;
    for (const auto& [name, road] : Roads()) roads.push_back(name);
    AddChoice(*cmd, "--road", options->Road, roads, "Triangulator: quad (the quad road) or glu (GLU's NURBS renderer)");
    AddViewSize(*cmd, options->Size,
                "glu road: the view WIDTHxHEIGHT in pixels. GLU samples the surface in pixels of this view, fitted "
                "so that the shape spans it: a larger view, a finer mesh");
    AddOutput(*cmd, "-o,--output", options->Output, {".obj"}, "OBJ file to write")->required();
    cmd->callback([cmd, options, &tool] {
        tool.Command = [cmd, options, &tool] { return Run(*cmd, *options, tool.Verbosity); };
    });
}

}  // namespace orvane::tools
