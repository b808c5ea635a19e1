/* SPDX-License-Identifier: MIT */
/* Conjugate gradients for the Laplacian of a square or a cube with an edge of 0, five or seven entries a row. Each rank
   has some neighbouring layers of the grid (lines of the square, planes of the cube) and the matrix rows of them. Its
   vector p stands between two ghost layers, copies of what its neighbours have next to it:

       [ last layer of rank - 1 | own layers | first layer of rank + 1 ]

   so messages need no packing. The rows that read no ghost are multiplied while those are on their way, the first and
   the last layer afterwards: three handles on the same arrays.
       mpicc cg.c $(pkg-config --cflags --libs ork) -lm -o cg && mpirun -n 2 ./cg 96 3 */
#include "common.h"
#include <ork/cblas.h>
#include <ork/ork.h>
#include <ork/sparse.h>
#include <string.h>

static const ork_sparse_kind general = {ORK_SPBLAS_GENERAL};
static int side, dimensions, layer; /* points of a layer */
static int first, layers;           /* of this rank; layers of all: side */
static int below, above;            /* neighbours, or MPI_PROC_NULL */
static int ghost;                   /* numbers in front of the own ones: a layer or none */
static int rows, columns;

/* Rows [begin, begin + count) of this rank. */
static struct part {
    int begin, count;
    ork_sparse_matrix_t a;
} inner, low, high;

static double waited, summed; /* seconds */

static void must(int64_t status)
{
    if (status != ORK_SPARSE_SUCCESS) give_up(ork_sparse_last_error()->text);
}

/* The neighbours of a point, as offsets in the whole grid, in ascending order. */
static int neighbours(int z, int within, int* offset)
{
    const int x = within % side, y = within / side;
    int count = 0;
    if (z > 0) offset[count++] = -layer;
    if (dimensions == 3 && y > 0) offset[count++] = -side;
    if (x > 0) offset[count++] = -1;
    if (x < side - 1) offset[count++] = 1;
    if (dimensions == 3 && y < side - 1) offset[count++] = side;
    if (z < side - 1) offset[count++] = layer;
    return count;
}

static void build(int32_t* ptr, int32_t* col, double* val)
{
    int entries = 0, offset[6];
    for (int i = 0; i < rows; ++i) {
        const int count = neighbours(first + i / layer, i % layer, offset);
        for (int k = 0; k < count; ++k) val[entries] = -1, col[entries++] = ghost + i + offset[k];
        val[entries] = 2 * dimensions, col[entries++] = ghost + i;
        ptr[i + 1] = entries;
    }
}

static void analyse(struct part* part, int begin, int count, const int32_t* ptr, const int32_t* col, const double* val)
{
    part->begin = begin, part->count = count;
    if (count == 0) return;
    must(ork_sparse_d_create_csr_i4(&part->a, ORK_SPBLAS_BASE_0, count, columns, ptr + begin, ptr + begin + 1, col,
                                    val));
    must(ork_sparse_set_mv_hint(part->a, ORK_SPBLAS_NO_TRANS, general, 4L * side));
    must(ork_sparse_optimize(part->a));
}

static void apply(const struct part* part, const double* p, double* q)
{
    if (part->count == 0) return;
    must(ork_sparse_d_mv(ORK_SPBLAS_NO_TRANS, 1.0, part->a, general, p, 0.0, q + part->begin));
}

/* q = A p; writes the ghosts of p. */
static void multiply(double* p, double* q)
{
    MPI_Request request[4];
    double* own = p + ghost;
    MPI_Irecv(p, layer, MPI_DOUBLE, below, 0, MPI_COMM_WORLD, &request[0]);
    MPI_Irecv(own + rows, layer, MPI_DOUBLE, above, 1, MPI_COMM_WORLD, &request[1]);
    MPI_Isend(own + rows - layer, layer, MPI_DOUBLE, above, 0, MPI_COMM_WORLD, &request[2]);
    MPI_Isend(own, layer, MPI_DOUBLE, below, 1, MPI_COMM_WORLD, &request[3]);
    apply(&inner, p, q);
    const double since = MPI_Wtime();
    MPI_Waitall(4, request, MPI_STATUSES_IGNORE);
    waited += MPI_Wtime() - since;
    apply(&low, p, q);
    apply(&high, p, q);
}

static double dot(const double* x, const double* y)
{
    const double mine = cblas_ddot(rows, x, 1, y, 1), since = MPI_Wtime(), sum = total(mine);
    summed += MPI_Wtime() - since;
    return sum;
}

/* A x = b from x = 0 until |r| <= enough |b|; the iterations it took. */
static int solve(const double* b, double* x, double* r, double* p, double* q, double enough)
{
    double* own = p + ghost;
    memset(x, 0, rows * sizeof *x);
    cblas_dcopy(rows, b, 1, r, 1);
    cblas_dcopy(rows, b, 1, own, 1);
    double rr = dot(r, r);
    const double least = enough * enough * rr;
    int steps = 0;
    for (; rr > least && steps < 20 * side; ++steps) {
        multiply(p, q);
        const double alpha = rr / dot(own, q), before = rr;
        cblas_daxpy(rows, alpha, own, 1, x, 1);
        cblas_daxpy(rows, -alpha, q, 1, r, 1);
        rr = dot(r, r);
        cblas_daxpby(rows, 1.0, r, 1, rr / before, own, 1);
    }
    return steps;
}

int main(int argc, char** argv)
{
    start(&argc, &argv);
    if (argc > 3) refuse("usage: cg [side [dimensions]]");
    side = argument(argc, argv, 1, "The side", 96, 4, 30000);
    dimensions = argument(argc, argv, 2, "The number of dimensions", 3, 2, 3);
    if (side < 2 * ranks) refuse("A side of %d is too short for %d ranks, which need two layers each.", side, ranks);
    const double points = pow(side, dimensions), most = points / side * (side / ranks + 1);
    if (most * 7 > INT_MAX || points > INT_MAX) refuse("A side of %d gives more entries than fit 32 bits.", side);
    check_memory(most * (2 * 7 * 12 + 4 + 6 * 8)); /* the matrix, perhaps a copy by optimize, and six vectors */

    layer = dimensions == 3 ? side * side : side;
    layers = side / ranks + (rank < side % ranks);
    first = rank * (side / ranks) + (rank < side % ranks ? rank : side % ranks);
    below = rank > 0 ? rank - 1 : MPI_PROC_NULL;
    above = rank < ranks - 1 ? rank + 1 : MPI_PROC_NULL;
    ghost = rank > 0 ? layer : 0;
    rows = layers * layer;
    columns = ghost + rows + (rank < ranks - 1 ? layer : 0);

    int32_t* ptr = allocate((size_t)rows + 1, sizeof *ptr);
    int32_t* col = allocate((size_t)rows * 7, sizeof *col);
    double* val = allocate((size_t)rows * 7, sizeof *val);
    build(ptr, col, val);
    const int after = rank < ranks - 1 ? layer : 0;
    analyse(&low, 0, ghost, ptr, col, val);
    analyse(&inner, ghost, rows - ghost - after, ptr, col, val);
    analyse(&high, rows - after, after, ptr, col, val);

    /* The solution is known, and b is made of it without a product or a message. */
    double *b = allocate(rows, sizeof *b), *x = allocate(rows, sizeof *x), *r = allocate(rows, sizeof *r);
    double *p = allocate(columns, sizeof *p), *q = allocate(rows, sizeof *q);
    for (int i = 0; i < rows; ++i) {
        const int at = first * layer + i;
        int offset[6];
        b[i] = 2 * dimensions * noise(at);
        for (int k = neighbours(first + i / layer, i % layer, offset); k-- > 0;) b[i] -= noise(at + offset[k]);
    }
    if (rank == 0 && inner.count) {
        ork_sparse_description chosen;
        must(ork_sparse_describe(inner.a, &chosen));
        printf("cg       %.0f unknowns, about %d layers a rank, inner rows stored as %s, %d threads a rank\n", points,
               side / ranks, chosen.layout, ork_get_max_threads());
    }

    double seconds[repeats], all = 0;
    int steps = 0;
    for (int k = 0; k < repeats; ++k) {
        const double since = begin();
        steps = solve(b, x, r, p, q, 1e-10);
        all += seconds[k] = elapsed(since);
    }
    const double middle = median(seconds), in_halo = largest(waited) / all, in_sums = largest(summed) / all;

    const double norm_b = sqrt(dot(b, b));
    cblas_dcopy(rows, x, 1, p + ghost, 1);
    multiply(p, q);
    double error = 0;
    for (int i = 0; i < rows; ++i) {
        const double d = x[i] - noise(first * layer + i);
        r[i] = b[i] - q[i], error += d * d;
    }
    const double residual = sqrt(dot(r, r)) / norm_b;
    error = sqrt(total(error));
    /* |x - u| = |A^-1 r| is at most |r| over the least eigenvalue. */
    const double bound = 2e-10 * norm_b / (2 * dimensions * (1 - cos(acos(-1) / (side + 1))));
    int wrong = report("cg", middle, 1e-9 * steps * points / middle, "Grows/s", "|b - A x| / |b|", residual, 2e-10);
    if (rank == 0)
        printf("         %d iterations; a rank waits up to %.0f %% of the time for layers, %.0f %% in sums; "
               "|x - solution| %.1e (at most %.1e) %s\n",
               steps, 100 * in_halo, 100 * in_sums, error, bound, error <= bound ? "ok" : "WRONG");
    wrong |= !(error <= bound);
    for (int k = 0; k < 3; ++k) {
        const struct part* part = k == 0 ? &low : k == 1 ? &inner : &high;
        if (part->count) must(ork_sparse_destroy(part->a));
    }
    free(ptr), free(col), free(val), free(b), free(x), free(r), free(p), free(q);
    MPI_Finalize();
    return wrong;
}
