// The raster a texture is made from: a line of text, black on white, bottom row first, BGRA.
#include <gtest/gtest.h>

#include <algorithm>

#include "contracts/SysUtils.h"
#include "immediate/FontMatch.h"
#include "immediate/TextRaster.h"

namespace orvane {
namespace {

// Pixels of a bottom-first raster addressed top row first, as a person reads them.
struct TInkMap {
    const TTextRaster& Raster;

    const std::uint8_t* Pixel(int AColumn, int ARowFromTop) const
    {
        const int row = Raster.Height - 1 - ARowFromTop;
        return Raster.Pixels.data() + (static_cast<std::size_t>(row) * Raster.Width + AColumn) * 4;
    }
    bool Ink(int AColumn, int ARowFromTop) const { return Pixel(AColumn, ARowFromTop)[0] < 128; }
    int InkInRow(int ARowFromTop) const
    {
        int n = 0;
        for (int x = 0; x < Raster.Width; ++x) n += Ink(x, ARowFromTop);
        return n;
    }
    int InkInColumn(int AColumn) const
    {
        int n = 0;
        for (int y = 0; y < Raster.Height; ++y) n += Ink(AColumn, y);
        return n;
    }
};

TEST(TextureLoadRaster, LetterTIsUprightBlackOnWhiteInBgraBottomRowFirst)
{
    const TTextRaster raster = RenderTextLine("T", "DejaVu Sans", 22);
    ASSERT_GT(raster.Width, 0);
    ASSERT_EQ(raster.Pixels.size(), static_cast<std::size_t>(raster.Width) * raster.Height * 4);
    // 22 points at 96 dpi are an em of 29.3 pixels; a line is ascent plus descent of the font.
    EXPECT_GT(raster.Height, 29);
    EXPECT_LT(raster.Height, 44);
    EXPECT_GT(raster.Width, 10);
    EXPECT_LT(raster.Width, 29);

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
    const TInkMap map{raster};
    int barRow = 0;
    for (int y = 0; y < raster.Height; ++y)
        if (map.InkInRow(y) > map.InkInRow(barRow)) barRow = y;
    EXPECT_LT(barRow, raster.Height / 2);
    EXPECT_GT(map.InkInRow(barRow), raster.Width * 3 / 4);
    EXPECT_EQ(map.InkInRow(raster.Height - 1), 0);
    const int middle = raster.Width / 2;
    EXPECT_GT(map.InkInColumn(middle), map.InkInColumn(1) * 3);
    int stemTop = raster.Height, stemBottom = -1;
    for (int y = 0; y < raster.Height; ++y)
        if (map.Ink(middle, y)) stemTop = std::min(stemTop, y), stemBottom = std::max(stemBottom, y);
    EXPECT_LE(stemTop, barRow);
    EXPECT_GT(stemBottom - barRow, raster.Height / 3);
}

TEST(TextureLoadRaster, SizeFollowsTheMeasuredText)
{
    const TTextRaster one = RenderTextLine("T", "DejaVu Sans", 22);
    const TTextRaster two = RenderTextLine("TT", "DejaVu Sans", 22);
    EXPECT_EQ(two.Width, 2 * one.Width);
    EXPECT_EQ(two.Height, one.Height);
    const TTextRaster larger = RenderTextLine("T", "DejaVu Sans", 44);
    EXPECT_NEAR(larger.Height, 2 * one.Height, 2);

    // Non-ASCII text is read as UTF-8: one glyph, not two.
    EXPECT_EQ(RenderTextLine("\xC3\xA9", "DejaVu Sans", 22).Width, RenderTextLine("e", "DejaVu Sans", 22).Width);

    const TTextRaster empty = RenderTextLine("", "DejaVu Sans", 22);
    EXPECT_EQ(empty.Width, 0);
    EXPECT_EQ(empty.Height, one.Height);
    EXPECT_TRUE(empty.Pixels.empty());
}

TEST(TextureLoadRaster, FontsAreFoundByFamilyNameIgnoringCase)
{
    const TTextRaster exact = RenderTextLine("Tg", "DejaVu Sans", 20);
    const TTextRaster lower = RenderTextLine("Tg", "dejavu sans", 20);
    EXPECT_EQ(lower.Pixels, exact.Pixels);
    // Another family draws differently.
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
