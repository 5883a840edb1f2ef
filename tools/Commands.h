// Each command of the orvane tool adds itself to the application here; once parsed, it leaves
// its run in the TToolRun for main to call.
#pragma once

#include <CLI/CLI.hpp>

#include "tools/Options.h"

namespace orvane::tools {

void AddLabelCommand(CLI::App& app, TToolRun& tool);
void AddGlinfoCommand(CLI::App& app, TToolRun& tool);
void AddShapesCommand(CLI::App& app, TToolRun& tool);
void AddRenderCommand(CLI::App& app, TToolRun& tool);
void AddQuadsCommand(CLI::App& app, TToolRun& tool);
void AddTessellateCommand(CLI::App& app, TToolRun& tool);
void AddInfoCommand(CLI::App& app, TToolRun& tool);
void AddMeshCommand(CLI::App& app, TToolRun& tool);

}  // namespace orvane::tools
