/* SPDX-License-Identifier: MIT */
/* Preloaded in front of ork: a dgemm and a sparse product whose last element is NaN or off by one part in a million,
   transforms of which that holds for the third number, a product through a handle of which it does for the first, an
   extra-precise product of which it does for the last, a transposition in place of which it does for the second, and
   a convolution task of which it does for the third. */
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

/* Enumerations and the kind are passed as what they are made of. */
struct kind {
    int type, uplo, diag, base;
};
struct handle_kind {
    int type, uplo, diag;
};
typedef int64_t product(int, struct kind, int32_t, int32_t, double, const double*, const int32_t*, const int32_t*,
                        const int32_t*, const double*, double, double*);

int64_t ork_spblas_lp64_dcsrmv(int op, struct kind kind, int32_t m, int32_t n, double alpha, const double* val,
                               const int32_t* indx, const int32_t* pntrb, const int32_t* pntre, const double* x,
                               double beta, double* y)
{
    product* right;
    *(void**)&right = dlsym(RTLD_NEXT, "ork_spblas_lp64_dcsrmv");
    const int64_t status = right(op, kind, m, n, alpha, val, indx, pntrb, pntre, x, beta, y);
    const char* fault = getenv("ORK_TEST_FAULT");
    if (fault && *fault == 'n') y[m - 1] = NAN;
    if (fault && *fault == 's') y[m - 1] *= 1.000001;
    return status;
}

int64_t ork_sparse_d_mv(int op, double alpha, void* a, struct handle_kind kind, const double* x, double beta, double* y)
{
    int64_t (*right)(int, double, void*, struct handle_kind, const double*, double, double*);
    *(void**)&right = dlsym(RTLD_NEXT, "ork_sparse_d_mv");
    const int64_t status = right(op, alpha, a, kind, x, beta, y);
    const char* fault = getenv("ORK_TEST_FAULT");
    if (fault && *fault == 'n') y[0] = NAN;
    if (fault && *fault == 's') y[0] *= 1.000001;
    return status;
}

void BLAS_dsymv_x(int order, int uplo, int n, double alpha, const double* a, int lda, const double* x, int incx,
                  double beta, double* y, int incy, int prec)
{
    void (*right)(int, int, int, double, const double*, int, const double*, int, double, double*, int, int);
    *(void**)&right = dlsym(RTLD_NEXT, "BLAS_dsymv_x");
    right(order, uplo, n, alpha, a, lda, x, incx, beta, y, incy, prec);
    const char* fault = getenv("ORK_TEST_FAULT");
    if (fault && *fault == 'n') y[n - 1] = NAN;
    if (fault && *fault == 's') y[n - 1] *= 1.000001;
}

void cblas_simatcopy(int layout, int trans, int rows, int cols, float alpha, float* ab, int lda, int ldb)
{
    void (*right)(int, int, int, int, float, float*, int, int);
    *(void**)&right = dlsym(RTLD_NEXT, "cblas_simatcopy");
    right(layout, trans, rows, cols, alpha, ab, lda, ldb);
    const char* fault = getenv("ORK_TEST_FAULT");
    if (fault && *fault == 'n') ab[1] = NAN;
    if (fault && *fault == 's') ab[1] *= 1.000001F;
}

int32_t ork_conv_execx(void* task, const double* y, const int32_t* ystride, double* z, const int32_t* zstride)
{
    int32_t (*right)(void*, const double*, const int32_t*, double*, const int32_t*);
    *(void**)&right = dlsym(RTLD_NEXT, "ork_conv_execx");
    const int32_t status = right(task, y, ystride, z, zstride);
    const char* fault = getenv("ORK_TEST_FAULT");
    if (fault && *fault == 'n') z[2] = NAN;
    if (fault && *fault == 's') z[2] *= 1.000001;
    return status;
}
