// SPDX-License-Identifier: MIT
// dft<n>: X[k] = sum over j of x[j] exp(-2 pi i j k / n) for small n as straight-line code, over any kind of element.
//
// An element E is one complex number or several independent ones in registers, with
//   E::Real, a + b, a - b, a * Real
//   quarter(a)         -i a, of a type Q that E + Q, E - Q and Q * Real take: often no instruction until then. Products
//                      Q * Real have a type of their own, with sums and differences, and E + and - takes it.
//   twiddled<n, k>(a)  exp(-2 pi i k / n) a
//   E::Multiplier, Q::Multiplier   constants in memory as a * and Q * take them, constructible from a Real
//   E::outputs_at_once of a transform of large prime length
// and may have E::twiddles_from_memory = true with twiddled<n, k>(const E*).
#pragma once

#include "dft/primes.h"
#include "dft/roots.h"
#include "dft/unrolled.h"

namespace ork::dft {

constexpr int gcd(int a, int b) { return b == 0 ? a : gcd(b, a % b); }

// n = a b: the radix a of the first stage, or 1 for a prime. Coprime factors, which need no twiddles, where n has them.
constexpr int first_radix(int n, bool memory_between)
{
    if (n == 16) return 2; // of pairs 2 x 8 is 8 % faster than 4 x 4; of split numbers 1 % slower
    if (n == 32 && memory_between) return 8;

    int best = 1;
    bool best_coprime = false;
    for (int a = 2; a * 2 <= n; ++a) {
        if (n % a != 0) continue;
        const int b = n / a;
        const bool coprime = gcd(a, b) == 1;
        const auto distance = [n](int f) { return f * f > n ? f * f - n : n - f * f; };
        if ((coprime && !best_coprime) ||
            (coprime == best_coprime && a <= b && (best == 1 || distance(a) < distance(best))))
            best = a, best_coprime = coprime;
    }
    return best;
}

// An element may say that it twiddles numbers in memory more cheaply than numbers in registers. The two stages of long
// transforms without coprime factors then meet there (shorter ones lose by it).
template <class E>
constexpr bool memory_between(int n)
{
    return n >= 32 && requires { requires E::twiddles_from_memory; };
}

// Columns of a elements, then rows of b. With coprime a and b, j = b j1 + a j2 and k = k1 modulo a, k2 modulo b (Good,
// Thomas); otherwise j = b j1 + j2, k = k1 + a k2, and exp(-2 pi i j2 k1 / n) between the two.
constexpr int place_of_input(int a, int b, int j1, int j2)
{
    return (b * j1 + (gcd(a, b) == 1 ? a : 1) * j2) % (a * b);
}
constexpr int place_of_result(int a, int b, int k1, int k2)
{
    if (gcd(a, b) != 1) return k1 + a * k2;
    int k = k1;
    while (k % b != k2) k += a;
    return k;
}

// Rows whose twiddles are 1, w, w^2, w^3 with w = exp(-2 pi i / 8).
constexpr bool steps_of_an_eighth(int a, int b, int k1) { return b == 4 && a % 2 == 0 && 2 * k1 == a; }

// The transform of x[0], w x[1], w^2 x[2], w^3 x[3], w = exp(-2 pi i / 8). With h = sqrt(1/2) and d = x[1] - x[3],
// s = x[1] + x[3]: w x[1] + w^3 x[3] = h d - i h s, -i (w x[1] - w^3 x[3]) = -i h s - h d.
template <class E, class Store>
[[gnu::always_inline]] inline void odd_half_of_8(const E (&x)[4], Store store)
{
    using R = typename E::Real;
    constexpr R h = root<R, 8, 1>.cos;
    const auto turned = quarter(x[2]);
    const E even = x[0] + turned, even_less = x[0] - turned;
    const auto across = quarter(x[1] + x[3]) * h;
    const E along = (x[1] - x[3]) * h;
    const E odd = along + across, odd_less = along - across; // the latter negated
    store(Index<0>{}, even + odd);
    store(Index<2>{}, even - odd);
    store(Index<1>{}, even_less - odd_less);
    store(Index<3>{}, even_less + odd_less);
}

// load(Index<j>{}) gives x[j], each j once and as late as the order of the sums lets it; store(Index<k>{}, X[k]) takes
// the results, each k once. All loads come before the first store.
template <int n, class E, class Load, class Store>
[[gnu::always_inline]] inline void dft(Load load, Store store)
{
    using R = typename E::Real;
    if constexpr (n == 1) {
        store(Index<0>{}, load(Index<0>{}));
    } else if constexpr (n == 2) {
        const E a = load(Index<0>{}), b = load(Index<1>{});
        store(Index<0>{}, a + b);
        store(Index<1>{}, a - b);
    } else if constexpr (n == 3) {
        const E b = load(Index<1>{}), c = load(Index<2>{}), a = load(Index<0>{});
        const E sum = b + c;
        const auto turned = quarter(b - c) * root<R, 3, 1>.sin;
        const E centre = a - sum * R(0.5);
        store(Index<0>{}, a + sum);
        store(Index<1>{}, centre + turned);
        store(Index<2>{}, centre - turned);
    } else if constexpr (n == 4) {
        const E a = load(Index<0>{}), c = load(Index<2>{});
        const E even = a + c, even_less = a - c;
        const E b = load(Index<1>{}), d = load(Index<3>{});
        const E odd = b + d;
        const auto odd_less = quarter(b - d);
        store(Index<0>{}, even + odd);
        store(Index<2>{}, even - odd);
        store(Index<1>{}, even_less + odd_less);
        store(Index<3>{}, even_less - odd_less);
    } else if constexpr (n == 5) {
        // (cos 72 + cos 144)/2 = -1/4, (cos 72 - cos 144)/2 = sqrt(5)/4.
        constexpr R half_difference = root_of_unity<long double>(1, 5).cos + 0.25L;
        const E x1 = load(Index<1>{}), x4 = load(Index<4>{}), x2 = load(Index<2>{}), x3 = load(Index<3>{});
        const E sum1 = x1 + x4, sum2 = x2 + x3, sum = sum1 + sum2;
        const E spread = (sum1 - sum2) * half_difference;
        const auto less1 = quarter(x1 - x4), less2 = quarter(x2 - x3);
        const E first = load(Index<0>{});
        const E centre = first - sum * R(0.25);
        store(Index<0>{}, first + sum);
        const E a1 = centre + spread, a2 = centre - spread;
        const auto b1 = less1 * root<R, 5, 1>.sin + less2 * root<R, 5, 2>.sin;
        const auto b2 = less1 * root<R, 5, 2>.sin - less2 * root<R, 5, 1>.sin;
        store(Index<1>{}, a1 + b1);
        store(Index<4>{}, a1 - b1);
        store(Index<2>{}, a2 + b2);
        store(Index<3>{}, a2 - b2);
    } else if constexpr (n == 8) {
        E sum[4], less[4];
        unrolled<4>([&](auto j) ORK_INLINE_LAMBDA {
            const E a = load(j), b = load(Index<j + 4>{});
            sum[j] = a + b, less[j] = a - b;
        });
        dft<4, E>([&](auto j) ORK_INLINE_LAMBDA { return sum[j]; },
                  [&](auto k, E x) ORK_INLINE_LAMBDA { store(Index<2 * k>{}, x); });
        odd_half_of_8(less, [&](auto k, E x) ORK_INLINE_LAMBDA { store(Index<2 * k + 1>{}, x); });
    } else if constexpr (constexpr int a = first_radix(n, memory_between<E>(n)); a > 1) {
        constexpr int b = n / a;
        constexpr bool coprime = gcd(a, b) == 1, late = !coprime && memory_between<E>(n);
        E table[a][b];
        unrolled<b>([&](auto j2) ORK_INLINE_LAMBDA {
            dft<a, E>([&](auto j1) ORK_INLINE_LAMBDA { return load(Index<place_of_input(a, b, j1, j2)>{}); },
                      [&](auto k1, E x) ORK_INLINE_LAMBDA {
                          constexpr int turn = coprime || late || steps_of_an_eighth(a, b, k1) ? 0 : j2 * k1;
                          table[k1][j2] = twiddled<n, turn>(x);
                      });
        });
        if constexpr (late) asm("" : "+m"(table));
        unrolled<a>([&](auto k1) ORK_INLINE_LAMBDA {
            const auto in_place = [&](auto k2, E x)
                                      ORK_INLINE_LAMBDA { store(Index<place_of_result(a, b, k1, k2)>{}, x); };
            if constexpr (steps_of_an_eighth(a, b, k1))
                odd_half_of_8(table[k1], in_place);
            else
                dft<b, E>(
                    [&](auto j2) ORK_INLINE_LAMBDA {
                        if constexpr (late)
                            return twiddled<n, j2 * k1>(&table[k1][j2]);
                        else
                            return table[k1][j2];
                    },
                    in_place);
        });
    } else if constexpr (n <= 13) {
        prime_dft<n, E>(load, store);
    } else {
        large_prime_dft<n, E>(load, store);
    }
}

} // namespace ork::dft
