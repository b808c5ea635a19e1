/* SPDX-License-Identifier: MIT */
/* A C program as it is written for any BLAS, linked with -lblas and nothing else: Fortran symbols by their own
   declarations, CBLAS by the common ones. Exit status: the line of the first wrong answer, 0 if there is none. */
#include <complex.h>
#include <stdio.h>

extern double ddot_(const int*, const double*, const int*, const double*, const int*);
extern double dnrm2_(const int*, const double*, const int*);
extern float sdot_(const int*, const float*, const int*, const float*, const int*);
extern float _Complex cdotu_(const int*, const float _Complex*, const int*, const float _Complex*, const int*);
extern double _Complex zdotc_(const int*, const double _Complex*, const int*, const double _Complex*, const int*);
extern int idamax_(const int*, const double*, const int*);
extern void dgemm_(const char*, const char*, const int*, const int*, const int*, const double*, const double*,
                   const int*, const double*, const int*, const double*, double*, const int*, size_t, size_t);
extern void cblas_dgemm(int, int, int, int, int, int, double, const double*, int, const double*, int, double, double*,
                        int);
extern size_t cblas_idamax(int, const double*, int);
extern int lsame_(const char*, const char*, size_t, size_t);

#ifdef OWN_XERBLA
/* Takes the library's place, as in LAPACK's test programs. */
static int reported = 0;
void xerbla_(const char* routine, const int* position, size_t length)
{
    (void)length;
    reported = reported == 0 && routine[0] == 'D' ? *position : -1;
}
#endif

#define CHECK(condition)                                                                                               \
    do {                                                                                                               \
        if (!(condition)) {                                                                                            \
            printf("line %d: %s\n", __LINE__, #condition);                                                             \
            return 1;                                                                                                  \
        }                                                                                                              \
    } while (0)

int main(void)
{
    const int three = 3, two = 2, one = 1, wrong = -1;
    const double x[] = {1, 2, 3}, y[] = {4, 5, 6};
    CHECK(ddot_(&three, x, &one, y, &one) == 32);
    CHECK(idamax_(&three, x, &one) == 3);
    CHECK(cblas_idamax(3, x, 1) == 2);
    const double hypotenuse[] = {3, 4};
    CHECK(dnrm2_(&two, hypotenuse, &one) == 5);
    const float f[] = {2, 3};
    CHECK(sdot_(&two, f, &one, f, &one) == 13);
    const float _Complex cf[] = {1 + 2 * I, 3 - I};
    CHECK(cdotu_(&two, cf, &one, cf, &one) == (1 + 2 * I) * (1 + 2 * I) + (3 - I) * (3 - I));
    const double _Complex cd[] = {1 + 2 * I, 3 - I};
    CHECK(zdotc_(&two, cd, &one, cd, &one) == 15);
    CHECK(lsame_("a", "A", 1, 1) && !lsame_("a", "B", 1, 1));

    const double a[] = {1, 2, 3, 4}, b[] = {5, 6, 7, 8}, unit = 1, zero = 0;
    double c[4] = {0, 0, 0, 0};
    dgemm_("N", "T", &two, &two, &two, &unit, a, &two, b, &two, &zero, c, &two, 1, 1);
    CHECK(c[0] == 26 && c[1] == 38 && c[2] == 30 && c[3] == 44);
    cblas_dgemm(101, 111, 112, 2, 2, 2, 1, a, 2, b, 2, 0, c, 2);
    CHECK(c[0] == 17 && c[1] == 23 && c[2] == 39 && c[3] == 53);

    dgemm_("N", "T", &two, &wrong, &two, &unit, a, &two, b, &two, &zero, c, &two, 1, 1);
    CHECK(c[0] == 17 && c[3] == 53);
#ifdef OWN_XERBLA
    CHECK(reported == 4);
#endif
    return 0;
}
