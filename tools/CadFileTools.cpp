#include "tools/CadFileTools.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <stdexcept>

#include "io/CadFileReader.h"
#include "io/IsolatedReader.h"
#include "io/MeshBudget.h"
#include "io/ProgressBar.h"

namespace orvane::tools {
namespace {

// A count as a person reads it: 52, 63930, 6.175 million.
std::string Count(double n)
{
    char text[32];
    std::snprintf(text, sizeof text, n >= 1e6 ? "%.4g million" : "%.0f", n >= 1e6 ? n / 1e6 : n);
    return text;
}

std::string Times(double ratio)
{
    return ratio < 1000.0 ? Number(ratio) : Count(ratio);
}

// The child's own limit is a little longer than what is left of the run: the run's deadline
// stops it first, with the one message for the whole run.
constexpr double kChildGraceSeconds = 5.0;

}  // namespace

bool IsCadFileName(const std::string& Name)
{
    return HasCadExtension(Name) || std::filesystem::is_regular_file(Name);
}

std::string Number(double x)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.4g", x);
    return text;
}

TCadRun::TCadRun(const TCadOptions& Options, TVerbosity Verbosity, const std::string& Label)
    : FOptions(Options),
      FVerbosity(Verbosity),
      FDeadline(Options.TimeLimit,
                Label + ": the run took longer than --time-limit " + Number(Options.TimeLimit) + " s and was stopped")
{
}

io::CadModelData TCadRun::Read(const std::string& Path, bool Volumes) const
{
    io::ProgressBar bar("reading " + std::filesystem::path(Path).filename().string());
    try {
        const auto start = std::chrono::steady_clock::now();
        io::CadModelData model = io::ReadCadModelIsolated(
            Path, std::max(0.0, FDeadline.SecondsLeft()) + kChildGraceSeconds,
            [&](int done, int total) { bar.Update(done, total); }, FOptions.Tolerance, FOptions.Unit, FOptions.Threads,
            Volumes);
        // What the reading process's own stages leave of the wait: starting it and the model's
        // way back through the pipe.
        double wait = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        for (const io::StageTime& stage : model.Stages) wait -= stage.Seconds;
        model.Stages.push_back({"pipe", std::max(0.0, wait), static_cast<long long>(model.Faces.size()), "faces"});
        return model;
    } catch (const io::ECadFileError& e) {
        bar.Finish();
        throw std::runtime_error(e.what());
    }
}

io::ModelMesh TCadRun::Mesh(const io::CadModelData& Model, const std::string& Path) const
{
    io::MeshSettings settings;
    settings.Road = FOptions.Road == "glu" ? io::MeshRoad::Glu : io::MeshRoad::Quad;
    settings.Tolerance = FOptions.Tolerance;
    settings.ViewWidth = FOptions.Size.Width;
    settings.ViewHeight = FOptions.Size.Height;
    settings.MaxTriangles = MaxBytes() / io::kBytesPerTriangle;
    settings.Threads = FOptions.Threads;
    io::ProgressBar bar("meshing " + std::filesystem::path(Path).filename().string());
    io::ModelMesh mesh;
    try {
        mesh = io::MeshModel(Model, settings, [&](int done, int total) { bar.Update(done, total); });
    } catch (const io::EOverBudget& e) {
        const std::string how = settings.Road == io::MeshRoad::Glu
                                    ? "on the glu road in a " + std::to_string(FOptions.Size.Width) + "x" +
                                          std::to_string(FOptions.Size.Height) + " view"
                                    : "at tolerance " + Number(settings.Tolerance > 0 ? settings.Tolerance
                                                                                      : io::DefaultTolerance(Model)) +
                                          " " + Model.Unit;
        throw std::runtime_error(Path + ": the mesh needs about " + Count(e.Needed) + " triangles " + how + ", " +
                                 Times(e.Needed / e.Allowed) + " times the " + Count(e.Allowed) +
                                 " that --max-memory " + Number(FOptions.MaxMemoryMiB) + " MiB allows");
    }
    bar.Finish();
    if (mesh.Faces.empty()) {
        Report(Path, mesh, Model.FaceCount());
        throw std::runtime_error(Path + ": no face could be meshed");
    }
    return mesh;
}

int TCadRun::Report(const std::string& Path, const io::ModelMesh& Mesh, int FaceCount) const
{
    if (FVerbosity != TVerbosity::Quiet)
        for (const io::SkippedFace& s : Mesh.Skipped)
            std::fprintf(stderr, "orvane: %s: %s skipped: %s\n", Path.c_str(), s.Name.c_str(), s.Reason.c_str());
    if (FVerbosity == TVerbosity::Verbose)
        for (const io::SkippedFace& n : Mesh.Notes)
            std::fprintf(stderr, "orvane: %s: %s: %s\n", Path.c_str(), n.Name.c_str(), n.Reason.c_str());
    if (Mesh.Skipped.empty()) return kExitDone;
    const auto lost = std::count_if(Mesh.Skipped.begin(), Mesh.Skipped.end(),
                                    [](const io::SkippedFace& s) { return !s.Negligible; });
    if (lost == 0) {
        if (FVerbosity != TVerbosity::Quiet)
            std::fprintf(stderr, "orvane: %s: %zu of %d faces not written, none with anything to show at the tolerance\n",
                         Path.c_str(), Mesh.Skipped.size(), FaceCount);
        return kExitDone;
    }
    std::fprintf(stderr, "orvane: %s: %zu of %d faces not written\n", Path.c_str(), Mesh.Skipped.size(), FaceCount);
    return kExitFacesSkipped;
}

TSceneMesh TCadRun::SceneMesh(const std::string& Path, int& ExitCode) const
{
    const io::CadModelData model = Read(Path);
    const io::ModelMesh mesh = Mesh(model, Path);
    ExitCode = std::max(ExitCode, Report(Path, mesh, model.FaceCount()));
    TSceneMesh scene;
    io::JoinFaces(mesh, scene.Tri, scene.Norm);
    return scene;
}

}  // namespace orvane::tools
