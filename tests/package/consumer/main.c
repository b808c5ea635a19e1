/* SPDX-License-Identifier: MIT */
#include <stdio.h>

#include <ork/blas.h>
#include <ork/cblas.h>
#include <ork/ork.h>

int main(void)
{
    const double a[4] = {1, 2, 3, 4}, b[4] = {5, 6, 7, 8};
    double c[4];
    cblas_dgemm(CblasColMajor, CblasNoTrans, CblasNoTrans, 2, 2, 2, 1, a, 2, b, 2, 0, c, 2);
    printf("ork %s: %g %g %g %g\n", ork_version(), c[0], c[1], c[2], c[3]);
    return !(c[0] == 23 && c[1] == 34 && c[2] == 31 && c[3] == 46);
}
