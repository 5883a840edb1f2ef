// What the commands that take IGES or STEP files share: reading each in a child process with a
// progress bar, meshing it within the bounds the command line sets, and telling the user what
// was skipped. One TCadRun serves a command's whole run, and its time limit covers all of it.
#pragma once

#include <string>

#include "io/CadFaceData.h"
#include "io/ModelMesher.h"
#include "tools/Options.h"
#include "tools/RunDeadline.h"
#include "tools/SceneRenderer.h"

namespace orvane::tools {

// True for a name that is a file on disk or ends in .igs, .iges, .stp or .step.
bool IsCadFileName(const std::string& Name);

// x with four significant digits.
std::string Number(double x);

class TCadRun {
public:
    // Starts the clock of --time-limit; Label names the run in the message when it passes.
    TCadRun(const TCadOptions& Options, TVerbosity Verbosity, const std::string& Label);

    // Reads Path in a child process, with a progress bar while it takes long. Raises
    // std::runtime_error with one line when the file cannot be read or holds no faces.
    // Volumes: whether the solids' exact volumes are measured (a search over each solid).
    io::CadModelData Read(const std::string& Path, bool Volumes = false) const;

    // Meshes the model as the options say, with a progress bar. Raises std::runtime_error
    // naming the bound and by how much when the planned mesh passes --max-memory, and
    // "<Path>: no face could be meshed" (after the faces' lines) when no face gave triangles.
    io::ModelMesh Mesh(const io::CadModelData& Model, const std::string& Path) const;

    // One line on standard error for each face skipped (and, with --verbose, each note of a
    // road), then "<Path>: <n> of <m> faces skipped" (even with --quiet). Answers kExitDone or
    // kExitFacesSkipped.
    int Report(const std::string& Path, const io::ModelMesh& Mesh, int FaceCount) const;

    // The meshes' and the picture's memory bound, in bytes.
    double MaxBytes() const { return FOptions.MaxMemoryMiB * 1048576.0; }
    TVerbosity Verbosity() const { return FVerbosity; }
    const TCadOptions& Options() const { return FOptions; }

    // The whole file through Mesh, as one mesh to draw.
    TSceneMesh SceneMesh(const std::string& Path, int& ExitCode) const;

private:
    const TCadOptions& FOptions;
    TVerbosity FVerbosity;
    TRunDeadline FDeadline;
};

}  // namespace orvane::tools
