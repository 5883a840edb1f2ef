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

using TRoad = TRoadResult (*)(const TGeSurface& Surface, bool Quads);

template <typename F>
double Timed(F Call)
{
    const auto start = std::chrono::steady_clock::now();
    Call();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

TRoadResult QuadRoad(const TGeSurface& Surface, bool Quads)
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

TRoadResult GluRoad(const TGeSurface& Surface, bool Quads)
{
    TRoadResult r;
    r.VerticesPerFace = Quads ? 4 : 3;
    r.About = GluTessellate(Surface, Quads, r.Tri, r.Norm, r.Seconds);
    return r;
}

// The triangulators by the name --road takes.
const std::map<std::string, TRoad>& Roads()
{
    static const std::map<std::string, TRoad> roads{{"quad", QuadRoad}, {"glu", GluRoad}};
    return roads;
}

void Run(const TTessellateOptions& O)
{
    const bool quads = O.Mode == "quads";
    const auto shape = MakeShape(O.Shape);
    const TRoadResult r = Roads().at(O.Road)(*shape, quads);
    const std::size_t faces = r.Tri.size() / (3 * static_cast<std::size_t>(r.VerticesPerFace));
    WriteObjFile(O.Output, [&](TObjWriter& w) {
        w.Comment("orvane tessellate " + O.Shape + " --mode " + O.Mode + " --road " + O.Road);
        w.AddMesh(O.Shape, r.Tri, r.Norm, r.VerticesPerFace);
    });
    std::printf("%s: %s, %zu %s, %.3f ms\n", O.Shape.c_str(), r.About.c_str(), faces,
                quads ? "quads" : "triangles", r.Seconds * 1e3);
}

}  // namespace

void AddTessellateCommand(CLI::App& app)
{
    auto options = std::make_shared<TTessellateOptions>();
    CLI::App* cmd = app.add_subcommand("tessellate", "Tessellate a surface of the shape library into an OBJ file");
    cmd->add_option("shape", options->Shape, "Shape name (see orvane shapes)")
        ->required()
        ->check(CLI::IsMember(ShapeNames()));
    cmd->add_option("--mode", options->Mode, "quads or triangles")->check(CLI::IsMember({"quads", "triangles"}));
    std::vector<std::string> roads;
    for (const auto& [name, road] : Roads()) roads.push_back(name);
    cmd->add_option("--road", options->Road, "Triangulator: quad (the quad road) or glu (GLU's NURBS renderer)")
        ->check(CLI::IsMember(roads));
    AddGluViewSizeOption(*cmd);
    cmd->add_option("-o,--output", options->Output, "OBJ file to write")->required();
    cmd->callback([options] { Run(*options); });
}

}  // namespace orvane::tools
