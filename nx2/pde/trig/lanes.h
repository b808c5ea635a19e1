// SPDX-License-Identifier: MIT
// Registers taken apart and put together: every other number, and numbers in the other order.
#pragma once

#include "simd/vec.h"

namespace ork::pde {

// Numbers 0, 2, ... and 1, 3, ... of two adjacent registers, and back.
inline void deinterleave(Vec<double>& a, Vec<double>& b)
{
    const __m128d even = _mm_unpacklo_pd(a.v, b.v), odd = _mm_unpackhi_pd(a.v, b.v);
    a.v = even, b.v = odd;
}
inline void deinterleave(Vec<float>& a, Vec<float>& b)
{
    const __m128 even = _mm_shuffle_ps(a.v, b.v, 0x88), odd = _mm_shuffle_ps(a.v, b.v, 0xdd);
    a.v = even, b.v = odd;
}
inline void interleave(Vec<double>& a, Vec<double>& b) { deinterleave(a, b); }
inline void interleave(Vec<float>& a, Vec<float>& b)
{
    const __m128 low = _mm_unpacklo_ps(a.v, b.v), high = _mm_unpackhi_ps(a.v, b.v);
    a.v = low, b.v = high;
}
inline Vec<double> reversed(Vec<double> a) { return {_mm_shuffle_pd(a.v, a.v, 1)}; }
inline Vec<float> reversed(Vec<float> a) { return {_mm_shuffle_ps(a.v, a.v, 0x1b)}; }

// a[0], then b without its first, from its last down.
inline Vec<double> followed(Vec<double> a, Vec<double> b) { return {_mm_shuffle_pd(a.v, b.v, 2)}; }
inline Vec<float> followed(Vec<float> a, Vec<float> b)
{
    const __m128 joined = _mm_shuffle_ps(a.v, b.v, 0xf0);
    return {_mm_shuffle_ps(joined, b.v, 0x68)};
}

// Numbers p[0], p[step], ...
inline Vec<double> gathered(const double* p, std::int64_t step) { return {_mm_setr_pd(p[0], p[step])}; }
inline Vec<float> gathered(const float* p, std::int64_t step)
{
    return {_mm_setr_ps(p[0], p[step], p[2 * step], p[3 * step])};
}

inline Vec<double> negated(Vec<double> a) { return {_mm_xor_pd(a.v, _mm_set1_pd(-0.0))}; }
inline Vec<float> negated(Vec<float> a) { return {_mm_xor_ps(a.v, _mm_set1_ps(-0.0f))}; }
inline double negated(double a) { return -a; }
inline float negated(float a) { return -a; }

// One number or a register, for code that is written once for both.
template <class V>
struct LanesOf {
    using number = V;
    static constexpr int count = 1;
};
template <class R>
struct LanesOf<Vec<R>> {
    using number = R;
    static constexpr int count = Vec<R>::lanes;
};

template <class V>
[[gnu::always_inline]] inline V get(const typename LanesOf<V>::number* p)
{
    if constexpr (LanesOf<V>::count == 1)
        return *p;
    else
        return load(p);
}
template <class V>
[[gnu::always_inline]] inline void put(typename LanesOf<V>::number* p, V a)
{
    if constexpr (LanesOf<V>::count == 1)
        *p = a;
    else
        store(p, a);
}
// Numbers p[0], p[-1], ...
template <class V>
[[gnu::always_inline]] inline V get_down(const typename LanesOf<V>::number* p)
{
    if constexpr (LanesOf<V>::count == 1)
        return *p;
    else
        return reversed(load(p - (LanesOf<V>::count - 1)));
}
template <class V>
[[gnu::always_inline]] inline void put_down(typename LanesOf<V>::number* p, V a)
{
    if constexpr (LanesOf<V>::count == 1)
        *p = a;
    else
        store(p - (LanesOf<V>::count - 1), reversed(a));
}
// Pairs p[0] p[1], p[2] p[3], ...: all first ones and all second ones.
template <class V>
[[gnu::always_inline]] inline void get_pairs(const typename LanesOf<V>::number* p, V& first, V& second)
{
    if constexpr (LanesOf<V>::count == 1) {
        first = p[0], second = p[1];
    } else {
        first = load(p), second = load(p + LanesOf<V>::count);
        deinterleave(first, second);
    }
}
template <class V>
[[gnu::always_inline]] inline void put_pairs(typename LanesOf<V>::number* p, V first, V second)
{
    if constexpr (LanesOf<V>::count == 1) {
        p[0] = first, p[1] = second;
    } else {
        interleave(first, second);
        store(p, first), store(p + LanesOf<V>::count, second);
    }
}
// Pairs p[0] p[1], p[-2] p[-1], ...
template <class V>
[[gnu::always_inline]] inline void get_pairs_down(const typename LanesOf<V>::number* p, V& first, V& second)
{
    if constexpr (LanesOf<V>::count == 4) {
        const V high = load(p - 2), low = load(p - 6);
        first = {_mm_shuffle_ps(high.v, low.v, 0x22)}, second = {_mm_shuffle_ps(high.v, low.v, 0x77)};
    } else if constexpr (LanesOf<V>::count == 2) {
        first = load(p), second = load(p - 2);
        deinterleave(first, second);
    } else {
        get_pairs(p, first, second);
    }
}
template <class V>
[[gnu::always_inline]] inline void put_pairs_down(typename LanesOf<V>::number* p, V first, V second)
{
    if constexpr (LanesOf<V>::count == 2) {
        interleave(first, second);
        store(p, first), store(p - 2, second);
    } else {
        if constexpr (LanesOf<V>::count > 1) first = reversed(first), second = reversed(second);
        put_pairs(p - 2 * (LanesOf<V>::count - 1), first, second);
    }
}
// Pairs p[0] p[1], p[step] p[step + 1], ...; of float the two numbers behind a pair are read as well.
template <class V>
[[gnu::always_inline]] inline void get_pairs_apart(const typename LanesOf<V>::number* p, std::int64_t step, V& first,
                                                   V& second)
{
    if constexpr (LanesOf<V>::count == 1) {
        first = p[0], second = p[1];
    } else {
        V x[LanesOf<V>::count];
        for (int j = 0; j < LanesOf<V>::count; ++j) x[j] = load(p + j * step);
        transpose(x);
        first = x[0], second = x[1];
    }
}
template <class V>
[[gnu::always_inline]] inline V all(typename LanesOf<V>::number a)
{
    if constexpr (LanesOf<V>::count == 1)
        return a;
    else
        return broadcast(a);
}

// body(i, V{}) for from <= i < to: registers, then numbers.
template <class R, class Body>
[[gnu::always_inline]] inline void in_lanes(std::int64_t from, std::int64_t to, Body body)
{
    std::int64_t i = from;
    for (; i + Vec<R>::lanes <= to; i += Vec<R>::lanes) body(i, Vec<R>{});
    for (; i < to; ++i) body(i, R{});
}

} // namespace ork::pde
