/* SPDX-License-Identifier: MIT */
/* The Fourier transform of a complex matrix whose rows are divided among ranks: each transforms its rows, all exchange
   blocks so that each has whole columns, and transforms those. The spectrum stays transposed, a column of X a row of
   the array; the way back goes the same way and ends with rows again.
       mpicc fft2d.c $(pkg-config --cflags --libs ork) -lm -o fft2d && mpirun -n 2 ./fft2d 2048 2048 */
#include "common.h"
#include <complex.h>
#include <float.h>
#include <ork/dft.h>
#include <ork/ork.h>
#include <ork/trans.h>

typedef double complex number;

static number *x, *packed, *received; /* a rank's share each */
static double exchanged;              /* seconds in Alltoall */

static void must(ork_dft_descriptor* plan, int64_t status)
{
    if (status != ORK_DFT_NO_ERROR)
        give_up(plan && *ork_dft_descriptor_message(plan) ? ork_dft_descriptor_message(plan)
                                                          : ork_dft_error_message(status));
}

/* `count` transforms of adjacent numbers, one behind the other, in place. */
static ork_dft_descriptor* make_plan(int length, int count)
{
    ork_dft_descriptor* plan;
    must(NULL, ork_dft_create_descriptor_1d(&plan, ORK_DFT_DOUBLE, ORK_DFT_COMPLEX, length));
    must(plan, ork_dft_set_integer(plan, ORK_DFT_NUMBER_OF_TRANSFORMS, count));
    must(plan, ork_dft_set_integer(plan, ORK_DFT_INPUT_DISTANCE, length));
    must(plan, ork_dft_set_real(plan, ORK_DFT_BACKWARD_SCALE, 1.0 / length));
    must(plan, ork_dft_commit_descriptor(plan));
    return plan;
}

/* x, n/ranks rows of m numbers, becomes m/ranks rows of n: the transpose of the whole matrix. The block for each rank
   is transposed while it is packed, then what came from each goes side by side. */
static void transpose(int n, int m)
{
    const number one = 1;
    const int high = n / ranks, wide = m / ranks, block = high * wide;
    for (int k = 0; k < ranks; ++k)
        cblas_zomatcopy(CblasRowMajor, CblasTrans, high, wide, &one, x + (size_t)k * wide, m,
                        packed + (size_t)k * block, high);
    const double since = MPI_Wtime();
    MPI_Alltoall(packed, block, MPI_C_DOUBLE_COMPLEX, received, block, MPI_C_DOUBLE_COMPLEX, MPI_COMM_WORLD);
    exchanged += MPI_Wtime() - since;
    for (int k = 0; k < ranks; ++k)
        cblas_zomatcopy(CblasRowMajor, CblasNoTrans, wide, high, &one, received + (size_t)k * block, high,
                        x + (size_t)k * high, n);
}

/* The sum of a few waves exp(2 pi i (u j / n + v k / m)), so X[u, v] = n m amplitude, and 0 elsewhere. */
static struct wave {
    int u, v;
    number amplitude;
} waves[4];

static number wave_at(int j, int k, int n, int m)
{
    number sum = 0;
    for (int w = 0; w < 4; ++w) { /* the fractions are reduced as integers, so the angles are exact */
        const double turns = (double)((int64_t)waves[w].u * j % n) / n + (double)((int64_t)waves[w].v * k % m) / m;
        sum += waves[w].amplitude * cexp(2 * acos(-1) * turns * I);
    }
    return sum;
}

static number random_at(int j, int k, int m)
{
    const uint64_t at = (uint64_t)j * m + k;
    return noise(2 * at) + noise(2 * at + 1) * I;
}

int main(int argc, char** argv)
{
    start(&argc, &argv);
    if (argc > 3) refuse("usage: fft2d [rows [columns]]");
    const int n = argument(argc, argv, 1, "The number of rows", 2048, 2, 1 << 20);
    const int m = argument(argc, argv, 2, "The number of columns", n, 2, 1 << 20);
    if (n % ranks || m % ranks)
        refuse("%d x %d numbers don't divide among %d ranks by rows and by columns.", n, m, ranks);
    const int high = n / ranks, wide = m / ranks;
    const double share = (double)high * m;
    if ((double)high * wide > INT_MAX) refuse("%d x %d numbers are more than one message can hold.", n, m);
    check_memory(3 * 16 * share);
    x = allocate((size_t)share, sizeof *x);
    packed = allocate((size_t)share, sizeof *x);
    received = allocate((size_t)share, sizeof *x);
    ork_dft_descriptor *along_rows = make_plan(m, high), *along_columns = make_plan(n, wide);
    if (rank == 0)
        printf("fft2d    %d x %d complex numbers, %d rows a rank, %d threads a rank\n", n, m, high,
               ork_get_max_threads());

    const struct wave some[4] = {{1, 0, 1}, {n / 3, m - 1, 0.5 - 2 * I}, {n / 2, m / 5, -I}, {n - 1, m / 2, 0.25}};
    for (int w = 0; w < 4; ++w) waves[w] = some[w];
    for (int j = 0; j < high; ++j)
        for (int k = 0; k < m; ++k) x[(size_t)j * m + k] = wave_at(rank * high + j, k, n, m);
    must(along_rows, ork_dft_forward(along_rows, x));
    transpose(n, m);
    must(along_columns, ork_dft_forward(along_columns, x));
    for (int w = 0; w < 4; ++w)
        if (waves[w].v / wide == rank)
            x[(size_t)(waves[w].v % wide) * n + waves[w].u] -= (double)n * m * waves[w].amplitude;
    double spectrum = 0;
    for (size_t i = 0; i < (size_t)share; ++i) spectrum = worse(spectrum, cabs(x[i]));
    spectrum = largest(spectrum) / ((double)n * m);

    double seconds[repeats], all = 0, back = 0;
    exchanged = 0;
    for (int t = 0; t < repeats; ++t) {
        for (int j = 0; j < high; ++j)
            for (int k = 0; k < m; ++k) x[(size_t)j * m + k] = random_at(rank * high + j, k, m);
        const double since = begin();
        must(along_rows, ork_dft_forward(along_rows, x));
        transpose(n, m);
        must(along_columns, ork_dft_forward(along_columns, x));
        all += seconds[t] = elapsed(since);
    }
    const double middle = median(seconds), exchange = largest(exchanged) / all;
    must(along_columns, ork_dft_backward(along_columns, x));
    transpose(m, n);
    must(along_rows, ork_dft_backward(along_rows, x));
    for (int j = 0; j < high; ++j)
        for (int k = 0; k < m; ++k) back = worse(back, cabs(x[(size_t)j * m + k] - random_at(rank * high + j, k, m)));
    back = largest(back);

    /* Errors grow with the number of stages, the logarithm; the amplitudes are around 1. */
    const double bound = 4 * DBL_EPSILON * log2((double)n * m);
    int wrong = report("fft2d", middle, 5e-9 * n * m * log2((double)n * m) / middle, "GFLOP/s", "spectrum off by",
                       spectrum, bound);
    wrong |= !(back <= bound);
    if (rank == 0)
        printf("         a rank is up to %.0f %% of the time in Alltoall; back again off by %.1e (at most %.0e) %s\n",
               100 * exchange, back, bound, back <= bound ? "ok" : "WRONG");
    ork_dft_free_descriptor(&along_rows);
    ork_dft_free_descriptor(&along_columns);
    free(x), free(packed), free(received);
    MPI_Finalize();
    return wrong;
}
