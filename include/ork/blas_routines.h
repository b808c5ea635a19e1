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
