#include "shaders/ShaderResources.h"

#include <strings.h>

#include <utility>

namespace orvane {
namespace {

TResourceFinder& CurrentFinder()
{
    static TResourceFinder finder = FindEmbeddedResource;
    return finder;
}

}  // namespace

bool FindEmbeddedResource(const std::string& name, Cardinal resType, std::string& bytes)
{
    if (resType != RT_RCDATA) return false;
    for (std::size_t i = 0; i < EmbeddedResourceCount; ++i) {
        const TEmbeddedResource& resource = EmbeddedResources[i];
        if (strcasecmp(resource.Name, name.c_str()) == 0) {
            bytes.assign(reinterpret_cast<const char*>(resource.Data), resource.Size);
            return true;
        }
    }
    return false;
}

TResourceFinder SetResourceFinder(TResourceFinder finder)
{
    if (!finder) finder = FindEmbeddedResource;
    return std::exchange(CurrentFinder(), std::move(finder));
}

TResourceStream::TResourceStream(const std::string& name, Cardinal resType)
{
    if (!CurrentFinder()(name, resType, FBytes)) throw EResNotFound("Resource " + name + " not found");
}

}  // namespace orvane
