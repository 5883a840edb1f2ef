// The texture entity: when it draws and uploads, in what order, and what it keeps in XML.
#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <sstream>

#include "immediate/TextRaster.h"
#include "immediate/TextureLoadUnit.h"
#include "tests/support/GlRecorder.h"

namespace orvane {
namespace {

using namespace dglOpenGL;
using testing::GlRecorder;

// Fakes for every entry point the entity calls; what was uploaded is kept.
class TextureFakes {
public:
    explicit TextureFakes(GLuint AName = 5)
    {
        FRecorder.Record<&glGenTextures>([AName](GLsizei, GLuint* names) { names[0] = AName; });
        FRecorder.Record<&glBindTexture>();
        FRecorder.Record<&glTexParameterfv>([this](GLenum, GLenum, const GLfloat* values) {
            Border.assign(values, values + 4);
        });
        FRecorder.Record<&glTexParameteri>();
        FRecorder.Record<&glTexImage2D>([this](GLenum, GLint, GLint, GLsizei width, GLsizei height, GLint,
                                               GLenum, GLenum, const void* pixels) {
            const auto* bytes = static_cast<const std::uint8_t*>(pixels);
            Uploaded = {width, height, std::vector<std::uint8_t>(bytes, bytes + std::size_t(width) * height * 4)};
        });
        FRecorder.Record<&glGenerateMipmap>();
        FRecorder.Record<&glGenBuffers>();  // with glGenerateMipmap set, no extensions are read
        FRecorder.Record<&glDeleteTextures>([this](GLsizei, const GLuint* names) { Deleted.push_back(names[0]); });
    }

    GlRecorder& Recorder() { return FRecorder; }

    std::vector<GLfloat> Border;
    TTextRaster Uploaded;
    std::vector<GLuint> Deleted;

private:
    GlRecorder FRecorder;
};

std::string Message(const TTextureEntity& AEntity)
{
    try {
        AEntity.GetTextureId();
    } catch (const Exception& e) {
        return e.Message();
    }
    return "no exception";
}

TEST(TextureLoadEntity, NewEntityHasNoTextureAndEmptyContentLoadsNothing)
{
    TextureFakes fakes;
    {
        TTextureEntity entity;
        EXPECT_FALSE(entity.TextureValid());
        EXPECT_EQ(entity.Width(), 0.0);
        EXPECT_EQ(entity.Height(), 0.0);
        EXPECT_EQ(Message(entity), "Texture Invalid!!!");
        EXPECT_THROW(entity.TextureId(), Exception);
        entity.SetTextureId(0);
        EXPECT_EQ(Message(entity), "Texture Invalid!!!");

        EXPECT_FALSE(entity.LoadTexture());
        EXPECT_FALSE(entity.LoadTexture(""));
        EXPECT_FALSE(entity.TextureValid());
        EXPECT_TRUE(fakes.Recorder().Calls().empty());
    }
    // Destruction deletes whatever name the entity holds, 0 included.
    EXPECT_EQ(fakes.Recorder().Names(), (std::vector<std::string>{"glDeleteTextures"}));
    EXPECT_EQ(fakes.Deleted, (std::vector<GLuint>{0}));
}

TEST(TextureLoadEntity, LoadDrawsTheTextAndUploadsItInOrder)
{
    TextureFakes fakes(5);
    TTextureEntity entity;
    entity.AssignTextureContent("T", "DejaVu Sans");
    entity.AssignTextureAttrib(500, 2.5);
    ASSERT_TRUE(entity.LoadTexture());
    EXPECT_TRUE(entity.TextureValid());
    EXPECT_EQ(entity.GetTextureId(), 5u);

    EXPECT_EQ(fakes.Recorder().Names(),
              (std::vector<std::string>{"glGenTextures", "glBindTexture", "glTexParameterfv", "glTexParameteri",
                                        "glTexParameteri", "glTexParameteri", "glTexParameteri", "glTexImage2D",
                                        "glGenerateMipmap"}));
    const std::vector<testing::GlCall>& calls = fakes.Recorder().Calls();
    EXPECT_EQ(calls[1].Text(), "glBindTexture(3553, 5)");
    EXPECT_EQ(calls[2].Args[1], GL_TEXTURE_BORDER_COLOR);
    EXPECT_EQ(fakes.Border, (std::vector<GLfloat>{1, 1, 1, 1}));
    const auto parameter = [&](int i) { return std::vector<double>(calls[i].Args.begin() + 1, calls[i].Args.end()); };
    EXPECT_EQ(parameter(3), (std::vector<double>{GL_TEXTURE_WRAP_S, GL_CLAMP_TO_BORDER}));
    EXPECT_EQ(parameter(4), (std::vector<double>{GL_TEXTURE_WRAP_T, GL_CLAMP_TO_BORDER}));
    EXPECT_EQ(parameter(5), (std::vector<double>{GL_TEXTURE_MIN_FILTER, GL_LINEAR}));
    EXPECT_EQ(parameter(6), (std::vector<double>{GL_TEXTURE_MAG_FILTER, GL_LINEAR}));
    const std::vector<double>& image = calls[7].Args;
    EXPECT_EQ(image[0], GL_TEXTURE_2D);
    EXPECT_EQ(image[1], 0);
    EXPECT_EQ(image[2], GL_RGBA);
    EXPECT_EQ(image[5], 0);
    EXPECT_EQ(image[6], GL_BGRA);
    EXPECT_EQ(image[7], GL_UNSIGNED_BYTE);
    EXPECT_EQ(calls[8].Text(), "glGenerateMipmap(3553)");

    // Height 2.5 makes 22.5 points, which rounds to the even 22. The texture has the measured
    // size of the text, not Width, and no power of two.
    const TTextRaster expected = RenderTextLine("T", "DejaVu Sans", 22);
    ASSERT_NE(RenderTextLine("T", "DejaVu Sans", 23).Height, expected.Height);
    EXPECT_EQ(image[3], expected.Width);
    EXPECT_EQ(image[4], expected.Height);
    EXPECT_EQ(fakes.Uploaded.Pixels, expected.Pixels);
}

TEST(TextureLoadEntity, FontSizeIsHeightPlusTwentyRoundedHalfToEven)
{
    for (const auto& [height, points] : {std::pair{0.0, 20}, std::pair{2.5, 22}, std::pair{3.5, 24},
                                         std::pair{0.5, 20}, std::pair{1.49, 21}}) {
        TextureFakes fakes;
        TTextureEntity entity;
        entity.AssignTextureContent("Tg", "DejaVu Sans Mono");
        entity.AssignTextureAttrib(0, height);
        ASSERT_TRUE(entity.LoadTexture());
        EXPECT_EQ(fakes.Uploaded.Pixels, RenderTextLine("Tg", "DejaVu Sans Mono", points).Pixels) << height;
    }
}

TEST(TextureLoadEntity, ValidEntityLoadsNoMoreAndAFailedDrawingCountsAsValid)
{
    TextureFakes fakes(8);
    TTextureEntity entity;
    ASSERT_TRUE(entity.LoadTexture("T"));
    fakes.Recorder().Clear();
    EXPECT_FALSE(entity.LoadTexture());
    EXPECT_FALSE(entity.LoadTexture("other"));
    EXPECT_EQ(entity.TextureContent(), "other");
    EXPECT_EQ(entity.GetTextureId(), 8u);
    EXPECT_TRUE(fakes.Recorder().Calls().empty());

    TTextureEntity missing;
    missing.AssignTextureContent("T", "No Such Font Family");
    EXPECT_FALSE(missing.LoadTexture());
    EXPECT_TRUE(missing.TextureValid());
    EXPECT_EQ(Message(missing), "Texture Invalid!!!");
    EXPECT_FALSE(missing.LoadTexture());
    EXPECT_EQ(fakes.Recorder().Count("glGenTextures"), 0u);

    // An outside name makes the entity valid and is deleted with it.
    {
        TTextureEntity outside;
        outside.SetTextureId(42);
        EXPECT_TRUE(outside.TextureValid());
        EXPECT_EQ(outside.TextureId(), 42u);
        EXPECT_FALSE(outside.LoadTexture("T"));
    }
    EXPECT_EQ(fakes.Deleted, (std::vector<GLuint>{42}));
}

TEST(TextureLoadEntity, BindAndUnbind)
{
    TextureFakes fakes;
    TTextureEntity entity;
    entity.SetTextureId(3);
    entity.BindTexture();
    entity.UnBindTexture();
    EXPECT_EQ(fakes.Recorder().Texts(),
              (std::vector<std::string>{"glBindTexture(3553, 3)", "glBindTexture(3553, 0)"}));
}

// Writes the entity under a root element, serialises the document and parses it again.
pugi::xml_document RoundTrip(const TTextureEntity& AEntity)
{
    pugi::xml_document document;
    AEntity.WriteToXMLNode(document.append_child("Part"));
    std::ostringstream text;
    document.save(text);
    pugi::xml_document parsed;
    EXPECT_TRUE(parsed.load_string(text.str().c_str()));
    return parsed;
}

TEST(TextureLoadEntity, XmlKeepsTextFontAndSizesButNoTextureState)
{
    TextureFakes fakes;
    TTextureEntity written;
    const std::string text = "Dichte \xC3\xA4\xE2\x82\xAC \xE5\xAD\x97\r\nline <2> & \"q\"";
    written.AssignTextureContent(text, "DejaVu Serif");
    written.AssignTextureAttrib(0.1, -1e-7);
    written.SetTextureId(17);

    const pugi::xml_document document = RoundTrip(written);
    const pugi::xml_node child = document.child("Part").child("TextureContent");
    ASSERT_TRUE(child);
    EXPECT_STREQ(child.attribute("TextureContent").value(), text.c_str());

    TTextureEntity read;
    read.ReadFromXMLNode(document.child("Part"));
    EXPECT_EQ(read.TextureContent(), text);
    EXPECT_EQ(read.Width(), 0.1);
    EXPECT_EQ(read.Height(), -1e-7);
    EXPECT_FALSE(read.TextureValid());
    EXPECT_EQ(Message(read), "Texture Invalid!!!");

    // The font name came back too: it is what the entity draws with.
    ASSERT_TRUE(read.LoadTexture("T"));
    EXPECT_EQ(fakes.Uploaded.Pixels, RenderTextLine("T", "DejaVu Serif", 20).Pixels);
}

TEST(TextureLoadEntity, XmlRewritesItsChildAndReadsDefaultsForMissingValues)
{
    pugi::xml_document document;
    pugi::xml_node part = document.append_child("Part");
    TTextureEntity entity;
    entity.AssignTextureContent("first", "DejaVu Sans");
    entity.AssignTextureAttrib(3, 4);
    entity.WriteToXMLNode(part);
    entity.AssignTextureContent("second", "");
    entity.AssignTextureAttrib(0, 4);
    entity.WriteToXMLNode(part);
    EXPECT_EQ(std::distance(part.children("TextureContent").begin(), part.children("TextureContent").end()), 1);

    TTextureEntity read;
    read.AssignTextureContent("old", "old font");
    read.AssignTextureAttrib(9, 9);
    read.ReadFromXMLNode(part);
    EXPECT_EQ(read.TextureContent(), "second");
    EXPECT_EQ(read.Width(), 0.0);
    EXPECT_EQ(read.Height(), 4.0);

    // No child: nothing changes. Missing or unreadable values: their defaults.
    read.ReadFromXMLNode(document.append_child("Empty"));
    EXPECT_EQ(read.TextureContent(), "second");
    EXPECT_EQ(read.Height(), 4.0);
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
