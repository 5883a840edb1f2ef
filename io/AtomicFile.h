// Writes a file so that nothing half-written is ever left under its name: the content goes to
// a temporary file beside it, which replaces the target only once it is complete.
#pragma once

#include <functional>
#include <string>

namespace orvane::io {

// Calls Write with the path of a new temporary file in Path's folder, then renames it to
// Path. If Write raises, or the rename fails, the temporary file is removed and
// std::runtime_error "cannot write <Path>: <reason>" is raised (a text of Write's that starts
// with "cannot write " is kept as it is, with the temporary file's name replaced by Path).
void WriteFileAtomically(const std::string& Path, const std::function<void(const std::string& TempPath)>& Write);

}  // namespace orvane::io
