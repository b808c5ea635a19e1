// SPDX-License-Identifier: MIT
// The BLAS for C programs with 64-bit integers: cblas_ddot64_ and cblas_ddot_64, also called ork_cblas_ddot.
#include <cstdint>

using Int = std::int64_t;

#define ORK_ENTRY(routine) ork_cblas_##routine
#define ORK_ALIASES(routine)                                                                                           \
    ORK_ALIAS(cblas_##routine##64_, ork_cblas_##routine)                                                               \
    ORK_ALIAS(cblas_##routine##_64, ork_cblas_##routine)
#include "blas/cblas_entries.inc"
