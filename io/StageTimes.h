// Where a run spends its time: each stage of reading and meshing a model with its wall-clock
// seconds and what it went through, in the order the stages ran.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace orvane::io {

struct StageTime {
    std::string Name;     // "read", "heal", "tessellate", ...
    double Seconds = 0.0;
    long long Count = 0;  // how many of Of the stage went through
    std::string Of;       // "faces", "edges", "triangles", ...
};

using StageTimes = std::vector<StageTime>;

// Times consecutive stages: each Lap ends the stage that began at the lap before (or at the
// clock's start) and records it.
class StageClock {
public:
    explicit StageClock(StageTimes& Into) : FInto(Into) {}
    void Lap(const std::string& Name, long long Count, const std::string& Of)
    {
        const auto now = std::chrono::steady_clock::now();
        FInto.push_back({Name, std::chrono::duration<double>(now - FStart).count(), Count, Of});
        FStart = now;
    }

private:
    StageTimes& FInto;
    std::chrono::steady_clock::time_point FStart = std::chrono::steady_clock::now();
};

// The seconds of the stage called Name, 0 when there is none.
inline double StageSeconds(const StageTimes& Stages, const std::string& Name)
{
    for (const StageTime& s : Stages)
        if (s.Name == Name) return s.Seconds;
    return 0.0;
}

}  // namespace orvane::io
