/* SPDX-License-Identifier: MIT */
/* The BLAS by C's conventions. A routine, ddot say, has two widths of integers:
     cblas_ddot    = ork_cblas_lp64_ddot                   32-bit (LP64)
     cblas_ddot64_ = cblas_ddot_64 = ork_cblas_ddot        64-bit (ILP64) */
#ifndef ORK_CBLAS_H
#define ORK_CBLAS_H

#include <stddef.h>
#include <stdint.h>

#include "ork/types.h"

ORK_BEGIN_DECLS

/* In C++ the underlying type is fixed, so that a wrong value is an illegal argument and not undefined behaviour. */
#ifdef __cplusplus
#define ORK_ENUM : int
#else
#define ORK_ENUM
#endif
typedef enum CBLAS_LAYOUT ORK_ENUM { CblasRowMajor = 101, CblasColMajor = 102 } CBLAS_LAYOUT;
typedef enum CBLAS_TRANSPOSE ORK_ENUM {
    CblasNoTrans = 111,
    CblasTrans = 112,
    CblasConjTrans = 113,
    CblasConjNoTrans = 114 /* in ork/trans.h only */
} CBLAS_TRANSPOSE;
typedef enum CBLAS_UPLO ORK_ENUM { CblasUpper = 121, CblasLower = 122 } CBLAS_UPLO;
typedef enum CBLAS_DIAG ORK_ENUM { CblasNonUnit = 131, CblasUnit = 132 } CBLAS_DIAG;
typedef enum CBLAS_SIDE ORK_ENUM { CblasLeft = 141, CblasRight = 142 } CBLAS_SIDE;
#undef ORK_ENUM
#define CBLAS_ORDER CBLAS_LAYOUT
#define CBLAS_INDEX size_t

#define ORK_INT int32_t
#define ORK_NAME(routine) cblas_##routine
#include "ork/cblas_routines.h"
#undef ORK_NAME
#define ORK_NAME(routine) ork_cblas_lp64_##routine
#include "ork/cblas_routines.h"
#undef ORK_NAME
#undef ORK_INT

#define ORK_INT int64_t
#define ORK_NAME(routine) cblas_##routine##64_
#include "ork/cblas_routines.h"
#undef ORK_NAME
#define ORK_NAME(routine) cblas_##routine##_64
#include "ork/cblas_routines.h"
#undef ORK_NAME
#define ORK_NAME(routine) ork_cblas_##routine
#include "ork/cblas_routines.h"
#undef ORK_NAME
#undef ORK_INT

/* Called with the 1-based position of an illegal argument and the name of the routine; the routine then returns without
   touching its outputs. A program may define either for itself; by default both go the way of xerbla_. `form` and what
   follows may add a text as for printf. */
void cblas_xerbla(int32_t position, const char* routine, const char* form, ...);
void cblas_xerbla64_(int64_t position, const char* routine, const char* form, ...);

/* Words that testers written for the reference look at. RowMajorStrg is 0 in cblas_xerbla, because positions are those
   that the caller counts. */
extern int RowMajorStrg;
extern int CBLAS_CallFromC;

ORK_END_DECLS

#endif
