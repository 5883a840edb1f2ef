// A progress bar on standard error for work that takes a while: drawn only where a person
// watches (standard error is a terminal) and only once the work has run longer than a second,
// redrawn in place and wiped when the work is done, so that it never mixes with the output.
#pragma once

#include <chrono>
#include <cstdio>
#include <string>

namespace orvane::io {

class ProgressBar {
public:
    // Draws to standard error, when it is a terminal, after one second.
    explicit ProgressBar(std::string Label);
    // Draws to Out when Enabled, after Delay.
    ProgressBar(std::string Label, std::FILE* Out, bool Enabled, std::chrono::milliseconds Delay);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    // Done of Total steps; draws at most ten times a second, and always the last step.
    void Update(int Done, int Total);
    // Wipes the bar; the next update may draw it again under a new label.
    void Finish(const std::string& NextLabel = {});

private:
    using Clock = std::chrono::steady_clock;
    std::string FLabel;
    std::FILE* FOut;
    bool FEnabled;
    std::chrono::milliseconds FDelay;
    Clock::time_point FStart;
    Clock::time_point FLastDraw{};
    bool FDrawn = false;
};

}  // namespace orvane::io
