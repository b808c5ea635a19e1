// SPDX-License-Identifier: MIT
// Extra-precise products for C programs with 64-bit integers.
#include <cstdint>

using Int = std::int64_t;

#define ORK_ENTRY(routine) BLAS_##routine##_64
#include "xblas/c_entries.inc"
