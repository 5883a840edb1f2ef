#include "opengl/LegacyLoader.h"

#include <dlfcn.h>

#include "contracts/SysUtils.h"

namespace orvane::detail {

void TLegacyLoader::Load(const std::string& libName,
                         std::span<const dglOpenGL::registry::TSlot> slots)
{
    Free(slots);
    // An empty name would open the program itself.
    FLibrary = libName.empty() ? nullptr : dlopen(libName.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!FLibrary)
        throw Exception(FFailurePrefix + libName);
    for (const auto& slot : slots)
        dglOpenGL::registry::SetSlot(slot.Slot, dlsym(FLibrary, slot.Name));
}

void TLegacyLoader::Free(std::span<const dglOpenGL::registry::TSlot> slots)
{
    for (const auto& slot : slots)
        dglOpenGL::registry::SetSlot(slot.Slot, nullptr);
    if (FLibrary)
        dlclose(FLibrary);
    FLibrary = nullptr;
}

}  // namespace orvane::detail
