// SPDX-License-Identifier: MIT
// Euclidean norm. Only the size of the increment counts, not its sign.
//
// Double precision: the scaled recurrence over the elements in order (of a complex vector: over re, im of each), which
// neither overflows nor underflows on the way. With scale = 0, ssq = 1 at first, zeros are passed over, and a = |x[i]|
// does
//     a > scale: ssq <- 1 + ssq (scale / a)^2, scale <- a;     otherwise (a NaN too): ssq <- ssq + (a / scale)^2.
// The norm is scale sqrt(ssq).
//
// Single precision: squares summed in double precision, where nothing overflows, and one rounding at the end. Increment
// 1: over blocks of 8 pairs of numbers, pair j goes to the two lanes of accumulator A(j mod 4); the pairs that fill no
// block go to A0; the sum is (A2 + A3) + (A1 + A0), then its lanes, then the last odd square. A complex vector is the
// real one of twice the length. Other increments: one accumulator, in order.
#include "blas/elementwise.h"
#include "blas/level1_kernels.h"

namespace ork {
namespace {

inline double root(double a) { return _mm_cvtsd_f64(_mm_sqrt_sd(_mm_setzero_pd(), _mm_set_sd(a))); }

struct ScaledSum {
    double scale = 0, ssq = 1;

    void add(double x)
    {
        if (x == 0) return;
        const double a = __builtin_fabs(x);
        if (__builtin_isgreater(a, scale)) {
            const double ratio = scale == 0 ? 0 : scale / a; // the first one takes no division
            ssq = 1 + ssq * (ratio * ratio);
            scale = a;
        } else {
            const double ratio = a / scale;
            ssq = ssq + ratio * ratio;
        }
    }
    double norm() const { return scale * root(ssq); }
};

// While no element of a block exceeds the scale, the divisions go two by two and only the additions stay in a row: two
// cycles an element, which is what the latency of an addition allows. A zero then adds 0, which changes nothing.
template <int width, class Pair>
[[gnu::always_inline]] inline void add_pairs(ScaledSum& sum, Int first, Pair pair)
{
    Vec<double> a[width];
    const Vec<double> scale = broadcast(sum.scale);
    __m128i greater = _mm_setzero_si128();
#pragma GCC unroll 4
    for (int j = 0; j < width; ++j) {
        a[j] = abs(pair(first + j));
        // Magnitudes compare as integers, NaN above all, and without raising a flag.
        greater |= _mm_cmpgt_epi64(_mm_castpd_si128(a[j].v), _mm_castpd_si128(scale.v));
    }
    if (_mm_testz_si128(greater, greater) && sum.scale != 0) [[likely]] {
#pragma GCC unroll 4
        for (int j = 0; j < width; ++j) {
            const Vec<double> ratio{_mm_div_pd(a[j].v, scale.v)}, square = ratio * ratio;
            sum.ssq += lane(square, 0);
            sum.ssq += lane(square, 1);
        }
    } else {
        for (const Vec<double>& both : a) sum.add(lane(both, 0)), sum.add(lane(both, 1));
    }
}

template <class Pair>
[[gnu::always_inline]] inline ScaledSum scaled_sum(Int pairs, Pair pair)
{
    ScaledSum sum;
    Int i = 0;
    for (; i + 4 <= pairs; i += 4) add_pairs<4>(sum, i, pair);
    for (; i < pairs; ++i) add_pairs<1>(sum, i, pair);
    return sum;
}

double nrm2(Int n, const double* x, Int incx)
{
    if (n <= 0) return 0;
    if (n == 1) return __builtin_fabs(get(x));
    const Int step = incx < 0 ? -incx : incx;
    ScaledSum sum =
        step == 1 ? scaled_sum(n / 2, [=](Int i) { return load(x + 2 * i); }) : scaled_sum(n / 2, [=](Int i) {
            const double* even = x + 2 * i * step;
            return Vec<double>{_mm_set_pd(get(even + step), get(even))};
        });
    if (n % 2 != 0) sum.add(get(x + (n - 1) * step));
    return sum.norm();
}

double nrm2(Int n, const Complex<double>* x, Int incx)
{
    if (n <= 0) return 0;
    const Int step = incx < 0 ? -incx : incx;
    return scaled_sum(n, [=](Int i) { return load<1>(x + i * step).v; }).norm();
}

inline double square(float a) { return static_cast<double>(a) * a; }

double squares_of_adjacent(Int n, const float* x)
{
    constexpr int block = 16;
    const auto squares = [](const float* p) {
        double both;
        std::memcpy(&both, p, sizeof both);
        const Vec<double> a{_mm_cvtps_pd(_mm_castpd_ps(_mm_set_sd(both)))};
        return a * a;
    };
    Vec<double> a[4] = {broadcast(0.0), broadcast(0.0), broadcast(0.0), broadcast(0.0)};
    Int left = n;
    for (; left >= block; left -= block, x += block)
#pragma GCC unroll 8
        for (int j = 0; j < 8; ++j) a[j % 4] = a[j % 4] + squares(x + 2 * j);
    const auto rest = [&](int pairs) {
        if ((n & (2 * pairs)) == 0) return;
#pragma GCC unroll 4
        for (int j = 0; j < pairs; ++j) a[0] = a[0] + squares(x + 2 * j);
        x += 2 * pairs;
    };
    rest(4), rest(2), rest(1);
    double sum = fold(n < block ? a[0] : (a[2] + a[3]) + (a[1] + a[0])); // the others are +0, and no square is -0
    if (n & 1) sum += square(get(x));
    return sum;
}

float nrm2(Int n, const float* x, Int incx)
{
    if (n <= 0) return 0;
    const Int step = incx < 0 ? -incx : incx;
    if (step == 1) return static_cast<float>(root(squares_of_adjacent(n, x)));
    double sum = 0;
    for (Int i = 0; i < n; ++i) sum += square(get(x + i * step));
    return static_cast<float>(root(sum));
}

float nrm2(Int n, const Complex<float>* x, Int incx)
{
    if (n <= 0) return 0;
    const Int step = incx < 0 ? -incx : incx;
    if (step == 1) return nrm2(2 * n, reinterpret_cast<const float*>(x), 1);
    double sum = 0;
    for (Int i = 0; i < n; ++i) {
        const Complex<float> a = get(x + i * step);
        sum += square(a.re);
        sum += square(a.im);
    }
    return static_cast<float>(root(sum));
}

} // namespace
} // namespace ork

using namespace ork;

float ork_blas_nx2_xsnrm2(const int64_t* n, const float* x, const int64_t* incx) { return nrm2(*n, x, *incx); }

double ork_blas_nx2_xdnrm2(const int64_t* n, const double* x, const int64_t* incx) { return nrm2(*n, x, *incx); }

float ork_blas_nx2_xscnrm2(const int64_t* n, const ork_complex_float* x, const int64_t* incx)
{
    return nrm2(*n, pairs(x), *incx);
}

double ork_blas_nx2_xdznrm2(const int64_t* n, const ork_complex_double* x, const int64_t* incx)
{
    return nrm2(*n, pairs(x), *incx);
}
