// Exceptions and the assertion that stays active in every build.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

#include "contracts/Export.h"

namespace orvane {

using Cardinal = std::uint32_t;

// Root of every exception this system raises; carries one message text.
class ORVANE_API Exception : public std::exception {
public:
    explicit Exception(std::string message) : FMessage(std::move(message)) {}
    const char* what() const noexcept override { return FMessage.c_str(); }
    const std::string& Message() const noexcept { return FMessage; }

private:
    std::string FMessage;
};

// A failed Assert: "<text> (<unit>, line <n>)".
class ORVANE_API EAssertionFailed : public Exception {
public:
    using Exception::Exception;
};

// An index outside a list's range: "Argument out of range".
class ORVANE_API EArgumentOutOfRangeException : public Exception {
public:
    using Exception::Exception;
};

// A list or dictionary used against its rules (a duplicate key, a missing item).
class ORVANE_API EListError : public Exception {
public:
    using Exception::Exception;
};

// An argument that a constructor or operation cannot accept (bad knots, non-finite values).
class ORVANE_API EArgumentException : public Exception {
public:
    using Exception::Exception;
};

inline constexpr const char* SAssertionFailure = "Assertion failure";
inline constexpr const char* SArgumentOutOfRange = "Argument out of range";

// Raises EAssertionFailed with the text "<message> (<unit>, line <line>)".
[[noreturn]] ORVANE_API void AssertFailed(const std::string& message, const char* unit, int line);

// The message text a failed assertion carries, for the same arguments.
ORVANE_API std::string AssertionText(const std::string& message, const char* unit, int line);

}  // namespace orvane

// Assert(condition) or Assert(condition, "text"). Active in every build. The unit named in
// the message is the identifier kUnitName looked up where the macro is used: each source
// file that asserts declares `constexpr const char* kUnitName = "<unit>";`.
#define Assert(...) ORVANE_ASSERT_PICK(__VA_ARGS__, ORVANE_ASSERT_2, ORVANE_ASSERT_1, )(__VA_ARGS__)
#define ORVANE_ASSERT_PICK(a, b, name, ...) name
#define ORVANE_ASSERT_1(cond) ORVANE_ASSERT_2(cond, ::orvane::SAssertionFailure)
#define ORVANE_ASSERT_2(cond, text)                                  \
    do {                                                             \
        if (!(cond)) ::orvane::AssertFailed((text), kUnitName, __LINE__); \
    } while (false)
