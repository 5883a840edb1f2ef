// The texture entity: when it draws and uploads, in what order, and what it keeps in XML.
#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <sstream>

#include "immediate/TextRaster.h"
#include "immediate/TextureLoadUnit.h"
#include "tests/support/GlRecorder.h"
#include "tests/support/MessageCapture.h"

namespace orvane {
namespace {

using namespace dglOpenGL;
using Texts = std::vector<std::string>;

// Fakes for every entry point the entity calls; what was uploaded and deleted is kept.
struct TextureFakes {
    explicit TextureFakes(GLuint AName = 5)
    {
        Rec.Record<&glGenTextures>([AName](GLsizei, GLuint* names) { names[0] = AName; });
        Rec.Record<&glBindTexture>();
        Rec.Record<&glTexParameterfv>([this](GLenum, GLenum, const GLfloat* values) { Border.assign(values, values + 4); });
        Rec.Record<&glTexParameteri>();
        Rec.Record<&glTexImage2D>([this](GLenum, GLint, GLint, GLsizei width, GLsizei height, GLint, GLenum, GLenum,
                                         const void* pixels) {
            const auto* bytes = static_cast<const std::uint8_t*>(pixels);
            Uploaded.assign(bytes, bytes + std::size_t(width) * height * 4);
        });
        Rec.Record<&glGenerateMipmap>();
        Rec.Record<&glGenBuffers>();  // with glGenerateMipmap set, no extensions are read
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
        EXPECT_FALSE(entity.LoadTexture());
        EXPECT_FALSE(entity.LoadTexture(""));
        EXPECT_FALSE(entity.TextureValid());
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
    EXPECT_TRUE(entity.TextureValid());
    EXPECT_EQ(entity.GetTextureId(), 5u);
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
    EXPECT_FALSE(entity.LoadTexture());
    EXPECT_FALSE(entity.LoadTexture("other"));
    EXPECT_EQ(entity.TextureContent(), "other");
    EXPECT_EQ(entity.GetTextureId(), 8u);

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
        EXPECT_TRUE(outside.TextureValid());
        EXPECT_EQ(outside.TextureId(), 42u);
        EXPECT_FALSE(outside.LoadTexture("T"));
        outside.BindTexture();
        outside.UnBindTexture();
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
    EXPECT_EQ(read.TextureContent(), text);
    EXPECT_EQ(read.Width(), 0.1);
    EXPECT_EQ(read.Height(), -1e-7);
    EXPECT_EQ(Invalid(read), "Texture Invalid!!!");
    ASSERT_TRUE(read.LoadTexture("T"));  // the font came back too: it is what the entity draws with
    EXPECT_EQ(fakes.Uploaded, RenderTextLine("T", "DejaVu Serif", 20).Pixels);

    // No child: nothing changes. Missing or unreadable values: their defaults.
    read.ReadFromXMLNode(document.append_child("Empty"));
    EXPECT_EQ(read.TextureContent(), "T");
    EXPECT_EQ(read.Height(), -1e-7);
    pugi::xml_node sparse = document.append_child("Sparse").append_child("TextureContent");
    sparse.append_attribute("Height") = "4 mm";
    sparse.append_attribute("TextureStyle") = "DejaVu Sans Mono";
    read.ReadFromXMLNode(document.child("Sparse"));
    EXPECT_EQ(read.TextureContent(), "");
    EXPECT_EQ(read.Height(), 0.0);
    EXPECT_EQ(read.Width(), 0.0);
}

}  // namespace
}  // namespace orvane
