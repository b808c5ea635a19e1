// SPDX-License-Identifier: MIT
// The BLAS for C programs with 32-bit integers: cblas_ddot, also called ork_cblas_lp64_ddot.
#include <cstdint>

using Int = std::int32_t;

#define ORK_ENTRY(routine) ork_cblas_lp64_##routine
#define ORK_ALIASES(routine) ORK_ALIAS(cblas_##routine, ork_cblas_lp64_##routine)
#include "blas/cblas_entries.inc"
