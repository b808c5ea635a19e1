// SPDX-License-Identifier: MIT
// A triangle of order at most `leaf` against slices: a strip of four registers of every slice at a time is brought into
// a buffer, where elements of different rows or columns of B stand in the lanes, and comes back when it is done.
//
// Order: a solve subtracts coefficient(i, l) x_l from b_i one after another in the order in which the x_l become known,
// then divides by the diagonal; a product starts with the diagonal's and adds the others in that same order.
#pragma once

#include "blas/gemm/direct_tile.h"
#include "blas/level3/triangular.h"

namespace ork::level3 {

using gemm::Element;

// What is on the diagonal, ready to multiply or to divide by.
template <class T>
struct Divisor {
    T d;

    explicit Divisor(T d = {}) : d(d) {}
    Vec<T> operator()(Vec<T> x) const { return x / broadcast(d); }
};
// Smith's division: with r = im / re, (a + ib) / d = ((a + br) + i(b - ar)) / (re + im r), or the same with the parts
// exchanged when im is the larger (Smith, "Algorithm 116", 1962). Neither square can overflow.
template <class R>
struct Divisor<Complex<R>> {
    R own = 1, other = 0, size = 1;

    explicit Divisor(Complex<R> d = {1, 0})
    {
        const auto magnitude = [](R x) { return x < 0 ? -x : x; };
        if (magnitude(d.re) >= magnitude(d.im)) {
            other = d.im / d.re;
            size = d.re + d.im * other;
        } else {
            own = d.re / d.im;
            other = 1;
            size = d.im + d.re * own;
        }
    }
    Vec<Complex<R>> operator()(Vec<Complex<R>> x) const
    {
        const Vec<R> turned = exchanged(x.v) * broadcast(other); // (im, re) other
        const Vec<R> minus = alternating_sum(x.v * broadcast(own), Vec<R>{} - turned); // (+, -)
        return {minus / broadcast(size)};
    }
};

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

template <class T>
struct Leaf {
    static constexpr int lanes = Vec<T>::lanes, registers = 4, width = registers * lanes;

    // Coefficients and diagonal, slices counted in the order of the work.
    T c[leaf][leaf];
    T diagonal[leaf];
    alignas(16) T strip[leaf * width]; // slice after slice

    static Vec<T> at(const T* x) { return {load_aligned(reals(x))}; }
    static void put(T* x, Vec<T> v) { store_aligned(reals(x), reals(v)); }

    void gather(const Coefficients<T>& t, Int n)
    {
        gemm::with_flag(t.conjugated, [&]<bool conjugated>() {
            const Int first = t.lower ? 0 : n - 1, step = t.lower ? 1 : -1;
            for (Int i = 0; i < n; ++i)
                for (Int l = 0; l < i; ++l)
                    c[i][l] = gemm::conjugate<conjugated>(*t.at(first + i * step, first + l * step));
            for (Int i = 0; i < n; ++i)
                diagonal[i] = t.unit ? T(1) : gemm::conjugate<conjugated>(*t.at(i, i));
            if (!t.lower)
                for (Int i = 0; i < n / 2; ++i) {
                    const T d = diagonal[i];
                    diagonal[i] = diagonal[n - 1 - i];
                    diagonal[n - 1 - i] = d;
                }
        });
    }

    // Elements [first, first + width) of n slices. Elements that do not exist repeat the last one.
    void fetch(const Slices<T>& x, Int n, Int first)
    {
        const Int present = x.length - first;
        if (present < width) {
            for (Int i = 0; i < n; ++i)
                for (Int r = 0; r < width; ++r) strip[i * width + r] = *x.at(i, first + (r < present ? r : present - 1));
        } else if (x.rows) {
            gemm::pack_transposing<width>(x.at(0, first), x.ldb, n, n, strip, gemm::ToA<T, T, false, false>(T(1)));
        } else {
            for (Int i = 0; i < n; ++i)
#pragma GCC unroll 4
                for (int r = 0; r < width; r += lanes) put(strip + i * width + r, load<lanes>(x.at(i, first) + r));
        }
    }

    void bring_back(const Slices<T>& x, Int n, Int first) const
    {
        const Int present = x.length - first;
        if (present < width) {
            for (Int i = 0; i < n; ++i)
                for (Int r = 0; r < present; ++r) *x.at(i, first + r) = strip[i * width + r];
        } else if (x.rows) {
            Int i = 0;
            for (; i + lanes <= n; i += lanes)
#pragma GCC unroll 4
                for (int r = 0; r < width; r += lanes) {
                    Vec<T> square[lanes];
#pragma GCC unroll 4
                    for (int s = 0; s < lanes; ++s) square[s] = at(strip + (i + s) * width + r);
                    transpose(square);
#pragma GCC unroll 4
                    for (int s = 0; s < lanes; ++s) store<lanes>(x.at(i, first + r + s), square[s]);
                }
            for (; i < n; ++i)
                for (Int r = 0; r < width; ++r) *x.at(i, first + r) = strip[i * width + r];
        } else {
            for (Int i = 0; i < n; ++i)
#pragma GCC unroll 4
                for (int r = 0; r < width; r += lanes) store<lanes>(x.at(i, first) + r, at(strip + i * width + r));
        }
    }
};

// `count` slices from i on, whose slices before are in `strip`, accumulate those.
template <bool subtract, int count, class T>
[[gnu::always_inline]] inline void accumulate_slices(const Leaf<T>& work, Int i, const T* strip, Int step,
                                                     Vec<T> (&sum)[count][Leaf<T>::registers])
{
    using L = Leaf<T>;
#pragma GCC unroll 1
    for (Int l = 0; l < i; ++l, strip += step) {
        const Element<T> first(&work.c[i][l]), second(&work.c[i + count - 1][l]);
#pragma GCC unroll 4
        for (int r = 0; r < L::registers; ++r) {
            const Vec<T> x = L::at(strip + r * L::lanes);
            sum[0][r] = accumulate<subtract>(sum[0][r], first, x);
            if constexpr (count == 2) sum[1][r] = accumulate<subtract>(sum[1][r], second, x);
        }
    }
}

} // namespace ork::level3
