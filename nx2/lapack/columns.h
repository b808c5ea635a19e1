// SPDX-License-Identifier: MIT
// Loops over adjacent elements, such as those of a column.
#pragma once

#include "lapack/scalar.h"

namespace ork::lapack {

// Calls body.template operator()<width>(i) for i = 0, width, ...: whole registers, then what fills none one by one.
template <class T, class Body>
[[gnu::always_inline]] inline void each(Int n, Body&& body)
{
    constexpr int lanes = Vec<T>::lanes;
    Int i = 0;
    for (; i + 2 * lanes <= n; i += 2 * lanes) {
        body.template operator()<lanes>(i);
        body.template operator()<lanes>(i + lanes);
    }
    if (i + lanes <= n) {
        body.template operator()<lanes>(i);
        i += lanes;
    }
    for (; i < n; ++i) body.template operator()<1>(i);
}

inline Vec<double> added(Vec<double> a, Vec<double> b) { return a + b; }
inline Vec<float> added(Vec<float> a, Vec<float> b) { return a + b; }
template <class R>
inline Vec<Complex<R>> added(Vec<Complex<R>> a, Vec<Complex<R>> b)
{
    return {a.v + b.v};
}

// y += a x; a may be real beside complex vectors.
template <class T, class S>
inline void add_multiple(Int n, S a, const T* x, T* y)
{
    const Factor<T, S> factor(a);
    each<T>(n, [&]<int w>(Int i) { store<w>(y + i, added(load<w>(y + i), factor * load<w>(x + i))); });
}

template <class T, class S>
inline void multiply(Int n, S a, T* x)
{
    const Factor<T, S> factor(a);
    each<T>(n, [&]<int w>(Int i) { store<w>(x + i, factor * load<w>(x + i)); });
}

template <class T>
inline void exchange(Int n, T* x, T* y)
{
    each<T>(n, [&]<int w>(Int i) {
        const Vec<T> a = load<w>(x + i), b = load<w>(y + i);
        store<w>(x + i, b), store<w>(y + i, a);
    });
}
template <class T>
inline void exchange(Int n, T* x, Int incx, T* y, Int incy)
{
    for (Int i = 0; i < n; ++i) {
        const T a = x[i * incx];
        x[i * incx] = y[i * incy], y[i * incy] = a;
    }
}

// Sums of conj(x) y over whole registers, kept in lanes, the rest in a scalar.
template <class T>
struct DotSum {
    Vec<Real<T>> same = broadcast(Real<T>(0)), crossed = broadcast(Real<T>(0)); // x y; x times y with parts exchanged

    [[gnu::always_inline]] void add(Vec<T> x, Vec<T> y)
    {
        same = same + reals(x) * reals(y);
        if constexpr (is_complex<T>) crossed = crossed + reals(x) * exchanged(reals(y));
    }
    T total() const
    {
        if constexpr (is_complex<T>) {
            const Vec<Real<T>> zero = broadcast(Real<T>(0));
            return {fold(same), fold(alternating_sum(zero, crossed)) * -1};
        } else {
            return fold(same);
        }
    }
};

// Sum of conj(x) y.
template <class T>
inline T dot(Int n, const T* x, const T* y)
{
    constexpr int lanes = Vec<T>::lanes;
    DotSum<T> even, odd;
    Int i = 0;
    for (; i + 2 * lanes <= n; i += 2 * lanes) {
        even.add(load<lanes>(x + i), load<lanes>(y + i));
        odd.add(load<lanes>(x + i + lanes), load<lanes>(y + i + lanes));
    }
    if (i + lanes <= n) even.add(load<lanes>(x + i), load<lanes>(y + i)), i += lanes;
    T rest{};
    for (; i < n; ++i) rest = rest + conj(x[i]) * y[i];
    return even.total() + odd.total() + rest;
}

// The largest |x| of real numbers, 0 of none. A NaN is passed over: of one, max gives the second operand.
inline Vec<double> larger(Vec<double> a, Vec<double> b) { return {_mm_max_pd(a.v, b.v)}; }
inline Vec<float> larger(Vec<float> a, Vec<float> b) { return {_mm_max_ps(a.v, b.v)}; }
template <class R>
inline R largest_lane(Vec<R> a)
{
    R result = lane(a, 0);
    for (int j = 1; j < Vec<R>::lanes; ++j) result = larger(result, lane(a, j));
    return result;
}
template <class R>
inline R largest_part(Int n, const R* x)
{
    constexpr int lanes = Vec<R>::lanes;
    Vec<R> best = broadcast(R(0)), other = best;
    Int i = 0;
    for (; i + 2 * lanes <= n; i += 2 * lanes) {
        best = larger(abs(load(x + i)), best);
        other = larger(abs(load(x + i + lanes)), other);
    }
    for (; i + lanes <= n; i += lanes) best = larger(abs(load(x + i)), best);
    best = larger(best, other);
    for (; i < n; ++i) best = larger(abs(load<1>(x + i)), best);
    return largest_lane(best);
}

// Sum of squares of real numbers. Of single ones it is a double, which neither overflows nor underflows.
inline double squares(Int n, const double* x)
{
    Vec<double> even = broadcast(0.0), odd = even;
    Int i = 0;
    for (; i + 4 <= n; i += 4) {
        const Vec<double> a = load(x + i), b = load(x + i + 2);
        even = even + a * a, odd = odd + b * b;
    }
    double sum = fold(even + odd);
    for (; i < n; ++i) sum += x[i] * x[i];
    return sum;
}
inline double squares(Int n, const float* x)
{
    Vec<double> even = broadcast(0.0), odd = even;
    Int i = 0;
    for (; i + 4 <= n; i += 4) {
        const __m128 a = load(x + i).v;
        const Vec<double> low{_mm_cvtps_pd(a)}, high{_mm_cvtps_pd(_mm_movehl_ps(a, a))};
        even = even + low * low, odd = odd + high * high;
    }
    double sum = fold(even + odd);
    for (; i < n; ++i) sum += static_cast<double>(x[i]) * x[i];
    return sum;
}

// Whether squares of numbers up to this one, fewer than 2^60 of them, neither overflow nor lose what matters.
template <class R>
inline bool squares_safely(R largest)
{
    return sizeof(R) == 4 || (largest > R(0x1p-460) && largest < R(0x1p+480));
}

// Euclidean norm of adjacent elements.
template <class T>
inline Real<T> norm(Int n, const T* x)
{
    const Int parts = is_complex<T> ? 2 * n : n;
    const auto* p = reals(x);
    if constexpr (sizeof(Real<T>) == 4) return static_cast<float>(root(squares(parts, p)));
    const double largest = largest_part(parts, p);
    if (squares_safely(largest)) [[likely]]
        return static_cast<Real<T>>(root(squares(parts, p)));
    const double f = is_finite(largest) ? inverse_power(largest) : 1;
    double sum = 0;
    for (Int i = 0; i < parts; ++i) sum += (f * p[i]) * (f * p[i]);
    return static_cast<Real<T>>(root(sum) / f);
}

} // namespace ork::lapack
