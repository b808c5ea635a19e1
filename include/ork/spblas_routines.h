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

#undef ORK_INT
#undef ORK_NAME
#undef ORK_ELEMENT
#undef ORK_SCALAR
