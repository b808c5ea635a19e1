// SPDX-License-Identifier: MIT
// LAPACK for programs with 32-bit integers.
#include <cstdint>

using Int = std::int32_t;

#define ORK_ENTRY(routine) ork_lapack_lp64_##routine
#include "lapack/entries.inc"
