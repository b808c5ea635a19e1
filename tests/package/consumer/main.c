/* SPDX-License-Identifier: MIT */
#include <stdio.h>

#include <ork/blas.h>
#include <ork/cblas.h>
#include <ork/ork.h>
#include <ork/sparse.h>
#include <ork/spblas.h>

int main(void)
{
    const double a[4] = {1, 2, 3, 4}, b[4] = {5, 6, 7, 8};
    double c[4];
    cblas_dgemm(CblasColMajor, CblasNoTrans, CblasNoTrans, 2, 2, 2, 1, a, 2, b, 2, 0, c, 2);
    printf("ork %s: %g %g %g %g\n", ork_version(), c[0], c[1], c[2], c[3]);

    const double diagonal[2] = {2, 3};
    const int64_t columns[2] = {0, 1}, rows[3] = {0, 1, 2};
    const ork_spblas_kind kind = {ORK_SPBLAS_GENERAL, ORK_SPBLAS_LOWER, ORK_SPBLAS_NON_UNIT, ORK_SPBLAS_BASE_0};
    double y[2];
    if (ork_spblas_dcsrmv(ORK_SPBLAS_NO_TRANS, kind, 2, 2, 1, diagonal, columns, rows, rows + 1, a, 0, y) ||
        y[1] != 6) {
        puts(ork_spblas_last_error()->text);
        return 2;
    }
    ork_sparse_matrix_t handle;
    const ork_sparse_kind general = {ORK_SPBLAS_GENERAL, ORK_SPBLAS_LOWER, ORK_SPBLAS_NON_UNIT};
    if (ork_sparse_d_create_csr_i8(&handle, ORK_SPBLAS_BASE_0, 2, 2, rows, rows + 1, columns, diagonal) ||
        ork_sparse_optimize(handle) || ork_sparse_d_mv(ORK_SPBLAS_NO_TRANS, 2, handle, general, a, 0, y) ||
        y[1] != 12 || ork_sparse_destroy(handle)) {
        puts(ork_sparse_last_error()->text);
        return 3;
    }
    return !(c[0] == 23 && c[1] == 34 && c[2] == 31 && c[3] == 46);
}
