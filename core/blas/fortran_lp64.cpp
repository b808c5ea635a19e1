// SPDX-License-Identifier: MIT
// The BLAS for Fortran programs with 32-bit integers: daxpy_, also called ork_blas_lp64_daxpy.
#include <cstdint>

using Int = std::int32_t;

#define ORK_ENTRY(routine) ork_blas_lp64_##routine
#define ORK_SHORT(routine) routine##_
#include "blas/fortran_entries.inc"
