// SPDX-License-Identifier: MIT
// Roots of unity that are right to the last bit of double precision.
#pragma once

#include <cstdint>

#include "simd/complex.h"

namespace ork::dft {

struct Reciprocals {
    long double of_sine, of_cosine; // 1 / (2 i (2 i + 1)), 1 / ((2 i - 1) 2 i)
};
constexpr Reciprocals of_terms(int i) { return {1.0L / ((2 * i) * (2 * i + 1)), 1.0L / ((2 * i - 1) * (2 * i))}; }
inline constexpr Reciprocals reciprocals[] = {of_terms(10), of_terms(9), of_terms(8), of_terms(7), of_terms(6),
                                              of_terms(5),  of_terms(4), of_terms(3), of_terms(2), of_terms(1)};

// exp(-2 pi i k / n), 0 <= k < n < 2^60, with an error below 2^-61. The angle is folded into the first octant by
// integers, where Taylor's series in 64-bit mantissas end after 10 terms.
inline Complex<long double> exact_root(std::int64_t k, std::int64_t n)
{
    const bool lower = 2 * k > n; // below the real axis before the sign of the exponent
    std::int64_t a = lower ? n - k : k;
    const bool left = 4 * a > n;
    if (left)
        a = n - 2 * a; // now half turns of 1 / (2n)
    else
        a *= 2; // angle = pi a / n, 0 <= a <= n / 2
    const bool steep = 4 * a > n;
    // angle = (pi / 4) * (4 a / n), or its complement to a right angle.
    const long double part = static_cast<long double>(steep ? 2 * n - 4 * a : 4 * a) / static_cast<long double>(n);
    const long double x = 0.785398163397448309615660845819875721L * part, y = x * x;
    long double sine = 0, cosine = 0;
    for (const Reciprocals& r : reciprocals) {
        sine = (1 - sine) * y * r.of_sine;
        cosine = (1 - cosine) * y * r.of_cosine;
    }
    sine = x - x * sine, cosine = 1 - cosine;
    if (steep) {
        const long double exchanged = sine;
        sine = cosine, cosine = exchanged;
    }
    return {left ? -cosine : cosine, lower ? sine : -sine};
}

template <class R>
inline Complex<R> rounded(Complex<long double> a)
{
    return {static_cast<R>(a.re), static_cast<R>(a.im)};
}

} // namespace ork::dft
