// SPDX-License-Identifier: MIT
// A committed node computed by several threads: stage by stage, the units of a stage divided among them.
#pragma once

#include "dft/descriptor.h"

namespace ork::dft {

// A call takes a thread for each so many operations (5 n log2 n a transform): below, waking it takes longer.
constexpr double operations_per_thread = 250'000;

// As many threads as a computation may use and is long enough for.
int useful_threads(const Parameters& parameters, const ork_dft_node& node);

// Up to `threads`; 1, or no memory for what stages share: on the calling thread alone.
std::int32_t compute(ork_dft_node* node, Direction direction, void* const* arrays, int threads);

// The status of the public interface for a kernel's.
std::int64_t status_of_kernel(std::int32_t status);

} // namespace ork::dft
