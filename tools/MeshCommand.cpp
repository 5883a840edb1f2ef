// orvane mesh FILE -o OUT [--road quad|glu] [--tolerance T] [--size WxH] [--quads] ...: every
// face of an IGES or STEP file tessellated, pointed out of the material, welded, and written
// as OBJ, binary STL or binary glTF, as the output's extension says.
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "io/AtomicFile.h"
#include "io/MeshWriters.h"
#include "tools/CadFileTools.h"
#include "tools/Commands.h"

namespace orvane::tools {
namespace {

struct TMeshOptions {
    std::string File;
    std::string Output;
    TCadOptions Cad;
    bool Quads = false;
};

std::string Extension(const std::string& path)
{
    std::string ext = std::filesystem::path(path).extension().string();
    for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return ext;
}

void CheckOptions(const CLI::App& command, const TMeshOptions& options)
{
    CheckCadOptions(command, options.Cad, false);
    if (options.Quads && Extension(options.Output) != ".obj") throw EUsage("--quads writes OBJ only: the output must end in .obj");
    if (options.Quads && options.Cad.Road == "glu") throw EUsage("--quads gives the quad road's quads; the glu road has none");
}

void Write(const TMeshOptions& options, const io::WeldedMesh& welded)
{
    const std::string ext = Extension(options.Output);
    if (ext == ".obj") io::WriteObj(options.Output, welded, {"orvane mesh of " + options.File, options.Quads});
    if (ext == ".stl") io::WriteStl(options.Output, welded);
    if (ext == ".glb") io::WriteGlb(options.Output, welded);
}

int Run(const CLI::App& command, const TMeshOptions& options, TVerbosity verbosity)
{
    CheckOptions(command, options);
    io::RefuseToWriteOverInputs(options.Output, {options.File});
    const TCadRun run(options.Cad, verbosity, options.File);
    const io::CadModelData model = run.Read(options.File);
    const io::ModelMesh mesh = run.Mesh(model, options.File);
    const int code = run.Report(options.File, mesh, model.FaceCount());
    const io::WeldedMesh welded = io::WeldFaces(mesh);
    Write(options, welded);
    if (verbosity == TVerbosity::Quiet) return code;
    std::size_t vertices = 0;
    for (const io::WeldedBody& body : welded.Bodies) vertices += body.Points.size();
    const std::string how = options.Cad.Road == "glu" ? "glu road, " + std::to_string(options.Cad.Size.Width) + "x" +
                                                            std::to_string(options.Cad.Size.Height) + " view"
                                                      : "quad road, tolerance " + Number(mesh.Tolerance);
    std::printf("%s: %zu of %d faces, %zu triangles, %zu vertices after welding -> %s (%s, unit %s)\n",
                options.File.c_str(), mesh.Faces.size(), model.FaceCount(), mesh.TriangleCount(), vertices,
                options.Output.c_str(), how.c_str(), model.Unit.c_str());
    if (verbosity == TVerbosity::Verbose)
        std::printf("seconds: converting %.3f, tessellating %.3f, orienting %.3f\n", mesh.ConvertSeconds,
                    mesh.TessellateSeconds, mesh.OrientSeconds);
    return code;
}

}  // namespace

void AddMeshCommand(CLI::App& app, TToolRun& tool)
{
    auto options = std::make_shared<TMeshOptions>();
    CLI::App* mesh = app.add_subcommand("mesh", "Tessellate every face of an IGES or STEP file and write the mesh "
                                                "as .obj, .stl or .glb");
    mesh->add_option("file", options->File, "The IGES or STEP file")->required();
    AddOutput(*mesh, "-o,--output", options->Output, {".obj", ".stl", ".glb"},
              "The mesh file: .obj, .stl (binary) or .glb (binary glTF 2.0)")
        ->required();
    AddCadOptions(*mesh, options->Cad,
                  "glu road: the view WIDTHxHEIGHT in pixels that the model is fitted into; GLU samples in its "
                  "pixels, so a larger view gives a finer mesh");
    mesh->add_flag("--quads", options->Quads,
                   "OBJ only: each quad of the quad road as one 4-vertex face, the other triangles as 3-vertex faces");
    mesh->callback([mesh, options, &tool] {
        tool.Command = [mesh, options, &tool] { return Run(*mesh, *options, tool.Verbosity); };
    });
}

}  // namespace orvane::tools
