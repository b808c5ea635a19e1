// SPDX-License-Identifier: MIT
// Real blocks of a small fixed order against one vector. A block's values are taken as they lie in memory, register
// after register, each against the elements of x that belong to its lanes; what goes to the same row is added up at the
// end of the block row.
#pragma once

#include <algorithm>
#include <utility>

#include "spblas/bsr.h"
#include "spblas/csr.h"

namespace ork::spblas::bsr {

// Lanes by their numbers in consecutive registers.
template <int i0, int i1>
inline Vec<double> pick(const Vec<double>* p)
{
    const __m128d a = p[i0 / 2].v, b = p[i1 / 2].v;
    return {__builtin_shufflevector(a, b, i0 % 2, 2 + i1 % 2)};
}
template <int i0, int i1, int i2, int i3>
inline Vec<float> pick(const Vec<float>* p)
{
    const __m128 a = p[i0 / 4].v, b = p[i1 / 4].v, c = p[i2 / 4].v, d = p[i3 / 4].v;
    if constexpr (i0 / 4 == i1 / 4 && i2 / 4 == i3 / 4) {
        return {__builtin_shufflevector(a, c, i0 % 4, i1 % 4, 4 + i2 % 4, 4 + i3 % 4)};
    } else {
        const __m128 low = __builtin_shufflevector(a, b, i0 % 4, 4 + i1 % 4, i0 % 4, 4 + i1 % 4);
        const __m128 high = __builtin_shufflevector(c, d, i2 % 4, 4 + i3 % 4, i2 % 4, 4 + i3 % 4);
        return {_mm_movelh_ps(low, high)};
    }
}

// The first 3 elements, the last one repeated.
template <int width, class T>
inline Vec<T> load_first(const T* p)
{
    if constexpr (width == 3)
        return {_mm_shuffle_ps(load_low(p).v, _mm_load_ss(p + 2), 0x04)};
    else
        return load<width>(p);
}
template <int width, class T>
inline void store_first(T* p, Vec<T> a)
{
    if constexpr (width == 3) {
        store<2>(p, a);
        _mm_store_ss(p + 2, _mm_movehl_ps(a.v, a.v));
    } else {
        store<width>(p, a);
    }
}

template <int lb, class T>
struct SmallBlock {
    static constexpr int lanes = Vec<T>::lanes, size = lb * lb, registers = size / lanes;
    static constexpr bool odd = size % lanes != 0; // the last value is in no register of its own
    static_assert(size % lanes <= 1);
    static constexpr int outputs = (lb + lanes - 1) / lanes;

    // x by the lanes of a block: value f of a block by rows belongs to x[f % lb], by columns to x[f / lb].
    template <bool by_rows, int f>
    static Vec<T> factor(const T* x)
    {
        constexpr auto from = [](int i) { return by_rows ? (f + i) % lb : (f + i) / lb; };
        if constexpr (from(lanes - 1) == from(0) + lanes - 1 && from(1) == from(0) + 1) return load(x + from(0));
        if constexpr (from(lanes - 1) == from(0) && from(1) == from(0)) return broadcast(x[from(0)]);
        return lanes_of<by_rows, f>(x, std::make_integer_sequence<int, lanes>());
    }
    template <bool by_rows, int f, int... i>
    static Vec<T> lanes_of(const T* x, std::integer_sequence<int, i...>)
    {
        Vec<T> all[outputs];
#pragma GCC unroll 2
        for (int v = 0; v < outputs - 1; ++v) all[v] = load(x + v * lanes);
        all[outputs - 1] = load_first<lb - (outputs - 1) * lanes>(x + (outputs - 1) * lanes);
        return pick<(by_rows ? (f + i) % lb : (f + i) / lb)...>(all);
    }

    // Products of all values of a block, and their sums over blocks.
    struct Products {
        Vec<T> v[registers + odd];

        template <bool by_rows, bool first, int... q>
        void take(const T* block, const T* x, std::integer_sequence<int, q...>)
        {
            if constexpr (first)
                ((v[q] = load(block + q * lanes) * factor<by_rows, q * lanes>(x)), ...);
            else
                ((v[q] = v[q] + load(block + q * lanes) * factor<by_rows, q * lanes>(x)), ...);
            if constexpr (odd) {
                const T last = block[size - 1] * x[lb - 1];
                v[registers] = broadcast(first ? last : lane(v[registers], 0) + last);
            }
        }
        template <bool by_rows, bool first>
        void take(const T* block, const T* x)
        {
            take<by_rows, first>(block, x, std::make_integer_sequence<int, registers>());
        }

        // What goes to rows w * lanes ..; lanes beyond the last row repeat it.
        template <bool by_rows, int w, int term, int... i>
        Vec<T> terms(std::integer_sequence<int, i...>) const
        {
            constexpr auto from = [](int lane) {
                const int row = std::min(w * lanes + lane, lb - 1);
                return by_rows ? row * lb + term : term * lb + row;
            };
            return pick<from(i)...>(v);
        }
        template <bool by_rows, int w, int... term>
        Vec<T> rows(std::integer_sequence<int, term...>) const
        {
            return (terms<by_rows, w, term>(std::make_integer_sequence<int, lanes>()) + ...);
        }
        template <bool by_rows, int w>
        Vec<T> rows() const
        {
            return rows<by_rows, w>(std::make_integer_sequence<int, lb>());
        }
    };

    template <int w>
    static void update(T* y, T alpha, T beta, Vec<T> sum)
    {
        constexpr int width = std::min(lanes, lb - w * lanes);
        const Vec<T> scaled = broadcast(alpha) * sum;
        T* to = y + w * lanes;
        store_first<width>(to, beta == T{} ? scaled : load_first<width>(to) * broadcast(beta) + scaled);
    }
    template <bool by_rows>
    static void update(T* y, T alpha, T beta, const Products& p)
    {
        update<0>(y, alpha, beta, p.template rows<by_rows, 0>());
        if constexpr (outputs == 2) update<1>(y, alpha, beta, p.template rows<by_rows, 1>());
    }
};

template <int lb, bool by_rows, bool whole, class Int, class T>
[[gnu::noinline]] void direct_small(const BlockTask<Int, T>& t, std::int64_t first, std::int64_t last)
{
    using Small = SmallBlock<lb, T>;
    const T *val = t.val, *x = counted_from(t.base * lb, t.x);
    const Int* indx = t.indx;
    for (std::int64_t i = first; i < last; ++i) {
        const Columns columns = t.columns(i);
        typename Small::Products sum{};
        for (std::int64_t k = t.first(i), end = t.last(i); k < end; ++k)
            if (whole || columns.have(t.column(k)))
                sum.template take<by_rows, false>(val + k * lb * lb, x + std::int64_t{indx[k]} * lb);
        Small::template update<by_rows>(t.y + i * lb, t.alpha, t.beta, sum);
    }
}

template <int lb, bool by_rows, class Int, class T>
[[gnu::noinline]] void mirrored_small(const BlockTask<Int, T>& t, std::int64_t first, std::int64_t last)
{
    using Small = SmallBlock<lb, T>;
    for (std::int64_t i = first; i < last; ++i) {
        const Columns columns = t.columns(i);
        T x[lb];
#pragma GCC unroll 4
        for (int r = 0; r < lb; ++r) x[r] = t.alpha_mirrored * t.x[i * lb + r];
        for (std::int64_t k = t.first(i), end = t.last(i); k < end; ++k) {
            const std::int64_t j = t.column(k);
            if (!columns.have(j)) continue;
            typename Small::Products product;
            product.template take<!by_rows, true>(t.val + k * lb * lb, x);
            Small::template update<!by_rows>(t.y + j * lb, T(1), T(1), product);
        }
    }
}

} // namespace ork::spblas::bsr
