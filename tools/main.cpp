// orvane: tessellate CAD surfaces, export meshes and render pictures from the command line.
#include <cstdio>
#include <exception>

#include "tools/Commands.h"

int main(int argc, char** argv)
{
    CLI::App app{"orvane: turns CAD surfaces into meshes and pictures"};
    app.require_subcommand(1);
    orvane::tools::AddLabelCommand(app);
    orvane::tools::AddGlinfoCommand(app);
    orvane::tools::AddShapesCommand(app);
    orvane::tools::AddRenderCommand(app);
    orvane::tools::AddInfoCommand(app);
    orvane::tools::AddMeshCommand(app);
    orvane::tools::AddQuadsCommand(app);
    orvane::tools::AddTessellateCommand(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return app.exit(e);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "orvane: %s\n", e.what());
        return 1;
    }
    return 0;
}
