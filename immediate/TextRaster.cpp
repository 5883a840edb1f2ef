#include "immediate/TextRaster.h"

#include <ft2build.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <climits>
#include <cmath>
#include <memory>

#include "contracts/SysUtils.h"
#include "immediate/FontMatch.h"

namespace orvane {

namespace {

struct LibraryDeleter {
    void operator()(FT_Library ALibrary) const { FT_Done_FreeType(ALibrary); }
};
struct FaceDeleter {
    void operator()(FT_Face AFace) const { FT_Done_Face(AFace); }
};
using TLibraryPtr = std::unique_ptr<FT_LibraryRec_, LibraryDeleter>;
using TFacePtr = std::unique_ptr<FT_FaceRec_, FaceDeleter>;

// Decodes UTF-8; a malformed sequence becomes U+FFFD and decoding goes on after its first byte.
std::vector<char32_t> CodePoints(const std::string& AText)
{
    std::vector<char32_t> result;
    const auto* s = reinterpret_cast<const unsigned char*>(AText.data());
    const std::size_t n = AText.size();
    for (std::size_t i = 0; i < n;) {
        const unsigned char lead = s[i];
        const int extra = lead < 0x80 ? 0 : (lead >> 5) == 0x6 ? 1 : (lead >> 4) == 0xE ? 2 : (lead >> 3) == 0x1E ? 3 : -1;
        char32_t cp = extra == 0 ? lead : extra == 1 ? (lead & 0x1F) : extra == 2 ? (lead & 0x0F) : (lead & 0x07);
        bool valid = extra >= 0 && i + static_cast<std::size_t>(extra) < n;
        for (int k = 1; valid && k <= extra; ++k) {
            valid = (s[i + k] & 0xC0) == 0x80;
            cp = (cp << 6) | (s[i + k] & 0x3F);
        }
        result.push_back(valid ? cp : U'\uFFFD');
        i += valid ? static_cast<std::size_t>(extra) + 1 : 1;
    }
    return result;
}

TFacePtr OpenFace(FT_Library ALibrary, const std::string& AFontName, int APointSize)
{
    const TFontFile file = FindFontFile(AFontName, APointSize);
    FT_Face face = nullptr;
    if (FT_New_Face(ALibrary, file.Path.c_str(), file.FaceIndex, &face) != 0)
        throw Exception("Cannot open font file " + file.Path);
    TFacePtr owned(face);
    if (FT_Set_Char_Size(face, 0, static_cast<FT_F26Dot6>(APointSize) * 64, kTextDpi, kTextDpi) != 0)
        throw Exception("Font " + AFontName + " has no size " + std::to_string(APointSize));
    return owned;
}

void LoadGlyph(FT_Face AFace, char32_t ACodePoint, FT_Int32 AFlags)
{
    if (FT_Load_Char(AFace, ACodePoint, AFlags) != 0) throw Exception("Cannot load a glyph");
}

// The coverage 0..255 of one pixel of a rendered glyph bitmap.
int Coverage(const FT_Bitmap& ABitmap, unsigned AColumn, unsigned ARow)
{
    const unsigned char* row = ABitmap.buffer + static_cast<std::ptrdiff_t>(ARow) * ABitmap.pitch;
    if (ABitmap.pixel_mode == FT_PIXEL_MODE_MONO) return (row[AColumn / 8] & (0x80 >> (AColumn % 8))) ? 255 : 0;
    return row[AColumn];
}

// Grey levels, top row first: 255 white, 0 full ink.
class TGreyCanvas {
public:
    TGreyCanvas(int AWidth, int AHeight)
        : FWidth(AWidth), FHeight(AHeight), FGrey(static_cast<std::size_t>(AWidth) * AHeight, 255) {}

    // Darkens by the glyph's coverage with its top-left pixel at (ALeft, ATop); clipped.
    void Ink(const FT_Bitmap& ABitmap, int ALeft, int ATop)
    {
        if (ABitmap.pixel_mode != FT_PIXEL_MODE_GRAY && ABitmap.pixel_mode != FT_PIXEL_MODE_MONO)
            throw Exception("Unsupported glyph bitmap");
        for (unsigned r = 0; r < ABitmap.rows; ++r)
            for (unsigned c = 0; c < ABitmap.width; ++c) {
                const int x = ALeft + static_cast<int>(c);
                const int y = ATop + static_cast<int>(r);
                if (x < 0 || y < 0 || x >= FWidth || y >= FHeight) continue;
                std::uint8_t& pixel = FGrey[static_cast<std::size_t>(y) * FWidth + x];
                pixel = static_cast<std::uint8_t>(std::min<int>(pixel, 255 - Coverage(ABitmap, c, r)));
            }
    }

    TTextRaster BottomUpBgra() const
    {
        TTextRaster raster{FWidth, FHeight, {}};
        raster.Pixels.reserve(FGrey.size() * 4);
        for (int y = FHeight - 1; y >= 0; --y)
            for (int x = 0; x < FWidth; ++x) {
                const std::uint8_t grey = FGrey[static_cast<std::size_t>(y) * FWidth + x];
                raster.Pixels.insert(raster.Pixels.end(), {grey, grey, grey, 255});
            }
        return raster;
    }

private:
    int FWidth;
    int FHeight;
    std::vector<std::uint8_t> FGrey;
};

int CheckedSide(FT_Pos A26Dot6)
{
    const FT_Pos pixels = (A26Dot6 + 63) / 64;
    if (pixels > kMaxTextRasterSide) throw Exception("Text raster too large");
    return static_cast<int>(pixels);
}

}  // namespace

int TextureFontSize(double AHeight)
{
    // nearbyint rounds in the current mode, which is to nearest with ties to even.
    const double size = std::nearbyint(AHeight + 20.0);
    if (!(size >= INT_MIN && size <= INT_MAX)) return 0;
    return static_cast<int>(size);
}

TTextRaster RenderTextLine(const std::string& AText, const std::string& AFontName, int APointSize)
{
    if (APointSize < 1) throw Exception("Font size below 1 point");
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0) throw Exception("Cannot start FreeType");
    const TLibraryPtr ownedLibrary(library);
    const TFacePtr face = OpenFace(library, AFontName, APointSize);

    const std::vector<char32_t> text = CodePoints(AText);
    FT_Pos advance = 0;
    for (char32_t cp : text) {
        LoadGlyph(face.get(), cp, FT_LOAD_DEFAULT);
        advance += face->glyph->advance.x;
        CheckedSide(advance);
    }
    const FT_Size_Metrics& metrics = face->size->metrics;
    TGreyCanvas canvas(CheckedSide(advance), CheckedSide(metrics.ascender - metrics.descender));

    const int baseline = static_cast<int>((metrics.ascender + 63) / 64);
    FT_Pos pen = 0;
    for (char32_t cp : text) {
        LoadGlyph(face.get(), cp, FT_LOAD_RENDER);
        const FT_GlyphSlot glyph = face->glyph;
        canvas.Ink(glyph->bitmap, static_cast<int>(pen / 64) + glyph->bitmap_left, baseline - glyph->bitmap_top);
        pen += glyph->advance.x;
    }
    return canvas.BottomUpBgra();
}

}  // namespace orvane
