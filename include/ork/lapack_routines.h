/* SPDX-License-Identifier: MIT */
/* Linear systems, inverses and least squares by LAPACK's conventions, for one integer type and one spelling of the
   names: ork/lapack.h includes this list with ORK_INT and ORK_NAME defined. */

/* A = P L U: LU with partial pivoting of an m x n matrix, in place; row j was exchanged with row ipiv(j). info = j:
   u(j,j) is zero; the factorisation is complete even so. */
void ORK_NAME(sgetrf)(const ORK_INT* m, const ORK_INT* n, float* a, const ORK_INT* lda, ORK_INT* ipiv, ORK_INT* info);
void ORK_NAME(dgetrf)(const ORK_INT* m, const ORK_INT* n, double* a, const ORK_INT* lda, ORK_INT* ipiv, ORK_INT* info);
void ORK_NAME(cgetrf)(const ORK_INT* m, const ORK_INT* n, ork_complex_float* a, const ORK_INT* lda, ORK_INT* ipiv,
                      ORK_INT* info);
void ORK_NAME(zgetrf)(const ORK_INT* m, const ORK_INT* n, ork_complex_double* a, const ORK_INT* lda, ORK_INT* ipiv,
                      ORK_INT* info);

/* A = L U without interchanges: for matrices that need none, diagonally dominant ones for instance. info = j:
   u(j,j) is zero. */
void ORK_NAME(sgetrfnp)(const ORK_INT* m, const ORK_INT* n, float* a, const ORK_INT* lda, ORK_INT* info);
void ORK_NAME(dgetrfnp)(const ORK_INT* m, const ORK_INT* n, double* a, const ORK_INT* lda, ORK_INT* info);
void ORK_NAME(cgetrfnp)(const ORK_INT* m, const ORK_INT* n, ork_complex_float* a, const ORK_INT* lda, ORK_INT* info);
void ORK_NAME(zgetrfnp)(const ORK_INT* m, const ORK_INT* n, ork_complex_double* a, const ORK_INT* lda, ORK_INT* info);

/* B <- op(A)^-1 B with the factors of getrf; trans: N, T or C. */
void ORK_NAME(sgetrs)(const char* trans, const ORK_INT* n, const ORK_INT* nrhs, const float* a, const ORK_INT* lda,
                      const ORK_INT* ipiv, float* b, const ORK_INT* ldb, ORK_INT* info);
void ORK_NAME(dgetrs)(const char* trans, const ORK_INT* n, const ORK_INT* nrhs, const double* a, const ORK_INT* lda,
                      const ORK_INT* ipiv, double* b, const ORK_INT* ldb, ORK_INT* info);
void ORK_NAME(cgetrs)(const char* trans, const ORK_INT* n, const ORK_INT* nrhs, const ork_complex_float* a,
                      const ORK_INT* lda, const ORK_INT* ipiv, ork_complex_float* b, const ORK_INT* ldb, ORK_INT* info);
void ORK_NAME(zgetrs)(const char* trans, const ORK_INT* n, const ORK_INT* nrhs, const ork_complex_double* a,
                      const ORK_INT* lda, const ORK_INT* ipiv, ork_complex_double* b, const ORK_INT* ldb,
                      ORK_INT* info);

/* The inverse from the factors of getrf or getrfnp, in place. info = j: u(j,j) is zero and there is none. */
void ORK_NAME(sgetri)(const ORK_INT* n, float* a, const ORK_INT* lda, const ORK_INT* ipiv, float* work,
                      const ORK_INT* lwork, ORK_INT* info);
void ORK_NAME(dgetri)(const ORK_INT* n, double* a, const ORK_INT* lda, const ORK_INT* ipiv, double* work,
                      const ORK_INT* lwork, ORK_INT* info);
void ORK_NAME(cgetri)(const ORK_INT* n, ork_complex_float* a, const ORK_INT* lda, const ORK_INT* ipiv,
                      ork_complex_float* work, const ORK_INT* lwork, ORK_INT* info);
void ORK_NAME(zgetri)(const ORK_INT* n, ork_complex_double* a, const ORK_INT* lda, const ORK_INT* ipiv,
                      ork_complex_double* work, const ORK_INT* lwork, ORK_INT* info);
void ORK_NAME(sgetrinp)(const ORK_INT* n, float* a, const ORK_INT* lda, float* work, const ORK_INT* lwork,
                        ORK_INT* info);
void ORK_NAME(dgetrinp)(const ORK_INT* n, double* a, const ORK_INT* lda, double* work, const ORK_INT* lwork,
                        ORK_INT* info);
void ORK_NAME(cgetrinp)(const ORK_INT* n, ork_complex_float* a, const ORK_INT* lda, ork_complex_float* work,
                        const ORK_INT* lwork, ORK_INT* info);
void ORK_NAME(zgetrinp)(const ORK_INT* n, ork_complex_double* a, const ORK_INT* lda, ork_complex_double* work,
                        const ORK_INT* lwork, ORK_INT* info);

/* A X = B: factors A as getrf does and overwrites B by X. info = j: u(j,j) is zero and B is as it was. */
void ORK_NAME(sgesv)(const ORK_INT* n, const ORK_INT* nrhs, float* a, const ORK_INT* lda, ORK_INT* ipiv, float* b,
                     const ORK_INT* ldb, ORK_INT* info);
void ORK_NAME(dgesv)(const ORK_INT* n, const ORK_INT* nrhs, double* a, const ORK_INT* lda, ORK_INT* ipiv, double* b,
                     const ORK_INT* ldb, ORK_INT* info);
void ORK_NAME(cgesv)(const ORK_INT* n, const ORK_INT* nrhs, ork_complex_float* a, const ORK_INT* lda, ORK_INT* ipiv,
                     ork_complex_float* b, const ORK_INT* ldb, ORK_INT* info);
void ORK_NAME(zgesv)(const ORK_INT* n, const ORK_INT* nrhs, ork_complex_double* a, const ORK_INT* lda, ORK_INT* ipiv,
                     ork_complex_double* b, const ORK_INT* ldb, ORK_INT* info);

/* A X = B for a tridiagonal A with partial pivoting: dl below, d on, du above the diagonal, overwritten by the
   factor U: d, du, and dl for its second diagonal. info = j: u(j,j) is zero and there is no solution. */
void ORK_NAME(sgtsv)(const ORK_INT* n, const ORK_INT* nrhs, float* dl, float* d, float* du, float* b,
                     const ORK_INT* ldb, ORK_INT* info);
void ORK_NAME(dgtsv)(const ORK_INT* n, const ORK_INT* nrhs, double* dl, double* d, double* du, double* b,
                     const ORK_INT* ldb, ORK_INT* info);
void ORK_NAME(cgtsv)(const ORK_INT* n, const ORK_INT* nrhs, ork_complex_float* dl, ork_complex_float* d,
                     ork_complex_float* du, ork_complex_float* b, const ORK_INT* ldb, ORK_INT* info);
void ORK_NAME(zgtsv)(const ORK_INT* n, const ORK_INT* nrhs, ork_complex_double* dl, ork_complex_double* d,
                     ork_complex_double* du, ork_complex_double* b, const ORK_INT* ldb, ORK_INT* info);

/* Cholesky, A = U^H U (uplo U) or L L^H (L), in place in that triangle; the other is not touched. info = j: the
   leading minor of order j is not positive and the factorisation stopped there. */
void ORK_NAME(spotrf)(const char* uplo, const ORK_INT* n, float* a, const ORK_INT* lda, ORK_INT* info);
void ORK_NAME(dpotrf)(const char* uplo, const ORK_INT* n, double* a, const ORK_INT* lda, ORK_INT* info);
void ORK_NAME(cpotrf)(const char* uplo, const ORK_INT* n, ork_complex_float* a, const ORK_INT* lda, ORK_INT* info);
void ORK_NAME(zpotrf)(const char* uplo, const ORK_INT* n, ork_complex_double* a, const ORK_INT* lda, ORK_INT* info);

/* B <- A^-1 B with the factor of potrf. */
void ORK_NAME(spotrs)(const char* uplo, const ORK_INT* n, const ORK_INT* nrhs, const float* a, const ORK_INT* lda,
                      float* b, const ORK_INT* ldb, ORK_INT* info);
void ORK_NAME(dpotrs)(const char* uplo, const ORK_INT* n, const ORK_INT* nrhs, const double* a, const ORK_INT* lda,
                      double* b, const ORK_INT* ldb, ORK_INT* info);
void ORK_NAME(cpotrs)(const char* uplo, const ORK_INT* n, const ORK_INT* nrhs, const ork_complex_float* a,
                      const ORK_INT* lda, ork_complex_float* b, const ORK_INT* ldb, ORK_INT* info);
void ORK_NAME(zpotrs)(const char* uplo, const ORK_INT* n, const ORK_INT* nrhs, const ork_complex_double* a,
                      const ORK_INT* lda, ork_complex_double* b, const ORK_INT* ldb, ORK_INT* info);

/* That triangle of the inverse from the factor of potrf, in place. info = j: diagonal element j is zero. */
void ORK_NAME(spotri)(const char* uplo, const ORK_INT* n, float* a, const ORK_INT* lda, ORK_INT* info);
void ORK_NAME(dpotri)(const char* uplo, const ORK_INT* n, double* a, const ORK_INT* lda, ORK_INT* info);
void ORK_NAME(cpotri)(const char* uplo, const ORK_INT* n, ork_complex_float* a, const ORK_INT* lda, ORK_INT* info);
void ORK_NAME(zpotri)(const char* uplo, const ORK_INT* n, ork_complex_double* a, const ORK_INT* lda, ORK_INT* info);

/* A X = B: factors A as potrf does and overwrites B by X. info = j: not positive definite, B is as it was. */
void ORK_NAME(sposv)(const char* uplo, const ORK_INT* n, const ORK_INT* nrhs, float* a, const ORK_INT* lda, float* b,
                     const ORK_INT* ldb, ORK_INT* info);
void ORK_NAME(dposv)(const char* uplo, const ORK_INT* n, const ORK_INT* nrhs, double* a, const ORK_INT* lda, double* b,
                     const ORK_INT* ldb, ORK_INT* info);
void ORK_NAME(cposv)(const char* uplo, const ORK_INT* n, const ORK_INT* nrhs, ork_complex_float* a, const ORK_INT* lda,
                     ork_complex_float* b, const ORK_INT* ldb, ORK_INT* info);
void ORK_NAME(zposv)(const char* uplo, const ORK_INT* n, const ORK_INT* nrhs, ork_complex_double* a, const ORK_INT* lda,
                     ork_complex_double* b, const ORK_INT* ldb, ORK_INT* info);

/* The inverse of a triangular matrix, in place. info = j: diagonal element j is zero and nothing was done. */
void ORK_NAME(strtri)(const char* uplo, const char* diag, const ORK_INT* n, float* a, const ORK_INT* lda,
                      ORK_INT* info);
void ORK_NAME(dtrtri)(const char* uplo, const char* diag, const ORK_INT* n, double* a, const ORK_INT* lda,
                      ORK_INT* info);
void ORK_NAME(ctrtri)(const char* uplo, const char* diag, const ORK_INT* n, ork_complex_float* a, const ORK_INT* lda,
                      ORK_INT* info);
void ORK_NAME(ztrtri)(const char* uplo, const char* diag, const ORK_INT* n, ork_complex_double* a, const ORK_INT* lda,
                      ORK_INT* info);

/* A = Q R of an m x n matrix, in place: R on and above the diagonal, below it and in tau the reflectors whose
   product Q is, H(j) = I - tau(j) v v^H with v(j) = 1. */
void ORK_NAME(sgeqrf)(const ORK_INT* m, const ORK_INT* n, float* a, const ORK_INT* lda, float* tau, float* work,
                      const ORK_INT* lwork, ORK_INT* info);
void ORK_NAME(dgeqrf)(const ORK_INT* m, const ORK_INT* n, double* a, const ORK_INT* lda, double* tau, double* work,
                      const ORK_INT* lwork, ORK_INT* info);
void ORK_NAME(cgeqrf)(const ORK_INT* m, const ORK_INT* n, ork_complex_float* a, const ORK_INT* lda,
                      ork_complex_float* tau, ork_complex_float* work, const ORK_INT* lwork, ORK_INT* info);
void ORK_NAME(zgeqrf)(const ORK_INT* m, const ORK_INT* n, ork_complex_double* a, const ORK_INT* lda,
                      ork_complex_double* tau, ork_complex_double* work, const ORK_INT* lwork, ORK_INT* info);

/* The first n columns of Q from k reflectors of geqrf, in place; m >= n >= k. */
void ORK_NAME(sorgqr)(const ORK_INT* m, const ORK_INT* n, const ORK_INT* k, float* a, const ORK_INT* lda,
                      const float* tau, float* work, const ORK_INT* lwork, ORK_INT* info);
void ORK_NAME(dorgqr)(const ORK_INT* m, const ORK_INT* n, const ORK_INT* k, double* a, const ORK_INT* lda,
                      const double* tau, double* work, const ORK_INT* lwork, ORK_INT* info);
void ORK_NAME(cungqr)(const ORK_INT* m, const ORK_INT* n, const ORK_INT* k, ork_complex_float* a, const ORK_INT* lda,
                      const ork_complex_float* tau, ork_complex_float* work, const ORK_INT* lwork, ORK_INT* info);
void ORK_NAME(zungqr)(const ORK_INT* m, const ORK_INT* n, const ORK_INT* k, ork_complex_double* a, const ORK_INT* lda,
                      const ork_complex_double* tau, ork_complex_double* work, const ORK_INT* lwork, ORK_INT* info);

/* C <- op(Q) C (side L) or C op(Q) (R) with k reflectors of geqrf; trans: N, or T (real) or C (complex). */
void ORK_NAME(sormqr)(const char* side, const char* trans, const ORK_INT* m, const ORK_INT* n, const ORK_INT* k,
                      const float* a, const ORK_INT* lda, const float* tau, float* c, const ORK_INT* ldc, float* work,
                      const ORK_INT* lwork, ORK_INT* info);
void ORK_NAME(dormqr)(const char* side, const char* trans, const ORK_INT* m, const ORK_INT* n, const ORK_INT* k,
                      const double* a, const ORK_INT* lda, const double* tau, double* c, const ORK_INT* ldc,
                      double* work, const ORK_INT* lwork, ORK_INT* info);
void ORK_NAME(cunmqr)(const char* side, const char* trans, const ORK_INT* m, const ORK_INT* n, const ORK_INT* k,
                      const ork_complex_float* a, const ORK_INT* lda, const ork_complex_float* tau,
                      ork_complex_float* c, const ORK_INT* ldc, ork_complex_float* work, const ORK_INT* lwork,
                      ORK_INT* info);
void ORK_NAME(zunmqr)(const char* side, const char* trans, const ORK_INT* m, const ORK_INT* n, const ORK_INT* k,
                      const ork_complex_double* a, const ORK_INT* lda, const ork_complex_double* tau,
                      ork_complex_double* c, const ORK_INT* ldc, ork_complex_double* work, const ORK_INT* lwork,
                      ORK_INT* info);
