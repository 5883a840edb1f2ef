// The time limit of a whole run: when it passes, whatever runs (reading, meshing, writing) is
// stopped, the temporary file being written removed and one line says so; exit code 1. A
// watch thread does it, since a face's meshing cannot be asked to stop half way.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace orvane::tools {

class TRunDeadline {
public:
    // Message: the line to print, without the "orvane: " it gets.
    TRunDeadline(double Seconds, std::string Message);
    ~TRunDeadline();
    TRunDeadline(const TRunDeadline&) = delete;
    TRunDeadline& operator=(const TRunDeadline&) = delete;

    double SecondsLeft() const;

private:
    void Watch();

    std::chrono::steady_clock::time_point FEnd;
    std::string FMessage;
    std::mutex FMutex;
    std::condition_variable FWake;
    bool FDone = false;
    std::thread FThread;
};

}  // namespace orvane::tools
