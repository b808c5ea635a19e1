// SPDX-License-Identifier: MIT
// Extra-precise products for Fortran programs with 32-bit integers.
#include <cstdint>

using Int = std::int32_t;

#define ORK_ENTRY(routine) blas_##routine##_
#include "xblas/fortran_entries.inc"
