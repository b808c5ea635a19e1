/* SPDX-License-Identifier: MIT */
/* A C program with declarations of its own, linked with libblas and nothing else. Exit status: the line of the first
   wrong answer, 0 if there is none. */
#include <complex.h>
#include <stdio.h>

extern void domatcopy_(const char*, const char*, const int*, const int*, const double*, const double*, const int*,
                       double*, const int*, size_t, size_t);
extern void somatadd_(const char*, const char*, const char*, const int*, const int*, const float*, const float*,
                      const int*, const float*, const float*, const int*, float*, const int*);
extern void cblas_zimatcopy(int, int, int, int, const void*, void*, int, int);
extern void cblas_domatcopy(int, int, int, int, double, const double*, int, double*, int);

#define CHECK(condition)                                                                                               \
    do {                                                                                                               \
        if (!(condition)) {                                                                                            \
            printf("line %d: %s\n", __LINE__, #condition);                                                             \
            return 1;                                                                                                  \
        }                                                                                                              \
    } while (0)

int main(void)
{
    const int two = 2, three = 3;
    const double a[] = {1, 2, 3, 4, 5, 6}, twice = 2;
    double b[6] = {0};
    domatcopy_("C", "T", &two, &three, &twice, a, &two, b, &three, 1, 1); /* columns 1 2, 3 4, 5 6 */
    CHECK(b[0] == 2 && b[1] == 6 && b[2] == 10 && b[3] == 4 && b[4] == 8 && b[5] == 12);
    domatcopy_("X", "T", &two, &three, &twice, a, &two, b, &three, 1, 1);
    CHECK(b[0] == 2 && b[5] == 12);
    cblas_domatcopy(101, 111, 2, 3, 1, a, 3, b, 3);
    CHECK(b[0] == 1 && b[4] == 5);

    double _Complex z[] = {1 + 1 * I, 2 + 2 * I, 3 + 3 * I, 4 + 4 * I, 5 + 5 * I, 6 + 6 * I};
    const double _Complex i = I;
    cblas_zimatcopy(101, 113, 2, 3, &i, z, 3, 2); /* rows 1 2 3, 4 5 6; i conj(x + x i) = x + x i */
    CHECK(z[0] == 1 + 1 * I && z[1] == 4 + 4 * I && z[2] == 2 + 2 * I && z[5] == 6 + 6 * I);

    const float x[] = {1, 2, 3, 4}, y[] = {10, 20, 30, 40}, one = 1;
    float sum[4];
    somatadd_("c", "n", "t", &two, &two, &one, x, &two, &one, y, &two, sum, &two);
    CHECK(sum[0] == 11 && sum[1] == 32 && sum[2] == 23 && sum[3] == 44);
    return 0;
}
