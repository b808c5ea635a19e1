/* SPDX-License-Identifier: MIT */
/* LAPACK for dense matrices of any order: LU, Cholesky, QR, and the solutions and inverses that follow from them.
   A routine, dgetrf say, has two widths of integers and a name for each:
     ork_lapack_lp64_dgetrf   32-bit (LP64)
     ork_lapack_dgetrf        64-bit (ILP64)
   Arguments, results and info are LAPACK's: everything by address, matrices by columns with a leading dimension,
   rows, columns, pivots and info counted from 1. info = 0 is success, info = -i: argument i is illegal, which is
   reported through xerbla_ or xerbla_64_ (ork/blas.h) before anything is touched. Fortran's hidden lengths of letters
   may be passed or not.

   work has lwork elements, at least n for getri, getrinp, geqrf and orgqr; for ormqr n with side L and m with side R.
   More doesn't make them faster. With lwork = -1 that number is stored in work(1) and nothing else is done.

   liblapack_ork.so.3 has the same routines under LAPACK's own names, dgetrf_, with 32-bit integers. Many small matrices
   of one size at once: ork/lapack_compact.h. */
#ifndef ORK_LAPACK_H
#define ORK_LAPACK_H

#include <stdint.h>

#include "ork/lapack_compact.h"
#include "ork/types.h"

ORK_BEGIN_DECLS

#define ORK_INT int32_t
#define ORK_NAME(routine) ork_lapack_lp64_##routine
#include "ork/lapack_routines.h"
#undef ORK_NAME
#undef ORK_INT

#define ORK_INT int64_t
#define ORK_NAME(routine) ork_lapack_##routine
#include "ork/lapack_routines.h"
#undef ORK_NAME
#undef ORK_INT

ORK_END_DECLS

#endif
