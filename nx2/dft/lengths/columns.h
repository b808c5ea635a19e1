// SPDX-License-Identifier: MIT
// n = a b in single precision, two columns of a elements a register, then two rows of b. Rows wait in memory, so that
// numbers of a pair of rows come together by two loads.
#pragma once

#include "dft/butterfly.h"
#include "dft/pair.h"

namespace ork::dft {

// A complex number at low and one at high.
inline Vec<float> loaded(const float* low, const float* high)
{
    return {_mm_loadh_pi(load_low(low).v, reinterpret_cast<const __m64*>(high))};
}

// exp(-2 pi i k / n) times the lower number, exp(-2 pi i l / n) times the upper one.
template <int n, int k, int l, Direction direction>
[[gnu::always_inline]] inline Pair<float, direction> twiddled(Pair<float, direction> a)
{
    if constexpr (k % n == 0 && l % n == 0) {
        return a;
    } else {
        constexpr Root<float> low = root<float, n, k % n>, high = root<float, n, l % n>;
        constexpr float sign = direction == Direction::forward ? 1 : -1;
        const Vec<float> cos = {_mm_setr_ps(low.cos, low.cos, high.cos, high.cos)};
        const Vec<float> sin = {_mm_setr_ps(sign * low.sin, -sign * low.sin, sign * high.sin, -sign * high.sin)};
        return {a.v * cos + exchanged(a.v) * sin};
    }
}

template <int n, int a, Direction direction>
[[gnu::always_inline]] inline void two_columns(const float* in, float* out)
{
    using E = Pair<float, direction>;
    constexpr int b = n / a;
    constexpr bool coprime = gcd(a, b) == 1;
    alignas(16) float rows[a][b + b % 2][2];
    unrolled<(b + 1) / 2>([&](auto pair) ORK_INLINE_LAMBDA {
        constexpr int left = 2 * pair, right = left + 1;
        dft<a, E>(
            [&](auto j1) ORK_INLINE_LAMBDA {
                const float* const low = in + 2 * place_of_input(a, b, j1, left);
                if constexpr (right == b)
                    return E{load_low(low)};
                else if constexpr (coprime)
                    return E{loaded(low, in + 2 * place_of_input(a, b, j1, right))};
                else
                    return E{loaded_once(low)};
            },
            [&](auto k1, E x) ORK_INLINE_LAMBDA {
                constexpr int k = coprime ? 0 : k1;
                store_aligned(rows[k1][left], twiddled<n, left * k, right * k>(x).v);
            });
    });
    unrolled<(a + 1) / 2>([&](auto pair) ORK_INLINE_LAMBDA {
        constexpr int upper = 2 * pair, lower = upper + 1;
        dft<b, E>(
            [&](auto j2) ORK_INLINE_LAMBDA {
                if constexpr (lower == a)
                    return E{load_low(rows[upper][j2])};
                else
                    return E{loaded(rows[upper][j2], rows[lower][j2])};
            },
            [&](auto k2, E x) ORK_INLINE_LAMBDA {
                float* const first = out + 2 * place_of_result(a, b, upper, k2);
                if constexpr (lower == a) {
                    store<2>(first, x.v);
                } else if constexpr (coprime) {
                    store<2>(first, x.v);
                    store_high(out + 2 * place_of_result(a, b, lower, k2), x.v);
                } else {
                    store(first, x.v);
                }
            });
    });
}

} // namespace ork::dft
