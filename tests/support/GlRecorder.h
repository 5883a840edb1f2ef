// Recording fakes for the GL, GLU and EGL entry-point variables: for the life of a recorder the
// chosen variables call a fake that records the call with its arguments and runs the behaviour
// if one is given; the real entries go back when the recorder ends.
//
//   orvane::testing::GlRecorder rec;
//   rec.Record<&dglOpenGL::glGenBuffers>([](GLsizei, GLuint* ids) { ids[0] = 7; });
//   rec.Record<&dglOpenGL::glBindBuffer>();
//   ... code under test ...
//   EXPECT_EQ(rec.Texts(), (std::vector<std::string>{"glGenBuffers(1, ptr)", "glBindBuffer(34962, 7)"}));
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "opengl/dglOpenGL.h"

namespace orvane::testing {

enum class GlArgKind { Integer, Real, Pointer };

struct GlCall {
    std::string Name;
    std::vector<double> Args;  // numbers as passed, a pointer as its address
    std::vector<GlArgKind> Kinds;

    // "glBegin(4)": integers in decimal, reals as %g, pointers as ptr or nil.
    std::string Text() const;
    // The argument at index as the pointer it was.
    const void* Pointer(std::size_t index) const;
};

class GlRecorder {
public:
    GlRecorder();
    ~GlRecorder();
    GlRecorder(const GlRecorder&) = delete;
    GlRecorder& operator=(const GlRecorder&) = delete;

    // Swaps a recording fake into the variable at Slot (&dglOpenGL::glBegin). The behaviour runs
    // after the call is recorded and gives the result; without one the result is zero.
    template <auto* Slot, typename F = std::nullptr_t>
    void Record(F behaviour = nullptr);
    // Records each of the variables, without behaviour.
    template <auto*... Slots>
    void RecordAll() { (Record<Slots>(), ...); }

    const std::vector<GlCall>& Calls() const { return FCalls; }
    std::vector<std::string> Names() const;
    std::vector<std::string> Texts() const;
    std::vector<GlCall> CallsOf(std::string_view name) const;
    std::size_t Count(std::string_view name) const { return CallsOf(name).size(); }
    void Clear() { FCalls.clear(); }

    // The recorder whose fakes are in place, nullptr when none.
    static GlRecorder* Current();
    void Add(GlCall call) { FCalls.push_back(std::move(call)); }

private:
    template <auto* Slot, typename Fn = std::remove_pointer_t<decltype(Slot)>>
    struct Fake {
        static_assert(sizeof(Fn) == 0, "Record<&dglOpenGL::name>: name an entry-point variable, "
                                       "not a function of the same name");
    };

    void Swap(void* slot, void* fake, std::function<void()> reset);

    struct Saved {
        void* Slot;
        void* Original;
        std::function<void()> Reset;
    };
    std::vector<Saved> FSaved;
    std::vector<GlCall> FCalls;
};

namespace detail {

// The name of the entry point whose variable is at slot, from the generated tables.
const char* EntryPointName(const void* slot);

template <typename T>
void AddArg(GlCall& call, T value)
{
    if constexpr (std::is_pointer_v<T> || std::is_null_pointer_v<T>) {
        call.Args.push_back(static_cast<double>(reinterpret_cast<std::uintptr_t>(value)));
        call.Kinds.push_back(GlArgKind::Pointer);
    } else {
        call.Args.push_back(static_cast<double>(value));
        call.Kinds.push_back(std::is_floating_point_v<T> ? GlArgKind::Real : GlArgKind::Integer);
    }
}

}  // namespace detail

template <auto* Slot, typename R, typename... A>
struct GlRecorder::Fake<Slot, R (*)(A...)> {
    static inline std::function<R(A...)> Behaviour;

    static R Call(A... args)
    {
        if (auto* recorder = GlRecorder::Current()) {
            GlCall call{detail::EntryPointName(Slot), {}, {}};
            (detail::AddArg(call, args), ...);
            recorder->Add(std::move(call));
        }
        if (Behaviour)
            return Behaviour(args...);
        if constexpr (!std::is_void_v<R>)
            return R{};
    }
};

template <auto* Slot, typename F>
void GlRecorder::Record(F behaviour)
{
    using Fk = Fake<Slot>;
    if constexpr (std::is_null_pointer_v<F>)
        Fk::Behaviour = nullptr;
    else
        Fk::Behaviour = std::move(behaviour);
    Swap(Slot, reinterpret_cast<void*>(&Fk::Call), [] { Fk::Behaviour = nullptr; });
}

}  // namespace orvane::testing
