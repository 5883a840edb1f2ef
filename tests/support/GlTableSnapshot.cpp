#include "tests/support/GlTableSnapshot.h"

#include <dlfcn.h>
#include <link.h>

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

// Takes one more reference to a loaded library, never given back: a test that releases the
// library must not unmap what the restored variables point into.
void Pin(void* handle)
{
    link_map* map = nullptr;
    if (handle && dlinfo(handle, RTLD_DI_LINKMAP, &map) == 0 && map && map->l_name[0] != 0)
        dlopen(map->l_name, RTLD_NOW | RTLD_NOLOAD);
}

}  // namespace

GlTableSnapshot::GlTableSnapshot()
    : FGLLib(dglOpenGL::GL_LibHandle), FGLULib(dglOpenGL::GLU_LibHandle),
      FLastPixelFormat(dglOpenGL::LastPixelFormat)
{
    Pin(FGLLib);
    Pin(FGLULib);
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
