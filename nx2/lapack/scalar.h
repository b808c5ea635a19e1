// SPDX-License-Identifier: MIT
// Scalars of small LAPACK: magnitudes, roots and moduli without a mathematics library, and the limits of a type.
#pragma once

#include <bit>
#include <cstdint>

#include "simd/complex.h"

namespace ork::lapack {

using Int = std::int64_t;

template <class R>
inline constexpr R unit_roundoff = sizeof(R) == 8 ? R(0x1p-53) : R(0x1p-24);
template <class R>
inline constexpr R spacing = 2 * unit_roundoff<R>; // from 1 to the next number
template <class R>
inline constexpr R smallest_normal = sizeof(R) == 8 ? R(0x1p-1022) : R(0x1p-126);
template <class R>
inline constexpr R largest_finite = sizeof(R) == 8 ? R(0x1.fffffffffffffp+1023) : R(0x1.fffffep+127);
template <class R>
inline constexpr R not_a_number = sizeof(R) == 8 ? R(__builtin_nan("")) : R(__builtin_nanf(""));

inline double absolute(double a) { return __builtin_fabs(a); }
inline float absolute(float a) { return __builtin_fabsf(a); }
inline double root(double a) { return _mm_cvtsd_f64(_mm_sqrt_sd(_mm_setzero_pd(), _mm_set_sd(a))); }
inline float root(float a) { return _mm_cvtss_f32(_mm_sqrt_ss(_mm_set_ss(a))); }
// |a| with the sign of b.
inline double with_sign(double a, double b) { return __builtin_copysign(a, b); }
inline float with_sign(float a, float b) { return __builtin_copysignf(a, b); }

// Of a NaN and a number the second operand.
template <class R>
inline R larger(R a, R b)
{
    return a > b ? a : b;
}
template <class R>
inline R smaller(R a, R b)
{
    return a < b ? a : b;
}
template <class R>
inline bool is_finite(R a)
{
    return absolute(a) <= largest_finite<R>; // false for NaN
}

template <class R>
inline R real_part(R a)
{
    return a;
}
template <class R>
inline R real_part(Complex<R> a)
{
    return a.re;
}
template <class R>
inline R imaginary_part(R)
{
    return 0;
}
template <class R>
inline R imaginary_part(Complex<R> a)
{
    return a.im;
}
inline double conj(double a) { return a; }
inline float conj(float a) { return a; }
using ork::conj;

// |re| + |im|.
inline double magnitude(double a) { return absolute(a); }
inline float magnitude(float a) { return absolute(a); }
template <class R>
inline R magnitude(Complex<R> a)
{
    return absolute(a.re) + absolute(a.im);
}

// 2^-e for the exponent e of a: multiplying with it brings a to [1, 2), or as near as an inverse can be stored. Of 0,
// infinity and NaN 1.
inline double inverse_power(double a)
{
    const auto field = std::bit_cast<std::uint64_t>(a) >> 52 & 0x7ff;
    if (a == 0 || field == 0x7ff) return 1;
    return std::bit_cast<double>((field == 0      ? std::uint64_t(2045)
                                  : field >= 2045 ? std::uint64_t(1)
                                                  : 2046 - field)
                                 << 52);
}
inline float inverse_power(float a)
{
    const auto field = std::bit_cast<std::uint32_t>(a) >> 23 & 0xff;
    if (a == 0 || field == 0xff) return 1;
    return std::bit_cast<float>((field == 0 ? 253u : field >= 253 ? 1u : 254 - field) << 23);
}

// sqrt(x^2 + y^2); no square overflows, and none that matters underflows.
inline float modulus(float x, float y)
{
    return static_cast<float>(root(static_cast<double>(x) * x + static_cast<double>(y) * y));
}
inline double modulus(double x, double y)
{
    const double ax = absolute(x), ay = absolute(y);
    const double large = ax > ay ? ax : ay;
    if (large > 0x1p-460 && large < 0x1p+510) [[likely]] {
        const double small = ax > ay ? ay : ax;
        return small < 0x1p-60 * large ? large : root(ax * ax + ay * ay);
    }
    if (large == 0 || !(large <= largest_finite<double>)) return ax + ay;
    const double f = inverse_power(large);
    return root((f * ax) * (f * ax) + (f * ay) * (f * ay)) / f;
}
template <class R>
inline R modulus(Complex<R> a)
{
    return modulus(a.re, a.im);
}
inline double modulus(double a) { return absolute(a); }
inline float modulus(float a) { return absolute(a); }

} // namespace ork::lapack
