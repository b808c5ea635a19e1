// SPDX-License-Identifier: MIT
// The sum of 1, 1e-17 and -1 through each binding and precision; the status says which one failed.
#include <complex.h>

#include "ork/xblas.h"

int main(void)
{
    const double a[3] = {1, 1e-17, -1}, x[3] = {1, 1, 1};
    double y = 7;
    BLAS_dgemv_x(blas_rowmajor, blas_no_trans, 1, 3, 1, a, 3, x, 1, 0, &y, 1, blas_prec_extra);
    if (y != 1e-17) return 1;
    BLAS_dgemv_x_64(blas_colmajor, blas_trans, 3, 1, 1, a, 3, x, -1, 0, &y, 1, blas_prec_indigenous);
    if (y != 0) return 2;

    const double complex z[3] = {I, 1e-17 * I, -I}, ones[3] = {1, 1, 1}, alpha = 2, beta = 0;
    double complex w = 0;
    BLAS_zgemv_x(blas_rowmajor, blas_conj_trans, 3, 1, &alpha, z, 1, ones, 1, &beta, &w, 1, blas_prec_extra);
    if (creal(w) != 0 || cimag(w) != -2e-17) return 3;

    const int64_t one = 1, three = 3, trans = blas_conj_trans, prec = blas_prec_extra;
    blas_zgemv_x_64_(&trans, &three, &one, &alpha, z, &three, ones, &one, &beta, &w, &one, &prec);
    if (creal(w) != 0 || cimag(w) != -2e-17) return 4;

    const float s[1] = {3}, head[1] = {1}, tail[1] = {0x1p-24f};
    float v[1] = {-3};
    BLAS_ssymv2_x(blas_colmajor, blas_upper, 1, 1, s, 1, head, tail, 1, 1, v, 1, blas_prec_double);
    return v[0] == 3 * 0x1p-24f ? 0 : 5;
}
