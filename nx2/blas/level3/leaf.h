// SPDX-License-Identifier: MIT
// A triangle of order at most `leaf` against slices: a strip of a few registers of every slice at a time is brought
// into a buffer, where elements of different rows or columns of B stand in the lanes, and comes back when it is done.
// Strips of eight registers keep the adders busy through the latency of each step.
//
// Order: a solve subtracts coefficient(i, l) x_l from b_i one after another in the order in which the x_l become known,
// then multiplies with the inverse of the diagonal (it divides where that would overflow or lose digits); a product
// starts with the diagonal's and adds the others in that same order.
#pragma once

#include <utility>

#include "blas/divide.h"
#include "blas/gemm/direct_tile.h"
#include "blas/level3/triangular.h"

namespace ork::level3 {

using gemm::Element;

// c x.
template <class T>
inline Vec<T> times(Element<T> c, Vec<T> x)
{
    if constexpr (is_complex<T>)
        return {alternating_sum(c.re * x.v, exchanged(c.im * x.v))};
    else
        return c.x * x;
}

// sum + c x or sum - c x.
template <bool subtract, class T>
inline Vec<T> accumulate(Vec<T> sum, Element<T> c, Vec<T> x)
{
    const auto p = times(c, x);
    return Vec<T>{subtract ? reals(sum) - reals(p) : reals(sum) + reals(p)};
}

// The coefficients with slices counted in the order of the work, so that slice i needs slices 0 .. i - 1.
template <class T, bool conjugated>
struct Ordered {
    const T* first;
    Int i_step, l_step;

    Ordered(const T* first, Int i_step, Int l_step) : first(first), i_step(i_step), l_step(l_step) {}
    Ordered(const Coefficients<T>& t, Int n)
        : first(t.lower ? t.a : t.at(n - 1, n - 1)), i_step(t.lower ? t.i_stride : -t.i_stride),
          l_step(t.lower ? t.l_stride : -t.l_stride)
    {
    }
    Element<T> operator()(Int i, Int l) const
    {
        Element<T> e(first + i * i_step + l * l_step);
        if constexpr (conjugated) e.im = Vec<Real<T>>{} - e.im;
        return e;
    }
    T diagonal(Int i) const { return gemm::conjugate<conjugated>(first[i * (i_step + l_step)]); }
};

// Elements [from, from + width) of n slices: columns of B where they stand, or a copy, slice after slice.
template <class T, int registers>
struct Strip {
    static constexpr int lanes = Vec<T>::lanes, width = registers * lanes;
    alignas(16) T memory[leaf * width];
    T* first; // of the slice that the work starts with
    Int step; // from slice to slice of the work

    [[gnu::always_inline]] void get(Int slice, Vec<T> (&x)[registers]) const
    {
#pragma GCC unroll 8
        for (int r = 0; r < registers; ++r) x[r] = load<lanes>(first + slice * step + r * lanes);
    }
    [[gnu::always_inline]] void put(Int slice, const Vec<T> (&x)[registers])
    {
#pragma GCC unroll 8
        for (int r = 0; r < registers; ++r) store<lanes>(first + slice * step + r * lanes, x[r]);
    }

    void start(bool forward, Int n, T* slices, Int stride)
    {
        first = forward ? slices : slices + (n - 1) * stride;
        step = forward ? stride : -stride;
    }

    // Columns at such distances share a few sets of the first level of cache.
    static bool in_place(const Slices<T>& x, Int from)
    {
        return !x.rows && x.length - from >= width && x.ldb * sizeof(T) % 4096 != 0;
    }

    void fetch(bool forward, const Slices<T>& x, Int n, Int from)
    {
        if (in_place(x, from)) return start(forward, n, x.at(0, from), x.ldb);
        copy(x, n, from);
        start(forward, n, memory, width);
    }

    // Elements that do not exist repeat the last one.
    void copy(const Slices<T>& x, Int n, Int from)
    {
        const Int present = x.length - from;
        if (present < width) {
            for (Int i = 0; i < n; ++i)
                for (Int r = 0; r < width; ++r)
                    memory[i * width + r] = *x.at(i, from + (r < present ? r : present - 1));
        } else if (x.rows) {
            for (Int r = 0; r < width; r += lanes) {
                const T* column = x.at(0, from + r);
                T* to = memory + r;
                Int i = 0;
                for (; i + lanes <= n; i += lanes, column += lanes) {
                    Vec<T> square[lanes];
#pragma GCC unroll 4
                    for (int s = 0; s < lanes; ++s) square[s] = load<lanes>(column + s * x.ldb);
                    transpose(square);
#pragma GCC unroll 4
                    for (int s = 0; s < lanes; ++s) store_aligned(reals(to + (i + s) * width), reals(square[s]));
                }
                for (; i < n; ++i, ++column)
                    for (int s = 0; s < lanes; ++s) to[i * width + s] = column[s * x.ldb];
            }
        } else {
            for (Int i = 0; i < n; ++i)
#pragma GCC unroll 8
                for (int r = 0; r < width; r += lanes)
                    store_aligned(reals(memory + i * width + r), reals(load<lanes>(x.at(i, from) + r)));
        }
    }

    void bring_back(const Slices<T>& x, Int n, Int from) const
    {
        if (in_place(x, from)) return;
        const auto at = [&](Int i, Int r) -> Vec<T> { return {load_aligned(reals(memory + i * width + r))}; };
        const Int present = x.length - from;
        if (present < width) {
            for (Int i = 0; i < n; ++i)
                for (Int r = 0; r < present; ++r) *x.at(i, from + r) = memory[i * width + r];
        } else if (x.rows) {
            for (Int r = 0; r < width; r += lanes) {
                T* column = x.at(0, from + r);
                Int i = 0;
                for (; i + lanes <= n; i += lanes, column += lanes) {
                    Vec<T> square[lanes];
#pragma GCC unroll 4
                    for (int s = 0; s < lanes; ++s) square[s] = at(i + s, r);
                    transpose(square);
#pragma GCC unroll 4
                    for (int s = 0; s < lanes; ++s) store<lanes>(column + s * x.ldb, square[s]);
                }
                for (; i < n; ++i, ++column)
                    for (int s = 0; s < lanes; ++s) column[s * x.ldb] = memory[i * width + r + s];
            }
        } else {
            for (Int i = 0; i < n; ++i)
#pragma GCC unroll 8
                for (int r = 0; r < width; r += lanes) store<lanes>(x.at(i, from) + r, at(i, r));
        }
    }
};

// `count` slices from i on take their coefficients times the slices before, which stand at x, `step` apart.
template <bool subtract, int count, int registers, class I, class C, class T>
[[gnu::always_inline]] inline void accumulate_slices(const C& c, const T* x, Int step, I i,
                                                     Vec<T> (&sum)[count][registers])
{
    C at = c;
    at.first += i * c.i_step;
    for (Int l = 0; l < i; ++l, at.first += c.l_step, x += step)
#pragma GCC unroll 4
        for (int s = 0; s < count; ++s) {
            const Element<T> e = at(s, 0);
#pragma GCC unroll 8
            for (int r = 0; r < registers; ++r)
                sum[s][r] = accumulate<subtract>(sum[s][r], e, load<Vec<T>::lanes>(x + r * Vec<T>::lanes));
        }
}

// Rows of B in registers: squares of lanes x lanes elements are transposed on their way, so that `lanes` slices from i
// on stand in x, in the order of the work.
template <class T, int registers, bool forward>
struct Squares {
    static constexpr int lanes = Vec<T>::lanes;
    T* b; // element `from` of slice 0
    Int ldb, n;

    T* corner(Int i) const { return b + (forward ? i : n - i - lanes); }
    static constexpr int place(int s) { return forward ? s : lanes - 1 - s; }

    [[gnu::always_inline]] void get(Int i, Vec<T> (&x)[lanes][registers]) const
    {
        const T* column = corner(i);
#pragma GCC unroll 8
        for (int r = 0; r < registers; ++r) {
            Vec<T> square[lanes];
#pragma GCC unroll 4
            for (int s = 0; s < lanes; ++s) square[s] = load<lanes>(column + (r * lanes + s) * ldb);
            transpose(square);
#pragma GCC unroll 4
            for (int s = 0; s < lanes; ++s) x[place(s)][r] = square[s];
        }
    }
    [[gnu::always_inline]] void put(Int i, const Vec<T> (&x)[lanes][registers]) const
    {
        T* column = corner(i);
#pragma GCC unroll 8
        for (int r = 0; r < registers; ++r) {
            Vec<T> square[lanes];
#pragma GCC unroll 4
            for (int s = 0; s < lanes; ++s) square[s] = x[place(s)][r];
            transpose(square);
#pragma GCC unroll 4
            for (int s = 0; s < lanes; ++s) store<lanes>(column + (r * lanes + s) * ldb, square[s]);
        }
    }
};

// body(i) for i = 0, count, 2 count ..., or backwards; n is a multiple of count. In a whole leaf of real numbers i is a
// constant, so that every inner loop has its own length for the branch predictor to learn.
template <class T, int count, bool forward, class Body>
[[gnu::always_inline]] inline void for_each_slice(Int n, Body&& body)
{
    if (!is_complex<T> && n == leaf) {
        [&]<Int... i>(std::integer_sequence<Int, i...>)
        {
            (body(std::integral_constant<Int, (forward ? i * count : leaf - (i + 1) * count)>()), ...);
        }
        (std::make_integer_sequence<Int, leaf / count>());
    } else if (forward) {
        for (Int i = 0; i + count <= n; i += count) body(i);
    } else {
        for (Int i = n - count; i >= 0; i -= count) body(i);
    }
}

// Runs the work over all strips of the slices, as many registers wide as there are elements for.
template <class Work, bool conjugated, class T>
inline void for_each_strip(const Coefficients<T>& t, const Slices<T>& x, Int n)
{
    constexpr int lanes = Vec<T>::lanes;
    const Ordered<T, conjugated> c(t, n);
    Work work;
    for (Int i = 0; i < n; ++i) work.set_diagonal(i, t.unit ? T(1) : c.diagonal(i));
    Int from = 0;
    if (x.rows && n % lanes == 0 && !work.divides())
        gemm::with_flag(t.lower, [&]<bool forward>() {
            constexpr int registers = 8 / lanes;
            Strip<T, registers> strip;
            for (; from + strip.width <= x.length; from += strip.width)
                work.squares(c, strip, Squares<T, registers, forward>{x.at(0, from), x.ldb, n}, n);
        });
    const auto strips = [&]<int registers>(Int until) {
        Strip<T, registers> strip;
        for (; from < until; from += strip.width) {
            strip.fetch(t.lower, x, n, from);
            work.slices(c, strip, n);
            strip.bring_back(x, n, from);
        }
    };
    constexpr Int wide = 8 * lanes;
    strips.template operator()<8>(x.length - wide + 1);
    if (x.length - from > wide / 2) return strips.template operator()<8>(x.length);
    if (x.length - from > wide / 4) return strips.template operator()<4>(x.length);
    strips.template operator()<2>(x.length);
}

template <template <class> class Work, class T>
inline void run_leaf(const Coefficients<T>& t, const Slices<T>& x, Int n)
{
    if constexpr (is_complex<T>)
        gemm::with_flag(t.conjugated, [&]<bool conjugated>() { for_each_strip<Work<T>, conjugated>(t, x, n); });
    else
        for_each_strip<Work<T>, false>(t, x, n);
}

} // namespace ork::level3
