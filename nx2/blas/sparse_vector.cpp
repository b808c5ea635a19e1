// SPDX-License-Identifier: MIT
// A compressed vector, nz values x at the 1-based positions indx, against a dense vector y of unit stride. Entries are
// taken in order, one after the other, so a position that occurs twice is served twice and the later store wins.
#include "blas/elementwise.h"
#include "blas/level1_kernels.h"

namespace ork {
namespace {

// y[indx[i]-1] += alpha x[i]
template <class T>
void axpyi(Int nz, T alpha, const T* x, const Int* indx, T* y)
{
    if (nz <= 0 || alpha == T{}) return;
#pragma GCC unroll 2
    for (Int i = 0; i < nz; ++i) {
        T* element = y + indx[i] - 1;
        put(element, get(element) + alpha * get(x + i));
    }
}

// Sum of x[i] y[indx[i]-1]. Groups of 8 products: 0 1, 2 3, 4 5, 6 7 go to the two lanes of A0, A1, A2, A3; then
// (A0 + A1) + (A2 + A3), the lanes, and the products that fill no group, in order.
template <class R>
R doti(Int nz, const R* x, const Int* indx, const R* y)
{
    if (nz < 1) return 0;
    R a[8] = {};
    Int i = 0;
    for (; i + 8 <= nz; i += 8)
#pragma GCC unroll 8
        for (int j = 0; j < 8; ++j) a[j] += get(x + i + j) * get(y + indx[i + j] - 1);
    R sum = ((a[0] + a[2]) + (a[4] + a[6])) + ((a[1] + a[3]) + (a[5] + a[7]));
    for (; i < nz; ++i) sum += get(x + i) * get(y + indx[i] - 1);
    return sum;
}

template <bool conjugate, class R>
Complex<R> complex_doti(Int nz, const Complex<R>* x, const Int* indx, const Complex<R>* y)
{
    Complex<R> sum{};
#pragma GCC unroll 2
    for (Int i = 0; i < nz; ++i) {
        const Complex<R> a = get(x + i);
        sum = sum + (conjugate ? conj(a) : a) * get(y + indx[i] - 1);
    }
    return sum;
}

// x[i] <- y[indx[i]-1]
template <class T>
void gthr(Int nz, const T* y, T* x, const Int* indx)
{
#pragma GCC unroll 2
    for (Int i = 0; i < nz; ++i) put(x + i, get(y + indx[i] - 1));
}

// x[i] <- y[indx[i]-1] <- 0: a position's second value is the zero that the first left.
template <class T>
void gthrz(Int nz, T* y, T* x, const Int* indx)
{
#pragma GCC unroll 2
    for (Int i = 0; i < nz; ++i) {
        T* element = y + indx[i] - 1;
        put(x + i, get(element));
        put(element, T{});
    }
}

// y[indx[i]-1] <- x[i]
template <class T>
void sctr(Int nz, const T* x, const Int* indx, T* y)
{
#pragma GCC unroll 2
    for (Int i = 0; i < nz; ++i) put(y + indx[i] - 1, get(x + i));
}

// x[i] <- c x[i] + s y[k], y[k] <- c y[k] - s x[i], k = indx[i] - 1
template <class T>
void roti(Int nz, T* x, const Int* indx, T* y, T c, T s)
{
    if (nz < 1 || (c == 1 && s == 0)) return;
    for (Int i = 0; i < nz; ++i) {
        T* element = y + indx[i] - 1;
        const T a = get(x + i), b = get(element);
        put(x + i, c * a + s * b);
        put(element, c * b - s * a);
    }
}

} // namespace
} // namespace ork

using namespace ork;

void ork_blas_nx2_saxpyi(const int64_t* nz, const float* alpha, const float* x, const int64_t* indx, float* y)
{
    axpyi(*nz, *alpha, x, indx, y);
}

void ork_blas_nx2_daxpyi(const int64_t* nz, const double* alpha, const double* x, const int64_t* indx, double* y)
{
    axpyi(*nz, *alpha, x, indx, y);
}

void ork_blas_nx2_caxpyi(const int64_t* nz, const ork_complex_float* alpha, const ork_complex_float* x,
                         const int64_t* indx, ork_complex_float* y)
{
    axpyi(*nz, *pairs(alpha), pairs(x), indx, pairs(y));
}

void ork_blas_nx2_zaxpyi(const int64_t* nz, const ork_complex_double* alpha, const ork_complex_double* x,
                         const int64_t* indx, ork_complex_double* y)
{
    axpyi(*nz, *pairs(alpha), pairs(x), indx, pairs(y));
}

float ork_blas_nx2_sdoti(const int64_t* nz, const float* x, const int64_t* indx, const float* y)
{
    return doti(*nz, x, indx, y);
}

double ork_blas_nx2_ddoti(const int64_t* nz, const double* x, const int64_t* indx, const double* y)
{
    return doti(*nz, x, indx, y);
}

ork_complex_float ork_blas_nx2_cdotui(const int64_t* nz, const ork_complex_float* x, const int64_t* indx,
                                      const ork_complex_float* y)
{
    return boundary(complex_doti<false>(*nz, pairs(x), indx, pairs(y)));
}

ork_complex_float ork_blas_nx2_cdotci(const int64_t* nz, const ork_complex_float* x, const int64_t* indx,
                                      const ork_complex_float* y)
{
    return boundary(complex_doti<true>(*nz, pairs(x), indx, pairs(y)));
}

ork_complex_double ork_blas_nx2_zdotui(const int64_t* nz, const ork_complex_double* x, const int64_t* indx,
                                       const ork_complex_double* y)
{
    return boundary(complex_doti<false>(*nz, pairs(x), indx, pairs(y)));
}

ork_complex_double ork_blas_nx2_zdotci(const int64_t* nz, const ork_complex_double* x, const int64_t* indx,
                                       const ork_complex_double* y)
{
    return boundary(complex_doti<true>(*nz, pairs(x), indx, pairs(y)));
}

void ork_blas_nx2_sgthr(const int64_t* nz, const float* y, float* x, const int64_t* indx) { gthr(*nz, y, x, indx); }

void ork_blas_nx2_dgthr(const int64_t* nz, const double* y, double* x, const int64_t* indx) { gthr(*nz, y, x, indx); }

void ork_blas_nx2_cgthr(const int64_t* nz, const ork_complex_float* y, ork_complex_float* x, const int64_t* indx)
{
    gthr(*nz, pairs(y), pairs(x), indx);
}

void ork_blas_nx2_zgthr(const int64_t* nz, const ork_complex_double* y, ork_complex_double* x, const int64_t* indx)
{
    gthr(*nz, pairs(y), pairs(x), indx);
}

void ork_blas_nx2_sgthrz(const int64_t* nz, float* y, float* x, const int64_t* indx) { gthrz(*nz, y, x, indx); }

void ork_blas_nx2_dgthrz(const int64_t* nz, double* y, double* x, const int64_t* indx) { gthrz(*nz, y, x, indx); }

void ork_blas_nx2_cgthrz(const int64_t* nz, ork_complex_float* y, ork_complex_float* x, const int64_t* indx)
{
    gthrz(*nz, pairs(y), pairs(x), indx);
}

void ork_blas_nx2_zgthrz(const int64_t* nz, ork_complex_double* y, ork_complex_double* x, const int64_t* indx)
{
    gthrz(*nz, pairs(y), pairs(x), indx);
}

void ork_blas_nx2_ssctr(const int64_t* nz, const float* x, const int64_t* indx, float* y) { sctr(*nz, x, indx, y); }

void ork_blas_nx2_dsctr(const int64_t* nz, const double* x, const int64_t* indx, double* y) { sctr(*nz, x, indx, y); }

void ork_blas_nx2_csctr(const int64_t* nz, const ork_complex_float* x, const int64_t* indx, ork_complex_float* y)
{
    sctr(*nz, pairs(x), indx, pairs(y));
}

void ork_blas_nx2_zsctr(const int64_t* nz, const ork_complex_double* x, const int64_t* indx, ork_complex_double* y)
{
    sctr(*nz, pairs(x), indx, pairs(y));
}

void ork_blas_nx2_sroti(const int64_t* nz, float* x, const int64_t* indx, float* y, const float* c, const float* s)
{
    roti(*nz, x, indx, y, *c, *s);
}

void ork_blas_nx2_droti(const int64_t* nz, double* x, const int64_t* indx, double* y, const double* c, const double* s)
{
    roti(*nz, x, indx, y, *c, *s);
}
