// SPDX-License-Identifier: MIT
// Outputs one by one or, so that they share the loads of the taps, four at a time: each is a dot product along its
// taps. For outputs that are apart (step > 1), and for a few of them with many taps.
#pragma once

#include "conv/direct/lines.h"
#include "conv/direct/result.h"
#include "simd/complex.h"

namespace ork::conv {

// `parts` numbers, and zeros in the lanes above.
template <int parts>
inline Vec<double> load_one(const double* p)
{
    return parts == 2 ? load(p) : Vec<double>{_mm_load_sd(p)};
}
template <int parts>
inline Vec<float> load_one(const float* p)
{
    return parts == 2 ? load_low(p) : Vec<float>{_mm_load_ss(p)};
}

// The real or the imaginary parts of pairs, each twice.
template <int part>
inline Vec<double> doubled(Vec<double> a)
{
    return {part == 0 ? _mm_unpacklo_pd(a.v, a.v) : _mm_unpackhi_pd(a.v, a.v)};
}
template <int part>
inline Vec<float> doubled(Vec<float> a)
{
    return {part == 0 ? _mm_moveldup_ps(a.v) : _mm_movehdup_ps(a.v)};
}

// Sum of the elements of a register, in the lowest lanes.
template <int parts>
inline Vec<double> folded(Vec<double> a)
{
    return parts == 2 ? a : Vec<double>{_mm_add_sd(a.v, _mm_unpackhi_pd(a.v, a.v))};
}
template <int parts>
inline Vec<float> folded(Vec<float> a)
{
    const __m128 pair = _mm_add_ps(a.v, _mm_movehl_ps(a.v, a.v));
    return {parts == 2 ? pair : _mm_add_ss(pair, _mm_movehdup_ps(pair))};
}

// Sums that don't wait for each other: of one output four, of four outputs one each. Planes as in block.h.
template <class W, int parts, int outputs, int chains>
struct Dots {
    static constexpr int lanes = Vec<W>::lanes;

    Vec<W> sum[parts][outputs][chains];

    Dots()
    {
        for (auto& plane : sum)
            for (auto& output : plane)
                for (auto& chain : output) chain = broadcast(W(0));
    }

    // `count` taps that meet every output; `at` is what the first meets in output 0, `apart` numbers lie between that
    // and what it meets in the next one.
    inline __attribute__((always_inline)) void add(const W* taps, const W* at, Int apart, Int count)
    {
        const Int numbers = parts * count;
        Int i = 0;
        for (; i + chains * lanes <= numbers; i += chains * lanes)
#pragma GCC unroll 4
            for (int c = 0; c < chains; ++c) {
                const Vec<W> tap = load(taps + i + c * lanes);
#pragma GCC unroll 4
                for (int g = 0; g < outputs; ++g) add_register(tap, load(at + i + c * lanes + g * apart), g, c);
            }
        for (; i + lanes <= numbers; i += lanes) {
            const Vec<W> tap = load(taps + i);
#pragma GCC unroll 4
            for (int g = 0; g < outputs; ++g) add_register(tap, load(at + i + g * apart), g, 0);
        }
        for (; i < numbers; i += parts) {
            const Vec<W> tap = load_one<parts>(taps + i);
#pragma GCC unroll 4
            for (int g = 0; g < outputs; ++g) add_register(tap, load_one<parts>(at + i + g * apart), g, 0);
        }
    }

    // Output g, in the lowest lanes.
    Vec<W> result(int g, bool conjugate) const
    {
        Vec<W> plane[parts];
#pragma GCC unroll 2
        for (int p = 0; p < parts; ++p) {
            plane[p] = sum[p][g][0];
#pragma GCC unroll 4
            for (int c = 1; c < chains; ++c) plane[p] = plane[p] + sum[p][g][c];
            plane[p] = folded<parts>(plane[p]);
        }
        if constexpr (parts == 2) {
            const Vec<Complex<W>> whole{alternating_sum(plane[0], exchanged(plane[1]))};
            return (conjugate ? conj(whole) : whole).v;
        }
        return plane[0];
    }

private:
    inline __attribute__((always_inline)) void add_register(Vec<W> tap, Vec<W> u, int output, int chain)
    {
        if constexpr (parts == 2) {
            sum[0][output][chain] = sum[0][output][chain] + doubled<0>(tap) * u;
            sum[1][output][chain] = sum[1][output][chain] + doubled<1>(tap) * u;
        } else {
            sum[0][output][chain] = sum[0][output][chain] + tap * u;
        }
    }
};

// Outputs k .. of a line, `groups` times `outputs` of them, which all meet the taps [begin, end).
template <int outputs, int chains, class T, class W, int parts>
[[gnu::noinline]] void sum_dots(const Lines<T, W, parts>& lines, const Pairs<W>& pairs, Int k, Int groups, Int begin,
                                Int end, T* z)
{
    Int at = parts * (lines.first + k * lines.step - (lines.tap_count - 1) + begin);
    const Int apart = parts * lines.step, z_apart = parts * lines.z_stride;
    z += k * z_apart;
    for (; groups > 0; --groups, at += outputs * apart, z += outputs * z_apart) {
        Dots<W, parts, outputs, chains> dots;
        for_each_pair(
            pairs, [&](const W* tap, const W* signal) __attribute__((always_inline)) {
                dots.add(tap + parts * begin, signal + at, apart, end - begin);
            });
#pragma GCC unroll 4
        for (int g = 0; g < outputs; ++g) {
            const Vec<W> result[1] = {dots.result(g, lines.conjugate)};
            store_results<parts>(result, z + g * z_apart, lines.z_stride, 1);
        }
    }
}

// Outputs [k, end) of a line.
template <class T, class W, int parts>
void sum_apart(const Lines<T, W, parts>& lines, const Pairs<W>& pairs, Int k, Int end, T* z)
{
    while (k < end) {
        const Int m = lines.first + k * lines.step;
        if (m >= lines.tap_count - 1 && m < lines.signal_count) {
            const Int whole = (lines.signal_count - 1 - m) / lines.step + 1, left = end - k;
            if (const Int groups = (whole < left ? whole : left) / 4; groups > 0) {
                sum_dots<4, 1>(lines, pairs, k, groups, 0, lines.tap_count, z);
                k += 4 * groups;
                continue;
            }
        }
        const Int from = m < lines.tap_count - 1 ? lines.tap_count - 1 - m : 0;
        const Int past = m < lines.signal_count ? 0 : m - (lines.signal_count - 1);
        sum_dots<1, 4>(lines, pairs, k, 1, from, lines.tap_count - past, z);
        ++k;
    }
}

} // namespace ork::conv
