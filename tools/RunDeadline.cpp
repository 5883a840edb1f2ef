#include "tools/RunDeadline.h"

#include <signal.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cmath>
#include <cstring>

#include "io/AtomicFile.h"
#include "tools/Options.h"

namespace orvane::tools {
namespace {

// What the signal handler prints; a handler can reach only what is static.
std::array<char, 2048> gLine{};
std::size_t gLineLength = 0;

void Expired(int)
{
    (void)!::write(STDERR_FILENO, gLine.data(), gLineLength);
    io::RemovePendingTemporaries();
    ::_exit(kExitFailed);  // a reading child dies with this process
}

double Now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void SetTimer(double seconds)
{
    itimerval timer{};
    timer.it_value.tv_sec = static_cast<time_t>(std::floor(seconds));
    timer.it_value.tv_usec = static_cast<suseconds_t>((seconds - std::floor(seconds)) * 1e6);
    if (seconds > 0.0 && timer.it_value.tv_sec == 0 && timer.it_value.tv_usec == 0) timer.it_value.tv_usec = 1;
    ::setitimer(ITIMER_REAL, &timer, nullptr);
}

}  // namespace

TRunDeadline::TRunDeadline(double Seconds, const std::string& Message) : FEnd(Now() + Seconds)
{
    const std::string line = "orvane: " + Message.substr(0, gLine.size() - 10) + "\n";
    std::memcpy(gLine.data(), line.data(), line.size());
    gLineLength = line.size();
    struct sigaction action {};
    action.sa_handler = Expired;
    ::sigemptyset(&action.sa_mask);
    ::sigaction(SIGALRM, &action, nullptr);
    SetTimer(Seconds);
}

TRunDeadline::~TRunDeadline()
{
    SetTimer(0.0);
    ::signal(SIGALRM, SIG_DFL);
}

double TRunDeadline::SecondsLeft() const
{
    return FEnd - Now();
}

}  // namespace orvane::tools
