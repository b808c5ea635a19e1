// SPDX-License-Identifier: MIT
// Extra-precise products for C programs with 32-bit integers.
#include <cstdint>

using Int = std::int32_t;

#define ORK_ENTRY(routine) BLAS_##routine
#include "xblas/c_entries.inc"
