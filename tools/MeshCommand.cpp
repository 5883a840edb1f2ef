// orvane mesh FILE -o OUT [--road quad|glu] [--tolerance T] [--size WxH] [--quads]: every
// face of an IGES or STEP file tessellated, pointed out of the material, welded, and written
// as OBJ, binary STL or binary glTF, as the output's extension says.
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "io/MeshWriters.h"
#include "tools/CadFileTools.h"
#include "tools/Commands.h"
#include "tools/GluTessellate.h"

namespace orvane::tools {
namespace {

struct TMeshOptions {
    std::string File;
    std::string Output;
    std::string Road = "quad";
    double Tolerance = 0.0;
    std::string Size = "1024x1024";
    double TimeLimit = kDefaultReadSeconds;
    bool Quads = false;
};

enum class TMeshFormat { Obj, Stl, Glb };

TMeshFormat FormatOf(const std::string& path)
{
    std::string ext = std::filesystem::path(path).extension().string();
    for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (ext == ".obj") return TMeshFormat::Obj;
    if (ext == ".stl") return TMeshFormat::Stl;
    if (ext == ".glb") return TMeshFormat::Glb;
    throw std::runtime_error(path + ": the output must end in .obj, .stl or .glb");
}

std::string Number(double x)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.4g", x);
    return text;
}

void Run(const TMeshOptions& options)
{
    const TMeshFormat format = FormatOf(options.Output);
    if (options.Quads && format != TMeshFormat::Obj)
        throw std::runtime_error(options.Output + ": --quads writes OBJ only, the output must end in .obj");
    io::MeshSettings settings;
    settings.Road = options.Road == "glu" ? io::MeshRoad::Glu : io::MeshRoad::Quad;
    settings.Tolerance = options.Tolerance;
    const TGluViewSize view = ParseViewSize(options.Size);
    settings.ViewWidth = view.Width;
    settings.ViewHeight = view.Height;

    const io::CadModelData model = ReadCadFile(options.File, options.TimeLimit, options.Tolerance);
    const io::ModelMesh mesh = MeshCadModel(model, settings, options.File);
    ReportFaces(options.File, mesh);
    const io::WeldedMesh welded = io::WeldFaces(mesh);
    if (format == TMeshFormat::Obj) io::WriteObj(options.Output, welded, {"orvane mesh of " + options.File, options.Quads});
    if (format == TMeshFormat::Stl) io::WriteStl(options.Output, welded);
    if (format == TMeshFormat::Glb) io::WriteGlb(options.Output, welded);
    std::size_t vertices = 0;
    for (const io::WeldedBody& body : welded.Bodies) vertices += body.Points.size();

    const std::string how = settings.Road == io::MeshRoad::Glu
                                ? "glu road, " + options.Size + " view"
                                : "quad road, tolerance " + Number(mesh.Tolerance);
    std::printf("%s: %zu of %d faces, %zu triangles, %zu vertices after welding -> %s (%s)\n", options.File.c_str(),
                mesh.Faces.size(), model.FaceCount(), mesh.TriangleCount(), vertices,
                options.Output.c_str(), how.c_str());
}

}  // namespace

void AddMeshCommand(CLI::App& app)
{
    auto options = std::make_shared<TMeshOptions>();
    CLI::App* mesh = app.add_subcommand("mesh", "Tessellate every face of an IGES or STEP file and write the mesh "
                                                "as .obj, .stl or .glb");
    mesh->add_option("file", options->File, "The IGES or STEP file")->required();
    mesh->add_option("-o,--output", options->Output, "The mesh file: .obj, .stl (binary) or .glb (binary glTF 2.0)")
        ->required();
    mesh->add_option("--road", options->Road, "quad: the quad tessellation road; glu: the GLU NURBS renderer")
        ->check(CLI::IsMember({"quad", "glu"}))
        ->capture_default_str();
    mesh->add_option("--tolerance", options->Tolerance,
                     "quad road: the largest chordal deviation in model units (default: 1/2500 of the model's box "
                     "diagonal). Does not steer the glu road, which samples in pixels of its view")
        ->check(CLI::PositiveNumber);
    mesh->add_option("--size", options->Size,
                     "glu road: the view WIDTHxHEIGHT in pixels that the model is fitted into; GLU samples in its "
                     "pixels, so a larger view gives a finer mesh")
        ->capture_default_str();
    mesh->add_flag("--quads", options->Quads,
                   "OBJ only: each quad of the quad road as one 4-vertex face, the other triangles as 3-vertex faces");
    AddTimeLimitOption(*mesh, options->TimeLimit);
    mesh->callback([options] { Run(*options); });
}

}  // namespace orvane::tools
