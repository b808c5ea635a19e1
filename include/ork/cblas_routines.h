/* SPDX-License-Identifier: MIT */
/* The BLAS by C's conventions, for one integer type and one spelling of the names: ork/cblas.h includes this list with
   ORK_INT and ORK_NAME defined. Sizes, increments, options and real scalars are values, complex scalars and arrays
   addresses; n counts elements; an increment counts elements too, and with a negative one the first element is the last
   in memory. */

/* y <- alpha x + y. Nothing is done for alpha = 0. */
void ORK_NAME(saxpy)(ORK_INT n, float alpha, const float* x, ORK_INT incx, float* y, ORK_INT incy);
void ORK_NAME(daxpy)(ORK_INT n, double alpha, const double* x, ORK_INT incx, double* y, ORK_INT incy);
void ORK_NAME(caxpy)(ORK_INT n, const void* alpha, const void* x, ORK_INT incx, void* y, ORK_INT incy);
void ORK_NAME(zaxpy)(ORK_INT n, const void* alpha, const void* x, ORK_INT incx, void* y, ORK_INT incy);

/* y <- alpha x + beta y. With beta = 0, y is not read. */
void ORK_NAME(saxpby)(ORK_INT n, float alpha, const float* x, ORK_INT incx, float beta, float* y, ORK_INT incy);
void ORK_NAME(daxpby)(ORK_INT n, double alpha, const double* x, ORK_INT incx, double beta, double* y, ORK_INT incy);
void ORK_NAME(caxpby)(ORK_INT n, const void* alpha, const void* x, ORK_INT incx, const void* beta, void* y,
                      ORK_INT incy);
void ORK_NAME(zaxpby)(ORK_INT n, const void* alpha, const void* x, ORK_INT incx, const void* beta, void* y,
                      ORK_INT incy);

/* x <- alpha x. alpha = 0 multiplies too, so NaN and infinity become NaN. */
void ORK_NAME(sscal)(ORK_INT n, float alpha, float* x, ORK_INT incx);
void ORK_NAME(dscal)(ORK_INT n, double alpha, double* x, ORK_INT incx);
void ORK_NAME(cscal)(ORK_INT n, const void* alpha, void* x, ORK_INT incx);
void ORK_NAME(zscal)(ORK_INT n, const void* alpha, void* x, ORK_INT incx);
void ORK_NAME(csscal)(ORK_INT n, float alpha, void* x, ORK_INT incx);
void ORK_NAME(zdscal)(ORK_INT n, double alpha, void* x, ORK_INT incx);

/* y <- x. */
void ORK_NAME(scopy)(ORK_INT n, const float* x, ORK_INT incx, float* y, ORK_INT incy);
void ORK_NAME(dcopy)(ORK_INT n, const double* x, ORK_INT incx, double* y, ORK_INT incy);
void ORK_NAME(ccopy)(ORK_INT n, const void* x, ORK_INT incx, void* y, ORK_INT incy);
void ORK_NAME(zcopy)(ORK_INT n, const void* x, ORK_INT incx, void* y, ORK_INT incy);

/* Exchanges x and y. */
void ORK_NAME(sswap)(ORK_INT n, float* x, ORK_INT incx, float* y, ORK_INT incy);
void ORK_NAME(dswap)(ORK_INT n, double* x, ORK_INT incx, double* y, ORK_INT incy);
void ORK_NAME(cswap)(ORK_INT n, void* x, ORK_INT incx, void* y, ORK_INT incy);
void ORK_NAME(zswap)(ORK_INT n, void* x, ORK_INT incx, void* y, ORK_INT incy);

/* Sum of x_i y_i. */
float ORK_NAME(sdot)(ORK_INT n, const float* x, ORK_INT incx, const float* y, ORK_INT incy);
double ORK_NAME(ddot)(ORK_INT n, const double* x, ORK_INT incx, const double* y, ORK_INT incy);

/* Sum of x_i y_i accumulated in double; sdsdot adds sb and rounds once. */
float ORK_NAME(sdsdot)(ORK_INT n, float sb, const float* x, ORK_INT incx, const float* y, ORK_INT incy);
double ORK_NAME(dsdot)(ORK_INT n, const float* x, ORK_INT incx, const float* y, ORK_INT incy);

/* Sum of x_i y_i (dotu) or conj(x_i) y_i (dotc), stored through the last argument. */
void ORK_NAME(cdotu_sub)(ORK_INT n, const void* x, ORK_INT incx, const void* y, ORK_INT incy, void* dot);
void ORK_NAME(cdotc_sub)(ORK_INT n, const void* x, ORK_INT incx, const void* y, ORK_INT incy, void* dot);
void ORK_NAME(zdotu_sub)(ORK_INT n, const void* x, ORK_INT incx, const void* y, ORK_INT incy, void* dot);
void ORK_NAME(zdotc_sub)(ORK_INT n, const void* x, ORK_INT incx, const void* y, ORK_INT incy, void* dot);

/* Euclidean norm, without overflow or underflow on the way. */
float ORK_NAME(snrm2)(ORK_INT n, const float* x, ORK_INT incx);
double ORK_NAME(dnrm2)(ORK_INT n, const double* x, ORK_INT incx);
float ORK_NAME(scnrm2)(ORK_INT n, const void* x, ORK_INT incx);
double ORK_NAME(dznrm2)(ORK_INT n, const void* x, ORK_INT incx);

/* Sum of |re x_i| + |im x_i|. */
float ORK_NAME(sasum)(ORK_INT n, const float* x, ORK_INT incx);
double ORK_NAME(dasum)(ORK_INT n, const double* x, ORK_INT incx);
float ORK_NAME(scasum)(ORK_INT n, const void* x, ORK_INT incx);
double ORK_NAME(dzasum)(ORK_INT n, const void* x, ORK_INT incx);

/* Position, from 0, of the first element of largest |re| + |im|, or of the first NaN; 0 for n < 1 too. */
CBLAS_INDEX ORK_NAME(isamax)(ORK_INT n, const float* x, ORK_INT incx);
CBLAS_INDEX ORK_NAME(idamax)(ORK_INT n, const double* x, ORK_INT incx);
CBLAS_INDEX ORK_NAME(icamax)(ORK_INT n, const void* x, ORK_INT incx);
CBLAS_INDEX ORK_NAME(izamax)(ORK_INT n, const void* x, ORK_INT incx);

/* Position, from 0, of the first element of smallest |re| + |im|, or of the first NaN; 0 for n < 1 too. */
CBLAS_INDEX ORK_NAME(isamin)(ORK_INT n, const float* x, ORK_INT incx);
CBLAS_INDEX ORK_NAME(idamin)(ORK_INT n, const double* x, ORK_INT incx);
CBLAS_INDEX ORK_NAME(icamin)(ORK_INT n, const void* x, ORK_INT incx);
CBLAS_INDEX ORK_NAME(izamin)(ORK_INT n, const void* x, ORK_INT incx);

/* Plane rotation: x <- c x + s y, y <- c y - conj(s) x. */
void ORK_NAME(srot)(ORK_INT n, float* x, ORK_INT incx, float* y, ORK_INT incy, float c, float s);
void ORK_NAME(drot)(ORK_INT n, double* x, ORK_INT incx, double* y, ORK_INT incy, double c, double s);
void ORK_NAME(crot)(ORK_INT n, void* x, ORK_INT incx, void* y, ORK_INT incy, float c, const void* s);
void ORK_NAME(zrot)(ORK_INT n, void* x, ORK_INT incx, void* y, ORK_INT incy, double c, const void* s);
void ORK_NAME(csrot)(ORK_INT n, void* x, ORK_INT incx, void* y, ORK_INT incy, float c, float s);
void ORK_NAME(zdrot)(ORK_INT n, void* x, ORK_INT incx, void* y, ORK_INT incy, double c, double s);

/* Modified rotation; param holds the flag and the four elements of H by columns. */
void ORK_NAME(srotm)(ORK_INT n, float* x, ORK_INT incx, float* y, ORK_INT incy, const float* param);
void ORK_NAME(drotm)(ORK_INT n, double* x, ORK_INT incx, double* y, ORK_INT incy, const double* param);

/* The rotation that takes (a, b) to (r, 0): a becomes r, b the one number from which c and s can be restored. */
void ORK_NAME(srotg)(float* a, float* b, float* c, float* s);
void ORK_NAME(drotg)(double* a, double* b, double* c, double* s);

/* The same for complex a and b, with real c; b is left as it is. */
void ORK_NAME(crotg)(void* a, const void* b, float* c, void* s);
void ORK_NAME(zrotg)(void* a, const void* b, double* c, void* s);

/* The modified rotation that clears the second component of (sqrt(d1) x1, sqrt(d2) y1); param receives flag and H. */
void ORK_NAME(srotmg)(float* d1, float* d2, float* x1, float y1, float* param);
void ORK_NAME(drotmg)(double* d1, double* d2, double* x1, double y1, double* param);

/* |re z| + |im z|. */
float ORK_NAME(scabs1)(const void* z);
double ORK_NAME(dcabs1)(const void* z);

/* A sparse vector: nz values x, and their positions indx in the dense vector y, counted from 0. */

/* y[indx] <- y[indx] + alpha x. */
void ORK_NAME(saxpyi)(ORK_INT nz, float alpha, const float* x, const ORK_INT* indx, float* y);
void ORK_NAME(daxpyi)(ORK_INT nz, double alpha, const double* x, const ORK_INT* indx, double* y);
void ORK_NAME(caxpyi)(ORK_INT nz, const void* alpha, const void* x, const ORK_INT* indx, void* y);
void ORK_NAME(zaxpyi)(ORK_INT nz, const void* alpha, const void* x, const ORK_INT* indx, void* y);

/* Sum of x_i y[indx_i]. */
float ORK_NAME(sdoti)(ORK_INT nz, const float* x, const ORK_INT* indx, const float* y);
double ORK_NAME(ddoti)(ORK_INT nz, const double* x, const ORK_INT* indx, const double* y);

/* Sum of x_i y[indx_i] (dotui) or conj(x_i) y[indx_i] (dotci), stored through the last argument. */
void ORK_NAME(cdotui_sub)(ORK_INT nz, const void* x, const ORK_INT* indx, const void* y, void* dot);
void ORK_NAME(cdotci_sub)(ORK_INT nz, const void* x, const ORK_INT* indx, const void* y, void* dot);
void ORK_NAME(zdotui_sub)(ORK_INT nz, const void* x, const ORK_INT* indx, const void* y, void* dot);
void ORK_NAME(zdotci_sub)(ORK_INT nz, const void* x, const ORK_INT* indx, const void* y, void* dot);

/* x <- y[indx]. */
void ORK_NAME(sgthr)(ORK_INT nz, const float* y, float* x, const ORK_INT* indx);
void ORK_NAME(dgthr)(ORK_INT nz, const double* y, double* x, const ORK_INT* indx);
void ORK_NAME(cgthr)(ORK_INT nz, const void* y, void* x, const ORK_INT* indx);
void ORK_NAME(zgthr)(ORK_INT nz, const void* y, void* x, const ORK_INT* indx);

/* x <- y[indx], which becomes 0. */
void ORK_NAME(sgthrz)(ORK_INT nz, float* y, float* x, const ORK_INT* indx);
void ORK_NAME(dgthrz)(ORK_INT nz, double* y, double* x, const ORK_INT* indx);
void ORK_NAME(cgthrz)(ORK_INT nz, void* y, void* x, const ORK_INT* indx);
void ORK_NAME(zgthrz)(ORK_INT nz, void* y, void* x, const ORK_INT* indx);

/* y[indx] <- x; of equal positions the last wins. */
void ORK_NAME(ssctr)(ORK_INT nz, const float* x, const ORK_INT* indx, float* y);
void ORK_NAME(dsctr)(ORK_INT nz, const double* x, const ORK_INT* indx, double* y);
void ORK_NAME(csctr)(ORK_INT nz, const void* x, const ORK_INT* indx, void* y);
void ORK_NAME(zsctr)(ORK_INT nz, const void* x, const ORK_INT* indx, void* y);

/* Plane rotation of x against y[indx]: x <- c x + s y[indx], y[indx] <- c y[indx] - s x. */
void ORK_NAME(sroti)(ORK_INT nz, float* x, const ORK_INT* indx, float* y, float c, float s);
void ORK_NAME(droti)(ORK_INT nz, double* x, const ORK_INT* indx, double* y, double c, double s);

/* y <- alpha op(A) x + beta y with A m x n; op by the letter N (as it is), T (transposed) or C (conjugate transposed).
   With beta = 0, y is not read. */
void ORK_NAME(sgemv)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE trans, ORK_INT m, ORK_INT n, float alpha, const float* a,
                     ORK_INT lda, const float* x, ORK_INT incx, float beta, float* y, ORK_INT incy);
void ORK_NAME(dgemv)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE trans, ORK_INT m, ORK_INT n, double alpha, const double* a,
                     ORK_INT lda, const double* x, ORK_INT incx, double beta, double* y, ORK_INT incy);
void ORK_NAME(cgemv)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE trans, ORK_INT m, ORK_INT n, const void* alpha, const void* a,
                     ORK_INT lda, const void* x, ORK_INT incx, const void* beta, void* y, ORK_INT incy);
void ORK_NAME(zgemv)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE trans, ORK_INT m, ORK_INT n, const void* alpha, const void* a,
                     ORK_INT lda, const void* x, ORK_INT incx, const void* beta, void* y, ORK_INT incy);

/* The same for a band matrix with kl diagonals below the main one and ku above. */
void ORK_NAME(sgbmv)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE trans, ORK_INT m, ORK_INT n, ORK_INT kl, ORK_INT ku,
                     float alpha, const float* a, ORK_INT lda, const float* x, ORK_INT incx, float beta, float* y,
                     ORK_INT incy);
void ORK_NAME(dgbmv)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE trans, ORK_INT m, ORK_INT n, ORK_INT kl, ORK_INT ku,
                     double alpha, const double* a, ORK_INT lda, const double* x, ORK_INT incx, double beta, double* y,
                     ORK_INT incy);
void ORK_NAME(cgbmv)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE trans, ORK_INT m, ORK_INT n, ORK_INT kl, ORK_INT ku,
                     const void* alpha, const void* a, ORK_INT lda, const void* x, ORK_INT incx, const void* beta,
                     void* y, ORK_INT incy);
void ORK_NAME(zgbmv)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE trans, ORK_INT m, ORK_INT n, ORK_INT kl, ORK_INT ku,
                     const void* alpha, const void* a, ORK_INT lda, const void* x, ORK_INT incx, const void* beta,
                     void* y, ORK_INT incy);

/* y <- alpha A x + beta y with A symmetric or Hermitian (he) of order n; uplo says which triangle is stored, U or L. */
void ORK_NAME(ssymv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, float alpha, const float* a, ORK_INT lda,
                     const float* x, ORK_INT incx, float beta, float* y, ORK_INT incy);
void ORK_NAME(dsymv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, double alpha, const double* a, ORK_INT lda,
                     const double* x, ORK_INT incx, double beta, double* y, ORK_INT incy);
void ORK_NAME(chemv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, const void* alpha, const void* a, ORK_INT lda,
                     const void* x, ORK_INT incx, const void* beta, void* y, ORK_INT incy);
void ORK_NAME(zhemv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, const void* alpha, const void* a, ORK_INT lda,
                     const void* x, ORK_INT incx, const void* beta, void* y, ORK_INT incy);

/* The same for a band matrix with k diagonals on each side of the main one. */
void ORK_NAME(ssbmv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, ORK_INT k, float alpha, const float* a,
                     ORK_INT lda, const float* x, ORK_INT incx, float beta, float* y, ORK_INT incy);
void ORK_NAME(dsbmv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, ORK_INT k, double alpha, const double* a,
                     ORK_INT lda, const double* x, ORK_INT incx, double beta, double* y, ORK_INT incy);
void ORK_NAME(chbmv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, ORK_INT k, const void* alpha, const void* a,
                     ORK_INT lda, const void* x, ORK_INT incx, const void* beta, void* y, ORK_INT incy);
void ORK_NAME(zhbmv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, ORK_INT k, const void* alpha, const void* a,
                     ORK_INT lda, const void* x, ORK_INT incx, const void* beta, void* y, ORK_INT incy);

/* The same for a packed triangle. */
void ORK_NAME(sspmv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, float alpha, const float* ap, const float* x,
                     ORK_INT incx, float beta, float* y, ORK_INT incy);
void ORK_NAME(dspmv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, double alpha, const double* ap, const double* x,
                     ORK_INT incx, double beta, double* y, ORK_INT incy);
void ORK_NAME(chpmv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, const void* alpha, const void* ap, const void* x,
                     ORK_INT incx, const void* beta, void* y, ORK_INT incy);
void ORK_NAME(zhpmv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, const void* alpha, const void* ap, const void* x,
                     ORK_INT incx, const void* beta, void* y, ORK_INT incy);

/* x <- op(A) x with A triangular, in a band (tb) or packed (tp). diag = U: the diagonal is 1 and not read. */
void ORK_NAME(strmv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n,
                     const float* a, ORK_INT lda, float* x, ORK_INT incx);
void ORK_NAME(dtrmv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n,
                     const double* a, ORK_INT lda, double* x, ORK_INT incx);
void ORK_NAME(ctrmv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n,
                     const void* a, ORK_INT lda, void* x, ORK_INT incx);
void ORK_NAME(ztrmv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n,
                     const void* a, ORK_INT lda, void* x, ORK_INT incx);
void ORK_NAME(stbmv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n, ORK_INT k,
                     const float* a, ORK_INT lda, float* x, ORK_INT incx);
void ORK_NAME(dtbmv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n, ORK_INT k,
                     const double* a, ORK_INT lda, double* x, ORK_INT incx);
void ORK_NAME(ctbmv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n, ORK_INT k,
                     const void* a, ORK_INT lda, void* x, ORK_INT incx);
void ORK_NAME(ztbmv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n, ORK_INT k,
                     const void* a, ORK_INT lda, void* x, ORK_INT incx);
void ORK_NAME(stpmv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n,
                     const float* ap, float* x, ORK_INT incx);
void ORK_NAME(dtpmv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n,
                     const double* ap, double* x, ORK_INT incx);
void ORK_NAME(ctpmv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n,
                     const void* ap, void* x, ORK_INT incx);
void ORK_NAME(ztpmv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n,
                     const void* ap, void* x, ORK_INT incx);

/* x <- op(A)^-1 x. A zero on the diagonal is not looked for. */
void ORK_NAME(strsv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n,
                     const float* a, ORK_INT lda, float* x, ORK_INT incx);
void ORK_NAME(dtrsv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n,
                     const double* a, ORK_INT lda, double* x, ORK_INT incx);
void ORK_NAME(ctrsv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n,
                     const void* a, ORK_INT lda, void* x, ORK_INT incx);
void ORK_NAME(ztrsv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n,
                     const void* a, ORK_INT lda, void* x, ORK_INT incx);
void ORK_NAME(stbsv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n, ORK_INT k,
                     const float* a, ORK_INT lda, float* x, ORK_INT incx);
void ORK_NAME(dtbsv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n, ORK_INT k,
                     const double* a, ORK_INT lda, double* x, ORK_INT incx);
void ORK_NAME(ctbsv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n, ORK_INT k,
                     const void* a, ORK_INT lda, void* x, ORK_INT incx);
void ORK_NAME(ztbsv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n, ORK_INT k,
                     const void* a, ORK_INT lda, void* x, ORK_INT incx);
void ORK_NAME(stpsv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n,
                     const float* ap, float* x, ORK_INT incx);
void ORK_NAME(dtpsv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n,
                     const double* ap, double* x, ORK_INT incx);
void ORK_NAME(ctpsv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n,
                     const void* ap, void* x, ORK_INT incx);
void ORK_NAME(ztpsv)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, ORK_INT n,
                     const void* ap, void* x, ORK_INT incx);

/* A <- alpha x y' + A with A m x n; gerc: with the conjugate of y. */
void ORK_NAME(sger)(CBLAS_LAYOUT layout, ORK_INT m, ORK_INT n, float alpha, const float* x, ORK_INT incx,
                    const float* y, ORK_INT incy, float* a, ORK_INT lda);
void ORK_NAME(dger)(CBLAS_LAYOUT layout, ORK_INT m, ORK_INT n, double alpha, const double* x, ORK_INT incx,
                    const double* y, ORK_INT incy, double* a, ORK_INT lda);
void ORK_NAME(cgeru)(CBLAS_LAYOUT layout, ORK_INT m, ORK_INT n, const void* alpha, const void* x, ORK_INT incx,
                     const void* y, ORK_INT incy, void* a, ORK_INT lda);
void ORK_NAME(zgeru)(CBLAS_LAYOUT layout, ORK_INT m, ORK_INT n, const void* alpha, const void* x, ORK_INT incx,
                     const void* y, ORK_INT incy, void* a, ORK_INT lda);
void ORK_NAME(cgerc)(CBLAS_LAYOUT layout, ORK_INT m, ORK_INT n, const void* alpha, const void* x, ORK_INT incx,
                     const void* y, ORK_INT incy, void* a, ORK_INT lda);
void ORK_NAME(zgerc)(CBLAS_LAYOUT layout, ORK_INT m, ORK_INT n, const void* alpha, const void* x, ORK_INT incx,
                     const void* y, ORK_INT incy, void* a, ORK_INT lda);

/* A <- alpha x x' + A, one triangle; her: with the conjugate of x', alpha real. */
void ORK_NAME(ssyr)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, float alpha, const float* x, ORK_INT incx,
                    float* a, ORK_INT lda);
void ORK_NAME(dsyr)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, double alpha, const double* x, ORK_INT incx,
                    double* a, ORK_INT lda);
void ORK_NAME(cher)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, float alpha, const void* x, ORK_INT incx, void* a,
                    ORK_INT lda);
void ORK_NAME(zher)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, double alpha, const void* x, ORK_INT incx, void* a,
                    ORK_INT lda);
void ORK_NAME(sspr)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, float alpha, const float* x, ORK_INT incx,
                    float* ap);
void ORK_NAME(dspr)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, double alpha, const double* x, ORK_INT incx,
                    double* ap);
void ORK_NAME(chpr)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, float alpha, const void* x, ORK_INT incx,
                    void* ap);
void ORK_NAME(zhpr)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, double alpha, const void* x, ORK_INT incx,
                    void* ap);

/* A <- alpha x y' + alpha y x' + A, one triangle; her2: x conj(y)' and conj(alpha) y conj(x)'. */
void ORK_NAME(ssyr2)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, float alpha, const float* x, ORK_INT incx,
                     const float* y, ORK_INT incy, float* a, ORK_INT lda);
void ORK_NAME(dsyr2)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, double alpha, const double* x, ORK_INT incx,
                     const double* y, ORK_INT incy, double* a, ORK_INT lda);
void ORK_NAME(cher2)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, const void* alpha, const void* x, ORK_INT incx,
                     const void* y, ORK_INT incy, void* a, ORK_INT lda);
void ORK_NAME(zher2)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, const void* alpha, const void* x, ORK_INT incx,
                     const void* y, ORK_INT incy, void* a, ORK_INT lda);
void ORK_NAME(sspr2)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, float alpha, const float* x, ORK_INT incx,
                     const float* y, ORK_INT incy, float* ap);
void ORK_NAME(dspr2)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, double alpha, const double* x, ORK_INT incx,
                     const double* y, ORK_INT incy, double* ap);
void ORK_NAME(chpr2)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, const void* alpha, const void* x, ORK_INT incx,
                     const void* y, ORK_INT incy, void* ap);
void ORK_NAME(zhpr2)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, ORK_INT n, const void* alpha, const void* x, ORK_INT incx,
                     const void* y, ORK_INT incy, void* ap);

/* gemv of a real matrix and complex vectors. */
void ORK_NAME(scgemv)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE trans, ORK_INT m, ORK_INT n, const void* alpha,
                      const float* a, ORK_INT lda, const void* x, ORK_INT incx, const void* beta, void* y,
                      ORK_INT incy);
void ORK_NAME(dzgemv)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE trans, ORK_INT m, ORK_INT n, const void* alpha,
                      const double* a, ORK_INT lda, const void* x, ORK_INT incx, const void* beta, void* y,
                      ORK_INT incy);

/* y1 <- alpha A x1 + beta y1 and y2 <- alpha A' x2 + beta y2, A m x n; gem2vc: with the conjugate transpose. */
void ORK_NAME(sgem2vu)(CBLAS_LAYOUT layout, ORK_INT m, ORK_INT n, float alpha, const float* a, ORK_INT lda,
                       const float* x1, ORK_INT incx1, const float* x2, ORK_INT incx2, float beta, float* y1,
                       ORK_INT incy1, float* y2, ORK_INT incy2);
void ORK_NAME(dgem2vu)(CBLAS_LAYOUT layout, ORK_INT m, ORK_INT n, double alpha, const double* a, ORK_INT lda,
                       const double* x1, ORK_INT incx1, const double* x2, ORK_INT incx2, double beta, double* y1,
                       ORK_INT incy1, double* y2, ORK_INT incy2);
void ORK_NAME(cgem2vc)(CBLAS_LAYOUT layout, ORK_INT m, ORK_INT n, const void* alpha, const void* a, ORK_INT lda,
                       const void* x1, ORK_INT incx1, const void* x2, ORK_INT incx2, const void* beta, void* y1,
                       ORK_INT incy1, void* y2, ORK_INT incy2);
void ORK_NAME(zgem2vc)(CBLAS_LAYOUT layout, ORK_INT m, ORK_INT n, const void* alpha, const void* a, ORK_INT lda,
                       const void* x1, ORK_INT incx1, const void* x2, ORK_INT incx2, const void* beta, void* y1,
                       ORK_INT incy1, void* y2, ORK_INT incy2);

/* C <- alpha op(A) op(B) + beta C with C m x n, op(A) m x k, op(B) k x n, all stored by rows or all by columns; a
   leading dimension is the distance between two rows or two columns. With beta = 0, C is not read. */
void ORK_NAME(sgemm)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE transa, CBLAS_TRANSPOSE transb, ORK_INT m, ORK_INT n,
                     ORK_INT k, float alpha, const float* a, ORK_INT lda, const float* b, ORK_INT ldb, float beta,
                     float* c, ORK_INT ldc);
void ORK_NAME(dgemm)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE transa, CBLAS_TRANSPOSE transb, ORK_INT m, ORK_INT n,
                     ORK_INT k, double alpha, const double* a, ORK_INT lda, const double* b, ORK_INT ldb, double beta,
                     double* c, ORK_INT ldc);
void ORK_NAME(cgemm)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE transa, CBLAS_TRANSPOSE transb, ORK_INT m, ORK_INT n,
                     ORK_INT k, const void* alpha, const void* a, ORK_INT lda, const void* b, ORK_INT ldb,
                     const void* beta, void* c, ORK_INT ldc);
void ORK_NAME(zgemm)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE transa, CBLAS_TRANSPOSE transb, ORK_INT m, ORK_INT n,
                     ORK_INT k, const void* alpha, const void* a, ORK_INT lda, const void* b, ORK_INT ldb,
                     const void* beta, void* c, ORK_INT ldc);

/* C <- alpha A B + beta C (side L) or alpha B A + beta C (R), with A symmetric or Hermitian and C m x n. */
void ORK_NAME(ssymm)(CBLAS_LAYOUT layout, CBLAS_SIDE side, CBLAS_UPLO uplo, ORK_INT m, ORK_INT n, float alpha,
                     const float* a, ORK_INT lda, const float* b, ORK_INT ldb, float beta, float* c, ORK_INT ldc);
void ORK_NAME(dsymm)(CBLAS_LAYOUT layout, CBLAS_SIDE side, CBLAS_UPLO uplo, ORK_INT m, ORK_INT n, double alpha,
                     const double* a, ORK_INT lda, const double* b, ORK_INT ldb, double beta, double* c, ORK_INT ldc);
void ORK_NAME(csymm)(CBLAS_LAYOUT layout, CBLAS_SIDE side, CBLAS_UPLO uplo, ORK_INT m, ORK_INT n, const void* alpha,
                     const void* a, ORK_INT lda, const void* b, ORK_INT ldb, const void* beta, void* c, ORK_INT ldc);
void ORK_NAME(zsymm)(CBLAS_LAYOUT layout, CBLAS_SIDE side, CBLAS_UPLO uplo, ORK_INT m, ORK_INT n, const void* alpha,
                     const void* a, ORK_INT lda, const void* b, ORK_INT ldb, const void* beta, void* c, ORK_INT ldc);
void ORK_NAME(chemm)(CBLAS_LAYOUT layout, CBLAS_SIDE side, CBLAS_UPLO uplo, ORK_INT m, ORK_INT n, const void* alpha,
                     const void* a, ORK_INT lda, const void* b, ORK_INT ldb, const void* beta, void* c, ORK_INT ldc);
void ORK_NAME(zhemm)(CBLAS_LAYOUT layout, CBLAS_SIDE side, CBLAS_UPLO uplo, ORK_INT m, ORK_INT n, const void* alpha,
                     const void* a, ORK_INT lda, const void* b, ORK_INT ldb, const void* beta, void* c, ORK_INT ldc);

/* C <- alpha A A' + beta C (trans N) or alpha A' A + beta C (T), one triangle of C, which is n x n. trans C means T for
   real matrices and is not legal for complex ones. */
void ORK_NAME(ssyrk)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, ORK_INT n, ORK_INT k, float alpha,
                     const float* a, ORK_INT lda, float beta, float* c, ORK_INT ldc);
void ORK_NAME(dsyrk)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, ORK_INT n, ORK_INT k, double alpha,
                     const double* a, ORK_INT lda, double beta, double* c, ORK_INT ldc);
void ORK_NAME(csyrk)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, ORK_INT n, ORK_INT k,
                     const void* alpha, const void* a, ORK_INT lda, const void* beta, void* c, ORK_INT ldc);
void ORK_NAME(zsyrk)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, ORK_INT n, ORK_INT k,
                     const void* alpha, const void* a, ORK_INT lda, const void* beta, void* c, ORK_INT ldc);

/* The same with the conjugate transpose (trans N or C); the diagonal of C becomes real. */
void ORK_NAME(cherk)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, ORK_INT n, ORK_INT k, float alpha,
                     const void* a, ORK_INT lda, float beta, void* c, ORK_INT ldc);
void ORK_NAME(zherk)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, ORK_INT n, ORK_INT k, double alpha,
                     const void* a, ORK_INT lda, double beta, void* c, ORK_INT ldc);

/* C <- alpha A B' + alpha B A' + beta C (trans N) or alpha A' B + alpha B' A + beta C (T), one triangle of C. */
void ORK_NAME(ssyr2k)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, ORK_INT n, ORK_INT k, float alpha,
                      const float* a, ORK_INT lda, const float* b, ORK_INT ldb, float beta, float* c, ORK_INT ldc);
void ORK_NAME(dsyr2k)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, ORK_INT n, ORK_INT k, double alpha,
                      const double* a, ORK_INT lda, const double* b, ORK_INT ldb, double beta, double* c, ORK_INT ldc);
void ORK_NAME(csyr2k)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, ORK_INT n, ORK_INT k,
                      const void* alpha, const void* a, ORK_INT lda, const void* b, ORK_INT ldb, const void* beta,
                      void* c, ORK_INT ldc);
void ORK_NAME(zsyr2k)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, ORK_INT n, ORK_INT k,
                      const void* alpha, const void* a, ORK_INT lda, const void* b, ORK_INT ldb, const void* beta,
                      void* c, ORK_INT ldc);

/* C <- alpha A B^H + conj(alpha) B A^H + beta C (trans N) or alpha A^H B + conj(alpha) B^H A + beta C (C). */
void ORK_NAME(cher2k)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, ORK_INT n, ORK_INT k,
                      const void* alpha, const void* a, ORK_INT lda, const void* b, ORK_INT ldb, float beta, void* c,
                      ORK_INT ldc);
void ORK_NAME(zher2k)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, ORK_INT n, ORK_INT k,
                      const void* alpha, const void* a, ORK_INT lda, const void* b, ORK_INT ldb, double beta, void* c,
                      ORK_INT ldc);

/* One triangle of C <- alpha op(A) op(B) + beta C, C n x n. */
void ORK_NAME(sgemmt)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE transa, CBLAS_TRANSPOSE transb, ORK_INT n,
                      ORK_INT k, float alpha, const float* a, ORK_INT lda, const float* b, ORK_INT ldb, float beta,
                      float* c, ORK_INT ldc);
void ORK_NAME(dgemmt)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE transa, CBLAS_TRANSPOSE transb, ORK_INT n,
                      ORK_INT k, double alpha, const double* a, ORK_INT lda, const double* b, ORK_INT ldb, double beta,
                      double* c, ORK_INT ldc);
void ORK_NAME(cgemmt)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE transa, CBLAS_TRANSPOSE transb, ORK_INT n,
                      ORK_INT k, const void* alpha, const void* a, ORK_INT lda, const void* b, ORK_INT ldb,
                      const void* beta, void* c, ORK_INT ldc);
void ORK_NAME(zgemmt)(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE transa, CBLAS_TRANSPOSE transb, ORK_INT n,
                      ORK_INT k, const void* alpha, const void* a, ORK_INT lda, const void* b, ORK_INT ldb,
                      const void* beta, void* c, ORK_INT ldc);

/* B <- alpha op(A) B (side L) or alpha B op(A) (R), with A triangular and B m x n. With alpha = 0, A is not read. */
void ORK_NAME(strmm)(CBLAS_LAYOUT layout, CBLAS_SIDE side, CBLAS_UPLO uplo, CBLAS_TRANSPOSE transa, CBLAS_DIAG diag,
                     ORK_INT m, ORK_INT n, float alpha, const float* a, ORK_INT lda, float* b, ORK_INT ldb);
void ORK_NAME(dtrmm)(CBLAS_LAYOUT layout, CBLAS_SIDE side, CBLAS_UPLO uplo, CBLAS_TRANSPOSE transa, CBLAS_DIAG diag,
                     ORK_INT m, ORK_INT n, double alpha, const double* a, ORK_INT lda, double* b, ORK_INT ldb);
void ORK_NAME(ctrmm)(CBLAS_LAYOUT layout, CBLAS_SIDE side, CBLAS_UPLO uplo, CBLAS_TRANSPOSE transa, CBLAS_DIAG diag,
                     ORK_INT m, ORK_INT n, const void* alpha, const void* a, ORK_INT lda, void* b, ORK_INT ldb);
void ORK_NAME(ztrmm)(CBLAS_LAYOUT layout, CBLAS_SIDE side, CBLAS_UPLO uplo, CBLAS_TRANSPOSE transa, CBLAS_DIAG diag,
                     ORK_INT m, ORK_INT n, const void* alpha, const void* a, ORK_INT lda, void* b, ORK_INT ldb);

/* B <- alpha op(A)^-1 B or alpha B op(A)^-1. */
void ORK_NAME(strsm)(CBLAS_LAYOUT layout, CBLAS_SIDE side, CBLAS_UPLO uplo, CBLAS_TRANSPOSE transa, CBLAS_DIAG diag,
                     ORK_INT m, ORK_INT n, float alpha, const float* a, ORK_INT lda, float* b, ORK_INT ldb);
void ORK_NAME(dtrsm)(CBLAS_LAYOUT layout, CBLAS_SIDE side, CBLAS_UPLO uplo, CBLAS_TRANSPOSE transa, CBLAS_DIAG diag,
                     ORK_INT m, ORK_INT n, double alpha, const double* a, ORK_INT lda, double* b, ORK_INT ldb);
void ORK_NAME(ctrsm)(CBLAS_LAYOUT layout, CBLAS_SIDE side, CBLAS_UPLO uplo, CBLAS_TRANSPOSE transa, CBLAS_DIAG diag,
                     ORK_INT m, ORK_INT n, const void* alpha, const void* a, ORK_INT lda, void* b, ORK_INT ldb);
void ORK_NAME(ztrsm)(CBLAS_LAYOUT layout, CBLAS_SIDE side, CBLAS_UPLO uplo, CBLAS_TRANSPOSE transa, CBLAS_DIAG diag,
                     ORK_INT m, ORK_INT n, const void* alpha, const void* a, ORK_INT lda, void* b, ORK_INT ldb);

/* gemm by three real products instead of four: faster, with errors of the size of the larger part of an element. */
void ORK_NAME(cgemm3m)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE transa, CBLAS_TRANSPOSE transb, ORK_INT m, ORK_INT n,
                       ORK_INT k, const void* alpha, const void* a, ORK_INT lda, const void* b, ORK_INT ldb,
                       const void* beta, void* c, ORK_INT ldc);
void ORK_NAME(zgemm3m)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE transa, CBLAS_TRANSPOSE transb, ORK_INT m, ORK_INT n,
                       ORK_INT k, const void* alpha, const void* a, ORK_INT lda, const void* b, ORK_INT ldb,
                       const void* beta, void* c, ORK_INT ldc);

/* Groups of multiplies: group g is group_size[g] calls of gemm with the g-th element of every array; the matrices of
   all groups stand in a, b and c one after the other. No two C may overlap. */
void ORK_NAME(sgemm_batch)(CBLAS_LAYOUT layout, const CBLAS_TRANSPOSE* transa, const CBLAS_TRANSPOSE* transb,
                           const ORK_INT* m, const ORK_INT* n, const ORK_INT* k, const float* alpha, const float** a,
                           const ORK_INT* lda, const float** b, const ORK_INT* ldb, const float* beta, float** c,
                           const ORK_INT* ldc, ORK_INT group_count, const ORK_INT* group_size);
void ORK_NAME(dgemm_batch)(CBLAS_LAYOUT layout, const CBLAS_TRANSPOSE* transa, const CBLAS_TRANSPOSE* transb,
                           const ORK_INT* m, const ORK_INT* n, const ORK_INT* k, const double* alpha, const double** a,
                           const ORK_INT* lda, const double** b, const ORK_INT* ldb, const double* beta, double** c,
                           const ORK_INT* ldc, ORK_INT group_count, const ORK_INT* group_size);
void ORK_NAME(cgemm_batch)(CBLAS_LAYOUT layout, const CBLAS_TRANSPOSE* transa, const CBLAS_TRANSPOSE* transb,
                           const ORK_INT* m, const ORK_INT* n, const ORK_INT* k, const void* alpha, const void** a,
                           const ORK_INT* lda, const void** b, const ORK_INT* ldb, const void* beta, void** c,
                           const ORK_INT* ldc, ORK_INT group_count, const ORK_INT* group_size);
void ORK_NAME(zgemm_batch)(CBLAS_LAYOUT layout, const CBLAS_TRANSPOSE* transa, const CBLAS_TRANSPOSE* transb,
                           const ORK_INT* m, const ORK_INT* n, const ORK_INT* k, const void* alpha, const void** a,
                           const ORK_INT* lda, const void** b, const ORK_INT* ldb, const void* beta, void** c,
                           const ORK_INT* ldc, ORK_INT group_count, const ORK_INT* group_size);

/* batch_size multiplies of one shape: the i-th, from 0 on, of the matrices at a + i stridea, b + i strideb, c + i
   stridec. */
void ORK_NAME(sgemm_batch_strided)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE transa, CBLAS_TRANSPOSE transb, ORK_INT m,
                                   ORK_INT n, ORK_INT k, float alpha, const float* a, ORK_INT lda, ORK_INT stridea,
                                   const float* b, ORK_INT ldb, ORK_INT strideb, float beta, float* c, ORK_INT ldc,
                                   ORK_INT stridec, ORK_INT batch_size);
void ORK_NAME(dgemm_batch_strided)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE transa, CBLAS_TRANSPOSE transb, ORK_INT m,
                                   ORK_INT n, ORK_INT k, double alpha, const double* a, ORK_INT lda, ORK_INT stridea,
                                   const double* b, ORK_INT ldb, ORK_INT strideb, double beta, double* c, ORK_INT ldc,
                                   ORK_INT stridec, ORK_INT batch_size);
void ORK_NAME(cgemm_batch_strided)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE transa, CBLAS_TRANSPOSE transb, ORK_INT m,
                                   ORK_INT n, ORK_INT k, const void* alpha, const void* a, ORK_INT lda, ORK_INT stridea,
                                   const void* b, ORK_INT ldb, ORK_INT strideb, const void* beta, void* c, ORK_INT ldc,
                                   ORK_INT stridec, ORK_INT batch_size);
void ORK_NAME(zgemm_batch_strided)(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE transa, CBLAS_TRANSPOSE transb, ORK_INT m,
                                   ORK_INT n, ORK_INT k, const void* alpha, const void* a, ORK_INT lda, ORK_INT stridea,
                                   const void* b, ORK_INT ldb, ORK_INT strideb, const void* beta, void* c, ORK_INT ldc,
                                   ORK_INT stridec, ORK_INT batch_size);
