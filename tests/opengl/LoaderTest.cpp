// The loading of dglOpenGL: InitOpenGL, the quick read, the matrix reset and the unit start.
#include <gtest/gtest.h>

#include <fenv.h>

#include <cmath>

#include "opengl/GlRegistry.h"
#include "opengl/Platform.h"
#include "opengl/dglOpenGL.h"
#include "tests/support/GlRecorder.h"
#include "tests/support/GlTableSnapshot.h"

namespace orvane {
namespace {

using namespace dglOpenGL;
using testing::GlRecorder;

TEST(InitOpenGL, MissingLibraryGivesFalseAndRaisesNothing)
{
    testing::GlTableSnapshot snapshot;
    bool loaded = true;
    EXPECT_NO_THROW(loaded = InitOpenGL("libNoSuchGL.so.1", "libNoSuchGLU.so.1"));
    EXPECT_FALSE(loaded);
    EXPECT_EQ(GL_LibHandle, nullptr);
    EXPECT_EQ(GLU_LibHandle, nullptr);
    EXPECT_FALSE(InitOpenGL("", ""));
}

TEST(InitOpenGL, FillsTheWglNamesFromThePlatformAndGluFromItsLibrary)
{
    testing::GlTableSnapshot snapshot;
    registry::SetSlot(&dglOpenGL::wglShareLists, reinterpret_cast<void*>(&orvane::wglDeleteContext));
    ASSERT_TRUE(InitOpenGL("libGL.so.1", "libGLU.so.1"));
    EXPECT_EQ(dglOpenGL::wglMakeCurrent, &orvane::wglMakeCurrent);
    EXPECT_EQ(dglOpenGL::wglGetCurrentContext, &orvane::wglGetCurrentContext);
    EXPECT_EQ(dglOpenGL::wglGetCurrentDC, &orvane::wglGetCurrentDC);
    EXPECT_EQ(dglOpenGL::wglCreateContext, &orvane::wglCreateContext);
    EXPECT_EQ(dglOpenGL::wglDeleteContext, &orvane::wglDeleteContext);
    EXPECT_EQ(dglOpenGL::wglGetProcAddress, &orvane::wglGetProcAddress);
    // No EGL meaning: nil, also over an earlier value.
    EXPECT_EQ(dglOpenGL::wglShareLists, nullptr);
    EXPECT_EQ(dglOpenGL::wglUseFontBitmaps, nullptr);
    EXPECT_EQ(dglOpenGL::wglSwapLayerBuffers, nullptr);

    for (const char* name : {"gluNewNurbsRenderer", "gluDeleteNurbsRenderer", "gluNurbsProperty",
                             "gluNurbsCallback", "gluBeginSurface", "gluEndSurface",
                             "gluNurbsSurface", "gluBeginTrim", "gluEndTrim", "gluPwlCurve",
                             "gluNurbsCurve"}) {
        const auto slots = registry::GLUCommands();
        const auto it = std::find_if(slots.begin(), slots.end(),
                                     [&](const auto& s) { return std::string_view(s.Name) == name; });
        ASSERT_NE(it, slots.end()) << name;
        EXPECT_NE(registry::SlotValue(it->Slot), nullptr) << name;
    }
    EXPECT_EQ(gluErrorUnicodeStringEXT, nullptr);  // a Windows-only name
}

TEST(QuickReadExtensions, ReadsOnlyWhileAVariableOfTheTestIsNil)
{
    testing::GlTableSnapshot snapshot;
    ASSERT_TRUE(InitOpenGL("libGL.so.1", "libGLU.so.1"));
    GL_LibHandle = nullptr;  // every lookup now goes through wglGetProcAddress
    {
        GlRecorder rec;
        rec.Record<&dglOpenGL::wglGetProcAddress>();
        rec.Record<&glGenBuffers>();
        rec.Record<&glGenerateMipmap>();
        ExtensionsRead = false;
        QuickReadExtensions();
        EXPECT_EQ(rec.Count("wglGetProcAddress"), 0u);
        EXPECT_FALSE(ExtensionsRead);
    }
    GlRecorder rec;
    rec.Record<&dglOpenGL::wglGetProcAddress>();
    rec.Record<&glGenBuffers>();
    glGenerateMipmap = nullptr;
    QuickReadExtensions();
    EXPECT_TRUE(ExtensionsRead);
    EXPECT_GE(rec.Count("wglGetProcAddress"), 336u);  // no context: the OpenGL 1.1 names
}

TEST(MatrixReset, AnyMatrixBecomesTheIdentity)
{
    TGLMatrixf4 m;
    for (auto& row : m)
        row.fill(std::nanf(""));
    m[3][0] = 5.0f;
    m.Reset();
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            EXPECT_EQ(m[i][j], i == j ? 1.0f : 0.0f) << i << "," << j;
    EXPECT_EQ(m.Data()[5], 1.0f);
    EXPECT_EQ(m.Data()[4], 0.0f);
}

TEST(UnitStart, MasksFloatingPointExceptionsAndReadsTheLibraryExports)
{
    testing::GlTableSnapshot snapshot;
    fenv_t saved;
    fegetenv(&saved);
    feenableexcept(FE_DIVBYZERO | FE_INVALID);
    StartUnit_dglOpenGL();
    const int enabled = fegetexcept();
    fesetenv(&saved);
    EXPECT_EQ(enabled, 0);
    EXPECT_NE(GL_LibHandle, nullptr);
    EXPECT_NE(GLU_LibHandle, nullptr);
    EXPECT_TRUE(ExtensionsRead);
    EXPECT_NE(glBegin, nullptr);
    EXPECT_NE(gluNurbsSurface, nullptr);
    if (wglGetCurrentContext() == nullptr) {
        EXPECT_EQ(glGenBuffers, nullptr);
    }
    StopUnit_dglOpenGL();
    EXPECT_NE(GL_LibHandle, nullptr);  // stays loaded
}

}  // namespace
}  // namespace orvane
