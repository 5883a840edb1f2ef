// The units GL and GLu: their own variables, filled by name and cleared again.
#include <gtest/gtest.h>

#include <string>

#include "opengl/GL.h"
#include "opengl/GLu.h"
#include "opengl/Platform.h"
#include "tests/support/GlTableSnapshot.h"

namespace orvane {
namespace {

namespace registry = dglOpenGL::registry;

int CountSet(std::span<const registry::TSlot> slots)
{
    int set = 0;
    for (const auto& slot : slots)
        set += registry::SlotValue(slot.Slot) ? 1 : 0;
    return set;
}

std::string LoadMessage(void (*load)(const std::string&), const std::string& name)
{
    try {
        load(name);
    } catch (const Exception& e) {
        return e.what();
    }
    return "(nothing raised)";
}

TEST(GLUnit, HoldsTheOpenGL11FunctionsInAlphabeticalOrder)
{
    const auto slots = GL::EntryPoints();
    ASSERT_EQ(slots.size(), 336u);
    EXPECT_STREQ(slots.front().Name, "glAccum");
    EXPECT_STREQ(slots.back().Name, "glViewport");
    for (std::size_t i = 1; i < slots.size(); ++i)
        EXPECT_LT(std::string(slots[i - 1].Name), std::string(slots[i].Name));
}

TEST(GLUnit, LoadsEveryNameAndFallsBackForChoosePixelFormat)
{
    testing::GlTableSnapshot snapshot;
    GL::LoadOpenGL("libGL.so.1");
    EXPECT_EQ(CountSet(GL::EntryPoints()), 336);
    EXPECT_NE(GL::glInterleavedArrays, nullptr);
    // libGL has no ChoosePixelFormat: the platform layer's stands in.
    EXPECT_EQ(GL::ChoosePixelFormat, &orvane::ChoosePixelFormat);

    // A second load frees the first before it loads: a failing one leaves everything nil.
    EXPECT_EQ(LoadMessage(&GL::LoadOpenGL, "libNoSuchGL.so.1"),
              "Could not load OpenGL from libNoSuchGL.so.1");
    EXPECT_EQ(CountSet(GL::EntryPoints()), 0);
    EXPECT_EQ(GL::ChoosePixelFormat, nullptr);

    GL::LoadOpenGL("libGL.so.1");
    GL::FreeOpenGL();
    EXPECT_EQ(CountSet(GL::EntryPoints()), 0);
    EXPECT_EQ(GL::ChoosePixelFormat, nullptr);
}

TEST(GLuUnit, LoadsItsFiftyTwoNamesAndFailsWithTheLibraryName)
{
    testing::GlTableSnapshot snapshot;
    const auto slots = GLu::EntryPoints();
    ASSERT_EQ(slots.size(), 52u);
    EXPECT_STREQ(slots.front().Name, "gluErrorString");
    EXPECT_STREQ(slots[34].Name, "gluNewNurbsRenderer");
    EXPECT_STREQ(slots.back().Name, "gluEndPolygon");

    GLu::LoadGLu("libGLU.so.1");
    EXPECT_EQ(CountSet(slots), 51);  // all but the Windows-only gluErrorUnicodeStringEXT
    EXPECT_EQ(GLu::gluErrorUnicodeStringEXT, nullptr);
    EXPECT_EQ(LoadMessage(&GLu::LoadGLu, "glu32.dll"), "Could not load GLu from glu32.dll");
    EXPECT_EQ(CountSet(slots), 0);
}

TEST(LegacyUnits, StartSwallowsNothingWhenPresentAndStopClears)
{
    testing::GlTableSnapshot snapshot;
    StartUnit_GL();
    StartUnit_GLu();
    EXPECT_NE(GL::glBegin, nullptr);
    EXPECT_NE(GLu::gluNurbsSurface, nullptr);
    StopUnit_GLu();
    StopUnit_GL();
    EXPECT_EQ(GL::glBegin, nullptr);
    EXPECT_EQ(GLu::gluNurbsSurface, nullptr);
}

}  // namespace
}  // namespace orvane
