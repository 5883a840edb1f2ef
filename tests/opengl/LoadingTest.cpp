// Loading OpenGL and GLU: the libraries, the legacy units, which entry points a context gets,
// the unit start, the hand-written GLU function types; the recording fakes other tests build on.
#include <gtest/gtest.h>

#include <cxxabi.h>
#include <dlfcn.h>
#include <fenv.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <set>
#include <string>
#include <typeinfo>

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

int CountSet(std::span<const registry::TSlot> slots)
{
    return static_cast<int>(std::count_if(slots.begin(), slots.end(), [](const auto& s) { return registry::SlotValue(s.Slot); }));
}

int CountSetCommands()
{
    int set = 0;
    for (const auto& command : registry::GLCommands()) set += registry::SlotValue(command.Slot) ? 1 : 0;
    return set;
}

TEST(GlRecorder, RecordsCallsInOrderAndPutsTheRealEntriesBack)
{
    const auto realBegin = glBegin;
    {
        GlRecorder rec;
        rec.Record<&glBegin>();
        rec.Record<&glCreateShader>([](GLenum) { return 41u; });
        rec.Record<&gluNurbsProperty>();
        glBegin(GL_TRIANGLES);
        EXPECT_EQ(glCreateShader(GL_VERTEX_SHADER), 41u);
        gluNurbsProperty(nullptr, GLU_SAMPLING_TOLERANCE, 12.5f);
        EXPECT_EQ(rec.Texts(), (std::vector<std::string>{"glBegin(4)", "glCreateShader(35633)",
                                                         "gluNurbsProperty(nil, 100203, 12.5)"}));
    }
    EXPECT_EQ(glBegin, realBegin);
    EXPECT_EQ(GlRecorder::Current(), nullptr);
}

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
    EXPECT_EQ(dglGetProcAddress("wglCreateContextAttribsARB"),
              reinterpret_cast<void*>(&orvane::wglCreateContextAttribsARB));
}

TEST(LoadingRule, WithoutAContextOnlyOpenGL11ThenTheContextsVersionAfterActivation)
{
    GlTableSnapshot snapshot;
    ASSERT_TRUE(InitOpenGL("libGL.so.1", "libGLU.so.1"));
    ASSERT_EQ(wglGetCurrentContext(), nullptr);
    // The library has glDrawRangeElements of OpenGL 1.2, but without a context it is not given.
    ASSERT_NE(dlsym(GL_LibHandle, "glDrawRangeElements"), nullptr);
    EXPECT_EQ(dglGetProcAddress("glDrawRangeElements"), nullptr);
    ReadExtensions();
    EXPECT_EQ(CountSetCommands(), 336);
    const auto later = [] {
        return std::vector<bool>{glGenBuffers != nullptr, glGenVertexArrays != nullptr, glCreateShader != nullptr,
                                 glUniformMatrix4fv != nullptr, glGenerateMipmap != nullptr,
                                 glDrawRangeElements != nullptr};
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

TEST(LoadingRule, WithAContextANameIsSetExactlyWhenTheContextOffersIt)
{
    GlTableSnapshot snapshot;
    testing::OffscreenGL gl(4, 4);
    const auto version = ParseGLVersion(reinterpret_cast<const char*>(glGetString(GL_VERSION)));
    const int contextVersion = version.Major * 10 + version.Minor;
    std::set<std::string> listed;
    GLint count = 0;
    glGetIntegerv(GL_NUM_EXTENSIONS, &count);
    for (GLint i = 0; i < count; ++i)
        listed.insert(reinterpret_cast<const char*>(glGetStringi(GL_EXTENSIONS, static_cast<GLuint>(i))));
    const auto byList = [&](const registry::TGLCommand& command) {
        for (const auto index : registry::Providers().subspan(command.FirstProvider, command.ProviderCount))
            if (listed.count(registry::GLExtensions()[index])) return true;
        return false;
    };
    // A name the library exports but the context does not offer, and one an extension gives.
    const registry::TGLCommand* withheld = nullptr;
    const registry::TGLCommand* byExtension = nullptr;
    for (const auto& command : registry::GLCommands()) {
        const bool byVersion = command.Version != 0 && command.Version <= contextVersion;
        if (byVersion) {
            EXPECT_NE(registry::SlotValue(command.Slot), nullptr) << command.Name;  // fixed-function ones too
        }
        if (!withheld && !byVersion && !byList(command) && dlsym(GL_LibHandle, command.Name)) withheld = &command;
        if (!byExtension && command.Version == 0 && byList(command)) byExtension = &command;
    }
    ASSERT_NE(withheld, nullptr);
    ASSERT_NE(byExtension, nullptr);
    EXPECT_EQ(dglGetProcAddress(withheld->Name), nullptr) << withheld->Name;
    EXPECT_EQ(registry::SlotValue(withheld->Slot), nullptr) << withheld->Name;
    EXPECT_NE(dglGetProcAddress(byExtension->Name), nullptr) << byExtension->Name;
    EXPECT_NE(registry::SlotValue(byExtension->Slot), nullptr) << byExtension->Name;
}

TEST(QuickReadExtensions, ReadsOnlyWhileAVariableOfTheTestIsNil)
{
    GlTableSnapshot snapshot;
    ASSERT_TRUE(InitOpenGL("libGL.so.1", "libGLU.so.1"));
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
    EXPECT_NE(GLU_LibHandle, nullptr);
    EXPECT_TRUE(ExtensionsRead);
    EXPECT_NE(glBegin, nullptr);
    EXPECT_NE(gluNurbsSurface, nullptr);
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

}  // namespace
}  // namespace orvane
