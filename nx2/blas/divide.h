// SPDX-License-Identifier: MIT
// Division of elements, and multiplication with an inverse in its place.
#pragma once

#include "simd/complex.h"

namespace ork {

inline double divided(double x, double d) { return x / d; }
inline float divided(float x, float d) { return x / d; }

// Smith's division: with r = im / re, (a + ib) / d = ((a + br) + i(b - ar)) / (re + im r), or the same with the parts
// exchanged when im is the larger (Smith, "Algorithm 116", 1962). No square can overflow.
template <class R>
inline Complex<R> divided(Complex<R> x, Complex<R> d)
{
    const auto magnitude = [](R x) { return x < 0 ? -x : x; };
    if (magnitude(d.re) >= magnitude(d.im)) {
        const R r = d.im / d.re, size = d.re + d.im * r;
        return {(x.re + x.im * r) / size, (x.im - x.re * r) / size};
    }
    const R r = d.re / d.im, size = d.im + d.re * r;
    return {(x.re * r + x.im) / size, (x.im * r - x.re) / size};
}

// Whether the inverse of a number of this magnitude neither overflows nor loses digits. Others are not even tried,
// which would raise flags that the quotient does not.
template <class R>
inline bool has_inverse(R magnitude)
{
    constexpr R largest = sizeof(R) == 8 ? R(0x1p+1020) : R(0x1p+124);
    return magnitude <= largest && magnitude >= 1 / largest;
}

// 1 / d, or false where multiplying with it would not do what dividing by d does.
template <class R>
inline bool invert(R d, R& inverse)
{
    if (!has_inverse(d < 0 ? -d : d)) return false;
    inverse = 1 / d;
    return true;
}
template <class R>
inline bool invert(Complex<R> d, Complex<R>& inverse)
{
    const R re = d.re < 0 ? -d.re : d.re, im = d.im < 0 ? -d.im : d.im;
    if (!has_inverse(re < im ? im : re) || !(im == im)) return false; // a NaN in re is what has_inverse sees
    inverse = divided(Complex<R>{1, 0}, d);
    return true;
}

} // namespace ork
