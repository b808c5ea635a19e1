// SPDX-License-Identifier: MIT
// Transforms of prime length, over elements as butterfly.h describes them.
#pragma once

#include <cstdint>
#include <utility>

#include "dft/roots.h"
#include "dft/unrolled.h"

namespace ork::dft {

// The i-th power, modulo p, of a generator of the residues of a prime p but 0: 1 for i = 0; -1 for i = (p - 1)/2.
constexpr int power(int p, int i)
{
    const auto raised = [p](int g, int exponent) {
        int x = 1;
        while (exponent-- > 0) x = x * g % p;
        return x;
    };
    int g = 2;
    for (int e = 1; e < p - 1; ++e)
        if (raised(g, e) == 1) ++g, e = 0;
    return raised(g, i);
}

// Half the sum, or for sign -1 the difference, of the cosines for i and i + (p - 1)/4.
consteval long double cosine_of_halves(int p, int i, int sign)
{
    return (root_of_unity<long double>(power(p, i), p).cos +
            sign * root_of_unity<long double>(power(p, i + (p - 1) / 4), p).cos) /
           2;
}

// X = A + B and X' = A - B for the pairs of outputs k, p - k of a prime p: A = x[0] + sum of cos(2 pi j k / p) (x[j] +
// x[p - j]) and B = -i times the sum of sin(2 pi j k / p) (x[j] - x[p - j]), over (p - 1)/2 values of j. With j = g^i
// and k = g^u the cosine depends on i + u alone and has the period m = (p - 1)/2; for even m sums and differences of
// terms m/2 apart need half the products.
template <int p, class E, class Load, class Store>
[[gnu::always_inline]] inline void prime_dft(Load load, Store store)
{
    constexpr int m = (p - 1) / 2, half = m / 2;
    using R = typename E::Real;
    using Q = decltype(quarter(std::declval<E>()));
    E sum[m];
    Q difference[m];
    const E first = load(Index<0>{});
    unrolled<m>([&](auto i) ORK_INLINE_LAMBDA {
        constexpr int j = power(p, i);
        const E a = load(Index<j>{}), b = load(Index<p - j>{});
        sum[i] = a + b;
        difference[i] = quarter(a - b);
    });
    E cosines[m];
    E all = first;
    if constexpr (m % 2 == 0) {
        E plus[half], minus[half];
        unrolled<half>([&](auto i) ORK_INLINE_LAMBDA {
            plus[i] = sum[i] + sum[i + half];
            minus[i] = sum[i] - sum[i + half];
            all = all + plus[i];
        });
        unrolled<half>([&](auto u) ORK_INLINE_LAMBDA {
            E a = first, b;
            unrolled<half>([&](auto i) ORK_INLINE_LAMBDA {
                constexpr R f = cosine_of_halves(p, i + u, 1), g = cosine_of_halves(p, i + u, -1);
                a = a + plus[i] * f;
                b = i == 0 ? minus[i] * g : b + minus[i] * g;
            });
            cosines[u] = a + b;
            cosines[u + half] = a - b;
        });
    } else {
        unrolled<m>([&](auto i) ORK_INLINE_LAMBDA { all = all + sum[i]; });
        unrolled<m>([&](auto u) ORK_INLINE_LAMBDA {
            cosines[u] = first;
            unrolled<m>([&](auto i)
                            ORK_INLINE_LAMBDA { cosines[u] = cosines[u] + sum[i] * root<R, p, power(p, i + u)>.cos; });
        });
    }
    store(Index<0>{}, all);
    unrolled<m>([&](auto u) ORK_INLINE_LAMBDA {
        constexpr int k = power(p, u);
        auto sines = difference[0] * root<R, p, k>.sin;
        unrolled<m - 1>([&](auto i) ORK_INLINE_LAMBDA {
            constexpr int angle = power(p, i + 1 + u);
            if constexpr (2 * angle < p)
                sines = sines + difference[i + 1] * root<R, p, angle>.sin;
            else
                sines = sines - difference[i + 1] * root<R, p, p - angle>.sin;
        });
        store(Index<k>{}, cosines[u] + sines);
        store(Index<p - k>{}, cosines[u] - sines);
    });
}

// The same with loops over j inside, for a group of outputs at a time: large primes would be tens of kilobytes of code.
template <int p, class E>
struct PrimeTable {
    static constexpr int m = (p - 1) / 2, groups = (m + E::outputs_at_once - 1) / E::outputs_at_once;
    using Q = decltype(quarter(std::declval<E>()));
    static constexpr int begin(int group) { return m * group / groups; } // first output of a group, less 1

    struct Factors {
        typename E::Multiplier cos;
        typename Q::Multiplier sin;
    };
    template <int... angle>
    struct List {
        static constexpr Factors by_angle[] = {{typename E::Multiplier(root<typename E::Real, p, angle>.cos),
                                                typename Q::Multiplier(root<typename E::Real, p, angle>.sin)}...};
    };
    template <int... angle>
    static const Factors* factors(std::integer_sequence<int, angle...>)
    {
        return List<angle...>::by_angle;
    }
    static const Factors* factors() { return factors(std::make_integer_sequence<int, p>{}); }

    // Group by group, within it all j, for each the outputs k of the group: where in bytes j k modulo p stands.
    struct Offsets {
        std::uint16_t list[m * m];
        constexpr Offsets() : list()
        {
            int i = 0;
            for (int group = 0; group < groups; ++group)
                for (int j = 1; j <= m; ++j)
                    for (int k = begin(group) + 1; k <= begin(group + 1); ++k)
                        list[i++] = static_cast<std::uint16_t>(j * k % p * sizeof(Factors));
        }
    };
    static constexpr Offsets offsets{};
};

template <int p, class E, class Load, class Store>
[[gnu::always_inline]] inline void large_prime_dft(Load load, Store store)
{
    using Table = PrimeTable<p, E>;
    constexpr int m = Table::m;
    E sum[m];
    typename Table::Q difference[m];
    const E first = load(Index<0>{});
    E all = first;
    unrolled<m>([&](auto j) ORK_INLINE_LAMBDA {
        const E a = load(Index<j + 1>{}), b = load(Index<p - 1 - j>{});
        sum[j] = a + b;
        difference[j] = quarter(a - b);
        all = all + sum[j];
    });
    store(Index<0>{}, all);
    const auto* const factors = Table::factors();
    const std::uint16_t* offset = Table::offsets.list;
    const auto at = [=](std::uint16_t bytes) ORK_INLINE_LAMBDA -> const typename Table::Factors& {
        return *reinterpret_cast<const typename Table::Factors*>(reinterpret_cast<const char*>(factors) + bytes);
    };
    unrolled<Table::groups>([&](auto group) ORK_INLINE_LAMBDA {
        constexpr int begin = Table::begin(group), outputs = Table::begin(group + 1) - begin;
        E a[outputs];
        decltype(difference[0] * factors->sin) b[outputs];
        unrolled<outputs>([&](auto k) ORK_INLINE_LAMBDA {
            a[k] = first + sum[0] * at(offset[k]).cos;
            b[k] = difference[0] * at(offset[k]).sin;
        });
        offset += outputs;
#pragma GCC unroll 1
        for (int j = 1; j < m; ++j, offset += outputs)
            unrolled<outputs>([&](auto k) ORK_INLINE_LAMBDA {
                const auto& by = at(offset[k]);
                a[k] = a[k] + sum[j] * by.cos;
                b[k] = b[k] + difference[j] * by.sin;
            });
        unrolled<outputs>([&](auto k) ORK_INLINE_LAMBDA {
            store(Index<begin + 1 + k>{}, a[k] + b[k]);
            store(Index<p - begin - 1 - k>{}, a[k] - b[k]);
        });
    });
}

} // namespace ork::dft
