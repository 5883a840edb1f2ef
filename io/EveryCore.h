// Work spread over every core of the machine, for the steps of reading and meshing a model
// whose items (faces, solids) are independent of each other.
#pragma once

#include <functional>

namespace orvane::io {

// Runs Work(i) for every i in [0, Count) on Threads threads (0: as many as the machine has),
// the calling thread among them; Done(n) runs on the calling thread for n = 1..Count in order,
// once that many items are done (for a progress bar). Work must not throw.
void OnEveryCore(int Count, const std::function<void(int)>& Work, const std::function<void(int)>& Done = {},
                 int Threads = 0);

}  // namespace orvane::io
