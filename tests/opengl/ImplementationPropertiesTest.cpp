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
    std::string Extensions;               // glGetString(GL_EXTENSIONS)
    std::vector<std::string> Indexed;     // glGetStringi(GL_EXTENSIONS, i)
    std::string ClientText;               // wglGetExtensionsStringEXT
    std::string DisplayText;              // wglGetExtensionsStringARB
    std::string GluVersion;               // empty: gluGetString is nil
};

TDriver gDriver;

const GLubyte* Bytes(const std::string& text)
{
    return reinterpret_cast<const GLubyte*>(text.c_str());
}

void InstallDriver(GlRecorder& rec, TDriver driver)
{
    gDriver = std::move(driver);
    rec.Record<&glGetString>([](GLenum name) {
        return Bytes(name == GL_VERSION ? gDriver.Version : gDriver.Extensions);
    });
    rec.Record<&glGetIntegerv>([](GLenum, GLint* value) {
        *value = static_cast<GLint>(gDriver.Indexed.size());
    });
    rec.Record<&glGetStringi>([](GLenum, GLuint i) { return Bytes(gDriver.Indexed.at(i)); });
    rec.Record<&wglGetExtensionsStringEXT>([] { return gDriver.ClientText.c_str(); });
    rec.Record<&wglGetExtensionsStringARB>([](HDC) { return gDriver.DisplayText.c_str(); });
    rec.Record<&wglGetCurrentDC>();
    if (gDriver.GluVersion.empty())
        gluGetString = nullptr;
    else
        rec.Record<&gluGetString>([](GLenum) { return Bytes(gDriver.GluVersion); });
}

std::vector<std::string> TrueVersionFlags()
{
    std::vector<std::string> names;
    for (const auto& flag : VersionFlags())
        if (*flag.Value)
            names.push_back(flag.Name);
    return names;
}

class ImplementationProperties : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(InitOpenGL("libGL.so.1", "libGLU.so.1")); }

    testing::GlTableSnapshot FSnapshot;
};

TEST(VersionParser, TakesTheNumbersAroundTheFirstFullStop)
{
    const auto check = [](const char* text, int major, int minor) {
        const auto v = ParseGLVersion(text);
        EXPECT_EQ(v.Major, major) << text;
        EXPECT_EQ(v.Minor, minor) << text;
    };
    check("4.6.0 NVIDIA 512.15", 4, 6);
    check("OpenGL ES 3.2 Mesa 22.3.6", 3, 2);
    check("1.1.0", 1, 1);
    check("3.10", 3, 1);
    check("4", 0, 0);
    check("", 0, 0);
    check(".5", 0, 0);
    check("4.", 0, 0);
    check("Version 4.x", 0, 0);
    check("v12.3", 12, 3);
    check("99999999999.1", 0, 0);  // a major that does not convert
}

TEST_F(ImplementationProperties, VersionFlagsFollowTheParsedVersion)
{
    const auto flagsFor = [](const char* version) {
        GlRecorder rec;
        InstallDriver(rec, {version, "", {}, "", "", ""});
        ReadImplementationProperties();
        return TrueVersionFlags();
    };
    using V = std::vector<std::string>;
    EXPECT_EQ(flagsFor("5.0"),
              (V{"GL_VERSION_1_0", "GL_VERSION_1_1", "GL_VERSION_1_2", "GL_VERSION_1_3",
                 "GL_VERSION_1_4", "GL_VERSION_1_5", "GL_VERSION_2_0", "GL_VERSION_2_1",
                 "GL_VERSION_3_0", "GL_VERSION_3_1", "GL_VERSION_3_2", "GL_VERSION_3_3",
                 "GL_VERSION_4_0"}));
    EXPECT_EQ(flagsFor("4.6.0 NVIDIA 512.15").size(), 19u);
    EXPECT_EQ(flagsFor("3.1 Mesa").back(), "GL_VERSION_3_1");
    EXPECT_EQ(flagsFor("2.0"), (V{"GL_VERSION_1_0", "GL_VERSION_1_1", "GL_VERSION_1_2",
                                  "GL_VERSION_1_3", "GL_VERSION_1_4", "GL_VERSION_1_5",
                                  "GL_VERSION_2_0"}));
    EXPECT_EQ(flagsFor("1.3"), (V{"GL_VERSION_1_0", "GL_VERSION_1_1", "GL_VERSION_1_2",
                                  "GL_VERSION_1_3"}));
    EXPECT_EQ(flagsFor("4"), (V{"GL_VERSION_1_0"}));
    EXPECT_EQ(flagsFor(""), (V{"GL_VERSION_1_0"}));
    EXPECT_TRUE(ImplementationRead);
}

TEST_F(ImplementationProperties, GluFlagsLookAtTheMinorOnly)
{
    const auto gluFlags = [](const char* version) {
        GlRecorder rec;
        InstallDriver(rec, {"2.1", "", {}, "", "", version});
        ReadImplementationProperties();
        return std::vector<bool>{GLU_VERSION_1_1, GLU_VERSION_1_2, GLU_VERSION_1_3};
    };
    EXPECT_EQ(gluFlags("1.3"), (std::vector<bool>{true, true, true}));
    EXPECT_EQ(gluFlags("1.2 Mesa"), (std::vector<bool>{true, true, false}));
    EXPECT_EQ(gluFlags("2.0"), (std::vector<bool>{true, false, false}));
    EXPECT_EQ(gluFlags(""), (std::vector<bool>{false, false, false}));  // gluGetString nil
}

TEST_F(ImplementationProperties, ExtensionFlagsTestWholeWords)
{
    GlRecorder rec;
    InstallDriver(rec, {"2.1", "GL_ARB_multitexture_extra GL_EXT_abgr GL_NV_fence", {},
                        "EGL_EXT_platform_base", "EGL_KHR_image_base", ""});
    GL_ARB_multitexture = true;
    ReadImplementationProperties();
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

TEST_F(ImplementationProperties, FromVersion3TheListComesFromGetStringi)
{
    GlRecorder rec;
    InstallDriver(rec, {"3.3", "GL_NV_fence", {"GL_ARB_sync", "GL_KHR_debug"}, "", "", ""});
    ReadImplementationProperties();
    EXPECT_TRUE(GL_ARB_sync);
    EXPECT_TRUE(GL_KHR_debug);
    EXPECT_FALSE(GL_NV_fence);
    for (const auto& call : rec.CallsOf("glGetString"))
        EXPECT_EQ(call.Args[0], GL_VERSION);  // never GL_EXTENSIONS
    EXPECT_EQ(rec.Count("glGetStringi"), 2u);
    EXPECT_EQ(rec.CallsOf("glGetIntegerv").at(0).Args[0], GL_NUM_EXTENSIONS);
}

TEST_F(ImplementationProperties, ExtensionTextPutsEveryNameBetweenBlanks)
{
    GlRecorder rec;
    InstallDriver(rec, {"3.0", "", {"GL_A", "GL_B"}, "EGL_C", "EGL_D", ""});
    ReadImplementationProperties();
    EXPECT_EQ(ReadExtensionText(), "  GL_A GL_B EGL_C EGL_D ");
}

TEST_F(ImplementationProperties, CheckExtensionFindsAnEglOnlyNameAndReadsAnew)
{
    GlRecorder rec;
    InstallDriver(rec, {"2.1", "GL_EXT_abgr", {}, "", "EGL_KHR_surfaceless_context", ""});
    ReadImplementationProperties();
    EXPECT_TRUE(dglCheckExtension("EGL_KHR_surfaceless_context"));
    EXPECT_FALSE(dglCheckExtension("EGL_KHR_surfaceless"));
    gDriver.Extensions = "GL_EXT_bgra";  // built anew at every call
    EXPECT_TRUE(dglCheckExtension("GL_EXT_bgra"));
    EXPECT_FALSE(dglCheckExtension("GL_EXT_abgr"));
}

}  // namespace
}  // namespace orvane
