// SPDX-License-Identifier: MIT
// The BLAS for Fortran programs with 64-bit integers: daxpy_64_, also called ork_blas_daxpy.
#include <cstdint>

using Int = std::int64_t;

#define ORK_ENTRY(routine) ork_blas_##routine
#define ORK_SHORT(routine) routine##_64_
#include "blas/fortran_entries.inc"
