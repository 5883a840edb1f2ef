#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "io/EveryCore.h"

namespace orvane::io {
namespace {

TEST(EveryCore, EachItemRunsOnceAndProgressIsToldInOrderOnTheCallingThread)
{
    for (const int count : {0, 1, 7, 1000}) {
        SCOPED_TRACE(count);
        std::vector<std::atomic<int>> runs(static_cast<std::size_t>(count));
        std::vector<int> told;
        const auto caller = std::this_thread::get_id();
        bool elsewhere = false;
        OnEveryCore(
            count, [&](int i) { ++runs[static_cast<std::size_t>(i)]; },
            [&](int n) {
                told.push_back(n);
                elsewhere |= std::this_thread::get_id() != caller;
            });
        for (const auto& r : runs) EXPECT_EQ(r.load(), 1);
        ASSERT_EQ(told.size(), static_cast<std::size_t>(count));
        for (int n = 0; n < count; ++n) EXPECT_EQ(told[static_cast<std::size_t>(n)], n + 1);
        EXPECT_FALSE(elsewhere);
    }
}

}  // namespace
}  // namespace orvane::io
