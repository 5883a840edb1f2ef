// orvane label "text" --font NAME -o out.png: the raster a texture entity would upload for a
// line of text, written as a picture so that a person can look at it.
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "contracts/SysUtils.h"
#include "immediate/TextRaster.h"
#include "tools/Commands.h"
#include "tools/PngWriter.h"

namespace orvane::tools {

namespace {

struct TLabelOptions {
    std::string Text;
    std::string Font;
    double Height = 0.0;
    std::string Output;
};

// Bottom-first BGRA to top-first RGBA.
std::vector<std::uint8_t> TopFirstRgba(const TTextRaster& ARaster)
{
    std::vector<std::uint8_t> rgba(ARaster.Pixels.size());
    const std::size_t rowBytes = static_cast<std::size_t>(ARaster.Width) * 4;
    for (int row = 0; row < ARaster.Height; ++row) {
        const std::uint8_t* from = ARaster.Pixels.data() + (ARaster.Height - 1 - row) * rowBytes;
        std::uint8_t* to = rgba.data() + row * rowBytes;
        for (std::size_t i = 0; i < rowBytes; i += 4) {
            to[i] = from[i + 2];
            to[i + 1] = from[i + 1];
            to[i + 2] = from[i];
            to[i + 3] = from[i + 3];
        }
    }
    return rgba;
}

int RunLabel(const TLabelOptions& AOptions)
{
    TTextRaster raster;
    try {
        raster = RenderTextLine(AOptions.Text, AOptions.Font, TextureFontSize(AOptions.Height));
    } catch (const Exception& e) {
        throw std::runtime_error(e.Message());
    }
    WritePng(AOptions.Output, raster.Width, raster.Height, TopFirstRgba(raster));
    return kExitDone;
}

}  // namespace

void AddLabelCommand(CLI::App& app, TToolRun& tool)
{
    auto options = std::make_shared<TLabelOptions>();
    CLI::App* label = app.add_subcommand("label", "Draw a line of text as a text texture holds it, as PNG");
    label->add_option("text", options->Text, "The text (UTF-8)")->required();
    label->add_option("--font", options->Font,
                      "Font family name; empty or generic (sans-serif, monospace) takes the system's choice");
    AddNumber(*label, "--height", options->Height, -20.0, 1000.0,
              "The texture's height in points: the font size is height + 20 points")
        ->capture_default_str();
    AddOutput(*label, "-o,--output", options->Output, {".png"}, "PNG file to write")->required();
    label->callback([options, &tool] { tool.Command = [options] { return RunLabel(*options); }; });
}

}  // namespace orvane::tools
