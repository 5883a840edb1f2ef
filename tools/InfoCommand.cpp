// orvane info FILE: what an IGES or STEP file holds: its faces, the kind of each surface and
// its NURBS form, whether it is trimmed, and the model's box, area and volume.
#include <cstdio>
#include <memory>
#include <string>

#include "io/KernelFace.h"
#include "tools/CadFileTools.h"
#include "tools/Commands.h"

namespace orvane::tools {
namespace {

struct TInfoOptions {
    std::string File;
    double TimeLimit = kDefaultReadSeconds;
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

void Run(const TInfoOptions& options)
{
    const io::CadModelData model = ReadCadFile(options.File, options.TimeLimit);
    std::printf("%s: %s, %d faces (%zu converted, %zu skipped), %d solid%s\n", options.File.c_str(),
                model.Format.c_str(), model.FaceCount(), model.Faces.size(), model.Skipped.size(), model.SolidCount,
                model.SolidCount == 1 ? "" : "s");
    const io::BoundingBox& b = model.Box;
    std::printf("box (%g, %g, %g) to (%g, %g, %g), diagonal %g\n", b.Min.X, b.Min.Y, b.Min.Z, b.Max.X, b.Max.Y,
                b.Max.Z, b.Diagonal());
    std::printf("area %g", model.ExactArea);
    if (model.SolidCount > 0) std::printf(", volume %g", model.ExactVolume);
    std::printf("\nfaces:\n");
    for (const io::FaceData& f : model.Faces) PrintFace(f);
    for (const io::SkippedFace& s : model.Skipped) std::printf("  %s: skipped: %s\n", s.Name.c_str(), s.Reason.c_str());
}

}  // namespace

void AddInfoCommand(CLI::App& app)
{
    auto options = std::make_shared<TInfoOptions>();
    CLI::App* info = app.add_subcommand("info", "Tell what an IGES or STEP file holds: faces, surface kinds, "
                                                "degrees, trimming, bounding box");
    info->add_option("file", options->File, "The IGES or STEP file")->required();
    AddTimeLimitOption(*info, options->TimeLimit);
    info->callback([options] { Run(*options); });
}

}  // namespace orvane::tools
