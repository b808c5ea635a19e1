/* SPDX-License-Identifier: MIT */
/* Preloaded in front of ork: a dgemm whose last element is NaN or off by one part in a million, and transforms of which
   that holds for the third number. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <math.h>
#include <stdint.h>
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

static int64_t wrong_transform(const char* name, const void* descriptor, const void* in, double* out)
{
    int64_t (*right)(const void*, const void*, void*);
    *(void**)&right = dlsym(RTLD_NEXT, name);
    const int64_t status = right(descriptor, in, out);
    const char* fault = getenv("ORK_TEST_FAULT");
    if (fault && *fault == 'n') out[2] = NAN;
    if (fault && *fault == 's') out[2] *= 1.000001;
    return status;
}

int64_t ork_dft_forward_out(const void* descriptor, const void* in, void* out)
{
    return wrong_transform("ork_dft_forward_out", descriptor, in, out);
}

int64_t ork_dft_backward_out(const void* descriptor, const void* in, void* out)
{
    return wrong_transform("ork_dft_backward_out", descriptor, in, out);
}
