#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "io/ProgressBar.h"

namespace orvane::io {
namespace {

std::string Written(std::FILE* f)
{
    std::fflush(f);
    std::rewind(f);
    std::string text;
    for (int c; (c = std::fgetc(f)) != EOF;) text += static_cast<char>(c);
    return text;
}

TEST(ProgressBar, DrawsInPlaceOnlyWhenEnabledAndPastTheDelayThenWipesItself)
{
    std::FILE* f = std::tmpfile();
    {
        ProgressBar bar("reading", f, true, std::chrono::milliseconds(0));
        bar.Update(1, 4);
        bar.Update(4, 4);
    }
    EXPECT_EQ(Written(f), "\rreading [#######.......................] 1/4"
                          "\rreading [##############################] 4/4\r\033[K");
    std::fclose(f);

    for (const bool enabled : {false, true}) {
        std::FILE* g = std::tmpfile();
        {
            ProgressBar bar("meshing", g, enabled, enabled ? std::chrono::milliseconds(60'000) : std::chrono::milliseconds(0));
            bar.Update(3, 4);
            bar.Update(4, 4);
        }
        EXPECT_EQ(Written(g), "") << enabled;  // not a terminal, or not slow enough
        std::fclose(g);
    }
}

}  // namespace
}  // namespace orvane::io
