/* SPDX-License-Identifier: MIT */
/* The temperature within a square plate whose edges are held at x^2 - y^2. Every inner point of a grid has the mean
   of its four neighbours: a symmetric system of which the lower triangle is stored, solved by conjugate gradients.
   That function is the mean of its neighbours itself, so the error at the end is known.
       cc plate.c $(pkg-config --cflags --libs ork) -lm -o plate && ./plate */
#include <math.h>
#include <ork/cblas.h>
#include <ork/spblas.h>
#include <stdio.h>

enum { side = 100, points = side * side }; /* inner ones, a step of 1 apart */

static double val[3 * points]; /* of row i: left and upper neighbour, then the point itself */
static int32_t indx[3 * points], ia[points + 1];
static double b[points], u[points], r[points], p[points], ap[points];

static double edge(int x, int y) { return ((double)x * x - (double)y * y) / ((side + 1.0) * (side + 1.0)); }

static void build(void)
{
    int entries = 0;
    for (int y = 1; y <= side; ++y)
        for (int x = 1; x <= side; ++x) {
            const int i = (y - 1) * side + x - 1;
            if (y > 1) val[entries] = -1, indx[entries++] = i - side;
            if (x > 1) val[entries] = -1, indx[entries++] = i - 1;
            val[entries] = 4, indx[entries++] = i;
            ia[i + 1] = entries;
            b[i] = (y == 1 ? edge(x, 0) : 0) + (y == side ? edge(x, side + 1) : 0) + (x == 1 ? edge(0, y) : 0) +
                   (x == side ? edge(side + 1, y) : 0);
        }
}

int main(void)
{
    const ork_spblas_kind kind = {ORK_SPBLAS_SYMMETRIC, ORK_SPBLAS_LOWER, ORK_SPBLAS_NON_UNIT, ORK_SPBLAS_BASE_0};
    build();
    cblas_dcopy(points, b, 1, r, 1); /* u = 0 */
    cblas_dcopy(points, r, 1, p, 1);
    double rr = cblas_ddot(points, r, 1, r, 1);
    const double enough = 1e-24 * rr;
    int steps = 0;
    for (; rr > enough && steps < points; ++steps) {
        if (ork_spblas_lp64_dcsrmv(ORK_SPBLAS_NO_TRANS, kind, points, points, 1.0, val, indx, ia, ia + 1, p, 0.0, ap)) {
            fprintf(stderr, "%s\n", ork_spblas_last_error()->text);
            return 1;
        }
        const double alpha = rr / cblas_ddot(points, p, 1, ap, 1);
        cblas_daxpy(points, alpha, p, 1, u, 1);
        cblas_daxpy(points, -alpha, ap, 1, r, 1);
        const double before = rr;
        rr = cblas_ddot(points, r, 1, r, 1);
        cblas_daxpby(points, 1.0, r, 1, rr / before, p, 1);
    }
    double error = 0;
    for (int i = 0; i < points; ++i) error = fmax(error, fabs(u[i] - edge(i % side + 1, i / side + 1)));
    printf("%d unknowns, %d iterations, largest error %.1e\n", points, steps, error);
    return error < 1e-9 ? 0 : 1;
}
