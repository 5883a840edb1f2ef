#include "tests/support/GlRecorder.h"

#include <algorithm>
#include <iterator>
#include <cstdio>
#include <stdexcept>

#include "opengl/GL.h"
#include "opengl/GLu.h"
#include "opengl/GlRegistry.h"

namespace orvane::testing {

namespace {

GlRecorder* gCurrent = nullptr;

const char* FindIn(std::span<const dglOpenGL::registry::TSlot> slots, const void* slot)
{
    for (const auto& each : slots)
        if (each.Slot == slot)
            return each.Name;
    return nullptr;
}

}  // namespace

namespace detail {

const char* EntryPointName(const void* slot)
{
    namespace registry = dglOpenGL::registry;
    for (const auto& command : registry::GLCommands())
        if (command.Slot == slot)
            return command.Name;
    for (auto table : {registry::EGLCommands(), registry::GLUCommands(), registry::WGLCommands(),
                       GL::EntryPoints(), GLu::EntryPoints()})
        if (const char* name = FindIn(table, slot))
            return name;
    return "?";
}

}  // namespace detail

std::string GlCall::Text() const
{
    std::string text = Name + "(";
    for (std::size_t i = 0; i < Args.size(); ++i) {
        if (i > 0)
            text += ", ";
        char buffer[64];
        if (Kinds[i] == GlArgKind::Pointer)
            std::snprintf(buffer, sizeof buffer, "%s", Args[i] == 0 ? "nil" : "ptr");
        else if (Kinds[i] == GlArgKind::Real)
            std::snprintf(buffer, sizeof buffer, "%g", Args[i]);
        else
            std::snprintf(buffer, sizeof buffer, "%lld", static_cast<long long>(Args[i]));
        text += buffer;
    }
    return text + ")";
}

const void* GlCall::Pointer(std::size_t index) const
{
    return reinterpret_cast<const void*>(static_cast<std::uintptr_t>(Args.at(index)));
}

GlRecorder::GlRecorder()
{
    if (gCurrent)
        throw std::logic_error("one GlRecorder at a time");
    gCurrent = this;
}

GlRecorder::~GlRecorder()
{
    for (auto it = FSaved.rbegin(); it != FSaved.rend(); ++it) {
        dglOpenGL::registry::SetSlot(it->Slot, it->Original);
        it->Reset();
    }
    gCurrent = nullptr;
}

GlRecorder* GlRecorder::Current()
{
    return gCurrent;
}

void GlRecorder::Swap(void* slot, void* fake, std::function<void()> reset)
{
    FSaved.push_back({slot, dglOpenGL::registry::SlotValue(slot), std::move(reset)});
    dglOpenGL::registry::SetSlot(slot, fake);
}

std::vector<std::string> GlRecorder::Names() const
{
    std::vector<std::string> names;
    for (const auto& call : FCalls)
        names.push_back(call.Name);
    return names;
}

std::vector<std::string> GlRecorder::Texts() const
{
    std::vector<std::string> texts;
    for (const auto& call : FCalls)
        texts.push_back(call.Text());
    return texts;
}

std::vector<GlCall> GlRecorder::CallsOf(std::string_view name) const
{
    std::vector<GlCall> calls;
    std::copy_if(FCalls.begin(), FCalls.end(), std::back_inserter(calls), [&](const auto& c) { return c.Name == name; });
    return calls;
}

}  // namespace orvane::testing
