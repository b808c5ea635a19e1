// SPDX-License-Identifier: MIT
// Comparisons of magnitudes that raise no floating-point flag, and what else is done lane by lane.
#pragma once

#include "blas/compact/lanes.h"
#include "lapack/mask.h"

namespace ork::lapack {

using compact::Lanes;

// All bits of the lanes where a > b; both are absolute values or sums of squares. A NaN is above every number.
inline Vec<double> above(Vec<double> a, Vec<double> b)
{
    return {_mm_castsi128_pd(_mm_cmpgt_epi64(_mm_castpd_si128(a.v), _mm_castpd_si128(b.v)))};
}
inline Vec<float> above(Vec<float> a, Vec<float> b)
{
    return {_mm_castsi128_ps(_mm_cmpgt_epi32(_mm_castps_si128(a.v), _mm_castps_si128(b.v)))};
}

template <class R>
inline Vec<R> is_zero(Vec<R> a)
{
    return equal(a, broadcast(R(0)));
}
// Bit i is set where lane i of a mask is.
inline int signs(Vec<double> mask) { return _mm_movemask_pd(mask.v); }
inline int signs(Vec<float> mask) { return _mm_movemask_ps(mask.v); }

inline Vec<double> root(Vec<double> a) { return {_mm_sqrt_pd(a.v)}; }
inline Vec<float> root(Vec<float> a) { return {_mm_sqrt_ps(a.v)}; }

inline Vec<double> negated(Vec<double> a) { return {_mm_xor_pd(a.v, _mm_set1_pd(-0.0))}; }
inline Vec<float> negated(Vec<float> a) { return {_mm_xor_ps(a.v, _mm_set1_ps(-0.0f))}; }

template <class R>
inline Lanes<R> reciprocal(Lanes<R> a)
{
    return {broadcast(R(1)) / a.x};
}
// Of (x, y), |x| >= |y|: r = y / x, q = 1 / (x + y r), (q, -r q); of (y, x): (r q, -q).
template <class R>
inline Lanes<Complex<R>> reciprocal(Lanes<Complex<R>> a)
{
    const Vec<R> exchange = above(abs(a.im), abs(a.re));
    const Vec<R> x = select(exchange, a.im, a.re), y = select(exchange, a.re, a.im), r = y / x;
    const Vec<R> q = broadcast(R(1)) / (x + y * r), rq = r * q;
    return {select(exchange, rq, q), negated(select(exchange, q, rq))};
}

} // namespace ork::lapack
