/* SPDX-License-Identifier: MIT */
/* Sparse matrices behind handles, for one precision: ork/sparse.h includes this list with ORK_NAME, ORK_ELEMENT (void
   for complex numbers) and ORK_SCALAR (an address for complex ones) defined, and says what the arguments are. Each
   returns an ork_sparse_status. */

/* y = alpha op(A) x + beta y. */
int64_t ORK_NAME(mv)(ork_spblas_operation op, ORK_SCALAR alpha, ork_sparse_matrix_t a, ork_sparse_kind kind,
                     const ORK_ELEMENT* x, ORK_SCALAR beta, ORK_ELEMENT* y);
/* The same, and *d = the sum of conj(x_i) y_i with the new y; op(A) is square. */
int64_t ORK_NAME(dotmv)(ork_spblas_operation op, ORK_SCALAR alpha, ork_sparse_matrix_t a, ork_sparse_kind kind,
                        const ORK_ELEMENT* x, ORK_SCALAR beta, ORK_ELEMENT* y, ORK_ELEMENT* d);
/* C = alpha op(A) B + beta C; B and C have `columns` columns. */
int64_t ORK_NAME(mm)(ork_spblas_operation op, ORK_SCALAR alpha, ork_sparse_matrix_t a, ork_sparse_kind kind,
                     ork_spblas_layout layout, const ORK_ELEMENT* b, int64_t columns, int64_t ldb, ORK_SCALAR beta,
                     ORK_ELEMENT* c, int64_t ldc);

/* y = alpha op(A)^-1 x, A triangular or diagonal; x and y may be the same array. Each diagonal entry is stored once and
   is not 0, unless ones are taken for them: INVALID_STRUCTURE with the row otherwise; so in symgs, symgs_mv and sorv.
   What was not analysed for the call looks at the whole diagonal each time, and sv and sm copy rows that are not sorted
   (see ork_sparse_order). */
int64_t ORK_NAME(sv)(ork_spblas_operation op, ORK_SCALAR alpha, ork_sparse_matrix_t a, ork_sparse_kind kind,
                     const ORK_ELEMENT* x, ORK_ELEMENT* y);
/* C = alpha op(A)^-1 B; B and C may be the same array. */
int64_t ORK_NAME(sm)(ork_spblas_operation op, ORK_SCALAR alpha, ork_sparse_matrix_t a, ork_sparse_kind kind,
                     ork_spblas_layout layout, const ORK_ELEMENT* b, int64_t columns, int64_t ldb, ORK_ELEMENT* c,
                     int64_t ldc);

/* One step from x of the symmetric Gauss-Seidel method for A x = alpha b, op(A) = L + D + U:
   (L + D) x1 = alpha b - U x, (U + D) x = alpha b - L x1. An x of zeros is not multiplied, which saves a third of an
   analysed step. */
int64_t ORK_NAME(symgs)(ork_spblas_operation op, ork_sparse_matrix_t a, ork_sparse_kind kind, ORK_SCALAR alpha,
                        const ORK_ELEMENT* b, ORK_ELEMENT* x);
/* The same, and y = op(A) x with the new x. */
int64_t ORK_NAME(symgs_mv)(ork_spblas_operation op, ork_sparse_matrix_t a, ork_sparse_kind kind, ORK_SCALAR alpha,
                           const ORK_ELEMENT* b, ORK_ELEMENT* x, ORK_ELEMENT* y);
/* x = x + ((L + E) E^-1 (E + U))^-1 (b - A x), E the diagonal (of bsr: the diagonal blocks one after the other, in the
   layout of A) and inverse what stands for E^-1. */
int64_t ORK_NAME(lu_smoother)(ork_spblas_operation op, ork_sparse_matrix_t a, ork_sparse_kind kind,
                              const ORK_ELEMENT* diagonal, const ORK_ELEMENT* inverse, ORK_ELEMENT* x,
                              const ORK_ELEMENT* b);
/* One step from alpha x of successive over-relaxation for A x = b, into x; forward:
   (omega L + D) x1 = omega b + ((1 - omega) D - omega U) alpha x. */
int64_t ORK_NAME(sorv)(ork_sparse_sweep sweep, ork_sparse_kind kind, ork_sparse_matrix_t a, ORK_SCALAR omega,
                       ORK_SCALAR alpha, ORK_ELEMENT* x, const ORK_ELEMENT* b);

/* C = alpha op(A) + B, a new handle; csr or bsr, both of one format. */
int64_t ORK_NAME(add)(ork_spblas_operation op, ork_sparse_matrix_t a, ORK_SCALAR alpha, ork_sparse_matrix_t b,
                      ork_sparse_matrix_t* c);
/* C = alpha opA(A) opB(B) + beta C, C dense. */
int64_t ORK_NAME(spmmd)(ork_spblas_operation op_a, ork_sparse_matrix_t a, ork_spblas_operation op_b,
                        ork_sparse_matrix_t b, ORK_SCALAR alpha, ORK_SCALAR beta, ork_spblas_layout layout,
                        ORK_ELEMENT* c, int64_t ldc);
/* The upper triangle of C = alpha A A^H + beta C (no transposition) or alpha A^H A + beta C, C dense. */
int64_t ORK_NAME(syrkd)(ork_spblas_operation op, ork_sparse_matrix_t a, ORK_SCALAR alpha, ORK_SCALAR beta,
                        ork_spblas_layout layout, ORK_ELEMENT* c, int64_t ldc);
/* The upper triangle of C = alpha A B A^H + beta C (no transposition) or alpha A^H B A + beta C; B, of which the upper
   triangle is read, and C dense. */
int64_t ORK_NAME(syprd)(ork_spblas_operation op, ork_sparse_matrix_t a, const ORK_ELEMENT* b,
                        ork_spblas_layout layout_b, int64_t ldb, ORK_SCALAR alpha, ORK_SCALAR beta, ORK_ELEMENT* c,
                        ork_spblas_layout layout_c, int64_t ldc);

/* The value of an entry that is stored, counted from the base; of a repeated place the first. INVALID_ARGUMENT when
   there is none. */
int64_t ORK_NAME(set_value)(ork_sparse_matrix_t a, int64_t row, int64_t column, ORK_SCALAR value);

#define ORK_INT int32_t
#define ORK_SIZED(routine) ORK_NAME(routine##_i4)
#include "ork/sparse_creation.h"

#define ORK_INT int64_t
#define ORK_SIZED(routine) ORK_NAME(routine##_i8)
#include "ork/sparse_creation.h"

#undef ORK_NAME
#undef ORK_ELEMENT
#undef ORK_SCALAR
