/* SPDX-License-Identifier: MIT */
/* Sparse matrices in your own arrays: products with vectors and dense matrices, and triangular solves.

       // 3 x 3, compressed rows, from 0:  [ 4 . 1 ]
       //                                  [ . 2 . ]
       //                                  [ 1 . 3 ]
       const double val[] = {4, 1, 2, 1, 3};
       const int64_t indx[] = {0, 2, 1, 0, 2}, ia[] = {0, 2, 3, 5};
       const ork_spblas_kind general = {ORK_SPBLAS_GENERAL}; // what is left out is 0: base 0
       if (ork_spblas_dcsrmv(ORK_SPBLAS_NO_TRANS, general, 3, 3, 1.0, val, indx, ia, ia + 1, x, 0.0, y) != 0)
           puts(ork_spblas_last_error()->text);

   NAMES. ork_spblas_<letter><format><routine> has 64-bit integers, ork_spblas_lp64_<letter><format><routine> 32-bit:

       letter    s float, d double, c ork_complex_float, z ork_complex_double
       format    csr coo bsr bsc dia sky
       routine   mv  y = alpha op(A) x + beta y
                 mm  C = alpha op(A) B + beta C
                 sv  y = alpha op(A)^-1 x             x and y may be the same array
                 sm  C = alpha op(A)^-1 B             B and C may be the same array

   A is m x n. Real scalars are values, complex ones addresses. With beta = 0 the output is not read; with alpha = 0
   neither A nor x is. op(A) is A, its transpose, its conjugate transpose or its conjugate; real numbers are their own
   conjugates. A product with an empty A is beta y.

   FORMATS. Indices and pointers are of the width of the name. Row and column numbers count from 0 or from 1 as the
   kind's base says; positions in the arrays are written as C has them.

       csr  val, indx, pntrb, pntre      Row i holds val[k] in column indx[k] for
                                         pntrb[i] - pntrb[0] <= k < pntre[i] - pntrb[0]. Pointers may start at any
                                         number; rows may have gaps between them. Of the form with one pointer
                                         array, ia of m + 1 numbers, pass ia and ia + 1.
       coo  val, rowind, colind, nnz     val[k] in row rowind[k] and column colind[k], k = 0 .. nnz - 1, in any order.
       bsr  lb, val, indx, pntrb, pntre  csr of square blocks of order lb: m, n, indx, pntrb and pntre count blocks,
                                         and a block is lb * lb adjacent numbers. A has m * lb rows and n * lb columns.
       bsc  lb, val, indx, pntrb, pntre  The same by columns: pntrb and pntre have n numbers, indx holds block rows.
       dia  val, lval, idiag, ndiag      Diagonal k, idiag[k] above the main one: A(i, i + idiag[k]) = val[i + k * lval]
                                         with i from 0. lval is m or more. What lies outside A is not read.
       sky  val, pntr                    One triangle, m + 1 pointers. Lower: val[pntr[i] - pntr[0]] to
                                         val[pntr[i + 1] - pntr[0] - 1] is row i from its first entry to the diagonal;
                                         upper: column i in the same way.

   Entries of the same place add up in products.

   KINDS. What the arrays stand for: a general matrix; a symmetric, Hermitian or skew one (A' = -A) of which one
   triangle is read; a triangular one, of which that triangle is all; a diagonal one, of which the diagonal is read.
   Entries outside of the triangle are ignored (csrmv: must be finite if the matrix is symmetric or Hermitian and its
   diagonal unit). With a unit diagonal ones stand for what is stored. All but general ones
   must be square; a Hermitian one is complex; skyline holds no general one. A skew matrix has no diagonal, so diag is
   ignored. Solves are for triangular and diagonal matrices. They want the rows of csr and bsr sorted by column and the
   columns of bsc by row, with each diagonal entry once unless ones are taken for it; entries of coo may have any order,
   but are sorted into new memory then.

   DENSE MATRICES. Element (r, j) is b[r * ldb + j] in row-major and b[j * ldb + r] in column-major layout. The blocks
   of bsr and bsc in mm and sm have the layout of B and C; in mv and sv they are row-major with base 0 and column-major
   with base 1.

   ERRORS. Every function returns an ork_spblas_status; on failure outputs are as they were. Nothing is printed.
   Arguments are always checked, the contents of arrays in checking mode alone: a wrong index is otherwise undefined
   behaviour.

   THREADS. Several threads may call at once. The same call with the same number of threads gives the same bits. With
   another number it gives other roundings where threads add to the same elements of y: in mv of coo matrices, of
   symmetric, Hermitian and skew ones, of csr and bsr transposed, of bsc not transposed, of dia transposed and of an
   upper skyline not transposed. Everything else has the bits of one thread. */
#ifndef ORK_SPBLAS_H
#define ORK_SPBLAS_H

#include "ork/types.h"

ORK_BEGIN_DECLS

/* In C++ the underlying type is fixed, so that a wrong value is an illegal argument and not undefined behaviour.
   Numbers are those of ork/cblas.h where it has the notion. */
#ifdef __cplusplus
#define ORK_ENUM : int
#else
#define ORK_ENUM
#endif
typedef enum ork_spblas_operation ORK_ENUM {
    ORK_SPBLAS_NO_TRANS = 111,
    ORK_SPBLAS_TRANS = 112,
    ORK_SPBLAS_CONJ_TRANS = 113,
    ORK_SPBLAS_CONJ = 114
} ork_spblas_operation;
typedef enum ork_spblas_type ORK_ENUM {
    ORK_SPBLAS_GENERAL = 0,
    ORK_SPBLAS_SYMMETRIC = 1,
    ORK_SPBLAS_HERMITIAN = 2,
    ORK_SPBLAS_TRIANGULAR = 3,
    ORK_SPBLAS_SKEW = 4,
    ORK_SPBLAS_DIAGONAL = 5
} ork_spblas_type;
typedef enum ork_spblas_uplo ORK_ENUM { ORK_SPBLAS_UPPER = 121, ORK_SPBLAS_LOWER = 122 } ork_spblas_uplo;
typedef enum ork_spblas_diag ORK_ENUM { ORK_SPBLAS_NON_UNIT = 131, ORK_SPBLAS_UNIT = 132 } ork_spblas_diag;
typedef enum ork_spblas_base ORK_ENUM { ORK_SPBLAS_BASE_0 = 0, ORK_SPBLAS_BASE_1 = 1 } ork_spblas_base;
typedef enum ork_spblas_layout ORK_ENUM { ORK_SPBLAS_ROW_MAJOR = 101, ORK_SPBLAS_COL_MAJOR = 102 } ork_spblas_layout;
#undef ORK_ENUM

/* What the arrays of a matrix stand for. */
typedef struct ork_spblas_kind {
    ork_spblas_type type;
    ork_spblas_uplo uplo; /* ignored for general and diagonal */
    ork_spblas_diag diag; /* ignored for general and skew */
    ork_spblas_base base;
} ork_spblas_kind;

enum ork_spblas_status {
    ORK_SPBLAS_SUCCESS = 0,
    ORK_SPBLAS_INVALID_ARGUMENT = 1,
    ORK_SPBLAS_INVALID_STRUCTURE = 2, /* found in checking mode */
    ORK_SPBLAS_NO_MEMORY = 3
};

enum { ORK_SPBLAS_TEXT_SIZE = 200 };

typedef struct ork_spblas_error {
    int64_t status;   /* ORK_SPBLAS_SUCCESS when no call has failed */
    int64_t argument; /* position of the wrong argument or array, counted from 1; 0: none */
    int64_t value;    /* of the argument, or of the array's element */
    int64_t row;      /* of structure: the row (bsc, sky upper: the column) counted from the base; -1: none */
    int64_t position; /* of structure: of the element in the array, counted from 0; -1: none */
    char text[ORK_SPBLAS_TEXT_SIZE]; /* "ork_spblas_dcsrmv: indx[17] = 4000 in row 3: columns run from 0 to 3947" */
} ork_spblas_error;

/* The last failure of the calling thread, until its next one. Never null. */
const ork_spblas_error* ork_spblas_last_error(void);

/* Checking mode, 1 or 0, for all threads; ORK_SPARSE_CHECK of the environment sets it at the start, and a negative
   value goes back to the default, 0. Returns the former mode. With 1, each call first looks for indices out of range
   and pointers that run backwards, a solve also for rows that are not sorted and for diagonal entries that are missing,
   double or zero. */
int ork_spblas_set_checking(int mode);

/* The functions, for each width and precision; the list ends the definitions. */
#define ORK_INT int32_t
#define ORK_NAME(routine) ork_spblas_lp64_s##routine
#define ORK_ELEMENT float
#define ORK_SCALAR float
#include "ork/spblas_routines.h"

#define ORK_INT int32_t
#define ORK_NAME(routine) ork_spblas_lp64_d##routine
#define ORK_ELEMENT double
#define ORK_SCALAR double
#include "ork/spblas_routines.h"

#define ORK_INT int32_t
#define ORK_NAME(routine) ork_spblas_lp64_c##routine
#define ORK_ELEMENT void
#define ORK_SCALAR const void*
#include "ork/spblas_routines.h"

#define ORK_INT int32_t
#define ORK_NAME(routine) ork_spblas_lp64_z##routine
#define ORK_ELEMENT void
#define ORK_SCALAR const void*
#include "ork/spblas_routines.h"

#define ORK_INT int64_t
#define ORK_NAME(routine) ork_spblas_s##routine
#define ORK_ELEMENT float
#define ORK_SCALAR float
#include "ork/spblas_routines.h"

#define ORK_INT int64_t
#define ORK_NAME(routine) ork_spblas_d##routine
#define ORK_ELEMENT double
#define ORK_SCALAR double
#include "ork/spblas_routines.h"

#define ORK_INT int64_t
#define ORK_NAME(routine) ork_spblas_c##routine
#define ORK_ELEMENT void
#define ORK_SCALAR const void*
#include "ork/spblas_routines.h"

#define ORK_INT int64_t
#define ORK_NAME(routine) ork_spblas_z##routine
#define ORK_ELEMENT void
#define ORK_SCALAR const void*
#include "ork/spblas_routines.h"

/* y <- A x of a symmetric matrix in three arrays with base 1, of which one triangle is read. */
int64_t ork_spblas_lp64_dcsrsymmvs(ork_spblas_uplo uplo, int32_t m, const double* val, const int32_t* indx,
                                   const int32_t* ia, const double* x, double* y);
int64_t ork_spblas_dcsrsymmvs(ork_spblas_uplo uplo, int64_t m, const double* val, const int64_t* indx,
                              const int64_t* ia, const double* x, double* y);

ORK_END_DECLS

#endif
