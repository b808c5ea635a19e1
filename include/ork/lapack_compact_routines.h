/* SPDX-License-Identifier: MIT */
/* The routines of ork/lapack_compact.h for one precision: included there with ORK_COMPACT (names), ORK_ELEMENT,
   ORK_REAL (its own or that of its parts) and ORK_SCALAR (a value, an address for complex numbers) defined, which it
   takes back. layout is ORK_COMPACT_ROWS or ORK_COMPACT_COLUMNS; letters in either case. */

/* Bytes of the packs of nmat matrices with `lines` lines (columns, or rows if that is the layout) ld elements apart. */
int64_t ORK_COMPACT(size)(int64_t ld, int64_t lines, int64_t format, int64_t nmat);

/* m x n matrices in the same layout into packs: matrix k begins at a[k], or at a + k stride. */
int64_t ORK_COMPACT(pack)(int64_t layout, int64_t m, int64_t n, const ORK_ELEMENT* const* a, int64_t lda,
                          ORK_REAL* packs, int64_t ldp, int64_t format, int64_t nmat);
int64_t ORK_COMPACT(pack_strided)(int64_t layout, int64_t m, int64_t n, const ORK_ELEMENT* a, int64_t lda,
                                  int64_t stride, ORK_REAL* packs, int64_t ldp, int64_t format, int64_t nmat);
/* And back. */
int64_t ORK_COMPACT(unpack)(int64_t layout, int64_t m, int64_t n, ORK_ELEMENT* const* a, int64_t lda,
                            const ORK_REAL* packs, int64_t ldp, int64_t format, int64_t nmat);
int64_t ORK_COMPACT(unpack_strided)(int64_t layout, int64_t m, int64_t n, ORK_ELEMENT* a, int64_t lda, int64_t stride,
                                    const ORK_REAL* packs, int64_t ldp, int64_t format, int64_t nmat);

/* A = L U without exchanges of rows, m x n, in place, L with a unit diagonal. */
int64_t ORK_COMPACT(getrfnp)(int64_t layout, int64_t m, int64_t n, ORK_REAL* a, int64_t lda, int64_t format,
                             int64_t nmat);
/* A^-1 from these factors. */
int64_t ORK_COMPACT(getrinp)(int64_t layout, int64_t n, ORK_REAL* a, int64_t lda, int64_t format, int64_t nmat);
/* B <- op(A)^-1 B from these factors, nrhs columns; trans N, T or C. */
int64_t ORK_COMPACT(getrsnp)(int64_t layout, char trans, int64_t n, int64_t nrhs, const ORK_REAL* a, int64_t lda,
                             ORK_REAL* b, int64_t ldb, int64_t format, int64_t nmat);

/* A = U^H U or L L^H in the triangle uplo, U or L; the other is not touched. */
int64_t ORK_COMPACT(potrf)(int64_t layout, char uplo, int64_t n, ORK_REAL* a, int64_t lda, int64_t format,
                           int64_t nmat);
/* B <- A^-1 B from that factor. */
int64_t ORK_COMPACT(potrs)(int64_t layout, char uplo, int64_t n, int64_t nrhs, const ORK_REAL* a, int64_t lda,
                           ORK_REAL* b, int64_t ldb, int64_t format, int64_t nmat);

/* Both at once, which reads memory once: the factors and, in B, A^-1 B. */
int64_t ORK_COMPACT(gesvnp)(int64_t layout, int64_t n, int64_t nrhs, ORK_REAL* a, int64_t lda, ORK_REAL* b, int64_t ldb,
                            int64_t format, int64_t nmat);
int64_t ORK_COMPACT(posv)(int64_t layout, char uplo, int64_t n, int64_t nrhs, ORK_REAL* a, int64_t lda, ORK_REAL* b,
                          int64_t ldb, int64_t format, int64_t nmat);

/* A = Q R as LAPACK's geqrf has it; tau: packs of min(m, n) elements, of ork_compact_<p>size(min(m, n), 1, ...). */
int64_t ORK_COMPACT(geqrf)(int64_t layout, int64_t m, int64_t n, ORK_REAL* a, int64_t lda, ORK_REAL* tau,
                           int64_t format, int64_t nmat);

/* C <- alpha op(A) op(B) + beta C, C m x n, depth k. */
int64_t ORK_COMPACT(gemm)(int64_t layout, char transa, char transb, int64_t m, int64_t n, int64_t k, ORK_SCALAR alpha,
                          const ORK_REAL* a, int64_t lda, const ORK_REAL* b, int64_t ldb, ORK_SCALAR beta, ORK_REAL* c,
                          int64_t ldc, int64_t format, int64_t nmat);
/* B <- alpha op(A)^-1 B (side L) or alpha B op(A)^-1 (R), B m x n, A the triangle uplo; diag U: with a unit diagonal.
 */
int64_t ORK_COMPACT(trsm)(int64_t layout, char side, char uplo, char transa, char diag, int64_t m, int64_t n,
                          ORK_SCALAR alpha, const ORK_REAL* a, int64_t lda, ORK_REAL* b, int64_t ldb, int64_t format,
                          int64_t nmat);

#undef ORK_COMPACT
#undef ORK_ELEMENT
#undef ORK_REAL
#undef ORK_SCALAR
