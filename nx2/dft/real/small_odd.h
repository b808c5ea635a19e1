// SPDX-License-Identifier: MIT
// Straight-line real transforms of odd lengths.
//
// A prime p: with s[j] = x[j] + x[p-j] and d[j] = x[j] - x[p-j],  X[k] = (x[0] + sum of s[j] cos, - sum of d[j] sin) of
// 2 pi j k / p over j = 1 ... (p-1)/2, both parts in one register. Backward likewise from 2 Re X[k] and 2 Im X[k].
//
// n = a b: columns of a real numbers in twos as the parts of one complex column, row 0 real, rows k1 = 1 ... (a-1)/2
// complex; of each two conjugate outputs the one with k <= n/2 is kept.
#pragma once

#include "dft/butterfly.h"
#include "dft/pair.h"
#include "dft/real/half_length.h"

namespace ork::dft {

inline Vec<double> together(double re, double im) { return {_mm_setr_pd(re, im)}; }
inline Vec<float> together(float re, float im) { return {_mm_setr_ps(re, im, 0, 0)}; }
template <class R>
[[gnu::always_inline]] inline Vec<R> load_number(const R* p)
{
    if constexpr (sizeof(R) == 8)
        return load(p);
    else
        return load_low(p);
}
// The columns' length a of n = a b: the largest up to the root of n that is coprime to b, which needs no twiddles, or
// else the largest; 1 for a prime.
constexpr int column_length(int n)
{
    int best = 1;
    for (int a = 2; a * a <= n; ++a)
        if (n % a == 0 && (gcd(a, n / a) == 1 || gcd(best, n / best) != 1 || best == 1)) best = a;
    return best;
}

// place_of_result as a table: the compiler does not fold its loop where k2 is no constant of the language.
template <int a, int b>
struct Places {
    struct Table {
        int at[a][b];
    };
    static constexpr Table table = [] {
        Table all{};
        for (int k1 = 0; k1 < a; ++k1)
            for (int k2 = 0; k2 < b; ++k2) all.at[k1][k2] = place_of_result(a, b, k1, k2);
        return all;
    }();
};
template <int a, int b>
[[gnu::always_inline]] constexpr int place(int k1, int k2)
{
    return Places<a, b>::table.at[k1][k2];
}

// sin and cos of 2 pi k / p.
template <class R, int p, class = std::make_integer_sequence<int, p>>
struct PrimeRoots;
template <class R, int p, int... k>
struct PrimeRoots<R, p, std::integer_sequence<int, k...>> {
    alignas(16) static constexpr R at[][2] = {{root<R, p, k>.sin, root<R, p, k>.cos}...};
};

// (sum of the first numbers of v[j] times sin, sum of the second times cos) of 2 pi j k / p, j = 1 ... (p-1)/2, with
// two sums of every other j.
template <int p, class R>
[[gnu::always_inline]] inline Vec<R> prime_sums(const Vec<R>* v, int k)
{
    using Roots = PrimeRoots<R, p>;
    Vec<R> even = v[1] * load_number(Roots::at[k]);
    if constexpr (p == 3) return even;
    int angle = k < p - k ? 2 * k : 2 * k - p;
    Vec<R> odd = v[2] * load_number(Roots::at[angle]);
#pragma GCC unroll 32
    for (int j = 3; j <= p / 2; ++j) {
        angle += k;
        if (angle >= p) angle -= p;
        Vec<R>& sum = j % 2 != 0 ? even : odd;
        sum = sum + v[j] * load_number(Roots::at[angle]);
    }
    return even + odd;
}

template <int from, int to, class Body>
[[gnu::always_inline]] inline void each(Body body)
{
    if constexpr (to <= 7) // short loops unrolled with their constants, long ones as loops
        unrolled<to - from>([&](auto i) ORK_INLINE_LAMBDA { body(from + i); });
    else
#pragma GCC unroll 1
        for (int i = from; i < to; ++i) body(i);
}

// put(k, (re, im)) takes X[k], 0 <= k <= n/2.
template <int n, class R, class Put>
[[gnu::always_inline]] inline void odd_real_dft(const R* x, Put put)
{
    constexpr int a = column_length(n), b = n / a, h = n / 2;
    if constexpr (n == 1) {
        put(0, together(x[0], R(0)));
    } else if constexpr (a == 1) {
        Vec<R> v[h + 1]; // -d, s
        R all = x[0];
        const R first = x[0];
        each<1, h + 1>([&](int j) ORK_INLINE_LAMBDA {
            v[j] = alternating_sum(broadcast(x[n - j]), broadcast(x[j]));
            all += x[j] + x[n - j];
        });
        each<1, h + 1>([&](int k)
                           ORK_INLINE_LAMBDA { put(k, exchanged(prime_sums<n>(v, k) + together(R(0), first))); });
        put(0, together(all, R(0)));
    } else {
        using E = Pair<R, Direction::forward>;
        constexpr bool coprime = gcd(a, b) == 1;
        E table[a / 2 + 1][b];
        alignas(16) R row[b + 1];
        unrolled<b / 2 + 1>([&](auto u) ORK_INLINE_LAMBDA {
            constexpr int left = 2 * u, right = left + 1;
            E y[a];
            dft<a, E>(
                [&](auto j1) ORK_INLINE_LAMBDA {
                    const R re = x[place_of_input(a, b, j1, left)];
                    return E{together(re, right < b ? x[place_of_input(a, b, j1, right)] : R(0))};
                },
                [&](auto k1, E value) ORK_INLINE_LAMBDA { y[k1] = value; });
            store<2>(row + left, y[0].v);
            unrolled<a / 2>([&](auto i) ORK_INLINE_LAMBDA {
                constexpr int k1 = i + 1;
                if constexpr (right < b) {
                    const E mirror = {half_length::conjugate(y[a - k1].v)};
                    const E one = (y[k1] + mirror) * R(0.5), two = quarter(y[k1] - mirror) * R(0.5);
                    table[k1][left] = twiddled < n, coprime ? 0 : left * k1 > (one);
                    table[k1][right] = twiddled < n, coprime ? 0 : right * k1 > (two);
                } else {
                    table[k1][left] = twiddled < n, coprime ? 0 : left * k1 > (y[k1]);
                }
            });
        });
        const auto keep = [&](int k, Vec<R> value) ORK_INLINE_LAMBDA {
            if (k <= h)
                put(k, value);
            else
                put(n - k, half_length::conjugate(value));
        };
        odd_real_dft<b>(row, [&](int k2, Vec<R> value) ORK_INLINE_LAMBDA { keep(place<a, b>(0, k2), value); });
        unrolled<a / 2>([&](auto i) ORK_INLINE_LAMBDA {
            constexpr int k1 = i + 1;
            dft<b, E>([&](auto j2) ORK_INLINE_LAMBDA { return table[k1][j2]; },
                      [&](auto k2, E value) ORK_INLINE_LAMBDA { keep(place<a, b>(k1, k2), value.v); });
        });
    }
}

// get(k) gives X[k], 0 <= k <= n/2, that of k = 0 with an imaginary part of zero.
template <int n, class R, class Get>
[[gnu::always_inline]] inline void odd_real_inverse(Get get, R* x)
{
    constexpr int a = column_length(n), b = n / a, h = n / 2;
    if constexpr (n == 1) {
        x[0] = lane(get(0), 0);
    } else if constexpr (a == 1) {
        Vec<R> v[h + 1]; // 2 im, 2 re
        const R first = lane(get(0), 0);
        Vec<R> all = together(R(0), first);
        each<1, h + 1>([&](int k) ORK_INLINE_LAMBDA {
            const Vec<R> value = exchanged(get(k));
            v[k] = value + value;
            all = all + v[k];
        });
        x[0] = lane(all, 1);
        each<1, h + 1>([&](int j) ORK_INLINE_LAMBDA {
            const Vec<R> sums = prime_sums<n>(v, j);
            const R sine = lane(sums, 0), cosine = first + lane(sums, 1);
            x[j] = cosine - sine, x[n - j] = cosine + sine;
        });
    } else {
        using E = Pair<R, Direction::backward>;
        constexpr bool coprime = gcd(a, b) == 1;
        E table[a / 2 + 1][b];
        R row[b];
        const auto number = [&](int k)
                                ORK_INLINE_LAMBDA { return k <= h ? get(k) : half_length::conjugate(get(n - k)); };
        unrolled<a / 2>([&](auto i) ORK_INLINE_LAMBDA {
            constexpr int k1 = i + 1;
            dft<b, E>([&](auto k2) ORK_INLINE_LAMBDA { return E{number(place<a, b>(k1, k2))}; },
                      [&](auto j2, E value)
                          ORK_INLINE_LAMBDA { table[k1][j2] = twiddled < n, coprime ? 0 : j2 * k1 > (value); });
        });
        odd_real_inverse<b>([&](int k2) ORK_INLINE_LAMBDA { return number(place<a, b>(0, k2)); }, row);
        unrolled<b / 2 + 1>([&](auto u) ORK_INLINE_LAMBDA {
            constexpr int left = 2 * u, right = left + 1;
            E y[a];
            y[0] = {together(row[left], right < b ? row[right % b] : R(0))};
            unrolled<a / 2>([&](auto i) ORK_INLINE_LAMBDA {
                constexpr int k1 = i + 1;
                if constexpr (right < b) {
                    const auto turned = quarter(table[k1][right]); // i times it
                    y[k1] = table[k1][left] + turned;
                    y[a - k1] = {half_length::conjugate((table[k1][left] - turned).v)};
                } else {
                    y[k1] = table[k1][left];
                    y[a - k1] = {half_length::conjugate(table[k1][left].v)};
                }
            });
            dft<a, E>([&](auto k1) ORK_INLINE_LAMBDA { return y[k1]; },
                      [&](auto j1, E value) ORK_INLINE_LAMBDA {
                          x[place_of_input(a, b, j1, left)] = lane(value.v, 0);
                          if constexpr (right < b) x[place_of_input(a, b, j1, right)] = lane(value.v, 1);
                      });
        });
    }
}

} // namespace ork::dft
