// SPDX-License-Identifier: MIT
// Consecutive outputs of a line (step 1): a block of them stays in registers while the taps pass by, each broadcast
// once for the whole block.
//
// Every output is summed in the order of its taps, whatever the block, so its bits don't depend on where blocks begin.
//
// A product of pairs (h, u) is kept in two planes, h.re * (u.re, u.im) and h.im * (u.re, u.im), which are put together
// at the end: no shuffle between the taps.
#pragma once

#include "conv/direct/lines.h"
#include "conv/direct/plan.h"
#include "conv/direct/result.h"
#include "simd/complex.h"

namespace ork::conv {

// Taps [begin, end) meet an output of the block, [all_begin, all_end) meet all of them.
struct Met {
    Int begin, all_begin, all_end, end;
    bool all() const { return begin == all_begin && end == all_end; }
};

// Of the outputs m .. m + width - 1.
inline Met taps_met(Int tap_count, Int signal_count, Int m, Int width)
{
    const Int last = m + width - 1;
    Met met;
    met.begin = last < tap_count - 1 ? tap_count - 1 - last : 0;
    met.end = m < signal_count ? tap_count : signal_count + tap_count - 1 - m;
    met.all_begin = m < tap_count - 1 ? tap_count - 1 - m : 0;
    met.all_end = last < signal_count ? tap_count : signal_count + tap_count - 1 - last;
    if (met.all_begin >= met.all_end) met.all_begin = met.all_end = met.end;
    return met;
}

template <class W, int parts, int registers>
struct Block {
    static constexpr int lanes = Vec<W>::lanes, numbers = registers * lanes, width = numbers / parts;

    Vec<W> sum[parts][registers];

    inline __attribute__((always_inline)) void clear()
    {
#pragma GCC unroll 16
        for (int i = 0; i < parts * registers; ++i) sum[i / registers][i % registers] = broadcast(W(0));
    }

    // `count` taps that meet every output; `at` is what the first tap meets in output 0.
    inline __attribute__((always_inline)) void add(const W* taps, const W* at, Int count)
    {
        for (const W* end = taps + parts * count; taps != end; taps += parts, at += parts) {
            // Of pairs of double numbers, the next tap meets in output r what this one meets in output r + 1. Left to
            // itself, GCC carries that along, in registers that the sums need.
            asm volatile("" ::: "memory");
            Vec<W> tap[parts];
#pragma GCC unroll 2
            for (int plane = 0; plane < parts; ++plane) tap[plane] = broadcast(taps[plane]);
#pragma GCC unroll 16
            for (int r = 0; r < registers; ++r) {
                Vec<W> u = load(at + r * lanes);
                if constexpr (parts == 2) asm("" : "+x"(u.v)); // one load for both planes
#pragma GCC unroll 2
                for (int plane = 0; plane < parts; ++plane) sum[plane][r] = sum[plane][r] + tap[plane] * u;
            }
        }
    }

    inline __attribute__((always_inline)) void load_from(const W (&sums)[parts][numbers])
    {
#pragma GCC unroll 16
        for (int i = 0; i < parts * registers; ++i)
            sum[i / registers][i % registers] = load_aligned(sums[i / registers] + i % registers * lanes);
    }
    inline __attribute__((always_inline)) void store_to(W (&sums)[parts][numbers]) const
    {
#pragma GCC unroll 16
        for (int i = 0; i < parts * registers; ++i)
            store_aligned(sums[i / registers] + i % registers * lanes, sum[i / registers][i % registers]);
    }
};

// Tap by tap to the outputs that it meets: numbers [from, to) of every plane. Whole registers where they stand in
// `sums`, so that what the last tap stored is loaded again as it was stored.
template <int parts, class W, int numbers>
inline void add_tap(const W* tap, const W* at, Int from, Int to, W (&sums)[parts][numbers])
{
    constexpr int lanes = Vec<W>::lanes;
    const auto add = [&]<int width>(std::integral_constant<int, width>, Int i) {
        for (int plane = 0; plane < parts; ++plane)
            store<width>(sums[plane] + i, load<width>(sums[plane] + i) + broadcast(tap[plane]) * load<width>(at + i));
    };
    Int i = from;
    for (; i < to && i % lanes != 0; i += parts) add(std::integral_constant<int, parts>(), i);
    for (; i + lanes <= to; i += lanes) add(std::integral_constant<int, lanes>(), i);
    for (; i < to; i += parts) add(std::integral_constant<int, parts>(), i);
}

// Taps [begin, end), of which none need meet all outputs m .. of the block.
template <int parts, class W, int numbers>
inline void add_ragged(const W* taps, Int tap_count, const W* signal, Int signal_count, Int m, Int begin, Int end,
                       W (&sums)[parts][numbers])
{
    constexpr Int width = numbers / parts;
    for (Int q = begin; q < end; ++q) {
        const Int at = m - (tap_count - 1) + q; // of output 0
        const Int from = at < 0 ? -at : 0, to = signal_count - at < width ? signal_count - at : width;
        add_tap<parts>(taps + parts * q, signal + parts * at, parts * from, parts * to, sums);
    }
}

// Sums of a block, some taps of which don't meet all of its outputs.
template <int registers, class T, class W, int parts>
[[gnu::noinline]] void sum_ragged(const Lines<T, W, parts>& lines, const Pairs<W>& pairs, Int m, const Met& met,
                                  W (&sums)[parts][registers * Vec<W>::lanes])
{
    const Int start = parts * met.all_begin, to_first = parts * (m - (lines.tap_count - 1));
    const Int taps = met.all_end - met.all_begin;
    for (auto& plane : sums)
        for (W& sum : plane) sum = 0;
    for_each_pair(
        pairs, [&](const W* tap, const W* signal) __attribute__((always_inline)) {
            add_ragged<parts>(tap, lines.tap_count, signal, lines.signal_count, m, met.begin, met.all_begin, sums);
            if (taps > 0) {
                Block<W, parts, registers> block;
                block.load_from(sums);
                block.add(tap + start, signal + to_first + start, taps);
                block.store_to(sums);
            }
            add_ragged<parts>(tap, lines.tap_count, signal, lines.signal_count, m, met.all_end, met.end, sums);
        });
}

template <int registers, class T, class W, int parts>
inline __attribute__((always_inline)) void store_block(const Block<W, parts, registers>& block,
                                                       const Lines<T, W, parts>& lines, T* z, Int count)
{
    Vec<W> result[registers];
#pragma GCC unroll 16
    for (int r = 0; r < registers; ++r) {
        if constexpr (parts == 2) {
            const Vec<Complex<W>> whole{alternating_sum(block.sum[0][r], exchanged(block.sum[1][r]))};
            result[r] = (lines.conjugate ? conj(whole) : whole).v;
        } else {
            result[r] = block.sum[0][r];
        }
    }
    store_results<parts>(result, z, lines.z_stride, count);
}

// Outputs [k, end) of a line in blocks of which every output meets the same taps, or zeros beside the signal. Of the
// last block some may not be wanted.
template <int registers, class T, class W, int parts>
[[gnu::noinline]] void sum_whole(const Lines<T, W, parts>& lines, const Pairs<W>& pairs, Int k, Int end, T* z)
{
    using B = Block<W, parts, registers>;
    for (; k < end; k += B::width) {
        const Int m = lines.first + k;
        const Met met = taps_met(lines.tap_count, lines.signal_count, m, B::width);
        const Int skipped = parts * met.begin, start = parts * (m - (lines.tap_count - 1)) + skipped;
        B block;
        block.clear();
        for_each_pair(
            pairs, [&](const W* tap, const W* signal) __attribute__((always_inline)) {
                block.add(tap + skipped, signal + start, met.end - met.begin);
            });
        store_block(block, lines, z + parts * k * lines.z_stride, end - k < B::width ? end - k : B::width);
    }
}

// Outputs k .. k + count - 1 of a line, no more than a block has; any of them may meet any taps.
template <int registers, class T, class W, int parts>
[[gnu::noinline]] void sum_block(const Lines<T, W, parts>& lines, const Pairs<W>& pairs, Int k, Int count, T* z)
{
    using B = Block<W, parts, registers>;
    const Int m = lines.first + k;
    const Met met = taps_met(lines.tap_count, lines.signal_count, m, B::width);
    z += parts * k * lines.z_stride;
    alignas(16) W sums[parts][B::numbers];
    sum_ragged<registers>(lines, pairs, m, met, sums);
    B block;
    block.load_from(sums);
    store_block(block, lines, z, count);
}

// Output k by itself, its taps in the order that blocks take them in.
template <class T, class W, int parts>
inline void sum_one(const Lines<T, W, parts>& lines, const Pairs<W>& pairs, Int k, T* z)
{
    const Int m = lines.first + k;
    const Met met = taps_met(lines.tap_count, lines.signal_count, m, 1);
    const Int start = parts * (m - (lines.tap_count - 1));
    W sum[parts][parts] = {}; // planes
    for_each_pair(
        pairs, [&](const W* tap, const W* signal) __attribute__((always_inline)) {
            for (Int q = parts * met.begin; q < parts * met.end; q += parts)
                for (int plane = 0; plane < parts; ++plane)
                    for (int part = 0; part < parts; ++part)
                        sum[plane][part] += tap[q + plane] * signal[start + q + part];
        });
    if constexpr (parts == 2) {
        const W im = sum[0][1] + sum[1][0];
        z[0] = static_cast<T>(sum[0][0] - sum[1][1]);
        z[1] = static_cast<T>(lines.conjugate ? -im : im);
    } else {
        z[0] = static_cast<T>(sum[0][0]);
    }
}

// Registers of the largest blocks.
template <int parts>
inline constexpr int most_registers = parts == 1 ? 8 : 6;

// Calls block(a number of registers) for what is left: so many at a time that the last ones are not left to wait for
// themselves.
template <int parts, class Call>
inline void choose_block(Int registers_left, Call block)
{
    constexpr int most = most_registers<parts>, fewer = most == 8 ? 6 : 4;
    if (registers_left > 12 || registers_left == most || registers_left == most - 1)
        block(std::integral_constant<int, most>());
    else if (registers_left > 4)
        block(std::integral_constant<int, fewer>());
    else if (registers_left > 2)
        block(std::integral_constant<int, 4>());
    else
        block(std::integral_constant<int, 2>());
}

// Outputs [k, end) of a line.
template <class T, class W, int parts>
void sum_consecutive(const Lines<T, W, parts>& lines, const Pairs<W>& pairs, Int k, Int end, T* z)
{
    constexpr int most = most_registers<parts>;
    constexpr Int per_register = Vec<W>::lanes / parts, width = most * per_register;
    const Int whole = lines.padded ? k : lines.tap_count - 1 - lines.first;
    const Int past = lines.padded ? end : lines.signal_count - lines.first, whole_end = past < end ? past : end;
    const bool few = lines.tap_count <= few_taps(parts);
    while (k < end && k < whole) {
        const Int count = few ? 1 : end - k < width ? end - k : width;
        if (few)
            sum_one(lines, pairs, k, z + parts * k * lines.z_stride);
        else
            sum_block<most>(lines, pairs, k, count, z);
        k += count;
    }
    const Int begin = k;
    if (k + width <= whole_end) {
        k += (whole_end - k) / width * width;
        sum_whole<most>(lines, pairs, begin, k, z);
    }
    const Int rest_end = few ? whole_end : end;
    while (k < rest_end)
        choose_block<parts>((rest_end - k + per_register - 1) / per_register,
                            [&]<int registers>(std::integral_constant<int, registers>) {
                                constexpr Int some = registers * per_register;
                                const Int next = rest_end - k < some ? rest_end : k + some;
                                // A last block that meets all taps may begin among the outputs that are done.
                                const Int from = few && next - some >= begin ? next - some : k;
                                if (lines.padded || from + some <= whole_end)
                                    sum_whole<registers>(lines, pairs, from, next, z);
                                else
                                    sum_block<registers>(lines, pairs, k, next - k, z);
                                k = next;
                            });
    for (; k < end; ++k) sum_one(lines, pairs, k, z + parts * k * lines.z_stride);
}

} // namespace ork::conv
