// Writes a file so that nothing half-written is ever left under its name: the content goes to
// a temporary file beside it, which replaces the target only once it is complete. A temporary
// file still being written is removed when the process is stopped by SIGINT, SIGTERM or SIGHUP.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace orvane::io {

// Calls Write with the path of a new temporary file in Path's folder, then renames it to
// Path. If Write raises, or the rename fails, the temporary file is removed and
// std::runtime_error "cannot write <Path>: <reason>" is raised (a text of Write's that starts
// with "cannot write " is kept as it is, with the temporary file's name replaced by Path).
void WriteFileAtomically(const std::string& Path, const std::function<void(const std::string& TempPath)>& Write);

// WriteFileAtomically through a binary stream: Fill writes, and everything must reach the disk.
void WriteStreamAtomically(const std::string& Path, const std::function<void(std::ostream& Out)>& Fill);

// Raises std::runtime_error "<Output> is the input <Input>: refusing to write over it" when
// Output is the same file as one of Inputs (same device and inode, whatever the names, links
// included). An Output that does not exist yet is never an input.
void RefuseToWriteOverInputs(const std::string& Output, const std::vector<std::string>& Inputs);

// Removes every temporary file that is still being written. Safe in a signal handler; for
// whatever ends the process on its own (a time limit).
void RemovePendingTemporaries() noexcept;

}  // namespace orvane::io
