// SPDX-License-Identifier: MIT
// LAPACK for programs with 64-bit integers.
#include <cstdint>

using Int = std::int64_t;

#define ORK_ENTRY(routine) ork_lapack_##routine
#include "lapack/entries.inc"
