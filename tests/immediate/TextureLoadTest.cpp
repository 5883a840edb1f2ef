// Text textures: the raster a texture is made from (a line of text, black on white, bottom row
// first, BGRA), and the entity that draws and uploads it and keeps it in XML.
#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <sstream>

#include "contracts/SysUtils.h"
#include "immediate/FontMatch.h"
#include "immediate/TextRaster.h"
#include "immediate/TextureLoadUnit.h"
#include "tests/support/GlRecorder.h"
#include "tests/support/MessageCapture.h"

namespace orvane {
namespace {

using namespace dglOpenGL;
using Texts = std::vector<std::string>;

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
        ASSERT_TRUE(p[3] == 255 && p[0] == p[1] && p[1] == p[2]) << "grey ink, alpha the fourth byte";
        black += p[0] == 0, white += p[0] == 255;
    }
    EXPECT_TRUE(black > 50 && white > black) << black << " black, " << white << " white";

    // Read top row first: the bar of the T lies above the middle, the descent below the
    // baseline is blank, and the stem stands in the middle columns.
    const auto ink = [&](int x, int yFromTop) {
        return raster.Pixels[(static_cast<std::size_t>(h - 1 - yFromTop) * w + x) * 4] < 128;
    };
    const auto inRow = [&](int y) { int n = 0; for (int x = 0; x < w; ++x) n += ink(x, y); return n; };
    const auto inColumn = [&](int x) { int n = 0; for (int y = 0; y < h; ++y) n += ink(x, y); return n; };
    int barRow = 0, stemTop = h, stemBottom = -1;
    for (int y = 0; y < h; ++y) {
        if (inRow(y) > inRow(barRow)) barRow = y;
        if (ink(w / 2, y)) stemTop = std::min(stemTop, y), stemBottom = std::max(stemBottom, y);
    }
    EXPECT_TRUE(barRow < h / 2 && inRow(barRow) > w * 3 / 4) << barRow;
    EXPECT_EQ(inRow(h - 1), 0);
    EXPECT_GT(inColumn(w / 2), inColumn(1) * 3);
    EXPECT_TRUE(stemTop <= barRow && stemBottom - barRow > h / 3) << stemTop << " to " << stemBottom;
}

TEST(TextureLoadRaster, SizeFollowsTheMeasuredTextAndFontsAreFoundByFamilyIgnoringCase)
{
    const TTextRaster one = RenderTextLine("T", "DejaVu Sans", 22);
    const TTextRaster two = RenderTextLine("TT", "DejaVu Sans", 22);
    EXPECT_TRUE(two.Width == 2 * one.Width && two.Height == one.Height);
    EXPECT_NEAR(RenderTextLine("T", "DejaVu Sans", 44).Height, 2 * one.Height, 2);
    // Non-ASCII text is read as UTF-8: one glyph, not two.
    EXPECT_EQ(RenderTextLine("\xC3\xA9", "DejaVu Sans", 22).Width, RenderTextLine("e", "DejaVu Sans", 22).Width);
    const TTextRaster empty = RenderTextLine("", "DejaVu Sans", 22);
    EXPECT_TRUE(empty.Width == 0 && empty.Height == one.Height && empty.Pixels.empty());

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
    for (const char* name : {"No Such Font Family", "DejaVu Sans-12", "DejaVu Sans:bold"})
        EXPECT_EQ(testing::Raised<Exception>([&] { RenderTextLine("T", name, 20); }), std::string("Font not found: ") + name);
    EXPECT_THROW(RenderTextLine("T", "DejaVu Sans", 0), Exception);
    EXPECT_THROW(RenderTextLine("T", "DejaVu Sans", 100000), Exception);
}

// Fakes for every entry point the entity calls; what was uploaded and deleted is kept.
struct TextureFakes {
    explicit TextureFakes(GLuint AName = 5)
    {
        Rec.Record<&glGenTextures>([AName](GLsizei, GLuint* names) { names[0] = AName; });
        Rec.RecordAll<&glBindTexture, &glTexParameteri, &glGenerateMipmap, &glGenBuffers>();  // with these set, no extensions are read
        Rec.Record<&glTexParameterfv>([this](GLenum, GLenum, const GLfloat* values) { Border.assign(values, values + 4); });
        Rec.Record<&glTexImage2D>([this](GLenum, GLint, GLint, GLsizei width, GLsizei height, GLint, GLenum, GLenum, const void* pixels) {
            Uploaded.assign(static_cast<const std::uint8_t*>(pixels), static_cast<const std::uint8_t*>(pixels) + std::size_t(width) * height * 4);
        });
        Rec.Record<&glDeleteTextures>([this](GLsizei, const GLuint* names) { Deleted.push_back(names[0]); });
    }

    testing::GlRecorder Rec;
    std::vector<GLfloat> Border;
    std::vector<std::uint8_t> Uploaded;
    std::vector<GLuint> Deleted;
};

std::string Invalid(const TTextureEntity& AEntity)
{
    return testing::Raised<Exception>([&] { AEntity.GetTextureId(); });
}

TEST(TextureLoadEntity, WithoutATextureNothingLoadsAndDestructionDeletesTheNameHeld)
{
    TextureFakes fakes;
    {
        TTextureEntity entity;
        EXPECT_FALSE(entity.TextureValid());
        EXPECT_EQ(entity.Width() + entity.Height(), 0.0);
        EXPECT_EQ(Invalid(entity), "Texture Invalid!!!");
        EXPECT_THROW(entity.TextureId(), Exception);
        entity.SetTextureId(0);
        EXPECT_EQ(Invalid(entity), "Texture Invalid!!!");
        EXPECT_FALSE(entity.LoadTexture() || entity.LoadTexture("") || entity.TextureValid());
        EXPECT_TRUE(fakes.Rec.Calls().empty());
    }
    EXPECT_EQ(fakes.Rec.Names(), (Texts{"glDeleteTextures"}));
    EXPECT_EQ(fakes.Deleted, (std::vector<GLuint>{0}));  // 0 included
}

TEST(TextureLoadEntity, LoadDrawsTheTextAtItsMeasuredSizeAndUploadsItInOrder)
{
    TextureFakes fakes(5);
    TTextureEntity entity;
    entity.AssignTextureContent("T", "DejaVu Sans");
    entity.AssignTextureAttrib(500, 2.5);
    ASSERT_TRUE(entity.LoadTexture());
    EXPECT_TRUE(entity.TextureValid() && entity.GetTextureId() == 5u);
    // Height 2.5 makes 22.5 points, which rounds to the even 22. The texture has the measured
    // size of the text, not Width, and no power of two.
    const TTextRaster expected = RenderTextLine("T", "DejaVu Sans", 22);
    ASSERT_NE(RenderTextLine("T", "DejaVu Sans", 23).Height, expected.Height);
    const std::string size = std::to_string(expected.Width) + ", " + std::to_string(expected.Height);
    EXPECT_EQ(fakes.Rec.Texts(),
              (Texts{"glGenTextures(1, ptr)", "glBindTexture(3553, 5)", "glTexParameterfv(3553, 4100, ptr)",
                     "glTexParameteri(3553, 10242, 33069)", "glTexParameteri(3553, 10243, 33069)",
                     "glTexParameteri(3553, 10241, 9729)", "glTexParameteri(3553, 10240, 9729)",
                     "glTexImage2D(3553, 0, 6408, " + size + ", 0, 32993, 5121, ptr)", "glGenerateMipmap(3553)"}));
    EXPECT_EQ(fakes.Border, (std::vector<GLfloat>{1, 1, 1, 1}));
    EXPECT_EQ(fakes.Uploaded, expected.Pixels);

    // The font size is the height plus 20, rounded half to even.
    for (const auto& [height, points] : {std::pair{0.0, 20}, {3.5, 24}, {0.5, 20}, {1.49, 21}}) {
        TTextureEntity other;
        other.AssignTextureContent("Tg", "DejaVu Sans Mono");
        other.AssignTextureAttrib(0, height);
        ASSERT_TRUE(other.LoadTexture());
        EXPECT_EQ(fakes.Uploaded, RenderTextLine("Tg", "DejaVu Sans Mono", points).Pixels) << height;
    }
}

TEST(TextureLoadEntity, AValidEntityLoadsNoMoreAndAFailedDrawingCountsAsValid)
{
    TextureFakes fakes(8);
    TTextureEntity entity;
    ASSERT_TRUE(entity.LoadTexture("T"));
    fakes.Rec.Clear();
    EXPECT_FALSE(entity.LoadTexture() || entity.LoadTexture("other"));
    EXPECT_TRUE(entity.TextureContent() == "other" && entity.GetTextureId() == 8u);

    TTextureEntity missing;
    missing.AssignTextureContent("T", "No Such Font Family");
    EXPECT_FALSE(missing.LoadTexture());
    EXPECT_TRUE(missing.TextureValid());
    EXPECT_EQ(Invalid(missing), "Texture Invalid!!!");
    EXPECT_FALSE(missing.LoadTexture());
    EXPECT_TRUE(fakes.Rec.Calls().empty());

    // An outside name makes the entity valid; it binds and is deleted with the entity.
    {
        TTextureEntity outside;
        outside.SetTextureId(42);
        EXPECT_TRUE(outside.TextureValid() && outside.TextureId() == 42u);
        EXPECT_FALSE(outside.LoadTexture("T"));
        outside.BindTexture(), outside.UnBindTexture();
    }
    EXPECT_EQ(fakes.Rec.Texts(),
              (Texts{"glBindTexture(3553, 42)", "glBindTexture(3553, 0)", "glDeleteTextures(1, ptr)"}));
    EXPECT_EQ(fakes.Deleted, (std::vector<GLuint>{42}));
}

TEST(TextureLoadEntity, XmlKeepsTextFontAndSizesInOneChildButNoTextureState)
{
    TextureFakes fakes;
    TTextureEntity written;
    const std::string text = "Dichte \xC3\xA4\xE2\x82\xAC \xE5\xAD\x97\r\nline <2> & \"q\"";
    written.AssignTextureContent("first", "DejaVu Sans");
    pugi::xml_document draft;
    written.WriteToXMLNode(draft.append_child("Part"));
    written.AssignTextureContent(text, "DejaVu Serif");
    written.AssignTextureAttrib(0.1, -1e-7);
    written.SetTextureId(17);
    written.WriteToXMLNode(draft.child("Part"));  // rewrites its child
    std::ostringstream saved;
    draft.save(saved);
    pugi::xml_document document;
    ASSERT_TRUE(document.load_string(saved.str().c_str()));
    const pugi::xml_node part = document.child("Part");
    EXPECT_EQ(std::distance(part.children().begin(), part.children().end()), 1);
    EXPECT_STREQ(part.child("TextureContent").attribute("TextureContent").value(), text.c_str());

    TTextureEntity read;
    read.AssignTextureContent("old", "old font");
    read.AssignTextureAttrib(9, 9);
    read.ReadFromXMLNode(part);
    EXPECT_TRUE(read.TextureContent() == text && read.Width() == 0.1 && read.Height() == -1e-7);
    EXPECT_EQ(Invalid(read), "Texture Invalid!!!");
    ASSERT_TRUE(read.LoadTexture("T"));  // the font came back too: it is what the entity draws with
    EXPECT_EQ(fakes.Uploaded, RenderTextLine("T", "DejaVu Serif", 20).Pixels);

    // No child: nothing changes. Missing or unreadable values: their defaults.
    read.ReadFromXMLNode(document.append_child("Empty"));
    EXPECT_TRUE(read.TextureContent() == "T" && read.Height() == -1e-7);
    pugi::xml_node sparse = document.append_child("Sparse").append_child("TextureContent");
    sparse.append_attribute("Height") = "4 mm";
    sparse.append_attribute("TextureStyle") = "DejaVu Sans Mono";
    read.ReadFromXMLNode(document.child("Sparse"));
    EXPECT_TRUE(read.TextureContent().empty() && read.Height() == 0.0 && read.Width() == 0.0);
}

}  // namespace
}  // namespace orvane
