#include "tests/support/GlTableSnapshot.h"

#include "opengl/GL.h"
#include "opengl/GLu.h"
#include "opengl/GlRegistry.h"
#include "opengl/dglOpenGL.h"

namespace orvane::testing {

namespace {

namespace registry = dglOpenGL::registry;

template <typename Table>
void SaveSlots(Table table, std::vector<std::pair<void*, void*>>& out)
{
    for (const auto& entry : table)
        out.emplace_back(entry.Slot, registry::SlotValue(entry.Slot));
}

}  // namespace

GlTableSnapshot::GlTableSnapshot()
    : FGLLib(dglOpenGL::GL_LibHandle), FGLULib(dglOpenGL::GLU_LibHandle),
      FLastPixelFormat(dglOpenGL::LastPixelFormat)
{
    SaveSlots(registry::GLCommands(), FSlots);
    for (auto table : {registry::GLUCommands(), registry::WGLCommands(),
                       GL::EntryPoints(), GLu::EntryPoints()})
        SaveSlots(table, FSlots);
    FSlots.emplace_back(&GL::ChoosePixelFormat, registry::SlotValue(&GL::ChoosePixelFormat));
    for (const auto& flag : registry::ExtensionFlags())
        FFlags.emplace_back(flag.Value, *flag.Value);
    for (const auto& flag : dglOpenGL::VersionFlags())
        FFlags.emplace_back(flag.Value, *flag.Value);
    for (bool* flag : {&dglOpenGL::GLU_VERSION_1_1, &dglOpenGL::GLU_VERSION_1_2,
                       &dglOpenGL::GLU_VERSION_1_3, &dglOpenGL::ImplementationRead,
                       &dglOpenGL::ExtensionsRead})
        FFlags.emplace_back(flag, *flag);
}

GlTableSnapshot::~GlTableSnapshot()
{
    for (const auto& [slot, value] : FSlots)
        registry::SetSlot(slot, value);
    for (const auto& [flag, value] : FFlags)
        *flag = value;
    dglOpenGL::GL_LibHandle = FGLLib;
    dglOpenGL::GLU_LibHandle = FGLULib;
    dglOpenGL::LastPixelFormat = FLastPixelFormat;
}

}  // namespace orvane::testing
