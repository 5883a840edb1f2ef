#include "io/EveryCore.h"

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace orvane::io {

void OnEveryCore(int Count, const std::function<void(int)>& Work, const std::function<void(int)>& Done, int Threads)
{
    std::atomic<int> next{0}, finished{0};
    int told = 0;
    auto tell = [&](int upTo) {
        while (Done && told < upTo) Done(++told);
    };
    auto run = [&](bool here) {
        for (int i = next++; i < Count; i = next++) {
            Work(i);
            const int total = ++finished;
            if (here) tell(total);
        }
    };
    const int cores = Threads > 0 ? Threads : static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
    const int threads = std::min(Count, cores);
    std::vector<std::thread> helpers;
    for (int t = 1; t < threads; ++t) helpers.emplace_back(run, false);
    run(true);
    for (std::thread& h : helpers) h.join();
    tell(Count);
}

}  // namespace orvane::io
