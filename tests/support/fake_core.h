// SPDX-License-Identifier: MIT
// A core for kernel tests: the services that kernels import, some of which can be made to fail or to answer otherwise.
#pragma once

#include <cstdint>

namespace ork::test {

struct FakeCore {
    int fail_allocation_at = 0;  // 1: the next allocation returns null, 2: the one after it ..., 0: none
    int live_allocations = 0;    // handed out and not yet returned
    int64_t microarchitecture = 0;
    int64_t cache_levels = 3;
    int64_t cache_size = 32 << 20;
};

// The one that this program's kernels talk to; a test that changes it puts it back.
FakeCore& fake_core();

} // namespace ork::test
