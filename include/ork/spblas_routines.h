/* SPDX-License-Identifier: MIT */
/* Sparse matrices by dense ones, for one precision and one width of integers: ork/spblas.h includes this list with
   ORK_INT, ORK_NAME, ORK_ELEMENT (void for complex numbers) and ORK_SCALAR (an address for complex ones) defined, and
   says what the arguments are. Each returns an ork_spblas_status. */

/* y <- alpha op(A) x + beta y. */
int64_t ORK_NAME(csrmv)(ork_spblas_operation op, ork_spblas_kind kind, ORK_INT m, ORK_INT n, ORK_SCALAR alpha,
                        const ORK_ELEMENT* val, const ORK_INT* indx, const ORK_INT* pntrb, const ORK_INT* pntre,
                        const ORK_ELEMENT* x, ORK_SCALAR beta, ORK_ELEMENT* y);
int64_t ORK_NAME(coomv)(ork_spblas_operation op, ork_spblas_kind kind, ORK_INT m, ORK_INT n, ORK_SCALAR alpha,
                        const ORK_ELEMENT* val, const ORK_INT* rowind, const ORK_INT* colind, ORK_INT nnz,
                        const ORK_ELEMENT* x, ORK_SCALAR beta, ORK_ELEMENT* y);
int64_t ORK_NAME(bsrmv)(ork_spblas_operation op, ork_spblas_kind kind, ORK_INT m, ORK_INT n, ORK_SCALAR alpha,
                        ORK_INT lb, const ORK_ELEMENT* val, const ORK_INT* indx, const ORK_INT* pntrb,
                        const ORK_INT* pntre, const ORK_ELEMENT* x, ORK_SCALAR beta, ORK_ELEMENT* y);
int64_t ORK_NAME(bscmv)(ork_spblas_operation op, ork_spblas_kind kind, ORK_INT m, ORK_INT n, ORK_SCALAR alpha,
                        ORK_INT lb, const ORK_ELEMENT* val, const ORK_INT* indx, const ORK_INT* pntrb,
                        const ORK_INT* pntre, const ORK_ELEMENT* x, ORK_SCALAR beta, ORK_ELEMENT* y);
int64_t ORK_NAME(diamv)(ork_spblas_operation op, ork_spblas_kind kind, ORK_INT m, ORK_INT n, ORK_SCALAR alpha,
                        const ORK_ELEMENT* val, ORK_INT lval, const ORK_INT* idiag, ORK_INT ndiag, const ORK_ELEMENT* x,
                        ORK_SCALAR beta, ORK_ELEMENT* y);
int64_t ORK_NAME(skymv)(ork_spblas_operation op, ork_spblas_kind kind, ORK_INT m, ORK_INT n, ORK_SCALAR alpha,
                        const ORK_ELEMENT* val, const ORK_INT* pntr, const ORK_ELEMENT* x, ORK_SCALAR beta,
                        ORK_ELEMENT* y);

/* C <- alpha op(A) B + beta C with nrhs columns. */
int64_t ORK_NAME(csrmm)(ork_spblas_operation op, ork_spblas_kind kind, ork_spblas_layout layout, ORK_INT m, ORK_INT n,
                        ORK_INT nrhs, ORK_SCALAR alpha, const ORK_ELEMENT* val, const ORK_INT* indx,
                        const ORK_INT* pntrb, const ORK_INT* pntre, const ORK_ELEMENT* b, ORK_INT ldb, ORK_SCALAR beta,
                        ORK_ELEMENT* c, ORK_INT ldc);
int64_t ORK_NAME(coomm)(ork_spblas_operation op, ork_spblas_kind kind, ork_spblas_layout layout, ORK_INT m, ORK_INT n,
                        ORK_INT nrhs, ORK_SCALAR alpha, const ORK_ELEMENT* val, const ORK_INT* rowind,
                        const ORK_INT* colind, ORK_INT nnz, const ORK_ELEMENT* b, ORK_INT ldb, ORK_SCALAR beta,
                        ORK_ELEMENT* c, ORK_INT ldc);
int64_t ORK_NAME(bsrmm)(ork_spblas_operation op, ork_spblas_kind kind, ork_spblas_layout layout, ORK_INT m, ORK_INT n,
                        ORK_INT nrhs, ORK_SCALAR alpha, ORK_INT lb, const ORK_ELEMENT* val, const ORK_INT* indx,
                        const ORK_INT* pntrb, const ORK_INT* pntre, const ORK_ELEMENT* b, ORK_INT ldb, ORK_SCALAR beta,
                        ORK_ELEMENT* c, ORK_INT ldc);
int64_t ORK_NAME(bscmm)(ork_spblas_operation op, ork_spblas_kind kind, ork_spblas_layout layout, ORK_INT m, ORK_INT n,
                        ORK_INT nrhs, ORK_SCALAR alpha, ORK_INT lb, const ORK_ELEMENT* val, const ORK_INT* indx,
                        const ORK_INT* pntrb, const ORK_INT* pntre, const ORK_ELEMENT* b, ORK_INT ldb, ORK_SCALAR beta,
                        ORK_ELEMENT* c, ORK_INT ldc);
int64_t ORK_NAME(diamm)(ork_spblas_operation op, ork_spblas_kind kind, ork_spblas_layout layout, ORK_INT m, ORK_INT n,
                        ORK_INT nrhs, ORK_SCALAR alpha, const ORK_ELEMENT* val, ORK_INT lval, const ORK_INT* idiag,
                        ORK_INT ndiag, const ORK_ELEMENT* b, ORK_INT ldb, ORK_SCALAR beta, ORK_ELEMENT* c, ORK_INT ldc);
int64_t ORK_NAME(skymm)(ork_spblas_operation op, ork_spblas_kind kind, ork_spblas_layout layout, ORK_INT m, ORK_INT n,
                        ORK_INT nrhs, ORK_SCALAR alpha, const ORK_ELEMENT* val, const ORK_INT* pntr,
                        const ORK_ELEMENT* b, ORK_INT ldb, ORK_SCALAR beta, ORK_ELEMENT* c, ORK_INT ldc);

/* y <- alpha op(A)^-1 x. */
int64_t ORK_NAME(csrsv)(ork_spblas_operation op, ork_spblas_kind kind, ORK_INT m, ORK_INT n, ORK_SCALAR alpha,
                        const ORK_ELEMENT* val, const ORK_INT* indx, const ORK_INT* pntrb, const ORK_INT* pntre,
                        const ORK_ELEMENT* x, ORK_ELEMENT* y);
int64_t ORK_NAME(coosv)(ork_spblas_operation op, ork_spblas_kind kind, ORK_INT m, ORK_INT n, ORK_SCALAR alpha,
                        const ORK_ELEMENT* val, const ORK_INT* rowind, const ORK_INT* colind, ORK_INT nnz,
                        const ORK_ELEMENT* x, ORK_ELEMENT* y);
int64_t ORK_NAME(bsrsv)(ork_spblas_operation op, ork_spblas_kind kind, ORK_INT m, ORK_INT n, ORK_SCALAR alpha,
                        ORK_INT lb, const ORK_ELEMENT* val, const ORK_INT* indx, const ORK_INT* pntrb,
                        const ORK_INT* pntre, const ORK_ELEMENT* x, ORK_ELEMENT* y);
int64_t ORK_NAME(bscsv)(ork_spblas_operation op, ork_spblas_kind kind, ORK_INT m, ORK_INT n, ORK_SCALAR alpha,
                        ORK_INT lb, const ORK_ELEMENT* val, const ORK_INT* indx, const ORK_INT* pntrb,
                        const ORK_INT* pntre, const ORK_ELEMENT* x, ORK_ELEMENT* y);
int64_t ORK_NAME(diasv)(ork_spblas_operation op, ork_spblas_kind kind, ORK_INT m, ORK_INT n, ORK_SCALAR alpha,
                        const ORK_ELEMENT* val, ORK_INT lval, const ORK_INT* idiag, ORK_INT ndiag, const ORK_ELEMENT* x,
                        ORK_ELEMENT* y);
int64_t ORK_NAME(skysv)(ork_spblas_operation op, ork_spblas_kind kind, ORK_INT m, ORK_INT n, ORK_SCALAR alpha,
                        const ORK_ELEMENT* val, const ORK_INT* pntr, const ORK_ELEMENT* x, ORK_ELEMENT* y);

/* C <- alpha op(A)^-1 B with nrhs columns. */
int64_t ORK_NAME(csrsm)(ork_spblas_operation op, ork_spblas_kind kind, ork_spblas_layout layout, ORK_INT m, ORK_INT n,
                        ORK_INT nrhs, ORK_SCALAR alpha, const ORK_ELEMENT* val, const ORK_INT* indx,
                        const ORK_INT* pntrb, const ORK_INT* pntre, const ORK_ELEMENT* b, ORK_INT ldb, ORK_ELEMENT* c,
                        ORK_INT ldc);
int64_t ORK_NAME(coosm)(ork_spblas_operation op, ork_spblas_kind kind, ork_spblas_layout layout, ORK_INT m, ORK_INT n,
                        ORK_INT nrhs, ORK_SCALAR alpha, const ORK_ELEMENT* val, const ORK_INT* rowind,
                        const ORK_INT* colind, ORK_INT nnz, const ORK_ELEMENT* b, ORK_INT ldb, ORK_ELEMENT* c,
                        ORK_INT ldc);
int64_t ORK_NAME(bsrsm)(ork_spblas_operation op, ork_spblas_kind kind, ork_spblas_layout layout, ORK_INT m, ORK_INT n,
                        ORK_INT nrhs, ORK_SCALAR alpha, ORK_INT lb, const ORK_ELEMENT* val, const ORK_INT* indx,
                        const ORK_INT* pntrb, const ORK_INT* pntre, const ORK_ELEMENT* b, ORK_INT ldb, ORK_ELEMENT* c,
                        ORK_INT ldc);
int64_t ORK_NAME(bscsm)(ork_spblas_operation op, ork_spblas_kind kind, ork_spblas_layout layout, ORK_INT m, ORK_INT n,
                        ORK_INT nrhs, ORK_SCALAR alpha, ORK_INT lb, const ORK_ELEMENT* val, const ORK_INT* indx,
                        const ORK_INT* pntrb, const ORK_INT* pntre, const ORK_ELEMENT* b, ORK_INT ldb, ORK_ELEMENT* c,
                        ORK_INT ldc);
int64_t ORK_NAME(diasm)(ork_spblas_operation op, ork_spblas_kind kind, ork_spblas_layout layout, ORK_INT m, ORK_INT n,
                        ORK_INT nrhs, ORK_SCALAR alpha, const ORK_ELEMENT* val, ORK_INT lval, const ORK_INT* idiag,
                        ORK_INT ndiag, const ORK_ELEMENT* b, ORK_INT ldb, ORK_ELEMENT* c, ORK_INT ldc);
int64_t ORK_NAME(skysm)(ork_spblas_operation op, ork_spblas_kind kind, ork_spblas_layout layout, ORK_INT m, ORK_INT n,
                        ORK_INT nrhs, ORK_SCALAR alpha, const ORK_ELEMENT* val, const ORK_INT* pntr,
                        const ORK_ELEMENT* b, ORK_INT ldb, ORK_ELEMENT* c, ORK_INT ldc);

/* What csr has besides. Numbers of rows and columns count from the base, and so do the pointers that are written.
   Matrices in three arrays have one array of pointers, of one number more than there are rows. */

/* y <- A x, of three arrays with base 1; y must not be x. */
int64_t ORK_NAME(csrgemv)(ORK_INT m, ORK_INT n, const ORK_ELEMENT* val, const ORK_INT* indx, const ORK_INT* ia,
                          const ORK_ELEMENT* x, ORK_ELEMENT* y);

/* C <- op(A) B, sparse times sparse into a dense column-major matrix. A is m x n in three arrays; B has the rows that
   op(A) has columns, and k columns. op is ORK_SPBLAS_NO_TRANS or ORK_SPBLAS_TRANS. */
int64_t ORK_NAME(csrmultd)(ork_spblas_operation op, ork_spblas_base base, ORK_INT m, ORK_INT n, ORK_INT k,
                           const ORK_ELEMENT* a, const ORK_INT* ja, const ORK_INT* ia, const ORK_ELEMENT* b,
                           const ORK_INT* jb, const ORK_INT* ib, ORK_ELEMENT* c, ORK_INT ldc);

/* Sorts each of the m rows by column, in place; equal columns stay in their order. */
int64_t ORK_NAME(csrsort)(ork_spblas_base base, ORK_INT m, ORK_INT n, ORK_ELEMENT* val, ORK_INT* indx,
                          const ORK_INT* pntrb, const ORK_INT* pntre);

/* d_i <- 1 / a_ii, of a square matrix of order m; 1 where there is no diagonal or it is 0. *missing gets the first such
   row, or base - 1 when there is none; it may be null. */
int64_t ORK_NAME(csrinvdiag)(ork_spblas_base base, ORK_INT m, const ORK_ELEMENT* val, const ORK_INT* indx,
                             const ORK_INT* pntrb, const ORK_INT* pntre, ORK_ELEMENT* d, ORK_INT* missing);

/* A = L + D + U, of order m: the entries below and above the diagonal as matrices in three arrays, and the diagonal in
   d. lpntr and upntr have m + 1 numbers and are filled first; a call with d null does no more than that, so that one
   knows how many entries L and U have, which is their last number minus the first. */
int64_t ORK_NAME(csrsplit)(ork_spblas_base base, ORK_INT m, const ORK_ELEMENT* val, const ORK_INT* indx,
                           const ORK_INT* pntrb, const ORK_INT* pntre, ORK_ELEMENT* lval, ORK_INT* lindx,
                           ORK_INT* lpntr, ORK_ELEMENT* uval, ORK_INT* uindx, ORK_INT* upntr, ORK_ELEMENT* d);

/* One sweep over the rows of a square matrix of order m, from the first, or with backward not 0 from the last:
   x_i <- x_i + omega (b_i - sum of a_ij x_j) / a_ii with the x_j as they are then; Gauss-Seidel with omega = 1. A
   forward and a backward one make the symmetric sweep. Rows without a diagonal, or with 0 there, keep their x_i. */
int64_t ORK_NAME(csrgauss)(ork_spblas_base base, ORK_INT m, ORK_INT backward, ORK_SCALAR omega, const ORK_ELEMENT* val,
                           const ORK_INT* indx, const ORK_INT* pntrb, const ORK_INT* pntre, const ORK_ELEMENT* b,
                           ORK_ELEMENT* x);

#undef ORK_INT
#undef ORK_NAME
#undef ORK_ELEMENT
#undef ORK_SCALAR
