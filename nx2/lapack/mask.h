// SPDX-License-Identifier: MIT
// Choices lane by lane, without branches. A mask is a register whose lanes have all bits set or none.
#pragma once

#include "simd/complex.h"

namespace ork::lapack {

inline __m128i bits(Vec<double> a) { return _mm_castpd_si128(a.v); }
inline __m128i bits(Vec<float> a) { return _mm_castps_si128(a.v); }
// The register with these bits.
template <class R>
inline Vec<R> from_bits(__m128i a)
{
    if constexpr (sizeof(R) == 8)
        return {_mm_castsi128_pd(a)};
    else
        return {_mm_castsi128_ps(a)};
}

inline Vec<double> select(Vec<double> mask, Vec<double> yes, Vec<double> no)
{
    return {_mm_blendv_pd(no.v, yes.v, mask.v)};
}
inline Vec<float> select(Vec<float> mask, Vec<float> yes, Vec<float> no)
{
    return {_mm_blendv_ps(no.v, yes.v, mask.v)};
}
template <class R>
inline Vec<Complex<R>> select(Vec<R> mask, Vec<Complex<R>> yes, Vec<Complex<R>> no)
{
    return {select(mask, yes.v, no.v)};
}

inline Vec<double> either(Vec<double> a, Vec<double> b) { return {_mm_or_pd(a.v, b.v)}; }
inline Vec<float> either(Vec<float> a, Vec<float> b) { return {_mm_or_ps(a.v, b.v)}; }
inline Vec<double> both(Vec<double> a, Vec<double> b) { return {_mm_and_pd(a.v, b.v)}; }
inline Vec<float> both(Vec<float> a, Vec<float> b) { return {_mm_and_ps(a.v, b.v)}; }

// Comparisons as the language has them: false where a NaN takes part.
inline Vec<double> greater(Vec<double> a, Vec<double> b) { return {_mm_cmplt_pd(b.v, a.v)}; }
inline Vec<float> greater(Vec<float> a, Vec<float> b) { return {_mm_cmplt_ps(b.v, a.v)}; }
inline Vec<double> equal(Vec<double> a, Vec<double> b) { return {_mm_cmpeq_pd(a.v, b.v)}; }
inline Vec<float> equal(Vec<float> a, Vec<float> b) { return {_mm_cmpeq_ps(a.v, b.v)}; }

} // namespace ork::lapack
