// SPDX-License-Identifier: MIT
// Elements in memory to registers of sums and back: what one register takes, converted to the type of the sums.
#pragma once

#include "simd/complex.h"

namespace ork::xblas {

template <class T, class Work>
inline constexpr int elements = Vec<Work>::lanes / (is_complex<T> ? 2 : 1);

// From `elements` adjacent places.
template <class Work, class T>
inline Vec<Work> adjacent(const T* p)
{
    const Real<T>* r = reals(p);
    if constexpr (sizeof(Work) == sizeof(Real<T>))
        return load(r);
    else
        return {_mm_cvtps_pd(load_low(r).v)};
}

// From one place each, `offset` elements behind p[0], p[1], ...
template <class Work, class T>
inline Vec<Work> gathered(const T* const* p, std::int64_t offset)
{
    if constexpr (elements<T, Work> == 1)
        return adjacent<Work>(p[0] + offset);
    else if constexpr (sizeof(T) == 8) { // two doubles, or two pairs of floats
        const __m128d low = _mm_load_sd(reinterpret_cast<const double*>(p[0] + offset));
        const __m128d both = _mm_loadh_pd(low, reinterpret_cast<const double*>(p[1] + offset));
        if constexpr (sizeof(Work) == 8)
            return {both};
        else
            return {_mm_castpd_ps(both)};
    } else {
        const __m128 low = _mm_unpacklo_ps(_mm_load_ss(p[0] + offset), _mm_load_ss(p[1] + offset));
        if constexpr (sizeof(Work) == 8)
            return {_mm_cvtps_pd(low)};
        else
            return {_mm_movelh_ps(low, _mm_unpacklo_ps(_mm_load_ss(p[2] + offset), _mm_load_ss(p[3] + offset)))};
    }
}

// One element for all.
template <class Work, class T>
inline Vec<Work> repeated(const T* p)
{
    if constexpr (!is_complex<T>)
        return broadcast(static_cast<Work>(*p));
    else if constexpr (sizeof(T) == 8 && sizeof(Work) == 4)
        return load<2>(reals(p));
    else
        return adjacent<Work>(p);
}

// Lane by lane, the first `count` of a register.
template <class T, class Work>
inline void scatter(Vec<Work> v, int count, T* p, std::int64_t step)
{
    alignas(16) Work lanes[Vec<Work>::lanes];
    store_aligned(lanes, v);
    for (int k = 0; k < count; ++k, p += step)
        if constexpr (is_complex<T>)
            *p = {static_cast<Real<T>>(lanes[2 * k]), static_cast<Real<T>>(lanes[2 * k + 1])};
        else
            *p = static_cast<T>(lanes[k]);
}

} // namespace ork::xblas
