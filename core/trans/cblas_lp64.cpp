// SPDX-License-Identifier: MIT
// For C programs with 32-bit integers: cblas_domatcopy, also called ork_cblas_lp64_domatcopy.
#include "trans/entries.h"

static constexpr Binding binding = Binding::cblas_lp64;
#define ORK_INT std::int32_t
#define ORK_NAME(routine) ork_cblas_lp64_##routine
#define ORK_ROUTINES "trans/cblas_entries.inc"
#include "ork/trans_precisions.h"

#define ROUTINE(routine) ORK_ALIAS(cblas_##routine, ork_cblas_lp64_##routine)
#include "trans/routines.inc"
