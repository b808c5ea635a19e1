// SPDX-License-Identifier: MIT
// a(i, j) <- a(i, j) + x(i) t(j), or + x(i) t(j) + y(i) u(j) in this order: what every update of a dense matrix does to
// an element, whichever columns are done together. Contiguous vectors.
#pragma once

#include "blas/level2/columns.h"

namespace ork::level2 {

// The vectors that stand beside the rows; terms = 1 or 2.
template <class T, int terms>
struct Beside {
    const T* vector[terms];
};

namespace update {

// a + p; where a is aligned, the addition loads it by itself.
template <bool aligned, int width, class T>
[[gnu::always_inline]] inline Vec<T> added(Vec<T> p, const T* a)
{
    const Vec<T> loaded = load_column<aligned, width>(a);
    if constexpr (is_complex<T>)
        return {p.v + loaded.v};
    else
        return p + loaded;
}

template <bool aligned, int width, class T>
[[gnu::always_inline]] inline void put_column(T* p, Vec<T> a)
{
    if constexpr (aligned && width == Vec<T>::lanes)
        store_aligned(reals(p), reals(a));
    else
        store<width>(p, a);
}

// A register of a vector beside the rows, ready to be multiplied with many factors. The loads and exchanges of pairs
// are pinned where they stand: a tenth faster.
template <class T>
struct Multiplicand {
    Vec<T> v;
    explicit Multiplicand(Vec<T> x) : v(x) {}
    [[gnu::always_inline]] Vec<T> times(const Factor<T>& f) const { return f * v; }
};
template <class R>
struct Multiplicand<Complex<R>> {
    Vec<R> v, turned;
    [[gnu::always_inline]] explicit Multiplicand(Vec<Complex<R>> x) : v(x.v)
    {
        asm volatile("" : "+x"(v.v));
        turned = exchanged(v);
        asm volatile("" : "+x"(turned.v));
    }
    [[gnu::always_inline]] Vec<Complex<R>> times(const Factor<Complex<R>>& f) const
    {
        return {sum(product(v, f.re), product(turned, f.im))};
    }
};

// Rows [begin, end) of `count` columns; t[j] has the factors of column j. Where columns are aligned, registers begin at
// multiples of their lanes.
template <bool aligned, bool far, int count, int terms, class T>
[[gnu::always_inline]] inline void columns(Int begin, Int end, Beside<T, terms> beside, const T (*t)[terms], T* a,
                                           Int lda)
{
    using level2::columns::Factors;
    constexpr int lanes = Vec<T>::lanes, pass = 4;
    const Factors<T, count> f(t[0], terms), g(t[0] + terms - 1, terms);
    const T *x = beside.vector[0] + begin, *y = beside.vector[terms - 1] + begin;
    Reader<aligned, count, T> column(a + begin, lda);
    Int rows = end - begin;
    const auto step = [&]<int width>(int i) __attribute__((always_inline))
    {
        const auto beside_columns = [&](const Multiplicand<T>& first, auto... second) __attribute__((always_inline))
        {
#pragma GCC unroll 4
            for (int j = 0; j < count; ++j) {
                T* element = const_cast<T*>(column.at(j, i));
                Vec<T> s = added<aligned, width>(first.times(f.factor[j]), element);
                ((s = sum(s, second.times(g.factor[j]))), ...);
                put_column<aligned, width>(element, s);
            }
        };
        const Multiplicand<T> first(load<width>(x + i));
        if constexpr (terms == 2)
            beside_columns(first, Multiplicand<T>(load<width>(y + i)));
        else
            beside_columns(first);
    };
    const auto advance = [&](Int done) __attribute__((always_inline))
    {
        column.advance(done);
        x += done, y += done, rows -= done;
    };
    const auto single = [&]<int width>() __attribute__((always_inline))
    {
        step.template operator()<width>(0);
        advance(width);
    };
    if constexpr (aligned && lanes > 1)
        if ((begin & 1) != 0 && rows > 0) single.template operator()<1>();
    if constexpr (aligned && lanes == 4)
        if (((begin + 1) & 2) != 0 && rows > 1) single.template operator()<2>();
    while (rows >= pass * lanes) {
        if constexpr (far) column.prefetch(ahead);
#pragma GCC unroll 4
        for (int r = 0; r < pass; ++r) step.template operator()<lanes>(r * lanes);
        advance(pass * lanes);
    }
    while (rows >= lanes) single.template operator()<lanes>();
    if constexpr (lanes == 4)
        if (rows & 2) single.template operator()<2>();
    if constexpr (lanes > 1)
        if (rows & 1) step.template operator()<1>(0);
}

} // namespace update
} // namespace ork::level2
