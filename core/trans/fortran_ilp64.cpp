// SPDX-License-Identifier: MIT
// For Fortran programs with 64-bit integers: domatcopy_64_, also called ork_blas_domatcopy.
#include "trans/entries.h"

static constexpr Binding binding = Binding::fortran_ilp64;
#define ORK_INT std::int64_t
#define ORK_NAME(routine) ork_blas_##routine
#define ORK_ROUTINES "trans/fortran_entries.inc"
#include "ork/trans_precisions.h"

#define ROUTINE(routine) ORK_ALIAS(routine##_64_, ork_blas_##routine)
#include "trans/routines.inc"
