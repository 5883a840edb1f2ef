// The version parser, the version and extension flags and the extension text, read from a
// driver faked through the entry-point variables.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "opengl/dglOpenGL.h"
#include "tests/support/GlRecorder.h"
#include "tests/support/GlTableSnapshot.h"

namespace orvane {
namespace {

using namespace dglOpenGL;
using testing::GlRecorder;

// What the faked driver answers.
struct TDriver {
    std::string Version;
    std::string Extensions;            // glGetString(GL_EXTENSIONS)
    std::vector<std::string> Indexed;  // glGetStringi(GL_EXTENSIONS, i)
    std::string ClientText;            // wglGetExtensionsStringEXT
    std::string DisplayText;           // wglGetExtensionsStringARB
    std::string GluVersion;            // empty: gluGetString is nil
};

TDriver gDriver;

const GLubyte* Bytes(const std::string& text) { return reinterpret_cast<const GLubyte*>(text.c_str()); }

// Installs the driver and reads the properties from it.
void Read(GlRecorder& rec, TDriver driver)
{
    gDriver = std::move(driver);
    rec.Record<&glGetString>([](GLenum name) { return Bytes(name == GL_VERSION ? gDriver.Version : gDriver.Extensions); });
    rec.Record<&glGetIntegerv>([](GLenum, GLint* value) { *value = static_cast<GLint>(gDriver.Indexed.size()); });
    rec.Record<&glGetStringi>([](GLenum, GLuint i) { return Bytes(gDriver.Indexed.at(i)); });
    rec.Record<&wglGetExtensionsStringEXT>([] { return gDriver.ClientText.c_str(); });
    rec.Record<&wglGetExtensionsStringARB>([](HDC) { return gDriver.DisplayText.c_str(); });
    rec.Record<&wglGetCurrentDC>();
    if (gDriver.GluVersion.empty())
        gluGetString = nullptr;
    else
        rec.Record<&gluGetString>([](GLenum) { return Bytes(gDriver.GluVersion); });
    ReadImplementationProperties();
}

class ImplementationProperties : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(InitOpenGL("libGL.so.1", "libGLU.so.1")); }

    testing::GlTableSnapshot FSnapshot;
};

TEST(VersionParser, TakesTheNumbersAroundTheFirstFullStop)
{
    const struct { const char* Text; int Major, Minor; } cases[] = {
        {"4.6.0 NVIDIA 512.15", 4, 6}, {"OpenGL ES 3.2 Mesa 22.3.6", 3, 2}, {"1.1.0", 1, 1}, {"3.10", 3, 1},
        {"v12.3", 12, 3}, {"4", 0, 0}, {"", 0, 0}, {".5", 0, 0}, {"4.", 0, 0}, {"Version 4.x", 0, 0},
        {"99999999999.1", 0, 0}};  // a major that does not convert
    for (const auto& c : cases) {
        const auto v = ParseGLVersion(c.Text);
        EXPECT_EQ(v.Major * 100 + v.Minor, c.Major * 100 + c.Minor) << c.Text;
    }
}

TEST_F(ImplementationProperties, VersionFlagsAreThePrefixUpToTheParsedVersionGluFlagsLookAtTheMinorOnly)
{
    // The GL flags that are true, as many as given and ending with the one named; GLU 1.1 to 1.3.
    const struct { const char* Version; std::size_t Count; const char* Last; const char* Glu; std::vector<bool> GluFlags; }
        cases[] = {{"5.0", 13, "GL_VERSION_4_0", "1.3", {true, true, true}},
                   {"4.6.0 NVIDIA 512.15", 19, "GL_VERSION_4_6", "1.2 Mesa", {true, true, false}},
                   {"3.1 Mesa", 10, "GL_VERSION_3_1", "2.0", {true, false, false}},
                   {"2.0", 7, "GL_VERSION_2_0", "", {false, false, false}},  // gluGetString nil
                   {"1.3", 4, "GL_VERSION_1_3", "1.3", {true, true, true}},
                   {"4", 1, "GL_VERSION_1_0", "1.3", {true, true, true}},
                   {"", 1, "GL_VERSION_1_0", "1.3", {true, true, true}}};
    const auto flags = VersionFlags();
    for (const auto& c : cases) {
        GlRecorder rec;
        Read(rec, {c.Version, "", {}, "", "", c.Glu});
        ASSERT_STREQ(flags[c.Count - 1].Name, c.Last);
        for (std::size_t i = 0; i < flags.size(); ++i)
            EXPECT_EQ(*flags[i].Value, i < c.Count) << c.Version << ": " << flags[i].Name;
        EXPECT_EQ((std::vector<bool>{GLU_VERSION_1_1, GLU_VERSION_1_2, GLU_VERSION_1_3}), c.GluFlags) << c.Glu;
    }
    EXPECT_TRUE(ImplementationRead);
}

TEST_F(ImplementationProperties, ExtensionFlagsTestWholeWordsOfGlAndEgl)
{
    GlRecorder rec;
    GL_ARB_multitexture = true;
    Read(rec, {"2.1", "GL_ARB_multitexture_extra GL_EXT_abgr GL_NV_fence", {}, "EGL_EXT_platform_base",
               "EGL_KHR_image_base", ""});
    EXPECT_FALSE(GL_ARB_multitexture);  // only a longer name begins with it
    EXPECT_TRUE(GL_EXT_abgr);            // first word
    EXPECT_TRUE(GL_NV_fence);            // last word of the GL text
    EXPECT_TRUE(EGL_EXT_platform_base);  // client extensions of EGL
    EXPECT_TRUE(EGL_KHR_image_base);     // display extensions of EGL
    EXPECT_FALSE(GL_ARB_vertex_array_object);
    EXPECT_TRUE(ExtensionInText(" a b ", "a"));
    EXPECT_FALSE(ExtensionInText(" ab ", "a"));
    EXPECT_FALSE(ExtensionInText("a", "a"));  // no blank around it
}

TEST_F(ImplementationProperties, FromVersion3TheListComesFromGetStringiIntoTheText)
{
    GlRecorder rec;
    Read(rec, {"3.3", "GL_NV_fence", {"GL_ARB_sync", "GL_KHR_debug"}, "EGL_C", "EGL_KHR_surfaceless_context", ""});
    EXPECT_TRUE(GL_ARB_sync);
    EXPECT_TRUE(GL_KHR_debug);
    EXPECT_FALSE(GL_NV_fence);
    for (const auto& call : rec.CallsOf("glGetString"))
        EXPECT_EQ(call.Args[0], GL_VERSION);  // never GL_EXTENSIONS
    EXPECT_EQ(rec.Count("glGetStringi"), 2u);
    EXPECT_EQ(rec.CallsOf("glGetIntegerv").at(0).Args[0], GL_NUM_EXTENSIONS);
    EXPECT_EQ(ReadExtensionText(), "  GL_ARB_sync GL_KHR_debug EGL_C EGL_KHR_surfaceless_context ");
}

TEST_F(ImplementationProperties, CheckExtensionFindsAnEglOnlyNameAndReadsAnew)
{
    GlRecorder rec;
    Read(rec, {"2.1", "GL_EXT_abgr", {}, "", "EGL_KHR_surfaceless_context", ""});
    EXPECT_TRUE(dglCheckExtension("EGL_KHR_surfaceless_context"));
    EXPECT_FALSE(dglCheckExtension("EGL_KHR_surfaceless"));
    gDriver.Extensions = "GL_EXT_bgra";  // built anew at every call
    EXPECT_TRUE(dglCheckExtension("GL_EXT_bgra"));
    EXPECT_FALSE(dglCheckExtension("GL_EXT_abgr"));
}

}  // namespace
}  // namespace orvane
