#include "tools/PngWriter.h"

#include <png.h>

#include <cstring>
#include <stdexcept>

#include "io/AtomicFile.h"

namespace orvane::tools {

void WritePng(const std::string& path, int width, int height, std::span<const std::uint8_t> rgba)
{
    if (width <= 0 || height <= 0)
        throw std::runtime_error("cannot write an empty picture to " + path);
    const auto expected = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
    if (rgba.size() != expected)
        throw std::runtime_error("picture data does not match its size " + std::to_string(width) +
                                 "x" + std::to_string(height));

    // The simplified libpng interface reports errors in the image record, not by longjmp.
    png_image image;
    std::memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGBA;
    io::WriteFileAtomically(path, [&](const std::string& temp) {
        const int ok = png_image_write_to_file(&image, temp.c_str(), 0, rgba.data(), 0, nullptr);
        const std::string reason = image.message;
        png_image_free(&image);
        if (!ok) throw std::runtime_error("cannot write " + path + ": " + reason);
    });
}

}  // namespace orvane::tools
