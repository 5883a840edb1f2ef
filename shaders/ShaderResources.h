// Resources compiled into the package (the two GLSL sources), read by case-insensitive name,
// with a seam through which a test puts in a source of its own.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "contracts/Export.h"
#include "contracts/SysUtils.h"

namespace orvane {

// The resource type of raw data; the only type the package holds.
inline constexpr Cardinal RT_RCDATA = 10;

// Raised when a resource is missing: "Resource <name> not found".
class ORVANE_API EResNotFound : public Exception {
public:
    using Exception::Exception;
};

// Looks a resource up by name and type; on success fills bytes and answers true.
using TResourceFinder = std::function<bool(const std::string& name, Cardinal resType, std::string& bytes)>;

// The package's own resources, matched without regard to letter case.
ORVANE_API bool FindEmbeddedResource(const std::string& name, Cardinal resType, std::string& bytes);

// Installs the finder every TResourceStream uses and answers the one it replaces; an empty
// finder puts FindEmbeddedResource back. Tests use this to put in a failing source.
ORVANE_API TResourceFinder SetResourceFinder(TResourceFinder finder);

// Read access to one resource of the package, by name and type.
class ORVANE_API TResourceStream {
public:
    TResourceStream(const std::string& name, Cardinal resType);

    const std::string& Bytes() const noexcept { return FBytes; }
    std::size_t Size() const noexcept { return FBytes.size(); }

private:
    std::string FBytes;
};

// One embedded file, as the build writes it: the name in capitals, the bytes as they lie.
struct TEmbeddedResource {
    const char* Name;
    const unsigned char* Data;
    std::size_t Size;
};
extern const TEmbeddedResource EmbeddedResources[];
extern const std::size_t EmbeddedResourceCount;

}  // namespace orvane
