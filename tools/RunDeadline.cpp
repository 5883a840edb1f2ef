#include "tools/RunDeadline.h"

#include <cstdio>
#include <cstdlib>

#include "io/AtomicFile.h"
#include "tools/Options.h"

namespace orvane::tools {

TRunDeadline::TRunDeadline(double Seconds, std::string Message)
    : FEnd(std::chrono::steady_clock::now() +
           std::chrono::duration_cast<std::chrono::steady_clock::duration>(std::chrono::duration<double>(Seconds))),
      FMessage(std::move(Message)),
      FThread([this] { Watch(); })
{
}

TRunDeadline::~TRunDeadline()
{
    {
        const std::lock_guard<std::mutex> lock(FMutex);
        FDone = true;
    }
    FWake.notify_all();
    FThread.join();
}

double TRunDeadline::SecondsLeft() const
{
    return std::chrono::duration<double>(FEnd - std::chrono::steady_clock::now()).count();
}

void TRunDeadline::Watch()
{
    std::unique_lock<std::mutex> lock(FMutex);
    if (FWake.wait_until(lock, FEnd, [this] { return FDone; })) return;
    std::fprintf(stderr, "orvane: %s\n", FMessage.c_str());
    io::RemovePendingTemporaries();
    std::_Exit(kExitFailed);  // a reading child dies with this process
}

}  // namespace orvane::tools
