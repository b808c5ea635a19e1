// SPDX-License-Identifier: MIT
// What stands between the kernels and the core here: stages are noted and can be made to fail, messages are caught as
// numbers and arguments, allocations can fail, those inside the core too.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "ork/abi/pde.h"

namespace ork::test {

struct Hooks {
    std::vector<std::string> stages; // called so far, without prefix and precision
    std::string failing_stage;       // stores `failure` instead of working
    pde::Int failure = 0;
    pde::Int singular = 0; // of the work record that the latest stage got

    std::string printed;      // on standard output
    std::string print_format; // of the latest
    int fail_commit_at = 0;   // 1: the next commit of a Fourier transform fails ...
};
Hooks& hooks();

// Work memory of kernels and stages.
extern std::atomic<int> live_allocations; // stages have threads
extern std::atomic<std::size_t> latest_alignment;

// While it lives, the allocation of this number, counted from 1, gives null.
class FailingAllocation {
public:
    explicit FailingAllocation(int number);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    bool reached() const;
};

} // namespace ork::test
