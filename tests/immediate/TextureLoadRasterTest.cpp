// The raster a texture is made from: a line of text, black on white, bottom row first, BGRA.
#include <gtest/gtest.h>

#include <algorithm>

#include "contracts/SysUtils.h"
#include "immediate/FontMatch.h"
#include "immediate/TextRaster.h"

namespace orvane {
namespace {

TEST(TextureLoadRaster, LetterTIsUprightBlackOnWhiteInBgraBottomRowFirst)
{
    const TTextRaster raster = RenderTextLine("T", "DejaVu Sans", 22);
    const int w = raster.Width, h = raster.Height;
    ASSERT_EQ(raster.Pixels.size(), static_cast<std::size_t>(w) * h * 4);
    // 22 points at 96 dpi are an em of 29.3 pixels; a line is ascent plus descent of the font.
    EXPECT_TRUE(h > 29 && h < 44) << h;
    EXPECT_TRUE(w > 10 && w < 29) << w;
    int black = 0, white = 0;
    for (std::size_t i = 0; i < raster.Pixels.size(); i += 4) {
        const std::uint8_t* p = &raster.Pixels[i];
        ASSERT_EQ(p[3], 255) << "alpha is the fourth byte";
        ASSERT_TRUE(p[0] == p[1] && p[1] == p[2]) << "grey ink";
        black += p[0] == 0;
        white += p[0] == 255;
    }
    EXPECT_GT(black, 50);
    EXPECT_GT(white, black);

    // Read top row first: the bar of the T lies above the middle, the descent below the
    // baseline is blank, and the stem stands in the middle columns.
    const auto ink = [&](int x, int yFromTop) {
        return raster.Pixels[(static_cast<std::size_t>(h - 1 - yFromTop) * w + x) * 4] < 128;
    };
    const auto inRow = [&](int y) { int n = 0; for (int x = 0; x < w; ++x) n += ink(x, y); return n; };
    const auto inColumn = [&](int x) { int n = 0; for (int y = 0; y < h; ++y) n += ink(x, y); return n; };
    int barRow = 0;
    for (int y = 0; y < h; ++y)
        if (inRow(y) > inRow(barRow)) barRow = y;
    EXPECT_LT(barRow, h / 2);
    EXPECT_GT(inRow(barRow), w * 3 / 4);
    EXPECT_EQ(inRow(h - 1), 0);
    EXPECT_GT(inColumn(w / 2), inColumn(1) * 3);
    int stemTop = h, stemBottom = -1;
    for (int y = 0; y < h; ++y)
        if (ink(w / 2, y)) stemTop = std::min(stemTop, y), stemBottom = std::max(stemBottom, y);
    EXPECT_LE(stemTop, barRow);
    EXPECT_GT(stemBottom - barRow, h / 3);
}

TEST(TextureLoadRaster, SizeFollowsTheMeasuredTextAndFontsAreFoundByFamilyIgnoringCase)
{
    const TTextRaster one = RenderTextLine("T", "DejaVu Sans", 22);
    const TTextRaster two = RenderTextLine("TT", "DejaVu Sans", 22);
    EXPECT_EQ(two.Width, 2 * one.Width);
    EXPECT_EQ(two.Height, one.Height);
    EXPECT_NEAR(RenderTextLine("T", "DejaVu Sans", 44).Height, 2 * one.Height, 2);
    // Non-ASCII text is read as UTF-8: one glyph, not two.
    EXPECT_EQ(RenderTextLine("\xC3\xA9", "DejaVu Sans", 22).Width, RenderTextLine("e", "DejaVu Sans", 22).Width);
    const TTextRaster empty = RenderTextLine("", "DejaVu Sans", 22);
    EXPECT_EQ(empty.Width, 0);
    EXPECT_EQ(empty.Height, one.Height);
    EXPECT_TRUE(empty.Pixels.empty());

    const TTextRaster exact = RenderTextLine("Tg", "DejaVu Sans", 20);
    EXPECT_EQ(RenderTextLine("Tg", "dejavu sans", 20).Pixels, exact.Pixels);
    EXPECT_NE(RenderTextLine("Tg", "DejaVu Sans Mono", 20).Pixels, exact.Pixels);
    // An empty name and the generic names take the system's choice for the role.
    for (const char* name : {"", "Sans", "sans-serif", "monospace", "Serif"})
        EXPECT_FALSE(FindFontFile(name, 20).Path.empty()) << '"' << name << '"';
}

TEST(TextureLoadRaster, MissingFontsAndBadSizesRaise)
{
    // A name is a family: no size or style is parsed out of it.
    for (const char* name : {"No Such Font Family", "DejaVu Sans-12", "DejaVu Sans:bold"}) {
        try {
            RenderTextLine("T", name, 20);
            ADD_FAILURE() << name;
        } catch (const Exception& e) {
            EXPECT_EQ(e.Message(), std::string("Font not found: ") + name);
        }
    }
    EXPECT_THROW(RenderTextLine("T", "DejaVu Sans", 0), Exception);
    EXPECT_THROW(RenderTextLine("T", "DejaVu Sans", 100000), Exception);
}

}  // namespace
}  // namespace orvane
