/* SPDX-License-Identifier: MIT */
/* The BLAS by Fortran's conventions, for one integer type and one spelling of the names: ork/blas.h includes this list
   with ORK_INT and ORK_NAME defined. Every argument is passed by address; n counts elements; an increment counts
   elements too, and with a negative one the first element is the last in memory. Matrices are stored by columns. */

/* y <- alpha x + y. Nothing is done for alpha = 0. */
void ORK_NAME(saxpy)(const ORK_INT* n, const float* alpha, const float* x, const ORK_INT* incx, float* y,
                     const ORK_INT* incy);
void ORK_NAME(daxpy)(const ORK_INT* n, const double* alpha, const double* x, const ORK_INT* incx, double* y,
                     const ORK_INT* incy);
void ORK_NAME(caxpy)(const ORK_INT* n, const ork_complex_float* alpha, const ork_complex_float* x, const ORK_INT* incx,
                     ork_complex_float* y, const ORK_INT* incy);
void ORK_NAME(zaxpy)(const ORK_INT* n, const ork_complex_double* alpha, const ork_complex_double* x,
                     const ORK_INT* incx, ork_complex_double* y, const ORK_INT* incy);

/* y <- alpha x + beta y. With beta = 0, y is not read. */
void ORK_NAME(saxpby)(const ORK_INT* n, const float* alpha, const float* x, const ORK_INT* incx, const float* beta,
                      float* y, const ORK_INT* incy);
void ORK_NAME(daxpby)(const ORK_INT* n, const double* alpha, const double* x, const ORK_INT* incx, const double* beta,
                      double* y, const ORK_INT* incy);
void ORK_NAME(caxpby)(const ORK_INT* n, const ork_complex_float* alpha, const ork_complex_float* x, const ORK_INT* incx,
                      const ork_complex_float* beta, ork_complex_float* y, const ORK_INT* incy);
void ORK_NAME(zaxpby)(const ORK_INT* n, const ork_complex_double* alpha, const ork_complex_double* x,
                      const ORK_INT* incx, const ork_complex_double* beta, ork_complex_double* y, const ORK_INT* incy);

/* x <- alpha x. alpha = 0 multiplies too, so NaN and infinity become NaN. */
void ORK_NAME(sscal)(const ORK_INT* n, const float* alpha, float* x, const ORK_INT* incx);
void ORK_NAME(dscal)(const ORK_INT* n, const double* alpha, double* x, const ORK_INT* incx);
void ORK_NAME(cscal)(const ORK_INT* n, const ork_complex_float* alpha, ork_complex_float* x, const ORK_INT* incx);
void ORK_NAME(zscal)(const ORK_INT* n, const ork_complex_double* alpha, ork_complex_double* x, const ORK_INT* incx);
void ORK_NAME(csscal)(const ORK_INT* n, const float* alpha, ork_complex_float* x, const ORK_INT* incx);
void ORK_NAME(zdscal)(const ORK_INT* n, const double* alpha, ork_complex_double* x, const ORK_INT* incx);

/* y <- x. */
void ORK_NAME(scopy)(const ORK_INT* n, const float* x, const ORK_INT* incx, float* y, const ORK_INT* incy);
void ORK_NAME(dcopy)(const ORK_INT* n, const double* x, const ORK_INT* incx, double* y, const ORK_INT* incy);
void ORK_NAME(ccopy)(const ORK_INT* n, const ork_complex_float* x, const ORK_INT* incx, ork_complex_float* y,
                     const ORK_INT* incy);
void ORK_NAME(zcopy)(const ORK_INT* n, const ork_complex_double* x, const ORK_INT* incx, ork_complex_double* y,
                     const ORK_INT* incy);

/* Exchanges x and y. */
void ORK_NAME(sswap)(const ORK_INT* n, float* x, const ORK_INT* incx, float* y, const ORK_INT* incy);
void ORK_NAME(dswap)(const ORK_INT* n, double* x, const ORK_INT* incx, double* y, const ORK_INT* incy);
void ORK_NAME(cswap)(const ORK_INT* n, ork_complex_float* x, const ORK_INT* incx, ork_complex_float* y,
                     const ORK_INT* incy);
void ORK_NAME(zswap)(const ORK_INT* n, ork_complex_double* x, const ORK_INT* incx, ork_complex_double* y,
                     const ORK_INT* incy);

/* Sum of x_i y_i. */
float ORK_NAME(sdot)(const ORK_INT* n, const float* x, const ORK_INT* incx, const float* y, const ORK_INT* incy);
double ORK_NAME(ddot)(const ORK_INT* n, const double* x, const ORK_INT* incx, const double* y, const ORK_INT* incy);

/* Sum of x_i y_i accumulated in double; sdsdot adds sb and rounds once. */
float ORK_NAME(sdsdot)(const ORK_INT* n, const float* sb, const float* x, const ORK_INT* incx, const float* y,
                       const ORK_INT* incy);
double ORK_NAME(dsdot)(const ORK_INT* n, const float* x, const ORK_INT* incx, const float* y, const ORK_INT* incy);

/* Sum of x_i y_i (dotu) or conj(x_i) y_i (dotc). */
ork_complex_float ORK_NAME(cdotu)(const ORK_INT* n, const ork_complex_float* x, const ORK_INT* incx,
                                  const ork_complex_float* y, const ORK_INT* incy);
ork_complex_float ORK_NAME(cdotc)(const ORK_INT* n, const ork_complex_float* x, const ORK_INT* incx,
                                  const ork_complex_float* y, const ORK_INT* incy);
ork_complex_double ORK_NAME(zdotu)(const ORK_INT* n, const ork_complex_double* x, const ORK_INT* incx,
                                   const ork_complex_double* y, const ORK_INT* incy);
ork_complex_double ORK_NAME(zdotc)(const ORK_INT* n, const ork_complex_double* x, const ORK_INT* incx,
                                   const ork_complex_double* y, const ORK_INT* incy);

/* Euclidean norm, without overflow or underflow on the way. */
float ORK_NAME(snrm2)(const ORK_INT* n, const float* x, const ORK_INT* incx);
double ORK_NAME(dnrm2)(const ORK_INT* n, const double* x, const ORK_INT* incx);
float ORK_NAME(scnrm2)(const ORK_INT* n, const ork_complex_float* x, const ORK_INT* incx);
double ORK_NAME(dznrm2)(const ORK_INT* n, const ork_complex_double* x, const ORK_INT* incx);

/* Sum of |re x_i| + |im x_i|. */
float ORK_NAME(sasum)(const ORK_INT* n, const float* x, const ORK_INT* incx);
double ORK_NAME(dasum)(const ORK_INT* n, const double* x, const ORK_INT* incx);
float ORK_NAME(scasum)(const ORK_INT* n, const ork_complex_float* x, const ORK_INT* incx);
double ORK_NAME(dzasum)(const ORK_INT* n, const ork_complex_double* x, const ORK_INT* incx);

/* Position, from 1, of the first element of largest |re| + |im|, or of the first NaN; 0 for n < 1. */
ORK_INT ORK_NAME(isamax)(const ORK_INT* n, const float* x, const ORK_INT* incx);
ORK_INT ORK_NAME(idamax)(const ORK_INT* n, const double* x, const ORK_INT* incx);
ORK_INT ORK_NAME(icamax)(const ORK_INT* n, const ork_complex_float* x, const ORK_INT* incx);
ORK_INT ORK_NAME(izamax)(const ORK_INT* n, const ork_complex_double* x, const ORK_INT* incx);

/* Position, from 1, of the first element of smallest |re| + |im|, or of the first NaN; 0 for n < 1. */
ORK_INT ORK_NAME(isamin)(const ORK_INT* n, const float* x, const ORK_INT* incx);
ORK_INT ORK_NAME(idamin)(const ORK_INT* n, const double* x, const ORK_INT* incx);
ORK_INT ORK_NAME(icamin)(const ORK_INT* n, const ork_complex_float* x, const ORK_INT* incx);
ORK_INT ORK_NAME(izamin)(const ORK_INT* n, const ork_complex_double* x, const ORK_INT* incx);

/* Plane rotation: x <- c x + s y, y <- c y - conj(s) x. */
void ORK_NAME(srot)(const ORK_INT* n, float* x, const ORK_INT* incx, float* y, const ORK_INT* incy, const float* c,
                    const float* s);
void ORK_NAME(drot)(const ORK_INT* n, double* x, const ORK_INT* incx, double* y, const ORK_INT* incy, const double* c,
                    const double* s);
void ORK_NAME(crot)(const ORK_INT* n, ork_complex_float* x, const ORK_INT* incx, ork_complex_float* y,
                    const ORK_INT* incy, const float* c, const ork_complex_float* s);
void ORK_NAME(zrot)(const ORK_INT* n, ork_complex_double* x, const ORK_INT* incx, ork_complex_double* y,
                    const ORK_INT* incy, const double* c, const ork_complex_double* s);
void ORK_NAME(csrot)(const ORK_INT* n, ork_complex_float* x, const ORK_INT* incx, ork_complex_float* y,
                     const ORK_INT* incy, const float* c, const float* s);
void ORK_NAME(zdrot)(const ORK_INT* n, ork_complex_double* x, const ORK_INT* incx, ork_complex_double* y,
                     const ORK_INT* incy, const double* c, const double* s);

/* Modified rotation; param holds the flag and the four elements of H by columns. */
void ORK_NAME(srotm)(const ORK_INT* n, float* x, const ORK_INT* incx, float* y, const ORK_INT* incy,
                     const float* param);
void ORK_NAME(drotm)(const ORK_INT* n, double* x, const ORK_INT* incx, double* y, const ORK_INT* incy,
                     const double* param);

/* The rotation that takes (a, b) to (r, 0): a becomes r, b the one number from which c and s can be restored. */
void ORK_NAME(srotg)(float* a, float* b, float* c, float* s);
void ORK_NAME(drotg)(double* a, double* b, double* c, double* s);

/* The same for complex a and b, with real c; b is left as it is. */
void ORK_NAME(crotg)(ork_complex_float* a, const ork_complex_float* b, float* c, ork_complex_float* s);
void ORK_NAME(zrotg)(ork_complex_double* a, const ork_complex_double* b, double* c, ork_complex_double* s);

/* The modified rotation that clears the second component of (sqrt(d1) x1, sqrt(d2) y1); param receives flag and H. */
void ORK_NAME(srotmg)(float* d1, float* d2, float* x1, const float* y1, float* param);
void ORK_NAME(drotmg)(double* d1, double* d2, double* x1, const double* y1, double* param);

/* |re z| + |im z|. */
float ORK_NAME(scabs1)(const ork_complex_float* z);
double ORK_NAME(dcabs1)(const ork_complex_double* z);

/* A sparse vector: nz values x, and their positions indx in the dense vector y, counted from 1. */

/* y[indx] <- y[indx] + alpha x. */
void ORK_NAME(saxpyi)(const ORK_INT* nz, const float* alpha, const float* x, const ORK_INT* indx, float* y);
void ORK_NAME(daxpyi)(const ORK_INT* nz, const double* alpha, const double* x, const ORK_INT* indx, double* y);
void ORK_NAME(caxpyi)(const ORK_INT* nz, const ork_complex_float* alpha, const ork_complex_float* x,
                      const ORK_INT* indx, ork_complex_float* y);
void ORK_NAME(zaxpyi)(const ORK_INT* nz, const ork_complex_double* alpha, const ork_complex_double* x,
                      const ORK_INT* indx, ork_complex_double* y);

/* Sum of x_i y[indx_i]. */
float ORK_NAME(sdoti)(const ORK_INT* nz, const float* x, const ORK_INT* indx, const float* y);
double ORK_NAME(ddoti)(const ORK_INT* nz, const double* x, const ORK_INT* indx, const double* y);

/* Sum of x_i y[indx_i] (dotui) or conj(x_i) y[indx_i] (dotci). */
ork_complex_float ORK_NAME(cdotui)(const ORK_INT* nz, const ork_complex_float* x, const ORK_INT* indx,
                                   const ork_complex_float* y);
ork_complex_float ORK_NAME(cdotci)(const ORK_INT* nz, const ork_complex_float* x, const ORK_INT* indx,
                                   const ork_complex_float* y);
ork_complex_double ORK_NAME(zdotui)(const ORK_INT* nz, const ork_complex_double* x, const ORK_INT* indx,
                                    const ork_complex_double* y);
ork_complex_double ORK_NAME(zdotci)(const ORK_INT* nz, const ork_complex_double* x, const ORK_INT* indx,
                                    const ork_complex_double* y);

/* x <- y[indx]. */
void ORK_NAME(sgthr)(const ORK_INT* nz, const float* y, float* x, const ORK_INT* indx);
void ORK_NAME(dgthr)(const ORK_INT* nz, const double* y, double* x, const ORK_INT* indx);
void ORK_NAME(cgthr)(const ORK_INT* nz, const ork_complex_float* y, ork_complex_float* x, const ORK_INT* indx);
void ORK_NAME(zgthr)(const ORK_INT* nz, const ork_complex_double* y, ork_complex_double* x, const ORK_INT* indx);

/* x <- y[indx], which becomes 0. */
void ORK_NAME(sgthrz)(const ORK_INT* nz, float* y, float* x, const ORK_INT* indx);
void ORK_NAME(dgthrz)(const ORK_INT* nz, double* y, double* x, const ORK_INT* indx);
void ORK_NAME(cgthrz)(const ORK_INT* nz, ork_complex_float* y, ork_complex_float* x, const ORK_INT* indx);
void ORK_NAME(zgthrz)(const ORK_INT* nz, ork_complex_double* y, ork_complex_double* x, const ORK_INT* indx);

/* y[indx] <- x; of equal positions the last wins. */
void ORK_NAME(ssctr)(const ORK_INT* nz, const float* x, const ORK_INT* indx, float* y);
void ORK_NAME(dsctr)(const ORK_INT* nz, const double* x, const ORK_INT* indx, double* y);
void ORK_NAME(csctr)(const ORK_INT* nz, const ork_complex_float* x, const ORK_INT* indx, ork_complex_float* y);
void ORK_NAME(zsctr)(const ORK_INT* nz, const ork_complex_double* x, const ORK_INT* indx, ork_complex_double* y);

/* Plane rotation of x against y[indx]: x <- c x + s y[indx], y[indx] <- c y[indx] - s x. */
void ORK_NAME(sroti)(const ORK_INT* nz, float* x, const ORK_INT* indx, float* y, const float* c, const float* s);
void ORK_NAME(droti)(const ORK_INT* nz, double* x, const ORK_INT* indx, double* y, const double* c, const double* s);

/* y <- alpha op(A) x + beta y with A m x n; op by the letter N (as it is), T (transposed) or C (conjugate transposed).
   With beta = 0, y is not read. */
void ORK_NAME(sgemv)(const char* trans, const ORK_INT* m, const ORK_INT* n, const float* alpha, const float* a,
                     const ORK_INT* lda, const float* x, const ORK_INT* incx, const float* beta, float* y,
                     const ORK_INT* incy);
void ORK_NAME(dgemv)(const char* trans, const ORK_INT* m, const ORK_INT* n, const double* alpha, const double* a,
                     const ORK_INT* lda, const double* x, const ORK_INT* incx, const double* beta, double* y,
                     const ORK_INT* incy);
void ORK_NAME(cgemv)(const char* trans, const ORK_INT* m, const ORK_INT* n, const ork_complex_float* alpha,
                     const ork_complex_float* a, const ORK_INT* lda, const ork_complex_float* x, const ORK_INT* incx,
                     const ork_complex_float* beta, ork_complex_float* y, const ORK_INT* incy);
void ORK_NAME(zgemv)(const char* trans, const ORK_INT* m, const ORK_INT* n, const ork_complex_double* alpha,
                     const ork_complex_double* a, const ORK_INT* lda, const ork_complex_double* x, const ORK_INT* incx,
                     const ork_complex_double* beta, ork_complex_double* y, const ORK_INT* incy);

/* The same for a band matrix with kl diagonals below the main one and ku above. */
void ORK_NAME(sgbmv)(const char* trans, const ORK_INT* m, const ORK_INT* n, const ORK_INT* kl, const ORK_INT* ku,
                     const float* alpha, const float* a, const ORK_INT* lda, const float* x, const ORK_INT* incx,
                     const float* beta, float* y, const ORK_INT* incy);
void ORK_NAME(dgbmv)(const char* trans, const ORK_INT* m, const ORK_INT* n, const ORK_INT* kl, const ORK_INT* ku,
                     const double* alpha, const double* a, const ORK_INT* lda, const double* x, const ORK_INT* incx,
                     const double* beta, double* y, const ORK_INT* incy);
void ORK_NAME(cgbmv)(const char* trans, const ORK_INT* m, const ORK_INT* n, const ORK_INT* kl, const ORK_INT* ku,
                     const ork_complex_float* alpha, const ork_complex_float* a, const ORK_INT* lda,
                     const ork_complex_float* x, const ORK_INT* incx, const ork_complex_float* beta,
                     ork_complex_float* y, const ORK_INT* incy);
void ORK_NAME(zgbmv)(const char* trans, const ORK_INT* m, const ORK_INT* n, const ORK_INT* kl, const ORK_INT* ku,
                     const ork_complex_double* alpha, const ork_complex_double* a, const ORK_INT* lda,
                     const ork_complex_double* x, const ORK_INT* incx, const ork_complex_double* beta,
                     ork_complex_double* y, const ORK_INT* incy);

/* y <- alpha A x + beta y with A symmetric or Hermitian (he) of order n; uplo says which triangle is stored, U or L. */
void ORK_NAME(ssymv)(const char* uplo, const ORK_INT* n, const float* alpha, const float* a, const ORK_INT* lda,
                     const float* x, const ORK_INT* incx, const float* beta, float* y, const ORK_INT* incy);
void ORK_NAME(dsymv)(const char* uplo, const ORK_INT* n, const double* alpha, const double* a, const ORK_INT* lda,
                     const double* x, const ORK_INT* incx, const double* beta, double* y, const ORK_INT* incy);
void ORK_NAME(chemv)(const char* uplo, const ORK_INT* n, const ork_complex_float* alpha, const ork_complex_float* a,
                     const ORK_INT* lda, const ork_complex_float* x, const ORK_INT* incx, const ork_complex_float* beta,
                     ork_complex_float* y, const ORK_INT* incy);
void ORK_NAME(zhemv)(const char* uplo, const ORK_INT* n, const ork_complex_double* alpha, const ork_complex_double* a,
                     const ORK_INT* lda, const ork_complex_double* x, const ORK_INT* incx,
                     const ork_complex_double* beta, ork_complex_double* y, const ORK_INT* incy);

/* The same for a band matrix with k diagonals on each side of the main one. */
void ORK_NAME(ssbmv)(const char* uplo, const ORK_INT* n, const ORK_INT* k, const float* alpha, const float* a,
                     const ORK_INT* lda, const float* x, const ORK_INT* incx, const float* beta, float* y,
                     const ORK_INT* incy);
void ORK_NAME(dsbmv)(const char* uplo, const ORK_INT* n, const ORK_INT* k, const double* alpha, const double* a,
                     const ORK_INT* lda, const double* x, const ORK_INT* incx, const double* beta, double* y,
                     const ORK_INT* incy);
void ORK_NAME(chbmv)(const char* uplo, const ORK_INT* n, const ORK_INT* k, const ork_complex_float* alpha,
                     const ork_complex_float* a, const ORK_INT* lda, const ork_complex_float* x, const ORK_INT* incx,
                     const ork_complex_float* beta, ork_complex_float* y, const ORK_INT* incy);
void ORK_NAME(zhbmv)(const char* uplo, const ORK_INT* n, const ORK_INT* k, const ork_complex_double* alpha,
                     const ork_complex_double* a, const ORK_INT* lda, const ork_complex_double* x, const ORK_INT* incx,
                     const ork_complex_double* beta, ork_complex_double* y, const ORK_INT* incy);

/* The same for a packed triangle. */
void ORK_NAME(sspmv)(const char* uplo, const ORK_INT* n, const float* alpha, const float* ap, const float* x,
                     const ORK_INT* incx, const float* beta, float* y, const ORK_INT* incy);
void ORK_NAME(dspmv)(const char* uplo, const ORK_INT* n, const double* alpha, const double* ap, const double* x,
                     const ORK_INT* incx, const double* beta, double* y, const ORK_INT* incy);
void ORK_NAME(chpmv)(const char* uplo, const ORK_INT* n, const ork_complex_float* alpha, const ork_complex_float* ap,
                     const ork_complex_float* x, const ORK_INT* incx, const ork_complex_float* beta,
                     ork_complex_float* y, const ORK_INT* incy);
void ORK_NAME(zhpmv)(const char* uplo, const ORK_INT* n, const ork_complex_double* alpha, const ork_complex_double* ap,
                     const ork_complex_double* x, const ORK_INT* incx, const ork_complex_double* beta,
                     ork_complex_double* y, const ORK_INT* incy);

/* x <- op(A) x with A triangular, in a band (tb) or packed (tp). diag = U: the diagonal is 1 and not read. */
void ORK_NAME(strmv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n, const float* a,
                     const ORK_INT* lda, float* x, const ORK_INT* incx);
void ORK_NAME(dtrmv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n, const double* a,
                     const ORK_INT* lda, double* x, const ORK_INT* incx);
void ORK_NAME(ctrmv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n,
                     const ork_complex_float* a, const ORK_INT* lda, ork_complex_float* x, const ORK_INT* incx);
void ORK_NAME(ztrmv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n,
                     const ork_complex_double* a, const ORK_INT* lda, ork_complex_double* x, const ORK_INT* incx);
void ORK_NAME(stbmv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n, const ORK_INT* k,
                     const float* a, const ORK_INT* lda, float* x, const ORK_INT* incx);
void ORK_NAME(dtbmv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n, const ORK_INT* k,
                     const double* a, const ORK_INT* lda, double* x, const ORK_INT* incx);
void ORK_NAME(ctbmv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n, const ORK_INT* k,
                     const ork_complex_float* a, const ORK_INT* lda, ork_complex_float* x, const ORK_INT* incx);
void ORK_NAME(ztbmv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n, const ORK_INT* k,
                     const ork_complex_double* a, const ORK_INT* lda, ork_complex_double* x, const ORK_INT* incx);
void ORK_NAME(stpmv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n, const float* ap, float* x,
                     const ORK_INT* incx);
void ORK_NAME(dtpmv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n, const double* ap,
                     double* x, const ORK_INT* incx);
void ORK_NAME(ctpmv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n,
                     const ork_complex_float* ap, ork_complex_float* x, const ORK_INT* incx);
void ORK_NAME(ztpmv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n,
                     const ork_complex_double* ap, ork_complex_double* x, const ORK_INT* incx);

/* x <- op(A)^-1 x. A zero on the diagonal is not looked for. */
void ORK_NAME(strsv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n, const float* a,
                     const ORK_INT* lda, float* x, const ORK_INT* incx);
void ORK_NAME(dtrsv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n, const double* a,
                     const ORK_INT* lda, double* x, const ORK_INT* incx);
void ORK_NAME(ctrsv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n,
                     const ork_complex_float* a, const ORK_INT* lda, ork_complex_float* x, const ORK_INT* incx);
void ORK_NAME(ztrsv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n,
                     const ork_complex_double* a, const ORK_INT* lda, ork_complex_double* x, const ORK_INT* incx);
void ORK_NAME(stbsv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n, const ORK_INT* k,
                     const float* a, const ORK_INT* lda, float* x, const ORK_INT* incx);
void ORK_NAME(dtbsv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n, const ORK_INT* k,
                     const double* a, const ORK_INT* lda, double* x, const ORK_INT* incx);
void ORK_NAME(ctbsv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n, const ORK_INT* k,
                     const ork_complex_float* a, const ORK_INT* lda, ork_complex_float* x, const ORK_INT* incx);
void ORK_NAME(ztbsv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n, const ORK_INT* k,
                     const ork_complex_double* a, const ORK_INT* lda, ork_complex_double* x, const ORK_INT* incx);
void ORK_NAME(stpsv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n, const float* ap, float* x,
                     const ORK_INT* incx);
void ORK_NAME(dtpsv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n, const double* ap,
                     double* x, const ORK_INT* incx);
void ORK_NAME(ctpsv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n,
                     const ork_complex_float* ap, ork_complex_float* x, const ORK_INT* incx);
void ORK_NAME(ztpsv)(const char* uplo, const char* trans, const char* diag, const ORK_INT* n,
                     const ork_complex_double* ap, ork_complex_double* x, const ORK_INT* incx);

/* A <- alpha x y' + A with A m x n; gerc: with the conjugate of y. */
void ORK_NAME(sger)(const ORK_INT* m, const ORK_INT* n, const float* alpha, const float* x, const ORK_INT* incx,
                    const float* y, const ORK_INT* incy, float* a, const ORK_INT* lda);
void ORK_NAME(dger)(const ORK_INT* m, const ORK_INT* n, const double* alpha, const double* x, const ORK_INT* incx,
                    const double* y, const ORK_INT* incy, double* a, const ORK_INT* lda);
void ORK_NAME(cgeru)(const ORK_INT* m, const ORK_INT* n, const ork_complex_float* alpha, const ork_complex_float* x,
                     const ORK_INT* incx, const ork_complex_float* y, const ORK_INT* incy, ork_complex_float* a,
                     const ORK_INT* lda);
void ORK_NAME(zgeru)(const ORK_INT* m, const ORK_INT* n, const ork_complex_double* alpha, const ork_complex_double* x,
                     const ORK_INT* incx, const ork_complex_double* y, const ORK_INT* incy, ork_complex_double* a,
                     const ORK_INT* lda);
void ORK_NAME(cgerc)(const ORK_INT* m, const ORK_INT* n, const ork_complex_float* alpha, const ork_complex_float* x,
                     const ORK_INT* incx, const ork_complex_float* y, const ORK_INT* incy, ork_complex_float* a,
                     const ORK_INT* lda);
void ORK_NAME(zgerc)(const ORK_INT* m, const ORK_INT* n, const ork_complex_double* alpha, const ork_complex_double* x,
                     const ORK_INT* incx, const ork_complex_double* y, const ORK_INT* incy, ork_complex_double* a,
                     const ORK_INT* lda);

/* A <- alpha x x' + A, one triangle; her: with the conjugate of x', alpha real. */
void ORK_NAME(ssyr)(const char* uplo, const ORK_INT* n, const float* alpha, const float* x, const ORK_INT* incx,
                    float* a, const ORK_INT* lda);
void ORK_NAME(dsyr)(const char* uplo, const ORK_INT* n, const double* alpha, const double* x, const ORK_INT* incx,
                    double* a, const ORK_INT* lda);
void ORK_NAME(cher)(const char* uplo, const ORK_INT* n, const float* alpha, const ork_complex_float* x,
                    const ORK_INT* incx, ork_complex_float* a, const ORK_INT* lda);
void ORK_NAME(zher)(const char* uplo, const ORK_INT* n, const double* alpha, const ork_complex_double* x,
                    const ORK_INT* incx, ork_complex_double* a, const ORK_INT* lda);
void ORK_NAME(sspr)(const char* uplo, const ORK_INT* n, const float* alpha, const float* x, const ORK_INT* incx,
                    float* ap);
void ORK_NAME(dspr)(const char* uplo, const ORK_INT* n, const double* alpha, const double* x, const ORK_INT* incx,
                    double* ap);
void ORK_NAME(chpr)(const char* uplo, const ORK_INT* n, const float* alpha, const ork_complex_float* x,
                    const ORK_INT* incx, ork_complex_float* ap);
void ORK_NAME(zhpr)(const char* uplo, const ORK_INT* n, const double* alpha, const ork_complex_double* x,
                    const ORK_INT* incx, ork_complex_double* ap);

/* A <- alpha x y' + alpha y x' + A, one triangle; her2: x conj(y)' and conj(alpha) y conj(x)'. */
void ORK_NAME(ssyr2)(const char* uplo, const ORK_INT* n, const float* alpha, const float* x, const ORK_INT* incx,
                     const float* y, const ORK_INT* incy, float* a, const ORK_INT* lda);
void ORK_NAME(dsyr2)(const char* uplo, const ORK_INT* n, const double* alpha, const double* x, const ORK_INT* incx,
                     const double* y, const ORK_INT* incy, double* a, const ORK_INT* lda);
void ORK_NAME(cher2)(const char* uplo, const ORK_INT* n, const ork_complex_float* alpha, const ork_complex_float* x,
                     const ORK_INT* incx, const ork_complex_float* y, const ORK_INT* incy, ork_complex_float* a,
                     const ORK_INT* lda);
void ORK_NAME(zher2)(const char* uplo, const ORK_INT* n, const ork_complex_double* alpha, const ork_complex_double* x,
                     const ORK_INT* incx, const ork_complex_double* y, const ORK_INT* incy, ork_complex_double* a,
                     const ORK_INT* lda);
void ORK_NAME(sspr2)(const char* uplo, const ORK_INT* n, const float* alpha, const float* x, const ORK_INT* incx,
                     const float* y, const ORK_INT* incy, float* ap);
void ORK_NAME(dspr2)(const char* uplo, const ORK_INT* n, const double* alpha, const double* x, const ORK_INT* incx,
                     const double* y, const ORK_INT* incy, double* ap);
void ORK_NAME(chpr2)(const char* uplo, const ORK_INT* n, const ork_complex_float* alpha, const ork_complex_float* x,
                     const ORK_INT* incx, const ork_complex_float* y, const ORK_INT* incy, ork_complex_float* ap);
void ORK_NAME(zhpr2)(const char* uplo, const ORK_INT* n, const ork_complex_double* alpha, const ork_complex_double* x,
                     const ORK_INT* incx, const ork_complex_double* y, const ORK_INT* incy, ork_complex_double* ap);

/* gemv of a real matrix and complex vectors. */
void ORK_NAME(scgemv)(const char* trans, const ORK_INT* m, const ORK_INT* n, const ork_complex_float* alpha,
                      const float* a, const ORK_INT* lda, const ork_complex_float* x, const ORK_INT* incx,
                      const ork_complex_float* beta, ork_complex_float* y, const ORK_INT* incy);
void ORK_NAME(dzgemv)(const char* trans, const ORK_INT* m, const ORK_INT* n, const ork_complex_double* alpha,
                      const double* a, const ORK_INT* lda, const ork_complex_double* x, const ORK_INT* incx,
                      const ork_complex_double* beta, ork_complex_double* y, const ORK_INT* incy);

/* y1 <- alpha A x1 + beta y1 and y2 <- alpha A' x2 + beta y2, A m x n; gem2vc: with the conjugate transpose. */
void ORK_NAME(sgem2vu)(const ORK_INT* m, const ORK_INT* n, const float* alpha, const float* a, const ORK_INT* lda,
                       const float* x1, const ORK_INT* incx1, const float* x2, const ORK_INT* incx2, const float* beta,
                       float* y1, const ORK_INT* incy1, float* y2, const ORK_INT* incy2);
void ORK_NAME(dgem2vu)(const ORK_INT* m, const ORK_INT* n, const double* alpha, const double* a, const ORK_INT* lda,
                       const double* x1, const ORK_INT* incx1, const double* x2, const ORK_INT* incx2,
                       const double* beta, double* y1, const ORK_INT* incy1, double* y2, const ORK_INT* incy2);
void ORK_NAME(cgem2vc)(const ORK_INT* m, const ORK_INT* n, const ork_complex_float* alpha, const ork_complex_float* a,
                       const ORK_INT* lda, const ork_complex_float* x1, const ORK_INT* incx1,
                       const ork_complex_float* x2, const ORK_INT* incx2, const ork_complex_float* beta,
                       ork_complex_float* y1, const ORK_INT* incy1, ork_complex_float* y2, const ORK_INT* incy2);
void ORK_NAME(zgem2vc)(const ORK_INT* m, const ORK_INT* n, const ork_complex_double* alpha, const ork_complex_double* a,
                       const ORK_INT* lda, const ork_complex_double* x1, const ORK_INT* incx1,
                       const ork_complex_double* x2, const ORK_INT* incx2, const ork_complex_double* beta,
                       ork_complex_double* y1, const ORK_INT* incy1, ork_complex_double* y2, const ORK_INT* incy2);

/* C <- alpha op(A) op(B) + beta C with C m x n, op(A) m x k, op(B) k x n; op by the letter N (as it is), T
   (transposed) or C (conjugate transposed). With beta = 0, C is not read. */
void ORK_NAME(sgemm)(const char* transa, const char* transb, const ORK_INT* m, const ORK_INT* n, const ORK_INT* k,
                     const float* alpha, const float* a, const ORK_INT* lda, const float* b, const ORK_INT* ldb,
                     const float* beta, float* c, const ORK_INT* ldc);
void ORK_NAME(dgemm)(const char* transa, const char* transb, const ORK_INT* m, const ORK_INT* n, const ORK_INT* k,
                     const double* alpha, const double* a, const ORK_INT* lda, const double* b, const ORK_INT* ldb,
                     const double* beta, double* c, const ORK_INT* ldc);
void ORK_NAME(cgemm)(const char* transa, const char* transb, const ORK_INT* m, const ORK_INT* n, const ORK_INT* k,
                     const ork_complex_float* alpha, const ork_complex_float* a, const ORK_INT* lda,
                     const ork_complex_float* b, const ORK_INT* ldb, const ork_complex_float* beta,
                     ork_complex_float* c, const ORK_INT* ldc);
void ORK_NAME(zgemm)(const char* transa, const char* transb, const ORK_INT* m, const ORK_INT* n, const ORK_INT* k,
                     const ork_complex_double* alpha, const ork_complex_double* a, const ORK_INT* lda,
                     const ork_complex_double* b, const ORK_INT* ldb, const ork_complex_double* beta,
                     ork_complex_double* c, const ORK_INT* ldc);

/* C <- alpha A B + beta C (side L) or alpha B A + beta C (R), with A symmetric or Hermitian and C m x n. */
void ORK_NAME(ssymm)(const char* side, const char* uplo, const ORK_INT* m, const ORK_INT* n, const float* alpha,
                     const float* a, const ORK_INT* lda, const float* b, const ORK_INT* ldb, const float* beta,
                     float* c, const ORK_INT* ldc);
void ORK_NAME(dsymm)(const char* side, const char* uplo, const ORK_INT* m, const ORK_INT* n, const double* alpha,
                     const double* a, const ORK_INT* lda, const double* b, const ORK_INT* ldb, const double* beta,
                     double* c, const ORK_INT* ldc);
void ORK_NAME(csymm)(const char* side, const char* uplo, const ORK_INT* m, const ORK_INT* n,
                     const ork_complex_float* alpha, const ork_complex_float* a, const ORK_INT* lda,
                     const ork_complex_float* b, const ORK_INT* ldb, const ork_complex_float* beta,
                     ork_complex_float* c, const ORK_INT* ldc);
void ORK_NAME(zsymm)(const char* side, const char* uplo, const ORK_INT* m, const ORK_INT* n,
                     const ork_complex_double* alpha, const ork_complex_double* a, const ORK_INT* lda,
                     const ork_complex_double* b, const ORK_INT* ldb, const ork_complex_double* beta,
                     ork_complex_double* c, const ORK_INT* ldc);
void ORK_NAME(chemm)(const char* side, const char* uplo, const ORK_INT* m, const ORK_INT* n,
                     const ork_complex_float* alpha, const ork_complex_float* a, const ORK_INT* lda,
                     const ork_complex_float* b, const ORK_INT* ldb, const ork_complex_float* beta,
                     ork_complex_float* c, const ORK_INT* ldc);
void ORK_NAME(zhemm)(const char* side, const char* uplo, const ORK_INT* m, const ORK_INT* n,
                     const ork_complex_double* alpha, const ork_complex_double* a, const ORK_INT* lda,
                     const ork_complex_double* b, const ORK_INT* ldb, const ork_complex_double* beta,
                     ork_complex_double* c, const ORK_INT* ldc);

/* C <- alpha A A' + beta C (trans N) or alpha A' A + beta C (T), one triangle of C, which is n x n. trans C means T for
   real matrices and is not legal for complex ones. */
void ORK_NAME(ssyrk)(const char* uplo, const char* trans, const ORK_INT* n, const ORK_INT* k, const float* alpha,
                     const float* a, const ORK_INT* lda, const float* beta, float* c, const ORK_INT* ldc);
void ORK_NAME(dsyrk)(const char* uplo, const char* trans, const ORK_INT* n, const ORK_INT* k, const double* alpha,
                     const double* a, const ORK_INT* lda, const double* beta, double* c, const ORK_INT* ldc);
void ORK_NAME(csyrk)(const char* uplo, const char* trans, const ORK_INT* n, const ORK_INT* k,
                     const ork_complex_float* alpha, const ork_complex_float* a, const ORK_INT* lda,
                     const ork_complex_float* beta, ork_complex_float* c, const ORK_INT* ldc);
void ORK_NAME(zsyrk)(const char* uplo, const char* trans, const ORK_INT* n, const ORK_INT* k,
                     const ork_complex_double* alpha, const ork_complex_double* a, const ORK_INT* lda,
                     const ork_complex_double* beta, ork_complex_double* c, const ORK_INT* ldc);

/* The same with the conjugate transpose (trans N or C); the diagonal of C becomes real. */
void ORK_NAME(cherk)(const char* uplo, const char* trans, const ORK_INT* n, const ORK_INT* k, const float* alpha,
                     const ork_complex_float* a, const ORK_INT* lda, const float* beta, ork_complex_float* c,
                     const ORK_INT* ldc);
void ORK_NAME(zherk)(const char* uplo, const char* trans, const ORK_INT* n, const ORK_INT* k, const double* alpha,
                     const ork_complex_double* a, const ORK_INT* lda, const double* beta, ork_complex_double* c,
                     const ORK_INT* ldc);

/* C <- alpha A B' + alpha B A' + beta C (trans N) or alpha A' B + alpha B' A + beta C (T), one triangle of C. */
void ORK_NAME(ssyr2k)(const char* uplo, const char* trans, const ORK_INT* n, const ORK_INT* k, const float* alpha,
                      const float* a, const ORK_INT* lda, const float* b, const ORK_INT* ldb, const float* beta,
                      float* c, const ORK_INT* ldc);
void ORK_NAME(dsyr2k)(const char* uplo, const char* trans, const ORK_INT* n, const ORK_INT* k, const double* alpha,
                      const double* a, const ORK_INT* lda, const double* b, const ORK_INT* ldb, const double* beta,
                      double* c, const ORK_INT* ldc);
void ORK_NAME(csyr2k)(const char* uplo, const char* trans, const ORK_INT* n, const ORK_INT* k,
                      const ork_complex_float* alpha, const ork_complex_float* a, const ORK_INT* lda,
                      const ork_complex_float* b, const ORK_INT* ldb, const ork_complex_float* beta,
                      ork_complex_float* c, const ORK_INT* ldc);
void ORK_NAME(zsyr2k)(const char* uplo, const char* trans, const ORK_INT* n, const ORK_INT* k,
                      const ork_complex_double* alpha, const ork_complex_double* a, const ORK_INT* lda,
                      const ork_complex_double* b, const ORK_INT* ldb, const ork_complex_double* beta,
                      ork_complex_double* c, const ORK_INT* ldc);

/* C <- alpha A B^H + conj(alpha) B A^H + beta C (trans N) or alpha A^H B + conj(alpha) B^H A + beta C (C). */
void ORK_NAME(cher2k)(const char* uplo, const char* trans, const ORK_INT* n, const ORK_INT* k,
                      const ork_complex_float* alpha, const ork_complex_float* a, const ORK_INT* lda,
                      const ork_complex_float* b, const ORK_INT* ldb, const float* beta, ork_complex_float* c,
                      const ORK_INT* ldc);
void ORK_NAME(zher2k)(const char* uplo, const char* trans, const ORK_INT* n, const ORK_INT* k,
                      const ork_complex_double* alpha, const ork_complex_double* a, const ORK_INT* lda,
                      const ork_complex_double* b, const ORK_INT* ldb, const double* beta, ork_complex_double* c,
                      const ORK_INT* ldc);

/* One triangle of C <- alpha op(A) op(B) + beta C, C n x n. */
void ORK_NAME(sgemmt)(const char* uplo, const char* transa, const char* transb, const ORK_INT* n, const ORK_INT* k,
                      const float* alpha, const float* a, const ORK_INT* lda, const float* b, const ORK_INT* ldb,
                      const float* beta, float* c, const ORK_INT* ldc);
void ORK_NAME(dgemmt)(const char* uplo, const char* transa, const char* transb, const ORK_INT* n, const ORK_INT* k,
                      const double* alpha, const double* a, const ORK_INT* lda, const double* b, const ORK_INT* ldb,
                      const double* beta, double* c, const ORK_INT* ldc);
void ORK_NAME(cgemmt)(const char* uplo, const char* transa, const char* transb, const ORK_INT* n, const ORK_INT* k,
                      const ork_complex_float* alpha, const ork_complex_float* a, const ORK_INT* lda,
                      const ork_complex_float* b, const ORK_INT* ldb, const ork_complex_float* beta,
                      ork_complex_float* c, const ORK_INT* ldc);
void ORK_NAME(zgemmt)(const char* uplo, const char* transa, const char* transb, const ORK_INT* n, const ORK_INT* k,
                      const ork_complex_double* alpha, const ork_complex_double* a, const ORK_INT* lda,
                      const ork_complex_double* b, const ORK_INT* ldb, const ork_complex_double* beta,
                      ork_complex_double* c, const ORK_INT* ldc);

/* B <- alpha op(A) B (side L) or alpha B op(A) (R), with A triangular and B m x n. With alpha = 0, A is not read. */
void ORK_NAME(strmm)(const char* side, const char* uplo, const char* transa, const char* diag, const ORK_INT* m,
                     const ORK_INT* n, const float* alpha, const float* a, const ORK_INT* lda, float* b,
                     const ORK_INT* ldb);
void ORK_NAME(dtrmm)(const char* side, const char* uplo, const char* transa, const char* diag, const ORK_INT* m,
                     const ORK_INT* n, const double* alpha, const double* a, const ORK_INT* lda, double* b,
                     const ORK_INT* ldb);
void ORK_NAME(ctrmm)(const char* side, const char* uplo, const char* transa, const char* diag, const ORK_INT* m,
                     const ORK_INT* n, const ork_complex_float* alpha, const ork_complex_float* a, const ORK_INT* lda,
                     ork_complex_float* b, const ORK_INT* ldb);
void ORK_NAME(ztrmm)(const char* side, const char* uplo, const char* transa, const char* diag, const ORK_INT* m,
                     const ORK_INT* n, const ork_complex_double* alpha, const ork_complex_double* a, const ORK_INT* lda,
                     ork_complex_double* b, const ORK_INT* ldb);

/* B <- alpha op(A)^-1 B or alpha B op(A)^-1. */
void ORK_NAME(strsm)(const char* side, const char* uplo, const char* transa, const char* diag, const ORK_INT* m,
                     const ORK_INT* n, const float* alpha, const float* a, const ORK_INT* lda, float* b,
                     const ORK_INT* ldb);
void ORK_NAME(dtrsm)(const char* side, const char* uplo, const char* transa, const char* diag, const ORK_INT* m,
                     const ORK_INT* n, const double* alpha, const double* a, const ORK_INT* lda, double* b,
                     const ORK_INT* ldb);
void ORK_NAME(ctrsm)(const char* side, const char* uplo, const char* transa, const char* diag, const ORK_INT* m,
                     const ORK_INT* n, const ork_complex_float* alpha, const ork_complex_float* a, const ORK_INT* lda,
                     ork_complex_float* b, const ORK_INT* ldb);
void ORK_NAME(ztrsm)(const char* side, const char* uplo, const char* transa, const char* diag, const ORK_INT* m,
                     const ORK_INT* n, const ork_complex_double* alpha, const ork_complex_double* a, const ORK_INT* lda,
                     ork_complex_double* b, const ORK_INT* ldb);

/* gemm by three real products instead of four: faster, with errors of the size of the larger part of an element. */
void ORK_NAME(cgemm3m)(const char* transa, const char* transb, const ORK_INT* m, const ORK_INT* n, const ORK_INT* k,
                       const ork_complex_float* alpha, const ork_complex_float* a, const ORK_INT* lda,
                       const ork_complex_float* b, const ORK_INT* ldb, const ork_complex_float* beta,
                       ork_complex_float* c, const ORK_INT* ldc);
void ORK_NAME(zgemm3m)(const char* transa, const char* transb, const ORK_INT* m, const ORK_INT* n, const ORK_INT* k,
                       const ork_complex_double* alpha, const ork_complex_double* a, const ORK_INT* lda,
                       const ork_complex_double* b, const ORK_INT* ldb, const ork_complex_double* beta,
                       ork_complex_double* c, const ORK_INT* ldc);

/* Groups of multiplies: group g is group_size[g] calls of gemm with the g-th element of every array; the matrices of
   all groups stand in a, b and c one after the other. No two C may overlap. */
void ORK_NAME(sgemm_batch)(const char* transa, const char* transb, const ORK_INT* m, const ORK_INT* n, const ORK_INT* k,
                           const float* alpha, const float* const* a, const ORK_INT* lda, const float* const* b,
                           const ORK_INT* ldb, const float* beta, float* const* c, const ORK_INT* ldc,
                           const ORK_INT* group_count, const ORK_INT* group_size);
void ORK_NAME(dgemm_batch)(const char* transa, const char* transb, const ORK_INT* m, const ORK_INT* n, const ORK_INT* k,
                           const double* alpha, const double* const* a, const ORK_INT* lda, const double* const* b,
                           const ORK_INT* ldb, const double* beta, double* const* c, const ORK_INT* ldc,
                           const ORK_INT* group_count, const ORK_INT* group_size);
void ORK_NAME(cgemm_batch)(const char* transa, const char* transb, const ORK_INT* m, const ORK_INT* n, const ORK_INT* k,
                           const ork_complex_float* alpha, const ork_complex_float* const* a, const ORK_INT* lda,
                           const ork_complex_float* const* b, const ORK_INT* ldb, const ork_complex_float* beta,
                           ork_complex_float* const* c, const ORK_INT* ldc, const ORK_INT* group_count,
                           const ORK_INT* group_size);
void ORK_NAME(zgemm_batch)(const char* transa, const char* transb, const ORK_INT* m, const ORK_INT* n, const ORK_INT* k,
                           const ork_complex_double* alpha, const ork_complex_double* const* a, const ORK_INT* lda,
                           const ork_complex_double* const* b, const ORK_INT* ldb, const ork_complex_double* beta,
                           ork_complex_double* const* c, const ORK_INT* ldc, const ORK_INT* group_count,
                           const ORK_INT* group_size);

/* batch_size multiplies of one shape: the i-th, from 0 on, of the matrices at a + i stridea, b + i strideb, c + i
   stridec. */
void ORK_NAME(sgemm_batch_strided)(const char* transa, const char* transb, const ORK_INT* m, const ORK_INT* n,
                                   const ORK_INT* k, const float* alpha, const float* a, const ORK_INT* lda,
                                   const ORK_INT* stridea, const float* b, const ORK_INT* ldb, const ORK_INT* strideb,
                                   const float* beta, float* c, const ORK_INT* ldc, const ORK_INT* stridec,
                                   const ORK_INT* batch_size);
void ORK_NAME(dgemm_batch_strided)(const char* transa, const char* transb, const ORK_INT* m, const ORK_INT* n,
                                   const ORK_INT* k, const double* alpha, const double* a, const ORK_INT* lda,
                                   const ORK_INT* stridea, const double* b, const ORK_INT* ldb, const ORK_INT* strideb,
                                   const double* beta, double* c, const ORK_INT* ldc, const ORK_INT* stridec,
                                   const ORK_INT* batch_size);
void ORK_NAME(cgemm_batch_strided)(const char* transa, const char* transb, const ORK_INT* m, const ORK_INT* n,
                                   const ORK_INT* k, const ork_complex_float* alpha, const ork_complex_float* a,
                                   const ORK_INT* lda, const ORK_INT* stridea, const ork_complex_float* b,
                                   const ORK_INT* ldb, const ORK_INT* strideb, const ork_complex_float* beta,
                                   ork_complex_float* c, const ORK_INT* ldc, const ORK_INT* stridec,
                                   const ORK_INT* batch_size);
void ORK_NAME(zgemm_batch_strided)(const char* transa, const char* transb, const ORK_INT* m, const ORK_INT* n,
                                   const ORK_INT* k, const ork_complex_double* alpha, const ork_complex_double* a,
                                   const ORK_INT* lda, const ORK_INT* stridea, const ork_complex_double* b,
                                   const ORK_INT* ldb, const ORK_INT* strideb, const ork_complex_double* beta,
                                   ork_complex_double* c, const ORK_INT* ldc, const ORK_INT* stridec,
                                   const ORK_INT* batch_size);

/* gemm of a real A and complex B and C. */
void ORK_NAME(scgemm)(const char* transa, const char* transb, const ORK_INT* m, const ORK_INT* n, const ORK_INT* k,
                      const ork_complex_float* alpha, const float* a, const ORK_INT* lda, const ork_complex_float* b,
                      const ORK_INT* ldb, const ork_complex_float* beta, ork_complex_float* c, const ORK_INT* ldc);
void ORK_NAME(dzgemm)(const char* transa, const char* transb, const ORK_INT* m, const ORK_INT* n, const ORK_INT* k,
                      const ork_complex_double* alpha, const double* a, const ORK_INT* lda, const ork_complex_double* b,
                      const ORK_INT* ldb, const ork_complex_double* beta, ork_complex_double* c, const ORK_INT* ldc);

#ifdef ORK_OWN_NAMES
/* gemm and gemv of 8-bit and 16-bit integers, signed (s) and unsigned (u), with 32-bit sums modulo 2^32. */
void ORK_NAME(gemm_s8u8s32)(const char* transa, const char* transb, const ORK_INT* m, const ORK_INT* n,
                            const ORK_INT* k, const int32_t* alpha, const int8_t* a, const ORK_INT* lda,
                            const uint8_t* b, const ORK_INT* ldb, const int32_t* beta, int32_t* c, const ORK_INT* ldc);
void ORK_NAME(gemm_s16s16s32)(const char* transa, const char* transb, const ORK_INT* m, const ORK_INT* n,
                              const ORK_INT* k, const int32_t* alpha, const int16_t* a, const ORK_INT* lda,
                              const int16_t* b, const ORK_INT* ldb, const int32_t* beta, int32_t* c,
                              const ORK_INT* ldc);
void ORK_NAME(gemv_s8u8s32)(const char* trans, const ORK_INT* m, const ORK_INT* n, const int32_t* alpha,
                            const int8_t* a, const ORK_INT* lda, const uint8_t* x, const ORK_INT* incx,
                            const int32_t* beta, int32_t* y, const ORK_INT* incy);

/* gemm and gemv of narrow floating-point numbers, which are widened exactly, with sums in float: bfloat16 (bf16) and
   binary16 (f16), 8 bits of which 4 (e4m3) or 5 (e5m2) are the exponent. */
void ORK_NAME(gemm_bf16bf16f32)(const char* transa, const char* transb, const ORK_INT* m, const ORK_INT* n,
                                const ORK_INT* k, const float* alpha, const uint16_t* a, const ORK_INT* lda,
                                const uint16_t* b, const ORK_INT* ldb, const float* beta, float* c, const ORK_INT* ldc);
void ORK_NAME(gemm_f16f16f32)(const char* transa, const char* transb, const ORK_INT* m, const ORK_INT* n,
                              const ORK_INT* k, const float* alpha, const uint16_t* a, const ORK_INT* lda,
                              const uint16_t* b, const ORK_INT* ldb, const float* beta, float* c, const ORK_INT* ldc);
void ORK_NAME(gemm_e4m3e4m3f32)(const char* transa, const char* transb, const ORK_INT* m, const ORK_INT* n,
                                const ORK_INT* k, const float* alpha, const uint8_t* a, const ORK_INT* lda,
                                const uint8_t* b, const ORK_INT* ldb, const float* beta, float* c, const ORK_INT* ldc);
void ORK_NAME(gemm_e5m2e5m2f32)(const char* transa, const char* transb, const ORK_INT* m, const ORK_INT* n,
                                const ORK_INT* k, const float* alpha, const uint8_t* a, const ORK_INT* lda,
                                const uint8_t* b, const ORK_INT* ldb, const float* beta, float* c, const ORK_INT* ldc);
void ORK_NAME(gemv_bf16bf16f32)(const char* trans, const ORK_INT* m, const ORK_INT* n, const float* alpha,
                                const uint16_t* a, const ORK_INT* lda, const uint16_t* x, const ORK_INT* incx,
                                const float* beta, float* y, const ORK_INT* incy);
#endif
