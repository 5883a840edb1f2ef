#include <gtest/gtest.h>

#include "io/Printable.h"

namespace orvane::io {
namespace {

TEST(Printable, ControlBytesAndBackslashesAreEscapedAndUtf8Kept)
{
    const std::pair<std::string, std::string> cases[] = {
        {"\x1b[2J\x1b[H", "\\x1B[2J\\x1B[H"},
        {"top\nface\r\t\x7f", "top\\x0Aface\\x0D\\x09\\x7F"},
        {"a\\x1B", "a\\\\x1B"},  // a backslash in the file cannot pass for an escape
        {std::string("nul\0end", 7), "nul\\x00end"},
        {"Fl\xc3\xa4" "che \"1\"", "Fl\xc3\xa4" "che \"1\""},
    };
    for (const auto& [text, shown] : cases) EXPECT_EQ(Printable(text), shown);
}

}  // namespace
}  // namespace orvane::io
