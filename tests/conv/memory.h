// SPDX-License-Identifier: MIT
// This program's own ork_serv_malloc and ork_serv_free, which kernels take before the core's: allocations can fail, and
// what was not freed is counted.
#pragma once

#include <atomic>

namespace ork::test {

struct Memory {
    std::atomic<int> fail_at = 0; // 1: the next allocation gives null, 2: the one after it ..., 0: none
    std::atomic<int> live = 0;    // handed out and not yet freed
};
Memory& memory();

} // namespace ork::test
