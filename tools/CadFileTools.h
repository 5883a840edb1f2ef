// What the commands that take an IGES or STEP file share: reading it in a child process with
// a progress bar, meshing it, and telling the user about faces that were skipped.
#pragma once

#include <string>

#include <CLI/CLI.hpp>

#include "io/CadFaceData.h"
#include "io/ModelMesher.h"
#include "tools/SceneRenderer.h"

namespace orvane::tools {

// Seconds the reader may take before it is stopped, unless --time-limit says otherwise.
inline constexpr double kDefaultReadSeconds = 120.0;

// Adds --time-limit SECONDS to a command, stored in Seconds.
void AddTimeLimitOption(CLI::App& Command, double& Seconds);

// True for a name that is a file on disk or ends in .igs, .iges, .stp or .step.
bool IsCadFileName(const std::string& Name);

// Reads Path in a child process, with a progress bar while it takes long. Raises
// std::runtime_error with one line when the file cannot be read or holds no faces.
// Tolerance: what the edges are discretised at (0: the model's default tolerance).
io::CadModelData ReadCadFile(const std::string& Path, double TimeLimitSeconds, double Tolerance = 0.0);

// Meshes the model with a progress bar; raises "<Path>: no face could be meshed" when no face
// gave triangles.
io::ModelMesh MeshCadModel(const io::CadModelData& Model, const io::MeshSettings& Settings, const std::string& Path);

// One line on standard error for each face the reader or the road skipped or remarked on.
void ReportFaces(const std::string& Path, const io::ModelMesh& Mesh);

// The whole model through the quad road at the default tolerance, as one mesh to draw.
TSceneMesh CadSceneMesh(const std::string& Path);

}  // namespace orvane::tools
