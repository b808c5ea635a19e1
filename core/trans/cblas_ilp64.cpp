// SPDX-License-Identifier: MIT
// For C programs with 64-bit integers: cblas_domatcopy64_ and cblas_domatcopy_64, also called ork_cblas_domatcopy.
#include "trans/entries.h"

static constexpr Binding binding = Binding::cblas_ilp64;
#define ORK_INT std::int64_t
#define ORK_NAME(routine) ork_cblas_##routine
#define ORK_ROUTINES "trans/cblas_entries.inc"
#include "ork/trans_precisions.h"

#define ROUTINE(routine)                                                                                               \
    ORK_ALIAS(cblas_##routine##64_, ork_cblas_##routine)                                                               \
    ORK_ALIAS(cblas_##routine##_64, ork_cblas_##routine)
#include "trans/routines.inc"
