// SPDX-License-Identifier: MIT
// What this program puts in the place of the core's: memory that runs out when told to, and a count of the threaded
// runs.
#pragma once

#include <atomic>

namespace ork::test {

struct ReplacedCore {
    std::atomic<int> allocations_left = -1; // negative: as many as are wanted
    std::atomic<int> allocations = 0;       // asked for
    std::atomic<int> blocks = 0;            // alive
    std::atomic<int> parallel_runs = 0;

    void reset() { allocations_left = -1, allocations = parallel_runs = 0; }
};
ReplacedCore& replaced_core();

} // namespace ork::test
