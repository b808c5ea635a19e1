// SPDX-License-Identifier: MIT
// What is looked at before a call does anything. Each returns an ork_spblas_status.
#pragma once

#include "spblas/call.h"

namespace ork::spblas {

struct Check {
    std::int64_t status;
    bool reads; // A and B; with alpha = 0 they are not read and may be null
};

// The arguments alone, in their order.
Check check_arguments(const Call& call);

// The same for a function of compressed rows that has names of its own, and in checking mode the structure.
std::int64_t check_rows(const Call& call, int base);
// An array with a number for each row or column.
std::int64_t check_array(const Call& call, const char* name, const void* array);

// What the arrays hold, in checking mode; 0 otherwise. Of a solve in coo format it says nothing of the diagonal.
std::int64_t check_structure(const Call& call);

// That the diagonal of a solve in coo format is there, once sorted. Positions are told if they are the caller's.
std::int64_t check_sorted_diagonal(const Call& sorted, bool callers_arrays);

} // namespace ork::spblas
