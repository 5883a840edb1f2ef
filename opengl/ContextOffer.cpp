// The offer of the current context, read once per context with the library's own entries, so
// that recording fakes in the variables do not change what is loaded.
#include "opengl/ContextOffer.h"

#include <dlfcn.h>

#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "opengl/EglLibrary.h"
#include "opengl/dglOpenGL.h"

namespace dglOpenGL::detail {

namespace {

struct TOffer {
    void* Context = nullptr;
    int Version = 0;  // major * 10 + minor
    bool Core = false;
    std::vector<bool> Extensions;  // by index of registry::GLExtensions()
};

TOffer& CurrentOffer()
{
    static TOffer offer;
    return offer;
}

void* RawProc(const char* name)
{
    void* proc = GL_LibHandle ? dlsym(GL_LibHandle, name) : nullptr;
    if (!proc && eglGetProcAddress)
        proc = reinterpret_cast<void*>(eglGetProcAddress(name));
    return proc;
}

template <typename T>
T Raw(const char* name)
{
    return reinterpret_cast<T>(RawProc(name));
}

const std::unordered_map<std::string_view, std::size_t>& ExtensionIndex()
{
    static const auto index = [] {
        std::unordered_map<std::string_view, std::size_t> map;
        const auto names = registry::GLExtensions();
        for (std::size_t i = 0; i < names.size(); ++i)
            map.emplace(names[i], i);
        return map;
    }();
    return index;
}

void MarkExtension(TOffer& offer, std::string_view name)
{
    const auto& index = ExtensionIndex();
    if (const auto it = index.find(name); it != index.end())
        offer.Extensions[it->second] = true;
}

void ReadExtensionList(TOffer& offer, TglGetString getString, TglGetIntegerv getIntegerv)
{
    const auto getStringi = Raw<TglGetStringi>("glGetStringi");
    if (offer.Version >= 30 && getStringi && getIntegerv) {
        GLint count = 0;
        getIntegerv(GL_NUM_EXTENSIONS, &count);
        for (GLint i = 0; i < count; ++i)
            if (const auto* name = getStringi(GL_EXTENSIONS, static_cast<GLuint>(i)))
                MarkExtension(offer, reinterpret_cast<const char*>(name));
        return;
    }
    const auto* text = reinterpret_cast<const char*>(getString(GL_EXTENSIONS));
    std::string_view rest = text ? text : "";
    while (!rest.empty()) {
        const auto end = rest.find(' ');
        MarkExtension(offer, rest.substr(0, end));
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    }
}

void ReadOffer(TOffer& offer, void* context)
{
    offer = TOffer{};
    offer.Context = context;
    offer.Extensions.assign(registry::GLExtensions().size(), false);
    const auto getString = Raw<TglGetString>("glGetString");
    const auto getIntegerv = Raw<TglGetIntegerv>("glGetIntegerv");
    if (!getString)
        return;
    const auto* version = reinterpret_cast<const char*>(getString(GL_VERSION));
    const auto parsed = ParseGLVersion(version ? version : "");
    offer.Version = parsed.Major * 10 + parsed.Minor;
    if (offer.Version >= 32 && getIntegerv) {
        GLint mask = 0;
        getIntegerv(GL_CONTEXT_PROFILE_MASK, &mask);
        offer.Core = (static_cast<GLuint>(mask) & GL_CONTEXT_CORE_PROFILE_BIT) != 0;
    }
    ReadExtensionList(offer, getString, getIntegerv);
}

void* CurrentContext()
{
    return orvane::EGLLibraryHandle() && eglGetCurrentContext ? eglGetCurrentContext() : nullptr;
}

}  // namespace

bool ContextOffers(const registry::TGLCommand& command)
{
    void* context = CurrentContext();
    if (!context)
        return command.Version == 10 || command.Version == 11;
    auto& offer = CurrentOffer();
    if (offer.Context != context)
        ReadOffer(offer, context);
    if (command.Version != 0 && command.Version <= offer.Version &&
        !(offer.Core && command.CoreRemoved))
        return true;
    const auto providers = registry::Providers().subspan(command.FirstProvider,
                                                         command.ProviderCount);
    for (const auto index : providers)
        if (offer.Extensions[index])
            return true;
    return false;
}

void ForgetContextOffer()
{
    CurrentOffer() = TOffer{};
}

}  // namespace dglOpenGL::detail
