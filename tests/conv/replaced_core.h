// SPDX-License-Identifier: MIT
// What this program puts in the place of the core's: memory that runs out and Fourier transforms that fail when told
// to, and a count of the threaded runs.
#pragma once

#include <atomic>

namespace ork::test {

struct ReplacedCore {
    std::atomic<int> allocations_left = -1; // negative: as many as are wanted
    std::atomic<int> allocations = 0;       // asked for
    std::atomic<int> blocks = 0;            // alive
    std::atomic<int> transforms_left = -1;  // calls to transforms that succeed; negative: all
    std::atomic<int> transform_calls = 0;
    std::atomic<int> descriptors = 0; // alive
    std::atomic<int> parallel_runs = 0;

    void reset() { allocations_left = transforms_left = -1, allocations = transform_calls = parallel_runs = 0; }
};
ReplacedCore& replaced_core();

} // namespace ork::test
