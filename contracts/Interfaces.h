// Interfaces identified by GUID, with reference counting, and a holder that counts for you.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "contracts/Export.h"
#include "contracts/SysUtils.h"

namespace orvane {

// A GUID in the registry form "{8AA0B750-BCB5-41BA-90CC-75668870F362}".
struct ORVANE_API TGUID {
    std::uint32_t D1 = 0;
    std::uint16_t D2 = 0;
    std::uint16_t D3 = 0;
    std::array<std::uint8_t, 8> D4{};

    // Parses the registry form; a malformed text fails to compile where evaluated at compile
    // time and raises EArgumentException at run time.
    static constexpr TGUID FromString(std::string_view text);
    std::string ToString() const;

    friend constexpr bool operator==(const TGUID&, const TGUID&) = default;
};

namespace detail {
constexpr std::uint64_t ParseHex(std::string_view text)
{
    std::uint64_t value = 0;
    for (char c : text) {
        int digit = c >= '0' && c <= '9' ? c - '0'
                  : c >= 'a' && c <= 'f' ? c - 'a' + 10
                  : c >= 'A' && c <= 'F' ? c - 'A' + 10
                  : -1;
        if (digit < 0) throw EArgumentException("Invalid GUID text");
        value = value * 16 + static_cast<std::uint64_t>(digit);
    }
    return value;
}
}  // namespace detail

constexpr TGUID TGUID::FromString(std::string_view text)
{
    if (text.size() != 38 || text[0] != '{' || text[37] != '}' || text[9] != '-' || text[14] != '-' ||
        text[19] != '-' || text[24] != '-')
        throw EArgumentException("Invalid GUID text");
    TGUID guid;
    guid.D1 = static_cast<std::uint32_t>(detail::ParseHex(text.substr(1, 8)));
    guid.D2 = static_cast<std::uint16_t>(detail::ParseHex(text.substr(10, 4)));
    guid.D3 = static_cast<std::uint16_t>(detail::ParseHex(text.substr(15, 4)));
    guid.D4[0] = static_cast<std::uint8_t>(detail::ParseHex(text.substr(20, 2)));
    guid.D4[1] = static_cast<std::uint8_t>(detail::ParseHex(text.substr(22, 2)));
    for (std::size_t i = 0; i < 6; ++i)
        guid.D4[2 + i] = static_cast<std::uint8_t>(detail::ParseHex(text.substr(25 + 2 * i, 2)));
    return guid;
}

struct ORVANE_API TGUIDHash {
    std::size_t operator()(const TGUID& g) const noexcept;
};

inline constexpr int S_OK = 0;
inline constexpr int E_NOINTERFACE = static_cast<int>(0x80004002u);

// The root interface. Every interface derives from it virtually, so that one object that
// implements several interfaces has one reference count.
class ORVANE_API IInterface {
public:
    static constexpr TGUID IID = TGUID::FromString("{00000000-0000-0000-C000-000000000046}");

    // Sets obj to this object seen as the interface iid, counted once more, and answers S_OK;
    // answers E_NOINTERFACE with obj set to nullptr where the object has no such interface.
    virtual int QueryInterface(const TGUID& iid, void** obj) = 0;
    virtual int _AddRef() = 0;
    virtual int _Release() = 0;

protected:
    virtual ~IInterface() = default;
};

// Base class with a reference count; the object frees itself when the count returns to 0.
// A derived class that adds interfaces overrides QueryInterface, answers for its own and
// hands the rest to this one.
class ORVANE_API TInterfacedObject : public virtual IInterface {
public:
    TInterfacedObject() = default;
    TInterfacedObject(const TInterfacedObject&) = delete;
    TInterfacedObject& operator=(const TInterfacedObject&) = delete;

    int QueryInterface(const TGUID& iid, void** obj) override;
    int _AddRef() override { return ++FRefCount; }
    int _Release() override;
    int RefCount() const noexcept { return FRefCount; }

protected:
    ~TInterfacedObject() override = default;
    // Answers S_OK with obj set and counted when iid is I's.
    template <typename I>
    int Answer(const TGUID& iid, void** obj)
    {
        if (iid != I::IID) return E_NOINTERFACE;
        I* self = dynamic_cast<I*>(this);
        self->_AddRef();
        *obj = self;
        return S_OK;
    }

private:
    int FRefCount = 0;
};

// Holds one counted reference to an interface, like an interface variable.
template <typename I>
class TInterfacePtr {
public:
    TInterfacePtr() = default;
    TInterfacePtr(I* ptr) : FPtr(ptr)  // NOLINT: implicit, as an interface assignment is
    {
        if (FPtr) FPtr->_AddRef();
    }
    TInterfacePtr(const TInterfacePtr& other) : TInterfacePtr(other.FPtr) {}
    TInterfacePtr(TInterfacePtr&& other) noexcept : FPtr(std::exchange(other.FPtr, nullptr)) {}
    TInterfacePtr& operator=(TInterfacePtr other) noexcept
    {
        std::swap(FPtr, other.FPtr);
        return *this;
    }
    ~TInterfacePtr()
    {
        if (FPtr) FPtr->_Release();
    }

    I* get() const noexcept { return FPtr; }
    I* operator->() const noexcept { return FPtr; }
    explicit operator bool() const noexcept { return FPtr != nullptr; }

    // The interface J of the same object, or an empty holder where it has none.
    template <typename J>
    TInterfacePtr<J> Query() const
    {
        TInterfacePtr<J> result;
        void* obj = nullptr;
        if (FPtr && FPtr->QueryInterface(J::IID, &obj) == S_OK) result.FPtr = static_cast<J*>(obj);
        return result;
    }

private:
    template <typename>
    friend class TInterfacePtr;
    I* FPtr = nullptr;
};

}  // namespace orvane
