// orvane mesh FILE -o OUT [--road quad|glu] [--tolerance T] [--size WxH] [--quads] ...: every
// face of an IGES or STEP file tessellated, pointed out of the material, welded, and written
// as OBJ, binary STL or binary glTF, as the output's extension says. Several files, a folder or
// a list make a batch: each file's mesh goes into the output folder, one report line each.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "io/AtomicFile.h"
#include "io/MeshWriters.h"
#include "tools/Batch.h"
#include "tools/CadFileTools.h"
#include "tools/Commands.h"

namespace orvane::tools {
namespace {

const std::vector<std::string> kMeshExtensions = {".obj", ".stl", ".glb"};

struct TMeshOptions {
    std::vector<std::string> Files;
    std::string Output;
    TCadOptions Cad;
    bool Quads = false;
    bool Stats = false;
    std::string Format = "glb";  // a batch's outputs
    std::string Report;          // a batch's report lines; standard output when empty
    std::string Shard;
};

bool IsBatch(const TMeshOptions& options)
{
    if (options.Files.size() != 1) return true;
    const std::string& file = options.Files.front();
    return (file.size() > 1 && file[0] == '@') || std::filesystem::is_directory(file);
}

void CheckOptions(const CLI::App& command, const TMeshOptions& options)
{
    CheckCadOptions(command, options.Cad, false);
    if (options.Quads && options.Cad.Road == "glu") throw EUsage("--quads gives the quad road's quads; the glu road has none");
    if (IsBatch(options)) {
        if (options.Quads && options.Format != "obj") throw EUsage("--quads writes OBJ only: --format must be obj");
        return;
    }
    RefuseOptions(command, {"--format", "--report", "--shard"}, "is for a batch: several files, a folder or @LIST");
    if (const std::string wrong = CheckExtension(options.Output, kMeshExtensions); !wrong.empty())
        throw EUsage("--output: " + wrong);
    if (options.Quads && ExtensionOf(options.Output) != ".obj")
        throw EUsage("--quads writes OBJ only: the output must end in .obj");
}

void Write(const TMeshOptions& options, const std::string& file, const std::string& output, const io::WeldedMesh& welded)
{
    const std::string ext = ExtensionOf(output);
    if (ext == ".obj") io::WriteObj(output, welded, {"orvane mesh of " + file, options.Quads});
    if (ext == ".stl") io::WriteStl(output, welded);
    if (ext == ".glb") io::WriteGlb(output, welded);
}

// What meshing one file came to, with every stage's time.
struct TMeshed {
    io::ModelMesh Mesh;
    int FaceCount = 0;
    std::size_t Vertices = 0;
    std::string Unit;
    io::StageTimes Stages;
    int Code = kExitDone;
};

TMeshed MeshFile(const TMeshOptions& options, const std::string& file, const std::string& output, TVerbosity verbosity)
{
    io::RefuseToWriteOverInputs(output, {file});
    const TCadRun run(options.Cad, verbosity, file);
    io::CadModelData model = run.Read(file);
    TMeshed m{run.Mesh(model, file), model.FaceCount(), 0, model.Unit, std::move(model.Stages), kExitDone};
    m.Stages.insert(m.Stages.end(), m.Mesh.Stages.begin(), m.Mesh.Stages.end());
    m.Code = run.Report(file, m.Mesh, m.FaceCount);
    io::StageClock clock(m.Stages);
    const io::WeldedMesh welded = io::WeldFaces(m.Mesh);
    for (const io::WeldedBody& body : welded.Bodies) m.Vertices += body.Points.size();
    clock.Lap("merge", static_cast<long long>(m.Vertices), "vertices");
    Write(options, file, output, welded);
    clock.Lap("write", static_cast<long long>(std::filesystem::file_size(output)), "bytes");
    return m;
}

void PrintStages(const io::StageTimes& stages)
{
    double total = 0.0;
    for (const io::StageTime& s : stages) {
        std::printf("  %-10s %9.3f s  %10lld %s\n", s.Name.c_str(), s.Seconds, s.Count, s.Of.c_str());
        total += s.Seconds;
    }
    std::printf("  %-10s %9.3f s\n", "total", total);
}

int RunOne(const TMeshOptions& options, TVerbosity verbosity)
{
    const std::string& file = options.Files.front();
    const TMeshed m = MeshFile(options, file, options.Output, verbosity);
    if (verbosity == TVerbosity::Quiet) return m.Code;
    const std::string how = options.Cad.Road == "glu" ? "glu road, " + std::to_string(options.Cad.Size.Width) + "x" +
                                                            std::to_string(options.Cad.Size.Height) + " view"
                                                      : "quad road, tolerance " + Number(m.Mesh.Tolerance);
    std::printf("%s: %zu of %d faces, %zu triangles, %zu vertices after welding -> %s (%s, unit %s)\n", file.c_str(),
                m.Mesh.Faces.size(), m.FaceCount, m.Mesh.TriangleCount(), m.Vertices, options.Output.c_str(),
                how.c_str(), m.Unit.c_str());
    if (options.Stats) PrintStages(m.Stages);
    return m.Code;
}

TFileReport MeshForBatch(const TMeshOptions& options, const TBatchItem& item)
{
    std::filesystem::create_directories(std::filesystem::path(item.Output).parent_path());
    const TMeshed m = MeshFile(options, item.Input, item.Output, TVerbosity::Quiet);
    TFileReport r{item.Input, item.Output, m.Code == kExitDone ? "done" : "faces skipped", {}, m.FaceCount,
                  m.Mesh.TriangleCount(), {}, {}};
    for (const io::SkippedFace& s : m.Mesh.Skipped) r.Skipped.emplace_back(s.Number, s.Reason);
    for (const io::StageTime& s : m.Stages) r.Seconds.emplace_back(s.Name, s.Seconds);
    return r;
}

int RunMany(const TMeshOptions& options)
{
    std::vector<TBatchItem> items;
    TShard shard;
    try {
        items = PlanBatch(options.Files, options.Output, "." + options.Format);
        if (!options.Shard.empty()) shard = ParseShard(options.Shard);
    } catch (const std::invalid_argument& e) {
        throw EUsage(e.what());
    }
    auto mesh = [&](const TBatchItem& item) { return MeshForBatch(options, item); };
    if (options.Report.empty()) return RunBatch(items, shard, std::cout, mesh);
    std::ofstream report(options.Report, std::ios::app);
    if (!report) throw std::runtime_error("cannot write the report " + options.Report);
    return RunBatch(items, shard, report, mesh);
}

}  // namespace

void AddMeshCommand(CLI::App& app, TToolRun& tool)
{
    auto options = std::make_shared<TMeshOptions>();
    CLI::App* mesh = app.add_subcommand("mesh", "Tessellate every face of IGES or STEP files and write each mesh "
                                                "as .obj, .stl or .glb");
    mesh->add_option("files", options->Files,
                     "The IGES or STEP file; or several files, folders (every IGES and STEP file under them) and "
                     "@LIST files (one path a line), meshed as a batch")
        ->required();
    AddOutput(*mesh, "-o,--output", options->Output, {},
              "The mesh file: .obj, .stl (binary) or .glb (binary glTF 2.0); for a batch, the folder the meshes go "
              "into, below it each file's path as under the folder named")
        ->required();
    AddCadOptions(*mesh, options->Cad,
                  "glu road: the view WIDTHxHEIGHT in pixels that the model is fitted into; GLU samples in its "
                  "pixels, so a larger view gives a finer mesh");
    mesh->add_flag("--quads", options->Quads,
                   "OBJ only: each quad of the quad road as one 4-vertex face, the other triangles as 3-vertex faces");
    mesh->add_flag("--stats", options->Stats, "print each stage's seconds and what it went through");
    AddChoice(*mesh, "--format", options->Format, {"glb", "obj", "stl"}, "batch: the format of the meshes");
    mesh->add_option("--report", options->Report,
                     "batch: the file each file's JSON report line is added to (default: standard output)");
    mesh->add_option("--shard", options->Shard,
                     "batch: K/N, mesh only the K-th of N shares of the files (each file in exactly one share)");
    mesh->callback([mesh, options, &tool] {
        tool.Command = [mesh, options, &tool] {
            CheckOptions(*mesh, *options);
            return IsBatch(*options) ? RunMany(*options) : RunOne(*options, tool.Verbosity);
        };
    });
}

}  // namespace orvane::tools
