// Which entry points are set: decided per name from what the current context offers, not read
// off the library, which exports many more names than a context has.
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <set>
#include <string>

#include "opengl/GlRegistry.h"
#include "opengl/Platform.h"
#include "opengl/dglOpenGL.h"
#include "tests/support/GlTableSnapshot.h"
#include "tests/support/OffscreenGL.h"

namespace orvane {
namespace {

using namespace dglOpenGL;
namespace registry = dglOpenGL::registry;

std::set<std::string> ContextExtensions()
{
    std::set<std::string> names;
    GLint count = 0;
    glGetIntegerv(GL_NUM_EXTENSIONS, &count);
    for (GLint i = 0; i < count; ++i)
        names.insert(reinterpret_cast<const char*>(glGetStringi(GL_EXTENSIONS, static_cast<GLuint>(i))));
    return names;
}

bool ListedByContext(const registry::TGLCommand& command, const std::set<std::string>& listed)
{
    for (const auto index : registry::Providers().subspan(command.FirstProvider, command.ProviderCount))
        if (listed.count(registry::GLExtensions()[index]))
            return true;
    return false;
}

TEST(LoadingRule, WithoutContextOnlyTheNamesOfOpenGL11)
{
    testing::GlTableSnapshot snapshot;
    ASSERT_TRUE(InitOpenGL("libGL.so.1", "libGLU.so.1"));
    ASSERT_EQ(wglGetCurrentContext(), nullptr);
    int legacy = 0;
    for (const auto& command : registry::GLCommands())
        legacy += command.Version == 10 || command.Version == 11 ? 1 : 0;
    EXPECT_EQ(legacy, 336);
    // The library has glDrawRangeElements of OpenGL 1.2, but without a context it is not given.
    ASSERT_NE(dlsym(GL_LibHandle, "glDrawRangeElements"), nullptr);
    EXPECT_EQ(dglGetProcAddress("glDrawRangeElements"), nullptr);
    EXPECT_NE(dglGetProcAddress("glInterleavedArrays"), nullptr);
    ReadExtensions();
    int set = 0;
    for (const auto& command : registry::GLCommands())
        set += registry::SlotValue(command.Slot) ? 1 : 0;
    EXPECT_EQ(set, 336);
}

TEST(LoadingRule, WithContextANameIsSetExactlyWhenTheContextOffersIt)
{
    testing::GlTableSnapshot snapshot;
    testing::OffscreenGL gl(4, 4);
    const auto version = ParseGLVersion(reinterpret_cast<const char*>(glGetString(GL_VERSION)));
    const int contextVersion = version.Major * 10 + version.Minor;
    const auto listed = ContextExtensions();

    // A name the library exports but the context does not offer, found in the registry now.
    const registry::TGLCommand* withheld = nullptr;
    const registry::TGLCommand* byExtension = nullptr;
    for (const auto& command : registry::GLCommands()) {
        const bool byVersion = command.Version != 0 && command.Version <= contextVersion;
        const bool byList = ListedByContext(command, listed);
        if (!withheld && !byVersion && !byList && dlsym(GL_LibHandle, command.Name))
            withheld = &command;
        if (!byExtension && command.Version == 0 && byList)
            byExtension = &command;
    }
    ASSERT_NE(withheld, nullptr);
    ASSERT_NE(byExtension, nullptr);
    EXPECT_EQ(dglGetProcAddress(withheld->Name), nullptr) << withheld->Name;
    EXPECT_EQ(registry::SlotValue(withheld->Slot), nullptr) << withheld->Name;
    EXPECT_NE(dglGetProcAddress(byExtension->Name), nullptr) << byExtension->Name;
    EXPECT_NE(registry::SlotValue(byExtension->Slot), nullptr) << byExtension->Name;

    // Every command of a version the context has is set, the fixed-function ones included.
    for (const auto& command : registry::GLCommands()) {
        if (command.Version != 0 && command.Version <= contextVersion) {
            EXPECT_NE(registry::SlotValue(command.Slot), nullptr) << command.Name;
        }
    }
}

TEST(LoadingRule, NamesOutsideTheRegistryComeFromTheLibraryAsTheyAre)
{
    testing::GlTableSnapshot snapshot;
    ASSERT_TRUE(InitOpenGL("libGL.so.1", "libGLU.so.1"));
    EXPECT_NE(dglGetProcAddress("gluNurbsSurface", GLU_LibHandle), nullptr);
    EXPECT_EQ(dglGetProcAddress("gluNoSuchFunction", GLU_LibHandle), nullptr);
    // wglGetProcAddress answers the platform's own WGL extension functions.
    EXPECT_EQ(dglGetProcAddress("wglCreateContextAttribsARB"),
              reinterpret_cast<void*>(&orvane::wglCreateContextAttribsARB));
}

}  // namespace
}  // namespace orvane
