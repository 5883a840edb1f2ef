// The name tables generated from the GL registry and the EGL and GLU headers: every entry
// point with the address of its variable, and for GL commands what provides them. The loading
// rule, the Read_ operations and the recording fakes of the tests work on these.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "contracts/Export.h"

namespace dglOpenGL::registry {

// An entry point and the variable that holds its address.
struct TSlot {
    const char* Name;
    void* Slot;
};

// A GL command: its variable, the first GL version that has it (major * 10 + minor, 0 for
// none), whether the core profile removed it, and its providing extensions, a range of
// Providers() that indexes GLExtensions().
struct TGLCommand {
    const char* Name;
    void* Slot;
    std::uint8_t Version;
    bool CoreRemoved;
    std::uint32_t FirstProvider;
    std::uint32_t ProviderCount;
};

struct TFlag {
    const char* Name;
    bool* Value;
};

struct TReadGroup {
    const char* Name;
    void (*Read)();
};

std::span<const TGLCommand> GLCommands();  // sorted by name
std::span<const std::uint16_t> Providers();
std::span<const char* const> GLExtensions();  // every extension of the registry that GL has
std::span<const TSlot> EGLCommands();
std::span<const TSlot> GLUCommands();  // the GLu unit holds the first GLUUnitCount()
std::span<const TSlot> WGLCommands();
ORVANE_API std::span<const TFlag> ExtensionFlags();  // the GL families kept, then EGL
std::span<const TReadGroup> ExtensionReads();  // in the order ReadExtensions runs them
std::span<const TReadGroup> EGLCoreReads();
std::size_t GLUUnitCount();

// nullptr when the registry does not know the name.
const TGLCommand* FindGLCommand(std::string_view name);

// The value of a variable given by its slot, and setting it. Every slot holds a function
// pointer; the value travels as an untyped address.
void* SlotValue(const void* slot);
void SetSlot(void* slot, void* address);

// What the generated Read_ operations run: resolve the listed entries.
void ResolveGLGroup(std::span<const std::uint16_t> commands);
void ResolveEGLGroup(std::span<const std::uint16_t> commands);

}  // namespace dglOpenGL::registry
