/* SPDX-License-Identifier: MIT */
/* Preloaded in front of ork: a dgemm whose last element is NaN, or off by one part in a million. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <math.h>
#include <stdlib.h>

typedef void gemm(const char*, const char*, const int*, const int*, const int*, const double*, const double*,
                  const int*, const double*, const int*, const double*, double*, const int*);

void dgemm_(const char* transa, const char* transb, const int* m, const int* n, const int* k, const double* alpha,
            const double* a, const int* lda, const double* b, const int* ldb, const double* beta, double* c,
            const int* ldc)
{
    gemm* right;
    *(void**)&right = dlsym(RTLD_NEXT, "dgemm_");
    right(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
    const char* fault = getenv("ORK_TEST_FAULT");
    double* last = &c[*m - 1 + (long)(*n - 1) * *ldc];
    if (fault && *fault == 'n') *last = NAN;
    if (fault && *fault == 's') *last *= 1.000001;
}
