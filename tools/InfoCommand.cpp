// orvane info FILE: what an IGES or STEP file holds: its length unit, its faces, the kind of
// each surface and its NURBS form, whether it is trimmed, the model's box, area and volume, and
// whether the mesh (meshed as `mesh` would with the same options, so both skip the same faces)
// closes round each solid and encloses its volume.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "io/KernelFace.h"
#include "io/SolidChecks.h"
#include "tools/CadFileTools.h"
#include "tools/Commands.h"

namespace orvane::tools {
namespace {

struct TInfoOptions {
    std::string File;
    TCadOptions Cad;
};

std::string Boundary(const io::FaceData& f)
{
    if (io::CoversWholeDomain(f)) return "whole surface";
    const std::size_t holes = f.Loops.size() - 1;
    return "trimmed, " + std::to_string(f.Loops[0].size()) + "-curve outer loop" +
           (holes == 0 ? std::string() : ", " + std::to_string(holes) + (holes == 1 ? " hole" : " holes"));
}

void PrintFace(const io::FaceData& f)
{
    const io::NurbsSurfaceData& s = f.Surface;
    std::printf("  %s: %s as %sNURBS of degree %dx%d, %dx%d poles, %s%s\n", f.Name.c_str(), f.SourceKind.c_str(),
                s.Weights.empty() ? "" : "rational ", s.DegreeU, s.DegreeV, s.CountU, s.CountV, Boundary(f).c_str(),
                f.Reversed ? ", reversed" : "");
}

std::string Count(std::size_t n, const std::string& what)
{
    return std::to_string(n) + " " + what + (n == 1 ? "" : "s");
}

void PrintSolid(const io::SolidCheck& c)
{
    std::string state = c.FreeEdges.empty() ? (c.Closed() ? "closed" : "not manifold")
                                            : "open, " + Count(c.FreeEdges.size(), "free edge");
    if (c.NonManifoldEdges > 0) state += ", " + Count(c.NonManifoldEdges, "non-manifold edge");
    std::printf("  solid %d: %s, %s, volume %g", c.Solid + 1, state.c_str(), Count(c.Triangles, "triangle").c_str(),
                c.Volume);
    if (c.ExactVolume != 0.0)
        std::printf(" against %g exact (%+.3g%%)", c.ExactVolume, 100.0 * (c.Volume - c.ExactVolume) / std::abs(c.ExactVolume));
    std::printf("\n");
}

// The mesh checked solid by solid.
void PrintSolids(const io::CadModelData& model, const io::ModelMesh& mesh)
{
    const int solids = std::max(model.SolidCount, static_cast<int>(model.Solids.size()));
    if (solids == 0) return;
    const std::vector<io::SolidCheck> checks = io::CheckSolids(mesh);
    std::printf("solids, meshed at tolerance %.4g %s:\n", mesh.Tolerance, model.Unit.c_str());
    std::size_t next = 0;
    for (int s = 0; s < solids; ++s) {
        if (next < checks.size() && checks[next].Solid == s)
            PrintSolid(checks[next++]);
        else
            std::printf("  solid %d: no face meshed\n", s + 1);
    }
}

int Run(const CLI::App& command, const TInfoOptions& options, TVerbosity verbosity)
{
    CheckCadOptions(command, options.Cad, false);
    const TCadRun run(options.Cad, verbosity, options.File);
    const io::CadModelData model = run.Read(options.File, true);
    const io::ModelMesh mesh = run.Mesh(model, options.File);
    std::printf("%s: %s in %s, %d faces (%zu meshed, %zu skipped), %d solid%s\n", options.File.c_str(),
                model.Format.c_str(), model.Unit.c_str(), model.FaceCount(), mesh.Faces.size(), mesh.Skipped.size(),
                model.SolidCount, model.SolidCount == 1 ? "" : "s");
    const io::BoundingBox& b = model.Box;
    std::printf("box (%g, %g, %g) to (%g, %g, %g), diagonal %g\n", b.Min.X, b.Min.Y, b.Min.Z, b.Max.X, b.Max.Y,
                b.Max.Z, b.Diagonal());
    std::printf("area %g", model.ExactArea);
    if (model.SolidCount > 0) std::printf(", volume %g", model.ExactVolume);
    std::printf("\nfaces:\n");
    for (const io::FaceData& f : model.Faces) PrintFace(f);
    for (const io::SkippedFace& s : mesh.Skipped) std::printf("  %s: skipped: %s\n", s.Name.c_str(), s.Reason.c_str());
    PrintSolids(model, mesh);
    std::fflush(stdout);
    return run.Report(options.File, mesh, model.FaceCount());
}

}  // namespace

void AddInfoCommand(CLI::App& app, TToolRun& tool)
{
    auto options = std::make_shared<TInfoOptions>();
    CLI::App* info = app.add_subcommand("info", "Tell what an IGES or STEP file holds: faces, surface kinds, "
                                                "degrees, trimming, bounding box, and whether its mesh closes round each solid");
    info->add_option("file", options->File, "The IGES or STEP file")->required();
    AddCadOptions(*info, options->Cad, "glu road: the view WIDTHxHEIGHT in pixels that the model is fitted into");
    info->callback([info, options, &tool] {
        tool.Command = [info, options, &tool] { return Run(*info, *options, tool.Verbosity); };
    });
}

}  // namespace orvane::tools
