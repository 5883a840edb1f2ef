// What the GL and GLu units share: a library and a list of variables filled from it by name.
#pragma once

#include <span>
#include <string>

#include "opengl/GlRegistry.h"

namespace orvane::detail {

class TLegacyLoader {
public:
    explicit TLegacyLoader(const char* failurePrefix) : FFailurePrefix(failurePrefix) {}

    // Frees, opens the library, fills every slot by name; raises Exception on a missing library.
    void Load(const std::string& libName, std::span<const dglOpenGL::registry::TSlot> slots);
    // Nils every slot, then releases the library.
    void Free(std::span<const dglOpenGL::registry::TSlot> slots);
    void* Library() const { return FLibrary; }

private:
    const char* FFailurePrefix;
    void* FLibrary = nullptr;
};

}  // namespace orvane::detail
