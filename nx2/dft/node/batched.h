// SPDX-License-Identifier: MIT
// What the tables of a batched plan point to.
#pragma once

#include "dft/primitives/wrappers.h"
#include "ork/abi/dft.h"

namespace ork::dft {

struct BatchPlan {
    const void* plan;
    std::int64_t count; // transforms that it serves at once, or fewer
    std::int64_t work_bytes;
    std::int32_t direction;
};

struct BatchEngine {
    decltype(&ork_dft_nx2_ufx_batch_z) run;
};

// The smallest entry that serves `count` transforms; the last when none does.
inline const BatchPlan& batch_plan(const ork_dft_batched& batched, std::int32_t direction, std::int64_t count)
{
    int i = 0;
    while (i + 1 < batched.sizes && (std::int64_t{1} << i) < count) ++i;
    return *static_cast<const BatchPlan*>((direction == ORK_DFT_FORWARD ? batched.forward : batched.backward)[i]);
}

} // namespace ork::dft
