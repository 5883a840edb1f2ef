// Text taken from a file, made safe to print: a label or a name in a CAD file may hold any
// bytes, and escape codes would reach the user's terminal or break a line-based output.
#pragma once

#include <string>
#include <string_view>

namespace orvane::io {

// Text with each control character (below 0x20, and 0x7F) and each backslash written as
// \xNN and \\ respectively; every other byte as it is, so UTF-8 stays readable.
std::string Printable(std::string_view Text);

}  // namespace orvane::io
