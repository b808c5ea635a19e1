// SPDX-License-Identifier: MIT
// Columns of r real numbers: the first step of an odd length n = r m, j = m j1 + j2, and the last one of the way back.
//
// Columns are transformed in twos, one as real and one as imaginary part: with Y' = conj(Y[r - k1]) the first is
// (Y + Y')/2 and the second (Y - Y')/(2i). Only k1 <= (r - 1)/2 is kept; row 0 is real. The twiddles
// exp(-2 pi i j2 k1 / n) contain the 1/2; backward, which has none, the rows come with twice the scale instead.
#pragma once

#include "dft/butterfly.h"
#include "dft/split.h"

namespace ork::dft {

template <class R>
struct OddColumns {
    std::int64_t m, padded; // columns; numbers in a row of work memory, a multiple of the 2 lanes done at once
    const R* twiddles;      // row by row, of each register's lanes the real parts and then the imaginary ones
    R *first, *rows;        // row 0: real; rows 1 ...: complex, interleaved
};

inline Vec<double> even_lanes(Vec<double> a, Vec<double> b) { return {_mm_unpacklo_pd(a.v, b.v)}; }
inline Vec<double> odd_lanes(Vec<double> a, Vec<double> b) { return {_mm_unpackhi_pd(a.v, b.v)}; }
inline Vec<float> even_lanes(Vec<float> a, Vec<float> b) { return {_mm_shuffle_ps(a.v, b.v, 0x88)}; }
inline Vec<float> odd_lanes(Vec<float> a, Vec<float> b) { return {_mm_shuffle_ps(a.v, b.v, 0xdd)}; }

template <class R>
[[gnu::always_inline]] inline void store_interleaved(R* p, Split<R> a)
{
    constexpr int lanes = Vec<R>::lanes;
    if constexpr (sizeof(R) == 8) {
        store(p, Vec<R>{_mm_unpacklo_pd(a.re.v, a.im.v)});
        store(p + lanes, Vec<R>{_mm_unpackhi_pd(a.re.v, a.im.v)});
    } else {
        store(p, Vec<R>{_mm_unpacklo_ps(a.re.v, a.im.v)});
        store(p + lanes, Vec<R>{_mm_unpackhi_ps(a.re.v, a.im.v)});
    }
}
template <class R>
[[gnu::always_inline]] inline Split<R> load_interleaved(const R* p)
{
    const Vec<R> a = load(p), b = load(p + Vec<R>::lanes);
    return {even_lanes(a, b), odd_lanes(a, b)};
}

// Number j1 of the columns from x on at x[j1 * stride].
template <int r, class R>
void column_pairs_forward(const OddColumns<R>& a, std::int64_t j2, const R* x, std::int64_t stride)
{
    constexpr int lanes = Vec<R>::lanes;
    using E = Split<R>;
    E y[r];
    dft<r, E>(
        [&](auto j1) ORK_INLINE_LAMBDA {
            return E{load(x + j1 * stride), load(x + j1 * stride + lanes)};
        },
        [&](auto k1, E value) ORK_INLINE_LAMBDA { y[k1] = value; });
    store(a.first + j2, y[0].re);
    store(a.first + j2 + lanes, y[0].im);
    const R* w = a.twiddles + 2 * j2;
    R* row = a.rows + 2 * j2;
#pragma GCC unroll 1
    for (int k1 = 1; k1 <= r / 2; ++k1, w += 2 * a.padded, row += 2 * a.padded) {
        const E p = y[k1], q = y[r - k1];
        const E one = {p.re + q.re, p.im - q.im}, two = {p.im + q.im, q.re - p.re};
        const auto turned = [](E v, const R* at) ORK_INLINE_LAMBDA -> E {
            const Vec<R> c = load_aligned(at), s = load_aligned(at + lanes);
            return {v.re * c - v.im * s, v.re * s + v.im * c};
        };
        store_interleaved(row, turned(one, w));
        store_interleaved(row + 2 * lanes, turned(two, w + 2 * lanes));
    }
}

template <int r, class R>
void column_pairs_backward(const OddColumns<R>& a, std::int64_t j2, R* x, std::int64_t stride)
{
    constexpr int lanes = Vec<R>::lanes;
    using E = Split<R>;
    E y[r];
    y[0] = {load(a.first + j2), load(a.first + j2 + lanes)};
    const R* w = a.twiddles + 2 * j2;
    const R* row = a.rows + 2 * j2;
#pragma GCC unroll 1
    for (int k1 = 1; k1 <= r / 2; ++k1, w += 2 * a.padded, row += 2 * a.padded) {
        const auto turned = [](E v, const R* at) ORK_INLINE_LAMBDA -> E { // by the conjugate twiddle
            const Vec<R> c = load_aligned(at), s = load_aligned(at + lanes);
            return {v.re * c + v.im * s, v.im * c - v.re * s};
        };
        const E one = turned(load_interleaved(row), w), two = turned(load_interleaved(row + 2 * lanes), w + 2 * lanes);
        y[k1] = {one.re - two.im, one.im + two.re};
        y[r - k1] = {one.re + two.im, two.re - one.im};
    }
    dft<r, E>([&](auto k1) ORK_INLINE_LAMBDA { return y[k1]; },
              [&](auto j1, E value) ORK_INLINE_LAMBDA {
                  R* const to = x + (r - j1) % r * stride;
                  store(to, value.re);
                  store(to + lanes, value.im);
              });
}

template <int r, class R>
void columns_forward(const OddColumns<R>& a, const R* x)
{
    constexpr int step = 2 * Vec<R>::lanes;
    std::int64_t j2 = 0;
    for (; j2 + step <= a.m; j2 += step) column_pairs_forward<r>(a, j2, x + j2, a.m);
    if (j2 == a.m) return;
    R part[r * step] = {};
    for (int j1 = 0; j1 < r; ++j1)
        for (std::int64_t j = j2; j < a.m; ++j) part[j1 * step + (j - j2)] = x[j1 * a.m + j];
    column_pairs_forward<r>(a, j2, part, step);
}

template <int r, class R>
void columns_backward(const OddColumns<R>& a, R* x)
{
    constexpr int step = 2 * Vec<R>::lanes;
    std::int64_t j2 = 0;
    for (; j2 + step <= a.m; j2 += step) column_pairs_backward<r>(a, j2, x + j2, a.m);
    if (j2 == a.m) return;
    R part[r * step];
    column_pairs_backward<r>(a, j2, part, step);
    for (int j1 = 0; j1 < r; ++j1)
        for (std::int64_t j = j2; j < a.m; ++j) x[j1 * a.m + j] = part[j1 * step + (j - j2)];
}

} // namespace ork::dft
