/* SPDX-License-Identifier: MIT */
/* The routines of ork/trans.h by C's conventions, for one precision, integer type and spelling of the names: included
   through ork/trans_precisions.h. Real scalars are values, complex ones addresses. */

/* B <- alpha op(A). */
void ORK_ROUTINE(omatcopy)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE trans, ORK_INT rows, ORK_INT cols, ORK_SCALAR alpha,
                           const ORK_ARRAY* a, ORK_INT lda, ORK_ARRAY* b, ORK_INT ldb);
/* The same with elements stridea and strideb apart within a column or row, at least 1. No two elements of B are in one
   place. */
void ORK_ROUTINE(omatcopy2)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE trans, ORK_INT rows, ORK_INT cols, ORK_SCALAR alpha,
                            const ORK_ARRAY* a, ORK_INT lda, ORK_INT stridea, ORK_ARRAY* b, ORK_INT ldb,
                            ORK_INT strideb);
/* AB <- alpha op(AB) in place: read with lda, written with ldb. */
void ORK_ROUTINE(imatcopy)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE trans, ORK_INT rows, ORK_INT cols, ORK_SCALAR alpha,
                           ORK_ARRAY* ab, ORK_INT lda, ORK_INT ldb);
/* C <- alpha op(A) + beta op(B), C rows x cols. */
void ORK_ROUTINE(omatadd)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE transa, CBLAS_TRANSPOSE transb, ORK_INT rows,
                          ORK_INT cols, ORK_SCALAR alpha, const ORK_ARRAY* a, ORK_INT lda, ORK_SCALAR beta,
                          const ORK_ARRAY* b, ORK_INT ldb, ORK_ARRAY* c, ORK_INT ldc);

/* batch_size matrices of one size, the next ones a stride of any length on. Outputs do not overlap. */
void ORK_ROUTINE(omatcopy_batch_strided)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE trans, ORK_INT rows, ORK_INT cols,
                                         ORK_SCALAR alpha, const ORK_ARRAY* a, ORK_INT lda, ORK_INT stridea,
                                         ORK_ARRAY* b, ORK_INT ldb, ORK_INT strideb, ORK_INT batch_size);
void ORK_ROUTINE(imatcopy_batch_strided)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE trans, ORK_INT rows, ORK_INT cols,
                                         ORK_SCALAR alpha, ORK_ARRAY* ab, ORK_INT lda, ORK_INT ldb, ORK_INT stride,
                                         ORK_INT batch_size);
void ORK_ROUTINE(omatadd_batch_strided)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE transa, CBLAS_TRANSPOSE transb,
                                        ORK_INT rows, ORK_INT cols, ORK_SCALAR alpha, const ORK_ARRAY* a, ORK_INT lda,
                                        ORK_INT stridea, ORK_SCALAR beta, const ORK_ARRAY* b, ORK_INT ldb,
                                        ORK_INT strideb, ORK_ARRAY* c, ORK_INT ldc, ORK_INT stridec,
                                        ORK_INT batch_size);

/* Groups of matrices: group g has the arguments at [g] and group_size[g] matrices, which stand in a and b, or ab,
   behind those of the groups before it. All groups are checked before any is begun. */
void ORK_ROUTINE(omatcopy_batch)(CBLAS_LAYOUT layout, const CBLAS_TRANSPOSE* trans, const ORK_INT* rows,
                                 const ORK_INT* cols, const ORK_ARRAY* alpha, const ORK_ARRAY** a, const ORK_INT* lda,
                                 ORK_ARRAY** b, const ORK_INT* ldb, ORK_INT group_count, const ORK_INT* group_size);
void ORK_ROUTINE(imatcopy_batch)(CBLAS_LAYOUT layout, const CBLAS_TRANSPOSE* trans, const ORK_INT* rows,
                                 const ORK_INT* cols, const ORK_ARRAY* alpha, ORK_ARRAY** ab, const ORK_INT* lda,
                                 const ORK_INT* ldb, ORK_INT group_count, const ORK_INT* group_size);
