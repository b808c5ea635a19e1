/* SPDX-License-Identifier: MIT */
/* The BLAS by Fortran's conventions. A routine, daxpy say, has two widths of integers and two names for each:
     daxpy_     = ork_blas_lp64_daxpy   32-bit (LP64)
     daxpy_64_  = ork_blas_daxpy        64-bit (ILP64)
   The multiplies of narrow elements at the end of the list have the right-hand names only.
   Complex results come in registers, as gfortran returns them. Fortran's hidden lengths of letters may be passed or
   not. */
#ifndef ORK_BLAS_H
#define ORK_BLAS_H

#include <stddef.h>
#include <stdint.h>

#include "ork/types.h"

ORK_BEGIN_DECLS

#define ORK_INT int32_t
#define ORK_NAME(routine) routine##_
#include "ork/blas_routines.h"
#undef ORK_NAME
#define ORK_OWN_NAMES
#define ORK_NAME(routine) ork_blas_lp64_##routine
#include "ork/blas_routines.h"
#undef ORK_OWN_NAMES
#undef ORK_NAME
#undef ORK_INT

#define ORK_INT int64_t
#define ORK_NAME(routine) routine##_64_
#include "ork/blas_routines.h"
#undef ORK_NAME
#define ORK_OWN_NAMES
#define ORK_NAME(routine) ork_blas_##routine
#include "ork/blas_routines.h"
#undef ORK_OWN_NAMES
#undef ORK_NAME
#undef ORK_INT

/* Called with the name (upper case, padded with blanks to six characters) and the 1-based position of an illegal
   argument; the routine then returns without touching its outputs. A program may define either for itself; by default
   both end in the handler that ork_set_xerbla sets, or in a line on standard error. */
void xerbla_(const char* routine, const int32_t* position, size_t length);
void xerbla_64_(const char* routine, const int64_t* position, size_t length);

/* 1 when two letters agree, case apart. */
int32_t lsame_(const char* a, const char* b);
int64_t lsame_64_(const char* a, const char* b);

ORK_END_DECLS

#endif
