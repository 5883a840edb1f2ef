// A line of text drawn black on white into a 32-bit raster, the way a texture takes it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "contracts/Export.h"

namespace orvane {

// The resolution at which a font size in points becomes pixels: the usual screen resolution,
// at which 72 points are 96 pixels.
inline constexpr int kTextDpi = 96;

// Rows bottom first, each Width pixels of 4 bytes in the order blue, green, red, alpha, with
// no padding. Ink is grey-scale (blue = green = red), background white, alpha always 255.
struct TTextRaster {
    int Width = 0;
    int Height = 0;
    std::vector<std::uint8_t> Pixels;
};

// Measures AText (UTF-8) in the font of the family AFontName (see FindFontFile) at APointSize
// and draws it at the top left of a raster of exactly that size: the width is the sum of the
// glyph advances, the height the font's ascent plus descent, so an empty text gives 0 by the
// height. Raises Exception when the font is missing or unusable, when the size is below 1
// point, or when a side of the raster would exceed kMaxTextRasterSide pixels.
ORVANE_API TTextRaster RenderTextLine(const std::string& AText, const std::string& AFontName, int APointSize);

inline constexpr int kMaxTextRasterSide = 16384;

// The font size in points of a texture whose height is AHeight: AHeight + 20, rounded to the
// nearest integer with ties to even (2.5 gives 22, 3.5 gives 24). 0 where that is not a number
// in the range of int, which RenderTextLine rejects.
ORVANE_API int TextureFontSize(double AHeight);

}  // namespace orvane
