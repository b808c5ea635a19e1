/* SPDX-License-Identifier: MIT */
/* The routines of ork/trans.h by Fortran's conventions, every argument by address, for one precision, integer type and
   spelling of the names: included through ork/trans_precisions.h. */

/* B <- alpha op(A). */
void ORK_ROUTINE(omatcopy)(const char* ordering, const char* trans, const ORK_INT* rows, const ORK_INT* cols,
                           const ORK_ELEMENT* alpha, const ORK_ELEMENT* a, const ORK_INT* lda, ORK_ELEMENT* b,
                           const ORK_INT* ldb);
/* The same with elements stridea and strideb apart within a column or row, at least 1. No two elements of B are in one
   place. */
void ORK_ROUTINE(omatcopy2)(const char* ordering, const char* trans, const ORK_INT* rows, const ORK_INT* cols,
                            const ORK_ELEMENT* alpha, const ORK_ELEMENT* a, const ORK_INT* lda, const ORK_INT* stridea,
                            ORK_ELEMENT* b, const ORK_INT* ldb, const ORK_INT* strideb);
/* AB <- alpha op(AB) in place: read with lda, written with ldb. */
void ORK_ROUTINE(imatcopy)(const char* ordering, const char* trans, const ORK_INT* rows, const ORK_INT* cols,
                           const ORK_ELEMENT* alpha, ORK_ELEMENT* ab, const ORK_INT* lda, const ORK_INT* ldb);
/* C <- alpha op(A) + beta op(B), C rows x cols. */
void ORK_ROUTINE(omatadd)(const char* ordering, const char* transa, const char* transb, const ORK_INT* rows,
                          const ORK_INT* cols, const ORK_ELEMENT* alpha, const ORK_ELEMENT* a, const ORK_INT* lda,
                          const ORK_ELEMENT* beta, const ORK_ELEMENT* b, const ORK_INT* ldb, ORK_ELEMENT* c,
                          const ORK_INT* ldc);

/* batch_size matrices of one size, the next ones a stride of any length on. Outputs do not overlap. */
void ORK_ROUTINE(omatcopy_batch_strided)(const char* ordering, const char* trans, const ORK_INT* rows,
                                         const ORK_INT* cols, const ORK_ELEMENT* alpha, const ORK_ELEMENT* a,
                                         const ORK_INT* lda, const ORK_INT* stridea, ORK_ELEMENT* b, const ORK_INT* ldb,
                                         const ORK_INT* strideb, const ORK_INT* batch_size);
void ORK_ROUTINE(imatcopy_batch_strided)(const char* ordering, const char* trans, const ORK_INT* rows,
                                         const ORK_INT* cols, const ORK_ELEMENT* alpha, ORK_ELEMENT* ab,
                                         const ORK_INT* lda, const ORK_INT* ldb, const ORK_INT* stride,
                                         const ORK_INT* batch_size);
void ORK_ROUTINE(omatadd_batch_strided)(const char* ordering, const char* transa, const char* transb,
                                        const ORK_INT* rows, const ORK_INT* cols, const ORK_ELEMENT* alpha,
                                        const ORK_ELEMENT* a, const ORK_INT* lda, const ORK_INT* stridea,
                                        const ORK_ELEMENT* beta, const ORK_ELEMENT* b, const ORK_INT* ldb,
                                        const ORK_INT* strideb, ORK_ELEMENT* c, const ORK_INT* ldc,
                                        const ORK_INT* stridec, const ORK_INT* batch_size);

/* Groups of matrices: group g has the arguments at [g] and group_size[g] matrices, which stand in a and b, or ab,
   behind those of the groups before it. All groups are checked before any is begun. */
void ORK_ROUTINE(omatcopy_batch)(const char* ordering, const char* trans, const ORK_INT* rows, const ORK_INT* cols,
                                 const ORK_ELEMENT* alpha, const ORK_ELEMENT* const* a, const ORK_INT* lda,
                                 ORK_ELEMENT* const* b, const ORK_INT* ldb, const ORK_INT* group_count,
                                 const ORK_INT* group_size);
void ORK_ROUTINE(imatcopy_batch)(const char* ordering, const char* trans, const ORK_INT* rows, const ORK_INT* cols,
                                 const ORK_ELEMENT* alpha, ORK_ELEMENT* const* ab, const ORK_INT* lda,
                                 const ORK_INT* ldb, const ORK_INT* group_count, const ORK_INT* group_size);
