// SPDX-License-Identifier: MIT
// Registers of interleaved complex numbers to and from memory. A register has one number of double precision, or two of
// single precision, which belong to different columns or different transforms: its lanes.
//
// Interleaved registers need a shuffle for every product with a complex number, but half as many registers for a radix
// as separate real and imaginary parts do: without spills and rearrangements a radix of 16 takes a fifth fewer
// instructions.
#pragma once

#include "dft/pair.h"

namespace ork::dft {

// All passes are forward ones: a backward transform puts result k in place n - k.
template <class R>
using Element = Pair<R, Direction::forward>;

template <class R>
inline constexpr int lanes = Vec<R>::lanes / 2;

// Real numbers of a register.
template <class R>
inline constexpr int cell = Vec<R>::lanes;

template <class R>
[[gnu::always_inline]] inline Element<R> load_cell(const R* p)
{
    Element<R> a{load_aligned(p)};
    asm("" : "+x"(a.v.v)); // see loaded_once in lengths/kernel.h
    return a;
}
template <class R>
[[gnu::always_inline]] inline void store_cell(R* p, Element<R> a)
{
    store_aligned(p, a.v);
}

// Lane 0 at p, lane 1 at p + lane.
[[gnu::always_inline]] inline Element<double> load_lanes(const double* p, std::int64_t)
{
    Element<double> a{load(p)};
    asm("" : "+x"(a.v.v));
    return a;
}
[[gnu::always_inline]] inline Element<float> load_lanes(const float* p, std::int64_t lane)
{
    const __m128 low = _mm_castpd_ps(_mm_load_sd(reinterpret_cast<const double*>(p)));
    return {{_mm_loadh_pi(low, reinterpret_cast<const __m64*>(p + lane))}};
}
[[gnu::always_inline]] inline void store_lanes(double* p, std::int64_t, Element<double> a) { store(p, a.v); }
[[gnu::always_inline]] inline void store_lanes(float* p, std::int64_t lane, Element<float> a)
{
    // A lane that repeats the other one stores the same number to the same address.
    _mm_storel_pi(reinterpret_cast<__m64*>(p), a.v.v);
    _mm_storeh_pi(reinterpret_cast<__m64*>(p + lane), a.v.v);
}

// How lanes lie in memory: anywhere, each behind the other, or each before the other.
enum class Row { apart, ascending, descending };

template <Row row, class R>
[[gnu::always_inline]] inline Element<R> load_lanes(const R* p, std::int64_t lane)
{
    if constexpr (row == Row::ascending) {
        Element<R> a{load(p)};
        asm("" : "+x"(a.v.v));
        return a;
    } else {
        return load_lanes(p, lane);
    }
}
template <Row row, class R>
[[gnu::always_inline]] inline void store_lanes(R* p, std::int64_t lane, Element<R> a)
{
    if constexpr (row == Row::ascending)
        store(p, a.v);
    else if constexpr (row == Row::descending)
        store(p + lane, Vec<R>{_mm_shuffle_ps(a.v.v, a.v.v, 0x4e)});
    else
        store_lanes(p, lane, a);
}

// A factor w as two registers: (re, re, ...), (-im, im, ...).
template <class R>
inline constexpr int factor = 2 * cell<R>;
template <class R>
[[gnu::always_inline]] inline Element<R> times(Element<R> a, const R* w)
{
    return {a.v * load_aligned(w) + exchanged(a.v) * load_aligned(w + cell<R>)};
}
template <class R>
struct RegisterFactor {
    Vec<R> re, im;
    explicit RegisterFactor(Element<R> w);
};
template <>
inline RegisterFactor<double>::RegisterFactor(Element<double> w)
    : re{_mm_unpacklo_pd(w.v.v, w.v.v)}, im(flipped(Vec<double>{_mm_unpackhi_pd(w.v.v, w.v.v)}, alternating(-0.0, 0.0)))
{
}
template <>
inline RegisterFactor<float>::RegisterFactor(Element<float> w)
    : re{_mm_moveldup_ps(w.v.v)}, im(flipped(Vec<float>{_mm_movehdup_ps(w.v.v)}, alternating(-0.0f, 0.0f)))
{
}
template <class R>
[[gnu::always_inline]] inline Element<R> times(Element<R> a, const RegisterFactor<R>& w)
{
    return {a.v * w.re + exchanged(a.v) * w.im};
}
template <class R>
inline void store_factor(R* p, int lane, Complex<R> w)
{
    p[2 * lane] = p[2 * lane + 1] = w.re;
    p[cell<R> + 2 * lane] = -w.im, p[cell<R> + 2 * lane + 1] = w.im;
}

} // namespace ork::dft
