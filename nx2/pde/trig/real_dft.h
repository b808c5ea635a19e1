// SPDX-License-Identifier: MIT
// Straight-line Fourier transforms of real numbers, of as many vectors side by side as a register has lanes: the split
// radix decimated in frequency (Sorensen, Jones, Heideman and Burrus, Real-valued fast Fourier transform algorithms,
// 1987).
//
//     X[2k]   from the n/2 numbers x[j] + x[j + n/2]
//     X[4k+3] from the n/4 numbers w^3j (x[j] - x[j + n/2] + i (x[j + n/4] - x[j + 3n/4])), w = exp(-2 pi i / n)
#pragma once

#include "dft/butterfly.h"
#include "dft/split.h"

namespace ork::pde {

// load(Index<j>{}) gives x[j], all of them before the first store; store(Index<k>{}, X[k]) takes one of each X[k] and
// X[n-k] = conj(X[k]), and X[0] and X[n/2] with any imaginary part. n is a power of two. upper_negated: x[j] for
// j >= n/2 is minus what load gives.
template <int n, bool upper_negated, class R, class Load, class Store>
[[gnu::always_inline]] inline void real_dft(Load load, Store store)
{
    using dft::Index, dft::Split;
    using V = Vec<R>;
    struct Both {
        V sum, difference;
    };
    const auto both = [&](auto j) ORK_INLINE_LAMBDA {
        const V a = load(j), b = load(Index<j + n / 2>{});
        return upper_negated ? Both{a - b, a + b} : Both{a + b, a - b};
    };
    if constexpr (n == 1) {
        store(Index<0>{}, Split<R>{load(Index<0>{}), {}});
    } else if constexpr (n == 2) {
        const Both x = both(Index<0>{});
        store(Index<0>{}, Split<R>{x.sum, {}});
        store(Index<1>{}, Split<R>{x.difference, {}});
    } else {
        V even[n / 2];
        Split<R> odd[n / 4];
        dft::unrolled<n / 4>([&](auto j) ORK_INLINE_LAMBDA {
            const Both x = both(j), y = both(Index<j + n / 4>{});
            even[j] = x.sum, even[j + n / 4] = y.sum;
            odd[j] = dft::twiddled<n, 3 * j>(Split<R>{x.difference, y.difference});
        });
        dft::dft<n / 4, Split<R>>([&](auto j) ORK_INLINE_LAMBDA { return odd[j]; },
                                  [&](auto k, Split<R> x) ORK_INLINE_LAMBDA { store(Index<4 * k + 3>{}, x); });
        real_dft<n / 2, false, R>([&](auto j) ORK_INLINE_LAMBDA { return even[j]; },
                                  [&](auto k, Split<R> x) ORK_INLINE_LAMBDA { store(Index<2 * k>{}, x); });
    }
}

} // namespace ork::pde
