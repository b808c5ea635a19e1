// SPDX-License-Identifier: MIT
// Division of elements.
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

} // namespace ork
