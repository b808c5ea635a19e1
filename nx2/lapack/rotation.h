// SPDX-License-Identifier: MIT
// Plane rotations: (x, y) <- (c x + s y, c y - s x), c and s real.
#pragma once

#include "lapack/columns.h"

namespace ork::lapack {

template <class R>
struct Rotation {
    R c, s, r;
};

// c f + s g = r, c g - s f = 0, c >= 0 (Anderson, "Algorithm 978: Safe scaling in the level 1 BLAS", 2017). No square
// overflows, and none that matters underflows.
inline Rotation<double> rotation(double f, double g)
{
    if (g == 0) return {1, 0, f};
    if (f == 0) return {0, with_sign(1.0, g), absolute(g)};
    const double af = absolute(f), ag = absolute(g);
    const double large = af > ag ? af : ag, small = af > ag ? ag : af;
    if (large < 0x1p+480 && small > 0x1p-480) [[likely]] {
        const double h = root(f * f + g * g), r = with_sign(h, f);
        return {af / h, g / r, r};
    }
    const double scale = is_finite(large) ? inverse_power(large) : 1;
    const double a = f * scale, b = g * scale, h = root(a * a + b * b), r = with_sign(h, f);
    return {absolute(a) / h, b / r, r / scale};
}
inline Rotation<float> rotation(float f, float g)
{
    const Rotation<double> wide = rotation(static_cast<double>(f), static_cast<double>(g));
    return {static_cast<float>(wide.c), static_cast<float>(wide.s), static_cast<float>(wide.r)};
}

// x and y: n adjacent elements each.
template <class T>
inline void rotate(Int n, T* x, T* y, Real<T> c, Real<T> s)
{
    const Factor<T, Real<T>> cosine(c), sine(s), back(-s);
    each<T>(n, [&]<int w>(Int i) {
        const Vec<T> a = load<w>(x + i), b = load<w>(y + i);
        store<w>(x + i, added(cosine * a, sine * b));
        store<w>(y + i, added(cosine * b, back * a));
    });
}
template <class T>
inline void rotate(Int n, T* x, Int incx, T* y, Int incy, Real<T> c, Real<T> s)
{
    for (Int i = 0; i < n; ++i) {
        const T a = x[i * incx], b = y[i * incy];
        x[i * incx] = c * a + s * b, y[i * incy] = c * b - s * a;
    }
}

} // namespace ork::lapack
