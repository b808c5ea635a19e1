// SPDX-License-Identifier: MIT
#include "export.h"
#include "ork/abi/core_conv.h"
#include "threads/pool.h"

// The pool counts parts in 32 bits.
ORK_EXPORT void ork_conv_do_parallel(int64_t parts, void (*part)(void* context, int64_t k), void* context)
{
    constexpr int64_t most = 1 << 30;
    for (int64_t done = 0; done < parts; done += most) {
        const int64_t now = parts - done < most ? parts - done : most;
        ork::threads::run(static_cast<int>(now), [&](int k) { part(context, done + k); });
    }
}
