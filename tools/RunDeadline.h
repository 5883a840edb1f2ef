// The time limit of a whole run: when it passes, whatever runs (reading, meshing, writing) is
// stopped, the temporary file being written removed and one line says so; exit code 1. A timer
// signal does it, since a face's meshing cannot be asked to stop half way; a thread would not
// do, as the reader is forked while it runs.
#pragma once

#include <string>

namespace orvane::tools {

class TRunDeadline {
public:
    // Message: the line to print, without the "orvane: " it gets. One deadline at a time.
    TRunDeadline(double Seconds, const std::string& Message);
    ~TRunDeadline();
    TRunDeadline(const TRunDeadline&) = delete;
    TRunDeadline& operator=(const TRunDeadline&) = delete;

    double SecondsLeft() const;

private:
    double FEnd;  // seconds on the monotonic clock
};

}  // namespace orvane::tools
