// SPDX-License-Identifier: MIT
// Matrices whose squares would overflow or lose digits are scaled by a power of two before they are decomposed.
#pragma once

#include "lapack/columns.h"
#include "lapack/safe_minimum.h"

namespace ork::lapack {

// Whether no element is infinite or NaN; raises no flag.
inline bool all_finite(Int n, const double* x)
{
    const __m128i infinite = _mm_set1_epi64x(0x7ff0000000000000);
    __m128i found = _mm_setzero_si128();
    each<double>(
        n, [&]<int w>(Int i) { found |= _mm_cmpeq_epi64(_mm_castpd_si128(load<w>(x + i).v) & infinite, infinite); });
    return _mm_testz_si128(found, found);
}
inline bool all_finite(Int n, const float* x)
{
    const __m128i infinite = _mm_set1_epi32(0x7f800000);
    __m128i found = _mm_setzero_si128();
    each<float>(
        n, [&]<int w>(Int i) { found |= _mm_cmpeq_epi32(_mm_castps_si128(load<w>(x + i).v) & infinite, infinite); });
    return _mm_testz_si128(found, found);
}

template <class R>
struct Extent {
    R largest = 0; // of |re| and |im|
    bool finite = true;
};

template <class T>
inline Extent<Real<T>> extent(Int m, Int n, const T* a, Int lda)
{
    const Int parts = is_complex<T> ? 2 * m : m;
    Extent<Real<T>> result;
    for (Int j = 0; j < n; ++j) {
        result.largest = larger(result.largest, largest_part(parts, reals(a + j * lda)));
        result.finite = result.finite && all_finite(parts, reals(a + j * lda));
    }
    return result;
}

// What a matrix of this extent is multiplied with: 1, or a power of two that brings it near 1 when it lies outside
// [sqrt(safmin)/eps, eps/sqrt(safmin)].
template <class R>
inline R scale_for(R largest)
{
    const R low = root(safe_minimum<R>()) / spacing<R>;
    return largest >= low && largest <= 1 / low ? R(1) : inverse_power(largest);
}

template <class T>
inline void multiply_matrix(Int m, Int n, Real<T> factor, T* a, Int lda)
{
    for (Int j = 0; j < n; ++j) multiply(m, factor, a + j * lda);
}

template <class T>
inline void fill(Int m, Int n, T value, T* a, Int lda)
{
    for (Int j = 0; j < n; ++j)
        for (Int i = 0; i < m; ++i) a[j * lda + i] = value;
}

} // namespace ork::lapack
