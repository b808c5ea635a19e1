// SPDX-License-Identifier: MIT
// A committed node computed by several threads: stage by stage, the units of a stage divided among them.
#pragma once

#include "dft/descriptor.h"

namespace ork::dft {

// A call takes a thread for each so many operations (5 n log2 n a transform; half of it for real data). Below, waking
// it takes longer than it saves; and a transform divided into stages goes through memory where one thread stays in its
// caches. Time of one thread over time of two, AMD family 26, double precision, in runs whose figures fell into two
// groups: 256 x 256 1.78 or 0.80, vectors of 2^14 1.61 or 0.71, 2^16 1.79 or 0.90, 2^20 1.88 or 1.75.
constexpr double operations_per_thread = 500'000, staged_operations_per_thread = 4'500'000;

// As many threads as a computation may use and is long enough for.
int useful_threads(const Parameters& parameters, const ork_dft_node& node);

// Up to `threads`; 1, or no memory for what stages share: on the calling thread alone.
std::int32_t compute(ork_dft_node* node, Direction direction, void* const* arrays, int threads);

// The status of the public interface for a kernel's.
std::int64_t status_of_kernel(std::int32_t status);

} // namespace ork::dft
