// Writes an 8-bit RGBA picture to a PNG file.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace orvane::tools {

// Writes width x height pixels, 4 bytes each in the order red, green, blue, alpha, rows top
// first with no padding, to the file at path. rgba must hold exactly width * height * 4 bytes.
// Raises std::runtime_error with a one-line text when the picture or the file cannot be written.
void WritePng(const std::string& path, int width, int height, std::span<const std::uint8_t> rgba);

}  // namespace orvane::tools
