// SPDX-License-Identifier: MIT
// Transforms of one length each, 1 to 64, of contiguous complex numbers. in and out are equal or apart: a kernel has
// loaded everything before it stores anything. Nothing is scaled; plan and argument are not used; the result is 0.
#pragma once

#include <array>
#include <cstdint>

#include "dft/plan.h"

namespace ork::dft {

using LengthKernel = std::int32_t (*)(const void* in, void* out, const void* plan, void* argument);

inline constexpr int longest_kernel = 64;

// By length; there is none for 0.
template <class R>
struct LengthKernels {
    using Table = std::array<LengthKernel, longest_kernel + 1>;
    static const Table forward, backward;
};

// kernel.h defines them, and only the objects that are to hold them include it.
template <class R, int n, Direction direction>
std::int32_t length_kernel(const void* in, void* out, const void* plan, void* argument);

} // namespace ork::dft
