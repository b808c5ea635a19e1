// SPDX-License-Identifier: MIT
// For Fortran programs with 32-bit integers: domatcopy_, also called ork_blas_lp64_domatcopy.
#include "trans/entries.h"

static constexpr Binding binding = Binding::fortran_lp64;
#define ORK_INT std::int32_t
#define ORK_NAME(routine) ork_blas_lp64_##routine
#define ORK_ROUTINES "trans/fortran_entries.inc"
#include "ork/trans_precisions.h"

#define ROUTINE(routine) ORK_ALIAS(routine##_, ork_blas_lp64_##routine)
#include "trans/routines.inc"
