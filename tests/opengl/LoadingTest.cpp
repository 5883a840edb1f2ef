// Loading OpenGL and GLU: the libraries, the legacy units, which entry points a context gets,
// the unit start, the hand-written GLU function types; the version parser, the version and
// extension flags and the extension text, read from a driver faked through the entry points.
#include <gtest/gtest.h>

#include <cxxabi.h>
#include <dlfcn.h>
#include <fenv.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <typeinfo>
#include <vector>

#include "opengl/GL.h"
#include "opengl/GLu.h"
#include "opengl/GlRegistry.h"
#include "opengl/Platform.h"
#include "opengl/dglOpenGL.h"
#include "tests/opengl/GluNames.h"
#include "tests/support/GlRecorder.h"
#include "tests/support/GlTableSnapshot.h"
#include "tests/support/MessageCapture.h"
#include "tests/support/OffscreenGL.h"

namespace orvane {
namespace {

using namespace dglOpenGL;
namespace registry = dglOpenGL::registry;
using testing::GlRecorder;
using testing::GlTableSnapshot;
using testing::Raised;

// How many of the variables of a table are set.
int CountSet(const auto& table)
{
    return static_cast<int>(std::count_if(table.begin(), table.end(), [](const auto& s) { return registry::SlotValue(s.Slot); }));
}

// The tables saved and the libraries loaded for the length of a test.
class LoadedGL : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(InitOpenGL("libGL.so.1", "libGLU.so.1")); }

    GlTableSnapshot FSnapshot;
};

TEST(LegacyUnits, GLAndGLuLoadTheirNamesAndClearThemOnFailureOrFree)
{
    GlTableSnapshot snapshot;
    const auto gl = GL::EntryPoints();  // the functions of OpenGL 1.1
    const auto glu = GLu::EntryPoints();
    ASSERT_EQ(gl.size(), 336u);
    ASSERT_EQ(glu.size(), 52u);

    GL::LoadOpenGL("libGL.so.1");
    EXPECT_EQ(CountSet(gl), 336);
    EXPECT_EQ(GL::ChoosePixelFormat, &orvane::ChoosePixelFormat);  // libGL has none: the platform's stands in
    GLu::LoadGLu("libGLU.so.1");
    EXPECT_EQ(CountSet(glu), 51);  // all but the Windows-only gluErrorUnicodeStringEXT
    EXPECT_EQ(GLu::gluErrorUnicodeStringEXT, nullptr);

    // A second load frees the first before it loads: a failing one leaves everything nil.
    EXPECT_EQ(Raised([] { GL::LoadOpenGL("libNoSuchGL.so.1"); }), "Could not load OpenGL from libNoSuchGL.so.1");
    EXPECT_EQ(CountSet(gl), 0);
    EXPECT_EQ(GL::ChoosePixelFormat, nullptr);
    EXPECT_EQ(Raised([] { GLu::LoadGLu("glu32.dll"); }), "Could not load GLu from glu32.dll");
    EXPECT_EQ(CountSet(glu), 0);

    StartUnit_GL();
    StartUnit_GLu();
    EXPECT_NE(GL::glBegin, nullptr);
    EXPECT_NE(GLu::gluNurbsSurface, nullptr);
    StopUnit_GLu();
    StopUnit_GL();
    EXPECT_EQ(CountSet(gl) + CountSet(glu), 0);
    EXPECT_EQ(GL::ChoosePixelFormat, nullptr);
}

TEST(InitOpenGL, FillsTheWglNamesFromThePlatformAndGluFromItsLibrary)
{
    GlTableSnapshot snapshot;
    bool loaded = true;
    EXPECT_NO_THROW(loaded = InitOpenGL("libNoSuchGL.so.1", "libNoSuchGLU.so.1"));
    EXPECT_FALSE(loaded);
    EXPECT_EQ(GL_LibHandle, nullptr);
    EXPECT_EQ(GLU_LibHandle, nullptr);

    registry::SetSlot(&dglOpenGL::wglShareLists, reinterpret_cast<void*>(&orvane::wglDeleteContext));
    ASSERT_TRUE(InitOpenGL("libGL.so.1", "libGLU.so.1"));
    EXPECT_EQ(dglOpenGL::wglMakeCurrent, &orvane::wglMakeCurrent);
    EXPECT_EQ(dglOpenGL::wglGetCurrentDC, &orvane::wglGetCurrentDC);
    EXPECT_EQ(dglOpenGL::wglCreateContext, &orvane::wglCreateContext);
    EXPECT_EQ(dglOpenGL::wglGetProcAddress, &orvane::wglGetProcAddress);
    EXPECT_EQ(dglOpenGL::wglShareLists, nullptr);  // no EGL meaning: nil, also over an earlier value
    EXPECT_EQ(dglOpenGL::wglUseFontBitmaps, nullptr);
    for (void* nurbs : {reinterpret_cast<void*>(gluNewNurbsRenderer), reinterpret_cast<void*>(gluNurbsProperty),
                        reinterpret_cast<void*>(gluNurbsCallback), reinterpret_cast<void*>(gluNurbsSurface),
                        reinterpret_cast<void*>(gluBeginTrim), reinterpret_cast<void*>(gluPwlCurve),
                        reinterpret_cast<void*>(gluNurbsCurve), reinterpret_cast<void*>(gluEndTrim)})
        EXPECT_NE(nurbs, nullptr);
    EXPECT_EQ(gluErrorUnicodeStringEXT, nullptr);  // a Windows-only name
    // Names outside the registry come from the library as they are.
    EXPECT_NE(dglGetProcAddress("gluNurbsSurface", GLU_LibHandle), nullptr);
    EXPECT_EQ(dglGetProcAddress("gluNoSuchFunction", GLU_LibHandle), nullptr);
    EXPECT_EQ(dglGetProcAddress("wglCreateContextAttribsARB"), reinterpret_cast<void*>(&orvane::wglCreateContextAttribsARB));
}

TEST_F(LoadedGL, WithoutAContextOnlyOpenGL11ThenTheContextsVersionAfterActivation)
{
    ASSERT_EQ(wglGetCurrentContext(), nullptr);
    // The library has glDrawRangeElements of OpenGL 1.2, but without a context it is not given.
    ASSERT_NE(dlsym(GL_LibHandle, "glDrawRangeElements"), nullptr);
    EXPECT_EQ(dglGetProcAddress("glDrawRangeElements"), nullptr);
    ReadExtensions();
    EXPECT_EQ(CountSet(registry::GLCommands()), 336);
    const auto later = [] {
        return std::vector<bool>{glGenBuffers != nullptr, glGenVertexArrays != nullptr, glCreateShader != nullptr,
                                 glUniformMatrix4fv != nullptr, glGenerateMipmap != nullptr, glDrawRangeElements != nullptr};
    };
    EXPECT_EQ(later(), std::vector<bool>(6, false));

    TOffscreenDC dc(8, 8);
    HGLRC rc = CreateRenderingContextVersion(dc.Handle(), {}, 3, 3, false, 32, 24, 8, 0, 0, 0);
    ASSERT_NE(rc, nullptr);
    EXPECT_EQ(glGenBuffers, nullptr);  // created, not activated
    ActivateRenderingContext(dc.Handle(), rc, true);
    EXPECT_EQ(wglGetCurrentContext(), rc);
    EXPECT_TRUE(ImplementationRead && ExtensionsRead && GL_VERSION_3_3);
    GLint major = 0, minor = 0, profile = 0;
    glGetIntegerv(GL_MAJOR_VERSION, &major);
    glGetIntegerv(GL_MINOR_VERSION, &minor);
    glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &profile);
    EXPECT_GE(major * 10 + minor, 33);
    EXPECT_TRUE(static_cast<GLuint>(profile) & GL_CONTEXT_COMPATIBILITY_PROFILE_BIT);
    EXPECT_EQ(later(), std::vector<bool>(6, true));
    EXPECT_EQ(DeactivateRenderingContext(), 1);
    EXPECT_EQ(DestroyRenderingContext(rc), 1);
}

TEST_F(LoadedGL, InAContextEveryNameTheLibraryGivesIsTakenWhateverTheVersionOrProfile)
{
    TOffscreenDC dc(4, 4);
    HGLRC rc = CreateRenderingContextVersion(dc.Handle(), {}, 3, 3, true, 32, 24, 8, 0, 0, 0);
    ActivateRenderingContext(dc.Handle(), rc, true);
    GLint profile = 0;
    glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &profile);
    ASSERT_EQ(static_cast<GLuint>(profile), GL_CONTEXT_CORE_PROFILE_BIT);
    // What the core profile removed is still there for the mesh drawing to call.
    EXPECT_TRUE(glBegin && glMatrixMode && glPushMatrix && glMultMatrixf && glInterleavedArrays);
    std::vector<std::string> missing;
    for (const auto& command : registry::GLCommands())
        if (dlsym(GL_LibHandle, command.Name) && !registry::SlotValue(command.Slot)) missing.push_back(command.Name);
    EXPECT_EQ(missing, std::vector<std::string>{});
    DeactivateRenderingContext();
    DestroyRenderingContext(rc);
}

TEST_F(LoadedGL, QuickReadExtensionsReadsOnlyWhileAVariableOfTheTestIsNil)
{
    GL_LibHandle = nullptr;  // every lookup now goes through wglGetProcAddress
    GlRecorder rec;
    rec.RecordAll<&dglOpenGL::wglGetProcAddress, &glGenBuffers, &glGenerateMipmap>();
    ExtensionsRead = false;
    QuickReadExtensions();
    EXPECT_EQ(rec.Count("wglGetProcAddress"), 0u);
    EXPECT_FALSE(ExtensionsRead);
    glGenerateMipmap = nullptr;
    QuickReadExtensions();
    EXPECT_TRUE(ExtensionsRead);
    EXPECT_GE(rec.Count("wglGetProcAddress"), 336u);  // no context: the OpenGL 1.1 names
}

TEST(UnitStart, MasksFloatingPointExceptionsReadsTheExportsAndStopKeepsTheLibraries)
{
    GlTableSnapshot snapshot;
    fenv_t saved;
    fegetenv(&saved);
    feenableexcept(FE_DIVBYZERO | FE_INVALID);
    StartUnit_dglOpenGL();
    const int enabled = fegetexcept();
    fesetenv(&saved);
    EXPECT_EQ(enabled, 0);
    EXPECT_TRUE(GLU_LibHandle && ExtensionsRead && glBegin && gluNurbsSurface);
    StopUnit_dglOpenGL();
    EXPECT_NE(GL_LibHandle, nullptr);

    TGLMatrixf4 m;  // and any matrix resets to the identity
    for (auto& row : m) row.fill(std::nanf(""));
    m.Reset();
    for (int i = 0; i < 16; ++i) EXPECT_EQ(m.Data()[i], i % 5 == 0 ? 1.0f : 0.0f) << i;
}

// The type in words, without the namespace of the opaque GLU records: dglOpenGL::GLUnurbs
// names the same record as the header's GLUnurbs.
std::string Readable(const char* mangled)
{
    int status = 0;
    char* text = abi::__cxa_demangle(mangled, nullptr, nullptr, &status);
    std::string readable = status == 0 ? text : mangled;
    std::free(text);
    for (auto at = readable.find("dglOpenGL::"); at != std::string::npos; at = readable.find("dglOpenGL::"))
        readable.erase(at, 11);
    return readable;
}

TEST(GluTypes, EveryHandWrittenTypeIsTheLibraryHeadersType)
{
    const auto header = testing::GluHeaderTypes();
    ASSERT_EQ(header.size(), 52u);
#define ORVANE_COMPARE_TYPE(fn) EXPECT_EQ(Readable(typeid(dglOpenGL::T##fn).name()), Readable(header.at(#fn).c_str()));
    ORVANE_GLU_FUNCTIONS(ORVANE_COMPARE_TYPE)
#undef ORVANE_COMPARE_TYPE
}

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
    rec.Record<&dglOpenGL::wglGetExtensionsStringEXT>([] { return gDriver.ClientText.c_str(); });
    rec.Record<&dglOpenGL::wglGetExtensionsStringARB>([](HDC) { return gDriver.DisplayText.c_str(); });
    rec.Record<&dglOpenGL::wglGetCurrentDC>();
    if (gDriver.GluVersion.empty())
        gluGetString = nullptr;
    else
        rec.Record<&gluGetString>([](GLenum) { return Bytes(gDriver.GluVersion); });
    ReadImplementationProperties();
}

TEST_F(LoadedGL, VersionFlagsAreThePrefixUpToTheParsedVersionGluFlagsLookAtTheMinorOnly)
{
    // The GL flags that are true, as many as given and ending with the one named; GLU 1.1 to 1.3.
    const struct { const char* Version; std::size_t Count; const char* Last; const char* Glu; std::vector<bool> GluFlags; }
        cases[] = {{"5.0", 13, "GL_VERSION_4_0", "1.3", {true, true, true}},
                   {"4.6.0 NVIDIA 512.15", 19, "GL_VERSION_4_6", "1.2 Mesa", {true, true, false}},
                   {"3.2", 11, "GL_VERSION_3_2", "1.1", {true, false, false}},
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

TEST_F(LoadedGL, ExtensionFlagsTestWholeWordsOfGlAndEglAndFromVersion3TheListComesFromGetStringi)
{
    {
        GlRecorder rec;
        GL_ARB_multitexture = true;
        Read(rec, {"2.1", "GL_ARB_multitexture_extra GL_EXT_abgr GL_NV_fence", {}, "EGL_EXT_platform_base", "EGL_KHR_image_base", ""});
        EXPECT_FALSE(GL_ARB_multitexture);  // only a longer name begins with it
        // The first and last words of the GL text, the client and the display extensions of EGL.
        EXPECT_TRUE(GL_EXT_abgr && GL_NV_fence && EGL_EXT_platform_base && EGL_KHR_image_base);
        EXPECT_FALSE(GL_ARB_vertex_array_object);
        EXPECT_TRUE(ExtensionInText(" a b ", "a"));
        EXPECT_FALSE(ExtensionInText(" ab ", "a"));
        EXPECT_FALSE(ExtensionInText("a", "a"));  // no blank around it
        // An EGL-only name is found, and the text is built anew at every check.
        EXPECT_TRUE(dglCheckExtension("EGL_KHR_image_base"));
        EXPECT_FALSE(dglCheckExtension("EGL_KHR_image"));
        gDriver.Extensions = "GL_EXT_bgra";
        EXPECT_TRUE(dglCheckExtension("GL_EXT_bgra"));
        EXPECT_FALSE(dglCheckExtension("GL_EXT_abgr"));
    }
    GlRecorder rec;
    Read(rec, {"3.3", "GL_NV_fence", {"GL_ARB_sync", "GL_KHR_debug"}, "EGL_C", "EGL_KHR_surfaceless_context", ""});
    EXPECT_TRUE(GL_ARB_sync && GL_KHR_debug);
    EXPECT_FALSE(GL_NV_fence);
    for (const auto& call : rec.CallsOf("glGetString")) EXPECT_EQ(call.Args[0], GL_VERSION);  // never GL_EXTENSIONS
    EXPECT_EQ(rec.Count("glGetStringi"), 2u);
    EXPECT_EQ(rec.CallsOf("glGetIntegerv").at(0).Args[0], GL_NUM_EXTENSIONS);
    EXPECT_EQ(ReadExtensionText(), "  GL_ARB_sync GL_KHR_debug EGL_C EGL_KHR_surfaceless_context ");
}

}  // namespace
}  // namespace orvane
