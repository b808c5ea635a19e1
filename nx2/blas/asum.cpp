// SPDX-License-Identifier: MIT
// Sum of magnitudes |x[i]|, of |re| + |im| for complex numbers; and that magnitude of one number.
//
// The order of additions, by n alone. Increment 1: over blocks of 8 registers, register j goes to accumulator A(j); of
// the registers that fill no block, 4 go to A0 .. A3 if there are as many, 2 to A4 and A5, one to A6, and two last
// single numbers to the lower lanes of A7; the sum is ((A0 + A1) + (A2 + A3)) + ((A4 + A5) + (A6 + A7)), then its lanes
// (0 + 1, or (0 + 2) + (1 + 3)), then the last odd number. A complex vector is summed as the real one of twice the
// length. Other increments: one accumulator, in the order of the elements.
#include "blas/elementwise.h"
#include "blas/level1_kernels.h"

namespace ork {
namespace {

inline float magnitude(float a) { return __builtin_fabsf(a); }
inline double magnitude(double a) { return __builtin_fabs(a); }
template <class R>
inline R magnitude(Complex<R> a)
{
    return magnitude(a.re) + magnitude(a.im);
}

template <class R>
R sum_of_adjacent(Int n, const R* x)
{
    constexpr int lanes = Vec<R>::lanes, width = 8, block = width * lanes;
    Vec<R> a[width];
#pragma GCC unroll 8
    for (int j = 0; j < width; ++j) a[j] = broadcast(R{});
    Int left = n;
    for (; left >= block; left -= block, x += block)
#pragma GCC unroll 8
        for (int j = 0; j < width; ++j) a[j] = a[j] + abs(load(x + j * lanes));
    const auto add = [&](int to, int count) {
        if ((left & (count * lanes)) == 0) return;
#pragma GCC unroll 4
        for (int j = 0; j < count; ++j) a[to + j] = a[to + j] + abs(load(x + j * lanes));
        x += count * lanes;
    };
    add(0, 4), add(4, 2), add(6, 1);
    if constexpr (lanes == 4)
        if (left & 2) a[7] = a[7] + abs(load_low(x)), x += 2;
    R sum = fold(((a[0] + a[1]) + (a[2] + a[3])) + ((a[4] + a[5]) + (a[6] + a[7])));
    if (left & 1) sum += magnitude(get(x));
    return sum;
}

template <class T>
Real<T> asum(Int n, const T* x, Int incx)
{
    if (n < 1) return 0;
    if (incx == 1) return sum_of_adjacent(n * (is_complex<T> ? 2 : 1), reinterpret_cast<const Real<T>*>(x));
    x = first(x, n, incx);
    Real<T> sum = 0;
#pragma GCC unroll 8
    for (Int i = 0; i < n; ++i, x += incx) sum += magnitude(get(x));
    return sum;
}

} // namespace
} // namespace ork

using namespace ork;

float ork_blas_nx2_xsasum(const int64_t* n, const float* x, const int64_t* incx) { return asum(*n, x, *incx); }

double ork_blas_nx2_xdasum(const int64_t* n, const double* x, const int64_t* incx) { return asum(*n, x, *incx); }

float ork_blas_nx2_xscasum(const int64_t* n, const ork_complex_float* x, const int64_t* incx)
{
    return asum(*n, pairs(x), *incx);
}

double ork_blas_nx2_xdzasum(const int64_t* n, const ork_complex_double* x, const int64_t* incx)
{
    return asum(*n, pairs(x), *incx);
}

float ork_blas_nx2_scabs1(const ork_complex_float* z) { return magnitude(get(pairs(z))); }

double ork_blas_nx2_dcabs1(const ork_complex_double* z) { return magnitude(get(pairs(z))); }
