/* SPDX-License-Identifier: MIT */
/* What the distributed examples share: ranks, arguments, numbers that don't depend on how they are divided, reports. */
#ifndef COMMON_H
#define COMMON_H

#include <limits.h>
#include <math.h>
#include <mpi.h>
#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

enum { repeats = 5 };

static int rank, ranks;

static inline void start(int* argc, char*** argv)
{
    MPI_Init(argc, argv);
    MPI_Comm_rank(MPI_COMM_WORLD, &rank);
    MPI_Comm_size(MPI_COMM_WORLD, &ranks);
}

/* Ends the run with a sentence. Every rank calls it with the same arguments. */
static inline void refuse(const char* format, ...)
{
    va_list values;
    va_start(values, format);
    if (rank == 0) vfprintf(stderr, format, values), fputc('\n', stderr);
    va_end(values);
    MPI_Finalize();
    exit(2);
}

/* Ends the run from one rank alone. */
static inline void give_up(const char* text)
{
    fprintf(stderr, "rank %d: %s\n", rank, text);
    MPI_Abort(MPI_COMM_WORLD, 1);
}

/* The integer at a position of the command line, or `usual` when the line is shorter. */
static inline int argument(int argc, char** argv, int position, const char* name, int usual, int least, int most)
{
    if (position >= argc) return usual;
    char* end;
    const long value = strtol(argv[position], &end, 10);
    if (end == argv[position] || *end || value < least || value > most)
        refuse("%s is \"%s\": an integer from %d to %d is needed.", name, argv[position], least, most);
    return (int)value;
}

/* Refuses what needs more than half of the memory of this machine for all ranks on it together. */
static inline void check_memory(double bytes_of_each_rank)
{
    MPI_Comm machine;
    MPI_Comm_split_type(MPI_COMM_WORLD, MPI_COMM_TYPE_SHARED, 0, MPI_INFO_NULL, &machine);
    int here;
    MPI_Comm_size(machine, &here);
    MPI_Comm_free(&machine);
    const double has = (double)sysconf(_SC_PHYS_PAGES) * (double)sysconf(_SC_PAGESIZE);
    double worst[2] = {bytes_of_each_rank * here / has, bytes_of_each_rank * here};
    MPI_Allreduce(MPI_IN_PLACE, worst, 2, MPI_DOUBLE, MPI_MAX, MPI_COMM_WORLD);
    if (worst[0] > 0.5)
        refuse("This size needs %.1f GiB on one machine, more than half of what it has.", worst[1] / 0x1p30);
}

static inline void* allocate(size_t count, size_t size)
{
    void* result = calloc(count ? count : 1, size);
    if (!result) give_up("no memory");
    return result;
}

/* In [-0.5, 0.5), from the index alone (the generator splitmix64): every division among ranks makes the same problem.
 */
static inline double noise(uint64_t index)
{
    uint64_t z = (index + 1) * UINT64_C(0x9e3779b97f4a7c15);
    z = (z ^ (z >> 30)) * UINT64_C(0xbf58476d1ce4e5b9);
    z = (z ^ (z >> 27)) * UINT64_C(0x94d049bb133111eb);
    return (double)((z ^ (z >> 31)) >> 11) * 0x1p-53 - 0.5;
}

/* The larger one, or NaN when either is. */
static inline double worse(double worst, double value) { return isnan(worst) || value <= worst ? worst : value; }

/* A maximum in which a NaN of any rank survives, which MPI_MAX need not keep. */
static inline double largest(double value)
{
    double pair[2] = {isnan(value) ? 0 : value, isnan(value)};
    MPI_Allreduce(MPI_IN_PLACE, pair, 2, MPI_DOUBLE, MPI_MAX, MPI_COMM_WORLD);
    return pair[1] > 0 ? NAN : pair[0];
}

static inline double total(double value)
{
    MPI_Allreduce(MPI_IN_PLACE, &value, 1, MPI_DOUBLE, MPI_SUM, MPI_COMM_WORLD);
    return value;
}

static inline double begin(void)
{
    MPI_Barrier(MPI_COMM_WORLD);
    return MPI_Wtime();
}

/* Seconds since begin() of the slowest rank. */
static inline double elapsed(double since) { return largest(MPI_Wtime() - since); }

static inline int less(const void* a, const void* b) { return *(const double*)a < *(const double*)b ? -1 : 1; }

static inline double median(double* seconds)
{
    qsort(seconds, repeats, sizeof *seconds, less);
    return seconds[repeats / 2];
}

/* One line: name, ranks, seconds, a rate, and what was checked against what it may be; 1 when it is more, else 0.
   run.sh reads the first words. */
static inline int report(const char* name, double seconds, double giga, const char* unit, const char* what,
                         double error, double bound)
{
    const int wrong = !(error <= bound);
    if (rank == 0)
        printf("%-8s %2d ranks %9.4f s %8.2f %-8s %s %.1e (at most %.0e) %s\n", name, ranks, seconds, giga, unit, what,
               error, bound, wrong ? "WRONG" : "ok");
    return wrong;
}

#endif
