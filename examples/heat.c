/* SPDX-License-Identifier: MIT */
/* A square plate cools down between edges held at 0: u' = u_xx + u_yy, by implicit steps (1 + step * A) u_new = u_old,
   A the five-point stencil. Every step solves a system with the same matrix, so the matrix is analysed once: conjugate
   gradients take from the handle y = A x together with x'y, and a sweep of symmetric Gauss-Seidel as preconditioner.
   The start is the slowest wave that fits the plate, of which every step leaves 1 / (1 + step * lambda), so the error
   is known.
       cc heat.c $(pkg-config --cflags --libs ork) -lm -o heat && ./heat */
#include <math.h>
#include <ork/cblas.h>
#include <ork/sparse.h>
#include <stdio.h>
#include <string.h>

enum { side = 100, points = side * side, steps = 20 };

static double val[5 * points], start[points], u[points], r[points], z[points], p[points], q[points];
static int32_t col[5 * points], ptr[points + 1];
static const ork_sparse_kind general = {ORK_SPBLAS_GENERAL};

static void build(double step)
{
    int entries = 0;
    for (int i = 0; i < points; ++i) {
        const int x = i % side, y = i / side;
        if (y > 0) val[entries] = -step, col[entries++] = i - side;
        if (x > 0) val[entries] = -step, col[entries++] = i - 1;
        val[entries] = 1 + 4 * step, col[entries++] = i;
        if (x < side - 1) val[entries] = -step, col[entries++] = i + 1;
        if (y < side - 1) val[entries] = -step, col[entries++] = i + side;
        ptr[i + 1] = entries;
    }
}

static int failed(int64_t status)
{
    if (status != ORK_SPARSE_SUCCESS) fprintf(stderr, "%s\n", ork_sparse_last_error()->text);
    return status != ORK_SPARSE_SUCCESS;
}

static int precondition(ork_sparse_matrix_t a) /* z = M^-1 r */
{
    memset(z, 0, sizeof z);
    return failed(ork_sparse_d_symgs(ORK_SPBLAS_NO_TRANS, a, general, 1.0, r, z));
}

/* A u = b from u = b; the iterations it took, or -1. */
static int solve(ork_sparse_matrix_t a)
{
    cblas_dcopy(points, u, 1, r, 1);
    const double enough = 1e-14 * cblas_dnrm2(points, r, 1);
    if (failed(ork_sparse_d_mv(ORK_SPBLAS_NO_TRANS, -1.0, a, general, u, 1.0, r)) || precondition(a)) return -1;
    cblas_dcopy(points, z, 1, p, 1);
    double rz = cblas_ddot(points, r, 1, z, 1), pq;
    int count = 0;
    for (; cblas_dnrm2(points, r, 1) > enough && count < 100; ++count) {
        if (failed(ork_sparse_d_dotmv(ORK_SPBLAS_NO_TRANS, 1.0, a, general, p, 0.0, q, &pq))) return -1;
        cblas_daxpy(points, rz / pq, p, 1, u, 1);
        cblas_daxpy(points, -rz / pq, q, 1, r, 1);
        if (precondition(a)) return -1;
        const double before = rz;
        rz = cblas_ddot(points, r, 1, z, 1);
        cblas_daxpby(points, 1.0, z, 1, rz / before, p, 1);
    }
    return count;
}

int main(void)
{
    const double pi = acos(-1), step = 50, wave = 4 - 4 * cos(pi / (side + 1));
    build(step);
    for (int i = 0; i < points; ++i)
        start[i] = u[i] = sin(pi * (i % side + 1) / (side + 1)) * sin(pi * (i / side + 1) / (side + 1));
    ork_sparse_matrix_t a;
    if (failed(ork_sparse_d_create_csr_i4(&a, ORK_SPBLAS_BASE_0, points, points, ptr, ptr + 1, col, val))) return 1;
    ork_sparse_description chosen;
    if (failed(ork_sparse_set_dotmv_hint(a, ORK_SPBLAS_NO_TRANS, general, 20 * steps)) ||
        failed(ork_sparse_set_symgs_hint(a, ORK_SPBLAS_NO_TRANS, general, 20 * steps)) ||
        failed(ork_sparse_optimize(a)) || failed(ork_sparse_describe(a, &chosen)))
        return 1;
    int iterations = 0;
    for (int i = 0; i < steps; ++i) {
        const int count = solve(a);
        if (count < 0) return 1;
        iterations += count;
    }
    ork_sparse_destroy(a);
    const double left = pow(1 / (1 + step * wave), steps);
    double error = 0;
    for (int i = 0; i < points; ++i) error = fmax(error, fabs(u[i] - left * start[i]) / left);
    printf("%d steps, %d iterations, %.1f %% of the heat left, largest error %.1e; products in %s\n", steps, iterations,
           100 * left, error, chosen.layout);
    return error < 1e-9 ? 0 : 1;
}
