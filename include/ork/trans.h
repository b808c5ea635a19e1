/* SPDX-License-Identifier: MIT */
/* Matrices copied, scaled, conjugated, transposed and added, out of place, in place and in batches.

       cblas_domatcopy(CblasRowMajor, CblasTrans, rows, cols, 1, a, cols, b, rows);       // B <- A^T
       cblas_zimatcopy(CblasColMajor, CblasConjTrans, n, n, &alpha, a, n, n);             // A <- alpha A^H

   NAMES. A routine, domatcopy say, has two bindings and two widths of integers:
     Fortran   domatcopy_       = ork_blas_lp64_domatcopy                               32-bit (LP64)
               domatcopy_64_    = ork_blas_domatcopy                                    64-bit (ILP64)
     C         cblas_domatcopy  = ork_cblas_lp64_domatcopy                              32-bit
               cblas_domatcopy64_ = cblas_domatcopy_64 = ork_cblas_domatcopy            64-bit
   The first letter is s float, d double, c ork_complex_float or z ork_complex_double. Fortran's hidden lengths of
   letters may be passed or not.

   ARGUMENTS. ordering: C or CblasColMajor, the matrices stand by columns, R or CblasRowMajor, by rows; it holds for all
   of a call. trans makes op(A): N or CblasNoTrans A, T or CblasTrans A^T, C or CblasConjTrans conj(A)^T, R or
   CblasConjNoTrans conj(A); for real types R is N and C is T. Letters may be of either case. rows and cols are those of
   A as it is stored, in omatadd those of C. A leading dimension counts elements from a column to the next, or from a
   row, and is at least the number of elements that one has. Elements between columns or rows are not touched.

   FACTORS. Elements are copied as bits where alpha is one, and multiplied by alpha otherwise, also by zero: NaN stays
   NaN. omatadd does not read what has a factor of zero.

   OVERLAP. Out of place A and B do not overlap. C of omatadd may be the array of A, of B or of both if they have its
   leading dimension. In place nothing is read or written but the elements of the two matrices, and no memory is taken.

   ERRORS. A wrong argument is reported once by its position in the list, through xerbla_ or xerbla_64_ (Fortran),
   cblas_xerbla or cblas_xerbla64_ (C; see ork/blas.h and ork/cblas.h), and nothing is touched. Sizes of zero are legal.

   BITS. The results are the same bits for every number of threads. */
#ifndef ORK_TRANS_H
#define ORK_TRANS_H

#include <stdint.h>

#include "ork/cblas.h"
#include "ork/types.h"

ORK_BEGIN_DECLS

#define ORK_ROUTINES "ork/trans_routines.h"
#define ORK_INT int32_t
#define ORK_NAME(routine) routine##_
#include "ork/trans_precisions.h"
#undef ORK_NAME
#define ORK_NAME(routine) ork_blas_lp64_##routine
#include "ork/trans_precisions.h"
#undef ORK_NAME
#undef ORK_INT

#define ORK_INT int64_t
#define ORK_NAME(routine) routine##_64_
#include "ork/trans_precisions.h"
#undef ORK_NAME
#define ORK_NAME(routine) ork_blas_##routine
#include "ork/trans_precisions.h"
#undef ORK_NAME
#undef ORK_INT
#undef ORK_ROUTINES

#define ORK_ROUTINES "ork/trans_cblas_routines.h"
#define ORK_INT int32_t
#define ORK_NAME(routine) cblas_##routine
#include "ork/trans_precisions.h"
#undef ORK_NAME
#define ORK_NAME(routine) ork_cblas_lp64_##routine
#include "ork/trans_precisions.h"
#undef ORK_NAME
#undef ORK_INT

#define ORK_INT int64_t
#define ORK_NAME(routine) cblas_##routine##64_
#include "ork/trans_precisions.h"
#undef ORK_NAME
#define ORK_NAME(routine) cblas_##routine##_64
#include "ork/trans_precisions.h"
#undef ORK_NAME
#define ORK_NAME(routine) ork_cblas_##routine
#include "ork/trans_precisions.h"
#undef ORK_NAME
#undef ORK_INT
#undef ORK_ROUTINES

ORK_END_DECLS

#endif
