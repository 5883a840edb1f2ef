// Each command of the orvane tool adds itself to the application here.
#pragma once

#include <CLI/CLI.hpp>

namespace orvane::tools {

void AddLabelCommand(CLI::App& app);
void AddGlinfoCommand(CLI::App& app);
void AddShapesCommand(CLI::App& app);
void AddRenderCommand(CLI::App& app);
void AddQuadsCommand(CLI::App& app);
void AddTessellateCommand(CLI::App& app);
void AddInfoCommand(CLI::App& app);
void AddMeshCommand(CLI::App& app);


}  // namespace orvane::tools
