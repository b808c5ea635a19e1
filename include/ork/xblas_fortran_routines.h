/* SPDX-License-Identifier: MIT */
/* Extra-precise matrix-vector products by Fortran's conventions, for one integer type and one spelling of the names:
   ork/xblas.h includes this list with ORK_INT and ORK_NAME defined. */

/* y <- alpha op(A) x + beta y, A m x n. */
void ORK_NAME(sgemv_x)(const ORK_INT* trans, const ORK_INT* m, const ORK_INT* n, const float* alpha, const float* a,
                       const ORK_INT* lda, const float* x, const ORK_INT* incx, const float* beta, float* y,
                       const ORK_INT* incy, const ORK_INT* prec);
void ORK_NAME(dgemv_x)(const ORK_INT* trans, const ORK_INT* m, const ORK_INT* n, const double* alpha, const double* a,
                       const ORK_INT* lda, const double* x, const ORK_INT* incx, const double* beta, double* y,
                       const ORK_INT* incy, const ORK_INT* prec);
void ORK_NAME(cgemv_x)(const ORK_INT* trans, const ORK_INT* m, const ORK_INT* n, const ork_complex_float* alpha,
                       const ork_complex_float* a, const ORK_INT* lda, const ork_complex_float* x, const ORK_INT* incx,
                       const ork_complex_float* beta, ork_complex_float* y, const ORK_INT* incy, const ORK_INT* prec);
void ORK_NAME(zgemv_x)(const ORK_INT* trans, const ORK_INT* m, const ORK_INT* n, const ork_complex_double* alpha,
                       const ork_complex_double* a, const ORK_INT* lda, const ork_complex_double* x,
                       const ORK_INT* incx, const ork_complex_double* beta, ork_complex_double* y, const ORK_INT* incy,
                       const ORK_INT* prec);

/* y <- alpha op(A) (head + tail) + beta y: x as a sum of two vectors. */
void ORK_NAME(sgemv2_x)(const ORK_INT* trans, const ORK_INT* m, const ORK_INT* n, const float* alpha, const float* a,
                        const ORK_INT* lda, const float* head, const float* tail, const ORK_INT* incx,
                        const float* beta, float* y, const ORK_INT* incy, const ORK_INT* prec);
void ORK_NAME(dgemv2_x)(const ORK_INT* trans, const ORK_INT* m, const ORK_INT* n, const double* alpha, const double* a,
                        const ORK_INT* lda, const double* head, const double* tail, const ORK_INT* incx,
                        const double* beta, double* y, const ORK_INT* incy, const ORK_INT* prec);
void ORK_NAME(cgemv2_x)(const ORK_INT* trans, const ORK_INT* m, const ORK_INT* n, const ork_complex_float* alpha,
                        const ork_complex_float* a, const ORK_INT* lda, const ork_complex_float* head,
                        const ork_complex_float* tail, const ORK_INT* incx, const ork_complex_float* beta,
                        ork_complex_float* y, const ORK_INT* incy, const ORK_INT* prec);
void ORK_NAME(zgemv2_x)(const ORK_INT* trans, const ORK_INT* m, const ORK_INT* n, const ork_complex_double* alpha,
                        const ork_complex_double* a, const ORK_INT* lda, const ork_complex_double* head,
                        const ork_complex_double* tail, const ORK_INT* incx, const ork_complex_double* beta,
                        ork_complex_double* y, const ORK_INT* incy, const ORK_INT* prec);

/* y <- alpha op(A) x + beta y, A m x n with kl diagonals below the main one and ku above. Element (i, j) is at
   a[ku + i - j + j lda], by rows at a[kl + j - i + i lda]; lda > kl + ku. */
void ORK_NAME(sgbmv_x)(const ORK_INT* trans, const ORK_INT* m, const ORK_INT* n, const ORK_INT* kl, const ORK_INT* ku,
                       const float* alpha, const float* a, const ORK_INT* lda, const float* x, const ORK_INT* incx,
                       const float* beta, float* y, const ORK_INT* incy, const ORK_INT* prec);
void ORK_NAME(dgbmv_x)(const ORK_INT* trans, const ORK_INT* m, const ORK_INT* n, const ORK_INT* kl, const ORK_INT* ku,
                       const double* alpha, const double* a, const ORK_INT* lda, const double* x, const ORK_INT* incx,
                       const double* beta, double* y, const ORK_INT* incy, const ORK_INT* prec);
void ORK_NAME(cgbmv_x)(const ORK_INT* trans, const ORK_INT* m, const ORK_INT* n, const ORK_INT* kl, const ORK_INT* ku,
                       const ork_complex_float* alpha, const ork_complex_float* a, const ORK_INT* lda,
                       const ork_complex_float* x, const ORK_INT* incx, const ork_complex_float* beta,
                       ork_complex_float* y, const ORK_INT* incy, const ORK_INT* prec);
void ORK_NAME(zgbmv_x)(const ORK_INT* trans, const ORK_INT* m, const ORK_INT* n, const ORK_INT* kl, const ORK_INT* ku,
                       const ork_complex_double* alpha, const ork_complex_double* a, const ORK_INT* lda,
                       const ork_complex_double* x, const ORK_INT* incx, const ork_complex_double* beta,
                       ork_complex_double* y, const ORK_INT* incy, const ORK_INT* prec);

/* The same with x = head + tail. */
void ORK_NAME(sgbmv2_x)(const ORK_INT* trans, const ORK_INT* m, const ORK_INT* n, const ORK_INT* kl, const ORK_INT* ku,
                        const float* alpha, const float* a, const ORK_INT* lda, const float* head, const float* tail,
                        const ORK_INT* incx, const float* beta, float* y, const ORK_INT* incy, const ORK_INT* prec);
void ORK_NAME(dgbmv2_x)(const ORK_INT* trans, const ORK_INT* m, const ORK_INT* n, const ORK_INT* kl, const ORK_INT* ku,
                        const double* alpha, const double* a, const ORK_INT* lda, const double* head,
                        const double* tail, const ORK_INT* incx, const double* beta, double* y, const ORK_INT* incy,
                        const ORK_INT* prec);
void ORK_NAME(cgbmv2_x)(const ORK_INT* trans, const ORK_INT* m, const ORK_INT* n, const ORK_INT* kl, const ORK_INT* ku,
                        const ork_complex_float* alpha, const ork_complex_float* a, const ORK_INT* lda,
                        const ork_complex_float* head, const ork_complex_float* tail, const ORK_INT* incx,
                        const ork_complex_float* beta, ork_complex_float* y, const ORK_INT* incy, const ORK_INT* prec);
void ORK_NAME(zgbmv2_x)(const ORK_INT* trans, const ORK_INT* m, const ORK_INT* n, const ORK_INT* kl, const ORK_INT* ku,
                        const ork_complex_double* alpha, const ork_complex_double* a, const ORK_INT* lda,
                        const ork_complex_double* head, const ork_complex_double* tail, const ORK_INT* incx,
                        const ork_complex_double* beta, ork_complex_double* y, const ORK_INT* incy,
                        const ORK_INT* prec);

/* y <- alpha A x + beta y, A symmetric of order n, of which the triangle uplo is read. */
void ORK_NAME(ssymv_x)(const ORK_INT* uplo, const ORK_INT* n, const float* alpha, const float* a, const ORK_INT* lda,
                       const float* x, const ORK_INT* incx, const float* beta, float* y, const ORK_INT* incy,
                       const ORK_INT* prec);
void ORK_NAME(dsymv_x)(const ORK_INT* uplo, const ORK_INT* n, const double* alpha, const double* a, const ORK_INT* lda,
                       const double* x, const ORK_INT* incx, const double* beta, double* y, const ORK_INT* incy,
                       const ORK_INT* prec);
void ORK_NAME(csymv_x)(const ORK_INT* uplo, const ORK_INT* n, const ork_complex_float* alpha,
                       const ork_complex_float* a, const ORK_INT* lda, const ork_complex_float* x, const ORK_INT* incx,
                       const ork_complex_float* beta, ork_complex_float* y, const ORK_INT* incy, const ORK_INT* prec);
void ORK_NAME(zsymv_x)(const ORK_INT* uplo, const ORK_INT* n, const ork_complex_double* alpha,
                       const ork_complex_double* a, const ORK_INT* lda, const ork_complex_double* x,
                       const ORK_INT* incx, const ork_complex_double* beta, ork_complex_double* y, const ORK_INT* incy,
                       const ORK_INT* prec);

/* The same with x = head + tail. */
void ORK_NAME(ssymv2_x)(const ORK_INT* uplo, const ORK_INT* n, const float* alpha, const float* a, const ORK_INT* lda,
                        const float* head, const float* tail, const ORK_INT* incx, const float* beta, float* y,
                        const ORK_INT* incy, const ORK_INT* prec);
void ORK_NAME(dsymv2_x)(const ORK_INT* uplo, const ORK_INT* n, const double* alpha, const double* a, const ORK_INT* lda,
                        const double* head, const double* tail, const ORK_INT* incx, const double* beta, double* y,
                        const ORK_INT* incy, const ORK_INT* prec);
void ORK_NAME(csymv2_x)(const ORK_INT* uplo, const ORK_INT* n, const ork_complex_float* alpha,
                        const ork_complex_float* a, const ORK_INT* lda, const ork_complex_float* head,
                        const ork_complex_float* tail, const ORK_INT* incx, const ork_complex_float* beta,
                        ork_complex_float* y, const ORK_INT* incy, const ORK_INT* prec);
void ORK_NAME(zsymv2_x)(const ORK_INT* uplo, const ORK_INT* n, const ork_complex_double* alpha,
                        const ork_complex_double* a, const ORK_INT* lda, const ork_complex_double* head,
                        const ork_complex_double* tail, const ORK_INT* incx, const ork_complex_double* beta,
                        ork_complex_double* y, const ORK_INT* incy, const ORK_INT* prec);

/* y <- alpha A x + beta y, A Hermitian: imaginary parts of its diagonal are not read. */
void ORK_NAME(chemv_x)(const ORK_INT* uplo, const ORK_INT* n, const ork_complex_float* alpha,
                       const ork_complex_float* a, const ORK_INT* lda, const ork_complex_float* x, const ORK_INT* incx,
                       const ork_complex_float* beta, ork_complex_float* y, const ORK_INT* incy, const ORK_INT* prec);
void ORK_NAME(zhemv_x)(const ORK_INT* uplo, const ORK_INT* n, const ork_complex_double* alpha,
                       const ork_complex_double* a, const ORK_INT* lda, const ork_complex_double* x,
                       const ORK_INT* incx, const ork_complex_double* beta, ork_complex_double* y, const ORK_INT* incy,
                       const ORK_INT* prec);

/* The same with x = head + tail. */
void ORK_NAME(chemv2_x)(const ORK_INT* uplo, const ORK_INT* n, const ork_complex_float* alpha,
                        const ork_complex_float* a, const ORK_INT* lda, const ork_complex_float* head,
                        const ork_complex_float* tail, const ORK_INT* incx, const ork_complex_float* beta,
                        ork_complex_float* y, const ORK_INT* incy, const ORK_INT* prec);
void ORK_NAME(zhemv2_x)(const ORK_INT* uplo, const ORK_INT* n, const ork_complex_double* alpha,
                        const ork_complex_double* a, const ORK_INT* lda, const ork_complex_double* head,
                        const ork_complex_double* tail, const ORK_INT* incx, const ork_complex_double* beta,
                        ork_complex_double* y, const ORK_INT* incy, const ORK_INT* prec);
