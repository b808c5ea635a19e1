/* SPDX-License-Identifier: MIT */
/* Loads BLAS libraries the way that scripting languages do, with symbols of their own each: argument 1 has 32-bit
   integers, argument 2 64-bit ones under the same names. */
#include <dlfcn.h>
#include <stdint.h>
#include <stdio.h>

#define CHECK(condition)                                                                                               \
    do {                                                                                                               \
        if (!(condition)) {                                                                                            \
            printf("line %d: %s: %s\n", __LINE__, #condition, dlerror());                                              \
            return 1;                                                                                                  \
        }                                                                                                              \
    } while (0)

enum { n = 300 };
static double a[n * n], b[n * n], c[n * n], wide_c[n * n];

int main(int count, char** arguments)
{
    CHECK(count == 3);
    void* narrow = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
    CHECK(narrow != NULL);
    double (*ddot)(const int32_t*, const double*, const int32_t*, const double*, const int32_t*) =
        dlsym(narrow, "ddot_");
    void (*gemm)(int, int, int, int32_t, int32_t, int32_t, double, const double*, int32_t, const double*, int32_t,
                 double, double*, int32_t) = dlsym(narrow, "cblas_dgemm");
    CHECK(ddot != NULL && gemm != NULL);
    CHECK(dlsym(RTLD_DEFAULT, "ddot_") == NULL || dlsym(RTLD_DEFAULT, "ddot_") != (void*)ddot);

    for (int i = 0; i < n * n; ++i) a[i] = i % 7, b[i] = i % 11;
    const int32_t size = n * n, one = 1;
    double sum = 0;
    for (int i = 0; i < n * n; ++i) sum += a[i] * b[i];
    CHECK(ddot(&size, a, &one, b, &one) == sum);
    gemm(102, 111, 111, n, n, n, 1, a, n, b, n, 0, c, n); /* large enough for threads */
    for (int j = 0; j < n; j += 50)
        for (int i = 0; i < n; i += 50) {
            double want = 0;
            for (int l = 0; l < n; ++l) want += a[i + l * n] * b[l + j * n];
            CHECK(c[i + j * n] == want);
        }

    void* wide = dlopen(arguments[2], RTLD_NOW | RTLD_LOCAL);
    CHECK(wide != NULL);
    void (*dgemm)(const char*, const char*, const int64_t*, const int64_t*, const int64_t*, const double*,
                  const double*, const int64_t*, const double*, const int64_t*, const double*, double*,
                  const int64_t*) = dlsym(wide, "dgemm_");
    CHECK(dgemm != NULL);
    const int64_t wide_n = n;
    const double unit = 1, zero = 0;
    dgemm("N", "N", &wide_n, &wide_n, &wide_n, &unit, a, &wide_n, b, &wide_n, &zero, wide_c, &wide_n);
    for (int i = 0; i < n * n; ++i) CHECK(wide_c[i] == c[i]);
    CHECK(dlclose(wide) == 0 && dlclose(narrow) == 0);
    return 0;
}
