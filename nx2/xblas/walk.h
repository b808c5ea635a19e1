// SPDX-License-Identifier: MIT
// Terms added to a block of sums, one after the other in each sum. Four registers are on their way at once: that covers
// the 9 dependent additions of an extra-precise step.
#pragma once

#include "xblas/lanes.h"
#include "xblas/sums.h"

namespace ork::xblas {

using Int = std::int64_t;

constexpr int most_registers = 4;
template <class Sum>
inline constexpr int block_size = most_registers* Sum::outputs;

// Sum k of a block takes a[k][t * a_step] * x[k][t * x_step], t = 0 .. count - 1.
template <class Sum>
struct Terms {
    using T = typename Sum::Element;
    const T* a[block_size<Sum>];
    Int a_step;
    const T* x[block_size<Sum>];
    Int x_step;
    Int count;
    bool conjugate; // A's elements
};

// Where the elements of one term are: side by side; anywhere; and in both cases one x for all, or one for each sum.
enum class Layout { adjacent, apart, own_x };

// A block's piece of a column is a cache line or two, which nobody fetches ahead. Its end is asked for: the next blocks
// begin there. Of a matrix in memory (n = 2000) that makes 660 of 510 million terms a second, 8 columns ahead 620, and
// nothing worse in cache. The address may be anywhere.
template <class T>
inline void ahead(const T* p, Int offset)
{
    const auto address = reinterpret_cast<std::uintptr_t>(p) + static_cast<std::uintptr_t>(offset) * sizeof(T);
    _mm_prefetch(reinterpret_cast<const char*>(address), _MM_HINT_T0);
}

template <Layout layout, int registers, class Sum>
[[gnu::noinline]] void add_terms(Sum* sums, const Terms<Sum>& terms)
{
    using T = typename Sum::Element;
    using W = typename Sum::Work;
    constexpr int outputs = Sum::outputs;
    Sum s[registers];
#pragma GCC unroll 4
    for (int r = 0; r < registers; ++r) s[r] = sums[r];
    const bool conjugate = terms.conjugate;
    Int at = 0, x_at = 0;
    for (Int t = 0; t < terms.count; ++t, at += terms.a_step, x_at += terms.x_step) {
        typename Sum::Factor x(repeated<W>(terms.x[0] + x_at), conjugate);
        if constexpr (layout == Layout::adjacent) ahead(terms.a[0], at + 32 * terms.a_step + registers * outputs - 1);
#pragma GCC unroll 4
        for (int r = 0; r < registers; ++r) {
            if constexpr (layout == Layout::own_x)
                x = typename Sum::Factor(gathered<W>(terms.x + r * outputs, x_at), conjugate);
            if constexpr (std::is_same_v<T, Complex<double>>)
                s[r].add(Operand<T, W>(terms.a[r] + at), x);
            else if constexpr (layout == Layout::adjacent)
                s[r].add(Operand<T, W>(adjacent<W>(terms.a[0] + r * outputs + at)), x);
            else
                s[r].add(Operand<T, W>(gathered<W>(terms.a + r * outputs, at)), x);
        }
    }
#pragma GCC unroll 4
    for (int r = 0; r < registers; ++r) sums[r] = s[r];
}

template <Layout layout, class Sum>
inline void add_terms(int registers, Sum* sums, const Terms<Sum>& terms)
{
    switch (registers) {
    case 1:
        return add_terms<layout, 1>(sums, terms);
    case 2:
        return add_terms<layout, 2>(sums, terms);
    case 3:
        return add_terms<layout, 3>(sums, terms);
    default:
        return add_terms<layout, 4>(sums, terms);
    }
}

} // namespace ork::xblas
