// SPDX-License-Identifier: MIT
// Straight-line real transforms of n = 2 m and 4 m, m odd, without a twiddle (Good, Thomas): half-length complex
// transforms of these lengths round more often, 6 to 20 by up to a quarter.
//
// Columns of a = 2 or 4 real numbers; rows 0 and a/2 are real transforms of length m, row 1 of a = 4 is complex and row
// 3 its conjugate.
#pragma once

#include "dft/real/small_odd.h"

namespace ork::dft {

constexpr bool goes_without_twiddles(int n) { return n == 6 || n == 10 || n == 12 || n == 14 || n == 20; }

template <class R, int n>
void coprime_forward(R scale, const R* in, const Spectrum<R>& x)
{
    constexpr int a = n % 4 == 0 ? 4 : 2, m = n / a, h = n / 2;
    using E = Pair<R, Direction::forward>;
    R *const body = x.re, *const first = x.first, *const last = x.last;
    const auto put = [=](int k, Vec<R> value) ORK_INLINE_LAMBDA {
        if (k == 0)
            *first = lane(value, 0);
        else if (k == h)
            *last = lane(value, 0);
        else if (k < h)
            store<2>(body + 2 * k, value);
        else
            store<2>(body + 2 * (n - k), half_length::conjugate(value));
    };
    R row0[m], row_half[m];
    E row1[m];
    unrolled<m>([&](auto j2) ORK_INLINE_LAMBDA {
        const auto number = [=](auto j1) ORK_INLINE_LAMBDA { return in[place_of_input(a, m, j1, j2)]; };
        R even = number(Index<0>{}), odd = number(Index<1>{});
        if constexpr (a == 4) {
            const R c = number(Index<2>{}), d = number(Index<3>{});
            row1[j2] = {together(even - c, d - odd)};
            even += c, odd += d;
        }
        row0[j2] = even + odd, row_half[j2] = even - odd;
    });
    odd_real_dft<m>(row0, [=](int k2, Vec<R> value) ORK_INLINE_LAMBDA { put(place<a, m>(0, k2), value); });
    odd_real_dft<m>(row_half, [=](int k2, Vec<R> value) ORK_INLINE_LAMBDA { put(place<a, m>(a / 2, k2), value); });
    if constexpr (a == 4)
        dft<m, E>([&](auto j2) ORK_INLINE_LAMBDA { return row1[j2]; },
                  [=](auto k2, E value) ORK_INLINE_LAMBDA { put(place<a, m>(1, k2), value.v); });
    if (x.zero_first != nullptr) *x.zero_first = *x.zero_last = 0;
    if (scale != R(1)) {
        *first *= scale, *last *= scale;
        for (int i = 2; i < n; i += 2) store<2>(body + i, load_number(body + i) * broadcast(scale));
    }
}

template <class R, int n>
void coprime_backward(R scale, const Spectrum<R>& x, R* out)
{
    constexpr int a = n % 4 == 0 ? 4 : 2, m = n / a, h = n / 2;
    using E = Pair<R, Direction::backward>;
    const R *const body = x.re, *const first = x.first, *const last = x.last;
    const auto get = [=](int k) ORK_INLINE_LAMBDA -> Vec<R> {
        if (k == 0) return together(*first, R(0));
        if (k == h) return together(*last, R(0));
        return k < h ? load_number(body + 2 * k) : half_length::conjugate(load_number(body + 2 * (n - k)));
    };
    R row0[m], row_half[m];
    E row1[m];
    odd_real_inverse<m>([=](int k2) ORK_INLINE_LAMBDA { return get(place<a, m>(0, k2)); }, row0);
    odd_real_inverse<m>([=](int k2) ORK_INLINE_LAMBDA { return get(place<a, m>(a / 2, k2)); }, row_half);
    if constexpr (a == 4)
        dft<m, E>([=](auto k2) ORK_INLINE_LAMBDA { return E{get(place<a, m>(1, k2))}; },
                  [&](auto j2, E value) ORK_INLINE_LAMBDA { row1[j2] = value + value; });
    unrolled<m>([&](auto j2) ORK_INLINE_LAMBDA {
        const R even = scale * (row0[j2] + row_half[j2]), odd = scale * (row0[j2] - row_half[j2]);
        const auto put = [=](auto j1, R value) ORK_INLINE_LAMBDA { out[place_of_input(a, m, j1, j2)] = value; };
        if constexpr (a == 4) {
            const R re = scale * lane(row1[j2].v, 0), im = scale * lane(row1[j2].v, 1);
            put(Index<0>{}, even + re), put(Index<2>{}, even - re);
            put(Index<1>{}, odd - im), put(Index<3>{}, odd + im);
        } else {
            put(Index<0>{}, even), put(Index<1>{}, odd);
        }
    });
}

} // namespace ork::dft
