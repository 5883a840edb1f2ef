// Reads a CAD file in a child process with a time limit: the reader's library can crash or
// hang on a hostile file, and the tool must survive that and say so.
#pragma once

#include <functional>
#include <string>

#include "io/CadFaceData.h"
#include "io/CadModelReader.h"

namespace orvane::io {

// Runs Work in a child process and returns what it returned. The child dies with this process. Progress, told in the child, is
// passed on here. Raises ECadFileError (CadFileReader.h) with one line about Label:
//   what Work raised, as its text;
//   "<Label>: reading took longer than <n> s and was stopped";
//   "<Label>: the reader crashed (signal <n>)";
//   "<Label>: the reader ended without an answer (exit code <n>)".
CadModelData RunIsolated(const std::function<CadModelData(const ProgressFn&)>& Work, const std::string& Label,
                         double TimeLimitSeconds, const ProgressFn& Progress = {});

// ReadCadModel in a child process.
CadModelData ReadCadModelIsolated(const std::string& Path, double TimeLimitSeconds, const ProgressFn& Progress = {},
                                  double Tolerance = 0.0, const std::string& Unit = "mm", int Threads = 0,
                                  bool Volumes = true);

}  // namespace orvane::io
