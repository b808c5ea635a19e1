/* SPDX-License-Identifier: MIT */
/* As a program written for any BLAS: the declaration is its own. */
double ddot_(const int* n, const double* x, const int* incx, const double* y, const int* incy);

int main(void)
{
    const double x[3] = {1, 2, 3}, y[3] = {4, 5, 6};
    const int n = 3, one = 1;
    return ddot_(&n, x, &one, y, &one) == 32 ? 0 : 1;
}
