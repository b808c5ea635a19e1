/* SPDX-License-Identifier: MIT */
/* C = A B and A x = b by ScaLAPACK, whose arithmetic on each rank is that of whichever libblas.so.3 the loader finds:
   ork's drop-in, when its folder stands in LD_LIBRARY_PATH. Matrices are divided into blocks that go round a grid of
   P x Q ranks. Both results are checked by plain loops over the entries that each rank holds.
       mpicc dense.c -lscalapack-openmpi -lm -o dense && mpirun -n 2 ./dense 2000 64 */
#define _GNU_SOURCE /* dladdr */
#include "common.h"
#include <dlfcn.h>
#include <float.h>

/* ScaLAPACK and its BLACS come without headers. */
void Cblacs_get(int context, int what, int* value);
void Cblacs_gridinit(int* context, const char* order, int grid_rows, int grid_columns);
void Cblacs_gridinfo(int context, int* grid_rows, int* grid_columns, int* row, int* column);
void Cblacs_gridexit(int context);
void Cblacs_exit(int keep_mpi);
int numroc_(const int* n, const int* block, const int* coordinate, const int* source, const int* processes);
void descinit_(int* desc, const int* m, const int* n, const int* mb, const int* nb, const int* row_source,
               const int* column_source, const int* context, const int* lld, int* info);
void pdgemm_(const char* transa, const char* transb, const int* m, const int* n, const int* k, const double* alpha,
             const double* a, const int* ia, const int* ja, const int* desca, const double* b, const int* ib,
             const int* jb, const int* descb, const double* beta, double* c, const int* ic, const int* jc,
             const int* descc);
void pdgesv_(const int* n, const int* nrhs, double* a, const int* ia, const int* ja, const int* desca, int* ipiv,
             double* b, const int* ib, const int* jb, const int* descb, int* info);

enum { of_a = 1, of_b, of_x }; /* seeds */

static int n, block, context, grid[2], here[2];
static int rows, columns; /* of the n x n matrices, held by this rank */

static int global_row(int i) { return (i / block * grid[0] + here[0]) * block + i % block; }
static int global_column(int j) { return (j / block * grid[1] + here[1]) * block + j % block; }

static void fill(double* a, uint64_t seed)
{
    for (int j = 0; j < columns; ++j)
        for (int i = 0; i < rows; ++i)
            a[i + (size_t)j * rows] = noise((seed << 40) + (uint64_t)global_row(i) * n + global_column(j));
}

/* y = A x, or |A| x, with whole vectors on every rank. */
static void multiply(const double* a, int absolute, const double* x, double* y)
{
    for (int i = 0; i < n; ++i) y[i] = 0;
    for (int j = 0; j < columns; ++j)
        for (int i = 0; i < rows; ++i) {
            const double entry = a[i + (size_t)j * rows];
            y[global_row(i)] += (absolute ? fabs(entry) : entry) * x[global_column(j)];
        }
    MPI_Allreduce(MPI_IN_PLACE, y, n, MPI_DOUBLE, MPI_SUM, MPI_COMM_WORLD);
}

/* max_i |y_i - z_i| / (n eps size_i) */
static double relative(const double* y, const double* z, const double* size)
{
    double worst = 0;
    for (int i = 0; i < n; ++i) worst = worse(worst, fabs(y[i] - z[i]) / (n * DBL_EPSILON * size[i]));
    return largest(worst);
}

/* A product of n terms is off by at most about n eps |A| |B|; C x against A (B x) finds an entry that is further off.
 */
static int product(const int* desc, const double* a, const double* b, double* c, double* const* vector)
{
    const double one = 1, zero = 0;
    const int first = 1;
    double seconds[repeats];
    for (int k = 0; k < repeats; ++k) {
        const double since = begin();
        pdgemm_("N", "N", &n, &n, &n, &one, a, &first, &first, desc, b, &first, &first, desc, &zero, c, &first, &first,
                desc);
        seconds[k] = elapsed(since);
    }
    double *x = vector[0], *bx = vector[1], *abx = vector[2], *cx = vector[3], *size = vector[4];
    for (int i = 0; i < n; ++i) x[i] = fabs(noise(((uint64_t)of_x << 40) + i));
    multiply(b, 1, x, bx);
    multiply(a, 1, bx, size);
    multiply(b, 0, x, bx);
    multiply(a, 0, bx, abx);
    multiply(c, 0, x, cx);
    const double middle = median(seconds);
    return report("pdgemm", middle, 2e-9 * n * n * n / middle, "GFLOP/s",
                  "C x - A B x, in n eps |A||B|x:", relative(cx, abx, size), 1);
}

/* b = A (1, -1, 1, ...)': the residual of what pdgesv makes of it, in n eps |A| |x|. */
static int solve(const int* desc, double* a, double* const* vector)
{
    const int first = 1, one = 1, zero = 0, lld = rows > 1 ? rows : 1;
    int desc_b[9], info, *pivots = allocate((size_t)rows + block, sizeof *pivots);
    double *known = vector[0], *b = vector[1], *x = vector[2], *ax = vector[3], *size = vector[4], seconds[repeats];
    double* part = allocate(rows, sizeof *part);
    descinit_(desc_b, &n, &one, &block, &block, &zero, &zero, &context, &lld, &info);
    for (int i = 0; i < n; ++i) known[i] = i % 2 ? -1 : 1;
    fill(a, of_a);
    multiply(a, 0, known, b);
    for (int k = 0; k < repeats; ++k) {
        fill(a, of_a);
        for (int i = 0; i < rows; ++i) part[i] = b[global_row(i)];
        const double since = begin();
        pdgesv_(&n, &one, a, &first, &first, desc, pivots, part, &first, &first, desc_b, &info);
        seconds[k] = elapsed(since);
        if (info != 0) refuse("pdgesv returned %d.", info);
    }
    for (int i = 0; i < n; ++i) x[i] = 0;
    for (int i = 0; i < rows && here[1] == 0; ++i) x[global_row(i)] = part[i]; /* one column of ranks holds it */
    MPI_Allreduce(MPI_IN_PLACE, x, n, MPI_DOUBLE, MPI_SUM, MPI_COMM_WORLD);
    fill(a, of_a);
    multiply(a, 0, x, ax);
    for (int i = 0; i < n; ++i) known[i] = 1;
    multiply(a, 1, known, size);
    double norm_a = 0, norm_x = 0;
    for (int i = 0; i < n; ++i) norm_a = fmax(norm_a, size[i]), norm_x = fmax(norm_x, fabs(x[i]));
    for (int i = 0; i < n; ++i) size[i] = norm_a * norm_x;
    const double middle = median(seconds);
    free(part), free(pivots);
    return report("pdgesv", middle, 2e-9 / 3 * n * n * n / middle, "GFLOP/s",
                  "b - A x, in n eps |A||x|:", relative(ax, b, size), 1);
}

int main(int argc, char** argv)
{
    start(&argc, &argv);
    if (argc > 3) refuse("usage: dense [order [block]]");
    n = argument(argc, argv, 1, "The order", 2000, 2, 200000);
    block = argument(argc, argv, 2, "The block", 64, 1, 4096);
    int sides[2] = {0, 0};
    MPI_Dims_create(ranks, 2, sides);
    Cblacs_get(-1, 0, &context);
    Cblacs_gridinit(&context, "Row", sides[1], sides[0]); /* wide rather than high: a column's pivot is found faster */
    Cblacs_gridinfo(context, &grid[0], &grid[1], &here[0], &here[1]);
    const int zero = 0;
    rows = numroc_(&n, &block, &here[0], &zero, &grid[0]);
    columns = numroc_(&n, &block, &here[1], &zero, &grid[1]);
    const double entries = (double)rows * columns;
    if (largest(entries) > INT_MAX) refuse("An order of %d gives a rank more entries than fit 32 bits.", n);
    check_memory(8 * (3 * entries + 5.0 * n));

    const int lld = rows > 1 ? rows : 1;
    int desc[9], info;
    descinit_(desc, &n, &n, &block, &block, &zero, &zero, &context, &lld, &info);
    double* matrix[3];
    for (int k = 0; k < 3; ++k) matrix[k] = allocate((size_t)rows * columns, sizeof(double));
    double* vector[5];
    for (int k = 0; k < 5; ++k) vector[k] = allocate(n, sizeof(double));
    Dl_info found = {0};
    void* dgemm = dlsym(RTLD_DEFAULT, "dgemm_"); /* the one that ScaLAPACK is bound to */
    if (rank == 0)
        printf("dense    order %d, blocks of %d, %d x %d ranks; dgemm_ is that of %s\n", n, block, grid[0], grid[1],
               dgemm && dladdr(dgemm, &found) ? found.dli_fname : "an unknown file");

    fill(matrix[0], of_a);
    fill(matrix[1], of_b);
    int wrong = product(desc, matrix[0], matrix[1], matrix[2], vector);
    wrong |= solve(desc, matrix[0], vector);
    for (int k = 0; k < 3; ++k) free(matrix[k]);
    for (int k = 0; k < 5; ++k) free(vector[k]);
    Cblacs_gridexit(context);
    Cblacs_exit(1);
    MPI_Finalize();
    return wrong;
}
