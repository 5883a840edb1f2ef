#include "tools/CadFileTools.h"

#include <cctype>
#include <cstdio>
#include <filesystem>
#include <stdexcept>

#include "io/CadFileReader.h"
#include "io/IsolatedReader.h"
#include "io/ProgressBar.h"

namespace orvane::tools {
namespace {

std::string Lower(std::string s)
{
    for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

}  // namespace

void AddTimeLimitOption(CLI::App& Command, double& Seconds)
{
    Command
        .add_option("--time-limit", Seconds,
                    "Seconds the file's reader may take; it runs in a process of its own and is stopped after that")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
}

bool IsCadFileName(const std::string& Name)
{
    const std::string ext = Lower(std::filesystem::path(Name).extension().string());
    return ext == ".igs" || ext == ".iges" || ext == ".stp" || ext == ".step" || std::filesystem::is_regular_file(Name);
}

io::CadModelData ReadCadFile(const std::string& Path, double TimeLimitSeconds, double Tolerance)
{
    io::ProgressBar bar("reading " + std::filesystem::path(Path).filename().string());
    try {
        return io::ReadCadModelIsolated(
            Path, TimeLimitSeconds, [&](int done, int total) { bar.Update(done, total); }, Tolerance);
    } catch (const io::ECadFileError& e) {
        bar.Finish();
        throw std::runtime_error(e.what());
    }
}

io::ModelMesh MeshCadModel(const io::CadModelData& Model, const io::MeshSettings& Settings, const std::string& Path)
{
    io::ProgressBar bar("meshing " + std::filesystem::path(Path).filename().string());
    io::ModelMesh mesh = io::MeshModel(Model, Settings, [&](int done, int total) { bar.Update(done, total); });
    bar.Finish();
    if (mesh.Faces.empty()) {
        ReportFaces(Path, mesh);
        throw std::runtime_error(Path + ": no face could be meshed");
    }
    return mesh;
}

void ReportFaces(const std::string& Path, const io::ModelMesh& Mesh)
{
    for (const io::SkippedFace& s : Mesh.Skipped)
        std::fprintf(stderr, "orvane: %s: %s skipped: %s\n", Path.c_str(), s.Name.c_str(), s.Reason.c_str());
    for (const io::SkippedFace& n : Mesh.Notes)
        std::fprintf(stderr, "orvane: %s: %s: %s\n", Path.c_str(), n.Name.c_str(), n.Reason.c_str());
}

TSceneMesh CadSceneMesh(const std::string& Path)
{
    const io::ModelMesh mesh = MeshCadModel(ReadCadFile(Path, kDefaultReadSeconds), {}, Path);
    ReportFaces(Path, mesh);
    TSceneMesh scene;
    io::JoinFaces(mesh, scene.Tri, scene.Norm);
    return scene;
}

}  // namespace orvane::tools
