// SPDX-License-Identifier: MIT
// The members of bsr.
// clang-format off
#define ORK_SPBLAS_PATH(path) #path
#define ORK_SPBLAS_LIST(routine) ORK_SPBLAS_PATH(spblas/members/bsr_##routine.inc)
// clang-format on
#include "spblas/bsr_members.h"
