// SPDX-License-Identifier: MIT
// What is looked at before a call does anything. Each returns an ork_spblas_status.
#pragma once

#include "spblas/call.h"

namespace ork::spblas {

// The arguments alone, in their order.
std::int64_t check_arguments(const Call& call);

// Whether A and B count: neither is read with alpha = 0, and then they may be null.
bool reads_operands(const Call& call);

// What the arrays hold, in checking mode; 0 otherwise. Of a solve in coo format it says nothing of the diagonal.
std::int64_t check_structure(const Call& call);

// That the diagonal of a solve in coo format is there, once sorted. Positions are told if they are the caller's.
std::int64_t check_sorted_diagonal(const Call& sorted, bool callers_arrays);

} // namespace ork::spblas
