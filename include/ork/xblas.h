/* SPDX-License-Identifier: MIT */
/* Matrix-vector products whose internal precision is chosen by the call: y <- alpha op(A) x + beta y with sums in
   double-double arithmetic (106 bits) and one rounding at the end, or in plain precision. A routine, dgemv_x say, has
     BLAS_dgemv_x       C, 32-bit integers           blas_dgemv_x_       by Fortran's conventions, 32-bit
     BLAS_dgemv_x_64    C, 64-bit integers           blas_dgemv_x_64_    by Fortran's conventions, 64-bit
   In C sizes and real scalars are values, complex scalars and arrays addresses, and the order of storage comes first.
   By Fortran's conventions everything is an address, matrices are stored by columns and no order is given.

   m = 0 is legal, n = 0 is not where there is an m. An illegal argument is reported by name and position through
   xerbla_, or xerbla_64_ for 64-bit integers (ork/blas.h), before anything is touched. With a negative increment the
   first element of a vector is the last in memory. */
#ifndef ORK_XBLAS_H
#define ORK_XBLAS_H

#include <stdint.h>

#include "ork/types.h"

ORK_BEGIN_DECLS

/* In C++ the underlying type is fixed, so that a wrong value is an illegal argument and not undefined behaviour. */
#ifdef __cplusplus
#define ORK_ENUM : int
#else
#define ORK_ENUM
#endif
enum blas_order_type ORK_ENUM { blas_rowmajor = 101, blas_colmajor = 102 };
enum blas_trans_type ORK_ENUM { blas_no_trans = 111, blas_trans = 112, blas_conj_trans = 113 };
enum blas_uplo_type ORK_ENUM { blas_upper = 121, blas_lower = 122 };
/* Of products and sums. Single and indigenous are that of the data; double is that of the data for d and z. */
enum blas_prec_type ORK_ENUM {
    blas_prec_single = 211,
    blas_prec_double = 212,
    blas_prec_indigenous = 213,
    blas_prec_extra = 214
};
#undef ORK_ENUM

#define ORK_INT int32_t
#define ORK_NAME(routine) BLAS_##routine
#include "ork/xblas_routines.h"
#undef ORK_NAME
#define ORK_NAME(routine) blas_##routine##_
#include "ork/xblas_fortran_routines.h"
#undef ORK_NAME
#undef ORK_INT

#define ORK_INT int64_t
#define ORK_NAME(routine) BLAS_##routine##_64
#include "ork/xblas_routines.h"
#undef ORK_NAME
#define ORK_NAME(routine) blas_##routine##_64_
#include "ork/xblas_fortran_routines.h"
#undef ORK_NAME
#undef ORK_INT

ORK_END_DECLS

#endif
