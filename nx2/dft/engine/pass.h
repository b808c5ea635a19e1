// SPDX-License-Identifier: MIT
// The passes of a transform, one radix each, over registers whose lanes are different columns or different transforms.
// A transform of n = r1 r2 ... numbers is decimated in frequency: a pass of radix r over a block of length l = r m
// takes x[j + m t], t = 0 .. r - 1, to y[j + m k] = exp(-2 pi i j k / l) sum over t of x[j + m t] exp(-2 pi i t k / r),
// which leaves r blocks of length m. Blocks end up in digit-reversed order; the last pass, whose m is 1, puts its
// results in place by `order`.
#pragma once

#include "dft/butterfly.h"
#include "dft/engine/lanes.h"

namespace ork::dft {

// Arguments of every kind of pass; each uses some. Steps count real numbers; "next" is from one vector to another.
template <class R>
struct Pass {
    const R* in; // of lane 0
    std::int64_t in_step, in_next, in_lane;
    std::int64_t ahead; // pass_in fetches the numbers so many columns ahead, two lines each; 0: none

    R* scratch; // cells
    std::int64_t scratch_next;

    // Result k goes to out + k * out_step, but result 0 to zero: in a backward transform, whose result k stands where
    // the forward one has n - k, it is out of line.
    R* out;
    std::int64_t out_step, out_next, out_lane;
    R* zero;
    std::int64_t zero_lane;

    std::int64_t columns; // m
    std::int64_t blocks;
    std::int64_t vectors;
    const R* twiddles;         // factors: of column j exp(-2 pi i j k / l) for k = 1 .. r - 1; next column
    const std::int32_t* order; // of block b: index of its result 0; its results are out_blocks apart
    std::int64_t out_blocks;

    const R* lane_twiddles; // factors between the two halves of a transform
    std::int64_t lane_twiddles_next, lane_twiddles_of_result;
};

inline constexpr std::int64_t fine_twiddles = 16; // see pass_rows

template <class R>
using PassKernel = void(const Pass<R>&);

// Numbers in memory -> scratch.
template <int r, class R, Row row>
void pass_in(const Pass<R>& a)
{
    const std::int64_t in_apart = a.columns * a.in_step, apart = a.columns * cell<R>;
    const R* w = a.twiddles;
    for (std::int64_t j = 0; j < a.columns; ++j, w += (r - 1) * factor<R>) {
        const R* in = a.in + j * a.in_step;
        R* to = a.scratch + j * cell<R>;
        if (a.ahead != 0) {
            const R* next = in + a.ahead * a.in_step;
            for (int t = 0; t < r; ++t, next += in_apart) {
                _mm_prefetch(reinterpret_cast<const char*>(next), _MM_HINT_T1);
                _mm_prefetch(reinterpret_cast<const char*>(next) + 64, _MM_HINT_T1);
            }
        }
        for (std::int64_t v = 0; v < a.vectors; ++v, in += a.in_next, to += a.scratch_next)
            dft<r, Element<R>>([&](auto t) ORK_INLINE_LAMBDA { return load_lanes<row>(in + t * in_apart, a.in_lane); },
                               [&](auto k, Element<R> y) ORK_INLINE_LAMBDA {
                                   if constexpr (k > 0) y = times(y, w + (k - 1) * factor<R>);
                                   store_cell(to + k * apart, y);
                               });
    }
}

// Scratch -> scratch, in place.
template <int r, class R>
void pass_within(const Pass<R>& a)
{
    const std::int64_t apart = a.columns * cell<R>;
    for (std::int64_t v = 0; v < a.vectors; ++v)
        for (std::int64_t b = 0; b < a.blocks; ++b) {
            R* x = a.scratch + v * a.scratch_next + b * r * apart;
            const R* w = a.twiddles;
            for (std::int64_t j = 0; j < a.columns; ++j, w += (r - 1) * factor<R>, x += cell<R>)
                dft<r, Element<R>>([&](auto t) ORK_INLINE_LAMBDA { return load_cell(x + t * apart); },
                                   [&](auto k, Element<R> y) ORK_INLINE_LAMBDA {
                                       if constexpr (k > 0) y = times(y, w + (k - 1) * factor<R>);
                                       store_cell(x + k * apart, y);
                                   });
        }
}

// Scratch -> numbers in memory.
template <int r, class R, Row row>
void pass_out(const Pass<R>& a)
{
    const std::int64_t out_apart = a.out_blocks * a.out_step;
    const R* x = a.scratch;
    for (std::int64_t b = 0; b < a.blocks; ++b, x += r * cell<R>) {
        const std::int64_t index = a.order[b];
        R* out = a.out + index * a.out_step;
        R* zero = index == 0 ? a.zero : out;
        const std::int64_t zero_lane = index == 0 ? a.zero_lane : a.out_lane;
        const R* from = x;
        for (std::int64_t v = 0; v < a.vectors; ++v, out += a.out_next, zero += a.out_next, from += a.scratch_next)
            dft<r, Element<R>>([&](auto t) ORK_INLINE_LAMBDA { return load_cell(from + t * cell<R>); },
                               [&](auto k, Element<R> y) ORK_INLINE_LAMBDA {
                                   if constexpr (k > 0)
                                       store_lanes<row>(out + k * out_apart, a.out_lane, y);
                                   else if constexpr (row == Row::ascending)
                                       store_lanes<row>(zero, zero_lane, y);
                                   else
                                       store_lanes(zero, zero_lane, y);
                               });
    }
}

// Memory -> memory: the whole transform.
template <int r, class R>
void pass_whole(const Pass<R>& a)
{
    const R* in = a.in;
    R *out = a.out, *zero = a.zero;
    for (std::int64_t v = 0; v < a.vectors; ++v, in += a.in_next, out += a.out_next, zero += a.out_next)
        dft<r, Element<R>>([&](auto t) ORK_INLINE_LAMBDA { return load_lanes(in + t * a.in_step, a.in_lane); },
                           [&](auto k, Element<R> y) ORK_INLINE_LAMBDA {
                               if constexpr (k > 0)
                                   store_lanes(out + k * a.out_step, a.out_lane, y);
                               else
                                   store_lanes(zero, a.zero_lane, y);
                           });
}

// The first half of a transform of n = r m contiguous numbers: column j, whose numbers are m apart, becomes r results;
// result k of column j is multiplied by exp(-2 pi i j k / n) and goes to row k. Lanes are columns when they are read,
// rows in scratch: group g holds rows g L .. g L + L - 1, the last group the last L rows. Needs r >= L and m >= L;
// columns and rows that don't fill a register are done twice.
template <int r, class R>
void pass_turn(const Pass<R>& a)
{
    constexpr int l = lanes<R>;
    const R* w = a.lane_twiddles;
    for (std::int64_t v = 0; v < a.vectors; ++v, w += (r - 1) * factor<R>) {
        const std::int64_t j = v * l + l <= a.columns ? v * l : a.columns - l;
        const R* in = a.in + 2 * j;
        R* to = a.scratch + j * cell<R>;
        const auto load = [&](auto t)
                              ORK_INLINE_LAMBDA { return load_lanes<Row::ascending>(in + 2 * t * a.columns, 0); };
        if constexpr (l == 1) {
            dft<r, Element<R>>(load, [&](auto k, Element<R> y) ORK_INLINE_LAMBDA {
                if constexpr (k > 0) y = times(y, w + (k - 1) * factor<R>);
                store_cell(to + k * a.scratch_next, y);
            });
        } else {
            Element<R> rows[r];
            dft<r, Element<R>>(load, [&](auto k, Element<R> y) ORK_INLINE_LAMBDA {
                if constexpr (k > 0) y = times(y, w + (k - 1) * factor<R>);
                rows[k] = y;
            });
            unrolled<(r + 1) / 2>([&](auto g) ORK_INLINE_LAMBDA {
                constexpr int first = 2 * g + 2 <= r ? 2 * g : r - 2;
                const __m128 a0 = rows[first].v.v, a1 = rows[first + 1].v.v;
                store_cell(to + g * a.scratch_next, Element<R>{{_mm_movelh_ps(a0, a1)}});
                store_cell(to + g * a.scratch_next + cell<R>, Element<R>{{_mm_movehl_ps(a1, a0)}});
            });
        }
    }
}

// The end of the first half of a long transform, whose columns took several passes: scratch -> rows in memory; lanes
// are neighbouring columns. The twiddle of result index + k out_blocks, index = fine + coarse * fine_twiddles, is a
// product of three out of short tables: a full table would be as long as the data. A vector's tables follow each other:
// fine_twiddles numbers, the coarse factors, and the factors of k = 1 .. r - 1.
template <int r, class R>
void pass_rows(const Pass<R>& a)
{
    const std::int64_t out_apart = a.out_blocks * a.out_step;
    const R* x = a.scratch;
    for (std::int64_t b = 0; b < a.blocks; ++b, x += r * cell<R>) {
        const std::int64_t index = a.order[b];
        const std::int64_t fine = index % fine_twiddles, coarse = index / fine_twiddles;
        R* out = a.out + index * a.out_step;
        const R* from = x;
        const R* w = a.lane_twiddles;
        for (std::int64_t v = 0; v < a.vectors;
             ++v, out += a.out_next, from += a.scratch_next, w += a.lane_twiddles_next) {
            const R *of_coarse = w + fine_twiddles * cell<R>, *of_result = w + a.lane_twiddles_of_result;
            const RegisterFactor<R> u(times(load_cell(w + fine * cell<R>), of_coarse + coarse * factor<R>));
            dft<r, Element<R>>([&](auto t) ORK_INLINE_LAMBDA { return times(load_cell(from + t * cell<R>), u); },
                               [&](auto k, Element<R> y) ORK_INLINE_LAMBDA {
                                   if constexpr (k > 0) y = times(y, of_result + (k - 1) * factor<R>);
                                   store_lanes<Row::ascending>(out + k * out_apart, 0, y);
                               });
        }
    }
}

// All passes of one radix.
template <class R>
struct Kernels {
    PassKernel<R>*in, *in_row, *within, *out, *out_row[2], *whole, *turn, *rows; // out_row: forward, backward
};

// With one lane all ways to lie in memory are the same.
template <class R>
inline constexpr Row anywhere = lanes<R> == 2 ? Row::apart : Row::ascending;
template <class R>
inline constexpr Row backwards = lanes<R> == 2 ? Row::descending : Row::ascending;

template <int r, class R>
constexpr void set_out(Kernels<R>& k)
{
    k.out = pass_out<r, R, anywhere<R>>;
    k.out_row[0] = pass_out<r, R, Row::ascending>;
    k.out_row[1] = pass_out<r, R, backwards<R>>;
}

template <int r, class R>
constexpr Kernels<R> kernels_of_radix()
{
    Kernels<R> k = {};
    k.in = pass_in<r, R, anywhere<R>>;
    k.in_row = pass_in<r, R, Row::ascending>;
    k.within = pass_within<r, R>;
    set_out<r>(k);
    k.whole = pass_whole<r, R>;
    k.turn = pass_turn<r, R>;
    k.rows = pass_rows<r, R>;
    return k;
}

// The last pass only.
template <int r, class R>
constexpr Kernels<R> last_kernels_of_radix()
{
    Kernels<R> k = {};
    set_out<r>(k);
    return k;
}

} // namespace ork::dft
