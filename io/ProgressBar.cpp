#include "io/ProgressBar.h"

#include <unistd.h>

namespace orvane::io {
namespace {

constexpr int kWidth = 30;  // characters of the bar itself

}  // namespace

ProgressBar::ProgressBar(std::string Label)
    : ProgressBar(std::move(Label), stderr, ::isatty(STDERR_FILENO) == 1, std::chrono::seconds(1))
{
}

ProgressBar::ProgressBar(std::string Label, std::FILE* Out, bool Enabled, std::chrono::milliseconds Delay)
    : FLabel(std::move(Label)), FOut(Out), FEnabled(Enabled), FDelay(Delay), FStart(Clock::now())
{
}

ProgressBar::~ProgressBar()
{
    Finish();
}

void ProgressBar::Update(int Done, int Total)
{
    if (!FEnabled || Total <= 0) return;
    const auto now = Clock::now();
    if (now - FStart < FDelay) return;
    if (FDrawn && Done < Total && now - FLastDraw < std::chrono::milliseconds(100)) return;
    const int filled = static_cast<int>(static_cast<long long>(kWidth) * std::min(Done, Total) / Total);
    std::fprintf(FOut, "\r%s [%s%s] %d/%d", FLabel.c_str(), std::string(static_cast<std::size_t>(filled), '#').c_str(),
                 std::string(static_cast<std::size_t>(kWidth - filled), '.').c_str(), Done, Total);
    std::fflush(FOut);
    FDrawn = true;
    FLastDraw = now;
}

void ProgressBar::Finish(const std::string& NextLabel)
{
    if (FDrawn) {
        std::fputs("\r\033[K", FOut);
        std::fflush(FOut);
        FDrawn = false;
    }
    if (!NextLabel.empty()) FLabel = NextLabel;
}

}  // namespace orvane::io
