// SPDX-License-Identifier: MIT
// Numbers in leaves of the drivers. The language's complex product and quotient would recover infinities, at the price
// of a call; these are the plain product and a quotient that avoids needless overflow (Smith, 1962).
#pragma once

#include <complex>

#include "lapack/level3.h"

namespace ork::lapack {

template <class T>
inline T conjugated(T a)
{
    if constexpr (is_complex<T>)
        return {a.real(), -a.imag()};
    else
        return a;
}

template <class T>
inline T product(T a, T b)
{
    if constexpr (is_complex<T>)
        return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
    else
        return a * b;
}

template <class T>
inline T inverse(T a)
{
    if constexpr (is_complex<T>) {
        using R = Part<T>;
        const R re = a.real(), im = a.imag();
        if (__builtin_fabs(re) >= __builtin_fabs(im)) {
            const R ratio = im / re, size = re + im * ratio;
            return {1 / size, -ratio / size};
        }
        const R ratio = re / im, size = im + re * ratio;
        return {ratio / size, -1 / size};
    } else {
        return 1 / a;
    }
}

} // namespace ork::lapack
