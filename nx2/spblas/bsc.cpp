// SPDX-License-Identifier: MIT
// The members of bsc: those of bsr for the transposed matrix.
// clang-format off
#define ORK_SPBLAS_PATH(path) #path
#define ORK_SPBLAS_LIST(routine) ORK_SPBLAS_PATH(spblas/members/bsc_##routine.inc)
// clang-format on
#include "spblas/bsr_members.h"
