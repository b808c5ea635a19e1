/* SPDX-License-Identifier: MIT */
/* Extra-precise matrix-vector products by C's conventions, for one integer type and one spelling of the names:
   ork/xblas.h includes this list with ORK_INT and ORK_NAME defined. */

/* y <- alpha op(A) x + beta y, A m x n. */
void ORK_NAME(sgemv_x)(enum blas_order_type order, enum blas_trans_type trans, ORK_INT m, ORK_INT n, float alpha,
                       const float* a, ORK_INT lda, const float* x, ORK_INT incx, float beta, float* y, ORK_INT incy,
                       enum blas_prec_type prec);
void ORK_NAME(dgemv_x)(enum blas_order_type order, enum blas_trans_type trans, ORK_INT m, ORK_INT n, double alpha,
                       const double* a, ORK_INT lda, const double* x, ORK_INT incx, double beta, double* y,
                       ORK_INT incy, enum blas_prec_type prec);
void ORK_NAME(cgemv_x)(enum blas_order_type order, enum blas_trans_type trans, ORK_INT m, ORK_INT n, const void* alpha,
                       const void* a, ORK_INT lda, const void* x, ORK_INT incx, const void* beta, void* y, ORK_INT incy,
                       enum blas_prec_type prec);
void ORK_NAME(zgemv_x)(enum blas_order_type order, enum blas_trans_type trans, ORK_INT m, ORK_INT n, const void* alpha,
                       const void* a, ORK_INT lda, const void* x, ORK_INT incx, const void* beta, void* y, ORK_INT incy,
                       enum blas_prec_type prec);

/* y <- alpha op(A) (head + tail) + beta y: x as a sum of two vectors. */
void ORK_NAME(sgemv2_x)(enum blas_order_type order, enum blas_trans_type trans, ORK_INT m, ORK_INT n, float alpha,
                        const float* a, ORK_INT lda, const float* head, const float* tail, ORK_INT incx, float beta,
                        float* y, ORK_INT incy, enum blas_prec_type prec);
void ORK_NAME(dgemv2_x)(enum blas_order_type order, enum blas_trans_type trans, ORK_INT m, ORK_INT n, double alpha,
                        const double* a, ORK_INT lda, const double* head, const double* tail, ORK_INT incx, double beta,
                        double* y, ORK_INT incy, enum blas_prec_type prec);
void ORK_NAME(cgemv2_x)(enum blas_order_type order, enum blas_trans_type trans, ORK_INT m, ORK_INT n, const void* alpha,
                        const void* a, ORK_INT lda, const void* head, const void* tail, ORK_INT incx, const void* beta,
                        void* y, ORK_INT incy, enum blas_prec_type prec);
void ORK_NAME(zgemv2_x)(enum blas_order_type order, enum blas_trans_type trans, ORK_INT m, ORK_INT n, const void* alpha,
                        const void* a, ORK_INT lda, const void* head, const void* tail, ORK_INT incx, const void* beta,
                        void* y, ORK_INT incy, enum blas_prec_type prec);

/* y <- alpha op(A) x + beta y, A m x n with kl diagonals below the main one and ku above. Element (i, j) is at
   a[ku + i - j + j lda], by rows at a[kl + j - i + i lda]; lda > kl + ku. */
void ORK_NAME(sgbmv_x)(enum blas_order_type order, enum blas_trans_type trans, ORK_INT m, ORK_INT n, ORK_INT kl,
                       ORK_INT ku, float alpha, const float* a, ORK_INT lda, const float* x, ORK_INT incx, float beta,
                       float* y, ORK_INT incy, enum blas_prec_type prec);
void ORK_NAME(dgbmv_x)(enum blas_order_type order, enum blas_trans_type trans, ORK_INT m, ORK_INT n, ORK_INT kl,
                       ORK_INT ku, double alpha, const double* a, ORK_INT lda, const double* x, ORK_INT incx,
                       double beta, double* y, ORK_INT incy, enum blas_prec_type prec);
void ORK_NAME(cgbmv_x)(enum blas_order_type order, enum blas_trans_type trans, ORK_INT m, ORK_INT n, ORK_INT kl,
                       ORK_INT ku, const void* alpha, const void* a, ORK_INT lda, const void* x, ORK_INT incx,
                       const void* beta, void* y, ORK_INT incy, enum blas_prec_type prec);
void ORK_NAME(zgbmv_x)(enum blas_order_type order, enum blas_trans_type trans, ORK_INT m, ORK_INT n, ORK_INT kl,
                       ORK_INT ku, const void* alpha, const void* a, ORK_INT lda, const void* x, ORK_INT incx,
                       const void* beta, void* y, ORK_INT incy, enum blas_prec_type prec);

/* The same with x = head + tail. */
void ORK_NAME(sgbmv2_x)(enum blas_order_type order, enum blas_trans_type trans, ORK_INT m, ORK_INT n, ORK_INT kl,
                        ORK_INT ku, float alpha, const float* a, ORK_INT lda, const float* head, const float* tail,
                        ORK_INT incx, float beta, float* y, ORK_INT incy, enum blas_prec_type prec);
void ORK_NAME(dgbmv2_x)(enum blas_order_type order, enum blas_trans_type trans, ORK_INT m, ORK_INT n, ORK_INT kl,
                        ORK_INT ku, double alpha, const double* a, ORK_INT lda, const double* head, const double* tail,
                        ORK_INT incx, double beta, double* y, ORK_INT incy, enum blas_prec_type prec);
void ORK_NAME(cgbmv2_x)(enum blas_order_type order, enum blas_trans_type trans, ORK_INT m, ORK_INT n, ORK_INT kl,
                        ORK_INT ku, const void* alpha, const void* a, ORK_INT lda, const void* head, const void* tail,
                        ORK_INT incx, const void* beta, void* y, ORK_INT incy, enum blas_prec_type prec);
void ORK_NAME(zgbmv2_x)(enum blas_order_type order, enum blas_trans_type trans, ORK_INT m, ORK_INT n, ORK_INT kl,
                        ORK_INT ku, const void* alpha, const void* a, ORK_INT lda, const void* head, const void* tail,
                        ORK_INT incx, const void* beta, void* y, ORK_INT incy, enum blas_prec_type prec);

/* y <- alpha A x + beta y, A symmetric of order n, of which the triangle uplo is read. */
void ORK_NAME(ssymv_x)(enum blas_order_type order, enum blas_uplo_type uplo, ORK_INT n, float alpha, const float* a,
                       ORK_INT lda, const float* x, ORK_INT incx, float beta, float* y, ORK_INT incy,
                       enum blas_prec_type prec);
void ORK_NAME(dsymv_x)(enum blas_order_type order, enum blas_uplo_type uplo, ORK_INT n, double alpha, const double* a,
                       ORK_INT lda, const double* x, ORK_INT incx, double beta, double* y, ORK_INT incy,
                       enum blas_prec_type prec);
void ORK_NAME(csymv_x)(enum blas_order_type order, enum blas_uplo_type uplo, ORK_INT n, const void* alpha,
                       const void* a, ORK_INT lda, const void* x, ORK_INT incx, const void* beta, void* y, ORK_INT incy,
                       enum blas_prec_type prec);
void ORK_NAME(zsymv_x)(enum blas_order_type order, enum blas_uplo_type uplo, ORK_INT n, const void* alpha,
                       const void* a, ORK_INT lda, const void* x, ORK_INT incx, const void* beta, void* y, ORK_INT incy,
                       enum blas_prec_type prec);

/* The same with x = head + tail. */
void ORK_NAME(ssymv2_x)(enum blas_order_type order, enum blas_uplo_type uplo, ORK_INT n, float alpha, const float* a,
                        ORK_INT lda, const float* head, const float* tail, ORK_INT incx, float beta, float* y,
                        ORK_INT incy, enum blas_prec_type prec);
void ORK_NAME(dsymv2_x)(enum blas_order_type order, enum blas_uplo_type uplo, ORK_INT n, double alpha, const double* a,
                        ORK_INT lda, const double* head, const double* tail, ORK_INT incx, double beta, double* y,
                        ORK_INT incy, enum blas_prec_type prec);
void ORK_NAME(csymv2_x)(enum blas_order_type order, enum blas_uplo_type uplo, ORK_INT n, const void* alpha,
                        const void* a, ORK_INT lda, const void* head, const void* tail, ORK_INT incx, const void* beta,
                        void* y, ORK_INT incy, enum blas_prec_type prec);
void ORK_NAME(zsymv2_x)(enum blas_order_type order, enum blas_uplo_type uplo, ORK_INT n, const void* alpha,
                        const void* a, ORK_INT lda, const void* head, const void* tail, ORK_INT incx, const void* beta,
                        void* y, ORK_INT incy, enum blas_prec_type prec);

/* y <- alpha A x + beta y, A Hermitian: imaginary parts of its diagonal are not read. */
void ORK_NAME(chemv_x)(enum blas_order_type order, enum blas_uplo_type uplo, ORK_INT n, const void* alpha,
                       const void* a, ORK_INT lda, const void* x, ORK_INT incx, const void* beta, void* y, ORK_INT incy,
                       enum blas_prec_type prec);
void ORK_NAME(zhemv_x)(enum blas_order_type order, enum blas_uplo_type uplo, ORK_INT n, const void* alpha,
                       const void* a, ORK_INT lda, const void* x, ORK_INT incx, const void* beta, void* y, ORK_INT incy,
                       enum blas_prec_type prec);

/* The same with x = head + tail. */
void ORK_NAME(chemv2_x)(enum blas_order_type order, enum blas_uplo_type uplo, ORK_INT n, const void* alpha,
                        const void* a, ORK_INT lda, const void* head, const void* tail, ORK_INT incx, const void* beta,
                        void* y, ORK_INT incy, enum blas_prec_type prec);
void ORK_NAME(zhemv2_x)(enum blas_order_type order, enum blas_uplo_type uplo, ORK_INT n, const void* alpha,
                        const void* a, ORK_INT lda, const void* head, const void* tail, ORK_INT incx, const void* beta,
                        void* y, ORK_INT incy, enum blas_prec_type prec);
