// SPDX-License-Identifier: MIT
// Extra-precise products for Fortran programs with 64-bit integers.
#include <cstdint>

using Int = std::int64_t;

#define ORK_ENTRY(routine) blas_##routine##_64_
#include "xblas/fortran_entries.inc"
