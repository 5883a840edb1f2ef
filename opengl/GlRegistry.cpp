// Look-ups in the generated name tables and the resolution of a Read_ group.
#include "opengl/GlRegistry.h"

#include <algorithm>
#include <cstring>

#include "opengl/EglLibrary.h"
#include "opengl/dglOpenGL.h"

namespace dglOpenGL::registry {

namespace {

using TAnyProc = void (*)();
static_assert(sizeof(TAnyProc) == sizeof(void*));

}  // namespace

const TGLCommand* FindGLCommand(std::string_view name)
{
    const auto commands = GLCommands();
    const auto it = std::lower_bound(commands.begin(), commands.end(), name,
        [](const TGLCommand& c, std::string_view n) { return std::string_view(c.Name) < n; });
    return it != commands.end() && it->Name == name ? &*it : nullptr;
}

// The variables hold function pointers of many types; their bytes are copied, which is how
// one function pointer type converts to another on every platform this runs on.
void* SlotValue(const void* slot)
{
    TAnyProc proc;
    std::memcpy(&proc, slot, sizeof proc);
    return reinterpret_cast<void*>(proc);
}

void SetSlot(void* slot, void* address)
{
    const auto proc = reinterpret_cast<TAnyProc>(address);
    std::memcpy(slot, &proc, sizeof proc);
}

void ResolveGLGroup(std::span<const std::uint16_t> commands)
{
    const auto table = GLCommands();
    for (const auto index : commands)
        SetSlot(table[index].Slot, dglGetProcAddress(table[index].Name));
}

void ResolveEGLGroup(std::span<const std::uint16_t> commands)
{
    // EGL's extension functions come from eglGetProcAddress, with or without InitOpenGL.
    void* egl = orvane::EGLLibraryHandle();
    const auto table = EGLCommands();
    for (const auto index : commands) {
        void* proc = egl ? dglGetProcAddress(table[index].Name, egl) : nullptr;
        if (!proc && egl && eglGetProcAddress)
            proc = reinterpret_cast<void*>(eglGetProcAddress(table[index].Name));
        SetSlot(table[index].Slot, proc);
    }
}

}  // namespace dglOpenGL::registry
