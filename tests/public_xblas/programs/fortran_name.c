// SPDX-License-Identifier: MIT
// A residual as iterative refinement asks for it: x = (1/3 rounded, ...) of 3 x = 1, with the tail of x besides.
extern void blas_dgemv_x_(const int* trans, const int* m, const int* n, const double* alpha, const double* a,
                          const int* lda, const double* x, const int* incx, const double* beta, double* y,
                          const int* incy, const int* prec);
extern void blas_dgemv2_x_(const int* trans, const int* m, const int* n, const double* alpha, const double* a,
                           const int* lda, const double* head, const double* tail, const int* incx, const double* beta,
                           double* y, const int* incy, const int* prec);

int main(void)
{
    const int no_trans = 111, two = 2, one = 1, extra = 214;
    const double minus = -1, plus = 1, a[4] = {3, 0, 0, 3}, head[2] = {1.0 / 3, 2.0 / 3};
    const double tail[2] = {0x1p-54 / 3, 0x1p-53 / 3};
    double r[2] = {1, 2};
    blas_dgemv_x_(&no_trans, &two, &two, &minus, a, &two, head, &one, &plus, r, &one, &extra);
    if (r[0] != 0x1p-54 || r[1] != 0x1p-53) return 1;
    r[0] = 1, r[1] = 2;
    blas_dgemv2_x_(&no_trans, &two, &two, &minus, a, &two, head, tail, &one, &plus, r, &one, &extra);
    for (int i = 0; i < 2; ++i)
        if (!(r[i] < 0x1p-105 && r[i] > -0x1p-105)) return 2;
    return 0;
}
