// orvane: tessellate CAD surfaces, export meshes and render pictures from the command line.
// Exit codes: 0 done, 1 failed (nothing written), 2 wrong command line, 3 done but faces skipped.
#include <cstdio>
#include <exception>

#include "tools/Commands.h"

#ifndef ORVANE_VERSION
#define ORVANE_VERSION "unknown"
#endif

namespace {

using namespace orvane::tools;

void AddVerbosity(CLI::App& app, TToolRun& tool)
{
    auto* quiet = app.add_flag_callback(
        "-q,--quiet", [&tool] { tool.Verbosity = TVerbosity::Quiet; },
        "Only errors and the count of skipped faces on standard error; no summary");
    app.add_flag_callback(
           "-v,--verbose", [&tool] { tool.Verbosity = TVerbosity::Verbose; },
           "Also what a road noted on a face, and where the time went")
        ->excludes(quiet);
}

}  // namespace

int main(int argc, char** argv)
{
    CLI::App app{"orvane: turns CAD surfaces into meshes and pictures"};
    app.require_subcommand(1);
    app.fallthrough();  // --quiet and --verbose after the command too
    app.set_version_flag("--version", std::string("orvane ") + ORVANE_VERSION);
    TToolRun tool;
    AddVerbosity(app, tool);
    AddLabelCommand(app, tool);
    AddGlinfoCommand(app, tool);
    AddShapesCommand(app, tool);
    AddRenderCommand(app, tool);
    AddInfoCommand(app, tool);
    AddMeshCommand(app, tool);
    AddQuadsCommand(app, tool);
    AddTessellateCommand(app, tool);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& e) {
        return app.exit(e);  // --help, --version
    } catch (const CLI::ParseError& e) {
        std::fprintf(stderr, "orvane: %s\n", e.what());
        return kExitUsage;
    }
    try {
        return tool.Command ? tool.Command() : kExitUsage;
    } catch (const EUsage& e) {
        std::fprintf(stderr, "orvane: %s\n", e.what());
        return kExitUsage;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "orvane: %s\n", e.what());
        return kExitFailed;
    }
}
