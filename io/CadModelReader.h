// Reads a whole IGES or STEP file into plain face values, one face at a time, each inside its
// own guard, so that one bad face costs only itself.
#pragma once

#include <functional>
#include <string>

#include "io/CadFaceData.h"

namespace orvane::io {

// Told after each face: how many are done, of how many.
using ProgressFn = std::function<void(int Done, int Total)>;

// Reads Path in this process; the edges are discretised at Tolerance (0: the default tolerance
// of the model, DefaultTolerance in ModelMesher.h), the coordinates in Unit (CadFileReader),
// on Threads threads (0: every core); the solids' exact volumes only where Volumes asks.
// Raises ECadFileError (CadFileReader.h) for a file that cannot be read or holds no faces:
// "<path> holds no faces".
CadModelData ReadCadModel(const std::string& Path, const ProgressFn& Progress = {}, double Tolerance = 0.0,
                          const std::string& Unit = "mm", int Threads = 0, bool Volumes = true);

}  // namespace orvane::io
