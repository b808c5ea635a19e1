// SPDX-License-Identifier: MIT
// Packing: A into panels of Units::m rows multiplied by alpha, B into panels of Units::n columns, both with the depth
// padded with zeros to a multiple of Units::k. Panels are read by the micro-kernel front to back. In double precision:
//
//   A panel, one step of depth: alpha a(i, l), alpha a(i+1, l)     a row that does not exist is 0
//   B panel, one step of depth: b(l, j) ... b(l, j+7)              then a panel of 4 columns and pairs; a missing
//   column is 0
//
// The other types fill the same 16 and 64 bytes a step: A 4 rows (s), 2 (c) or 1 (z); B 8 columns (s) or 4 (c, z),
// where single precision holds every real number twice, and a third row of four is repeated as the fourth. Conjugation
// happens here. Loads are unaligned throughout: on operands that happen to be aligned they cost the same and give the
// same bytes.
#pragma once

#include "blas/gemm/product.h"

namespace ork::gemm {

// Elements on their way into A panels: conjugated if need be, times alpha unless that is 1.
template <class T, class S, bool scaled, bool conjugated>
struct ToA {
    Factor<T, S> factor;
    S alpha;

    explicit ToA(S alpha) : factor(alpha), alpha(alpha) {}
    static constexpr int copies = 1;

    Vec<T> operator()(Vec<T> x) const
    {
        x = conjugate<conjugated>(x);
        if constexpr (scaled) x = factor * x;
        return x;
    }
    T operator()(T x) const
    {
        x = conjugate<conjugated>(x);
        return scaled ? alpha * x : x;
    }
    static void put(T* to, Vec<T> x) { store_aligned(reals(to), reals(x)); }
    static void put(T* to, T x) { *to = x; }
};

// Elements on their way into B panels: single precision doubles its real numbers.
template <class T, bool conjugated>
struct ToB {
    static constexpr int copies = sizeof(Real<T>) == 4 ? 2 : 1;

    Vec<T> operator()(Vec<T> x) const { return conjugate<conjugated>(x); }
    T operator()(T x) const { return conjugate<conjugated>(x); }
    static void put(T* to, Vec<T> x)
    {
        if constexpr (copies == 1) {
            store_aligned(reals(to), reals(x));
        } else {
            const __m128 v = reals(x).v;
            _mm_store_ps(reals(to), _mm_unpacklo_ps(v, v));
            _mm_store_ps(reals(to) + 4, _mm_unpackhi_ps(v, v));
        }
    }
    static void put(T* to, T x)
    {
        if constexpr (copies == 1) {
            *to = x;
        } else if constexpr (is_complex<T>) {
            to[0] = {x.re, x.re};
            to[1] = {x.im, x.im};
        } else {
            to[0] = to[1] = x;
        }
    }
};

// Calls body with the conversion into A panels that `a` and alpha ask for.
template <class T, class S, class Body>
inline void with_conversion(const Operand<T>& a, S alpha, Body&& body)
{
    with_flag(!(alpha == S(1)), [&]<bool scaled>() {
        if constexpr (is_complex<T>)
            with_flag(a.conjugated, [&]<bool conjugated>() { body(ToA<T, S, scaled, conjugated>(alpha)); });
        else
            body(ToA<T, S, scaled, false>(alpha));
    });
}

// One panel of `width`, or what exists of it, element by element. A missing one is zero, unless `fill` of them belong
// together and one is there: then it repeats the last.
template <int width, int fill, class T, class To>
void pack_edge(const Operand<T>& x, Int outer, Int present, Int depth, T* to, To convert)
{
    const Int padded = round_up(depth, Units<T>::k);
    for (Int l = 0; l < padded; ++l)
        for (Int r = 0; r < width; ++r, to += To::copies) {
            const Int row = r < present ? r : present - 1;
            To::put(to, l < depth && r < round_up(present, fill) ? convert(element(x.at(outer + row, l))) : T{});
        }
}

// Full panels of an operand whose outer direction is contiguous. Four steps of depth at a time run along all panels:
// the operand is read down its columns, and each visit fills whole cache lines of a panel.
template <int width, class T, class To>
void pack_contiguous(const T* from, Int depth_stride, Int panels, Int depth, T* to, Int panel_stride, To convert)
{
    constexpr int lanes = Vec<T>::lanes, unit = Units<T>::k, step = width * To::copies;
    for (Int l = 0; l < depth; l += unit, from += unit * depth_stride, to += unit * step) {
        const Int steps = depth - l < unit ? depth - l : unit;
        for (Int p = 0; p < panels; ++p) {
            const T* x = from + p * width;
            T* panel = to + p * panel_stride;
            if (steps == unit) {
#pragma GCC unroll 4
                for (int s = 0; s < unit; ++s)
#pragma GCC unroll 8
                    for (int r = 0; r < width; r += lanes)
                        To::put(panel + s * step + r * To::copies,
                                convert(load<Vec<T>::lanes>(x + s * depth_stride + r)));
            } else {
                for (int s = 0; s < unit; ++s)
                    for (int r = 0; r < width; ++r)
                        To::put(panel + s * step + r * To::copies,
                                s < steps ? convert(element(x + s * depth_stride + r)) : T{});
            }
        }
    }
}

// One full panel of an operand whose depth is contiguous, filled up with zeros to a depth of `padded`: squares of
// lanes x lanes elements are transposed in registers.
template <int width, class T, class To>
inline void pack_transposing(const T* from, Int outer_stride, Int depth, Int padded, T* to, To convert)
{
    constexpr int lanes = Vec<T>::lanes, step = width * To::copies;
    Int l = 0;
    for (; l + lanes <= depth; l += lanes, to += lanes * step)
#pragma GCC unroll 8
        for (int r = 0; r < width; r += lanes) {
            Vec<T> square[lanes];
#pragma GCC unroll 4
            for (int i = 0; i < lanes; ++i) square[i] = load<Vec<T>::lanes>(from + (r + i) * outer_stride + l);
            transpose(square);
#pragma GCC unroll 4
            for (int i = 0; i < lanes; ++i) To::put(to + i * step + r * To::copies, convert(square[i]));
        }
    for (; l < padded; ++l)
        for (int r = 0; r < width; ++r, to += To::copies)
            To::put(to, l < depth ? convert(element(from + r * outer_stride + l)) : T{});
}

// All full panels of one width; returns how many of `count` rows or columns they took.
template <int width, class T, class To>
Int pack_full(const Operand<T>& x, Int count, Int depth, T* to, Int panel_stride, To convert)
{
    const Int panels = count / width;
    if (x.outer_stride == 1 && panels > 0)
        pack_contiguous<width>(x.data, x.depth_stride, panels, depth, to, panel_stride, convert);
    else
        for (Int p = 0; p < panels; ++p)
            pack_transposing<width>(x.at(p * width, 0), x.outer_stride, depth, round_up(depth, Units<T>::k),
                                    to + p * panel_stride, convert);
    return panels * width;
}

template <class T, class S>
void pack_a(const Operand<T>& a, Int m, Int depth, T* to, Int panel_stride, S alpha)
{
    constexpr int unit = Units<T>::m;
    with_conversion(a, alpha, [&](auto convert) {
        const Int packed = pack_full<unit>(a, m, depth, to, panel_stride, convert);
        if (packed < m)
            pack_edge<unit, (sizeof(T) < 8 ? 8 / sizeof(T) : 1)>(a, packed, m - packed, depth,
                                                                 to + packed / unit * panel_stride, convert);
    });
}

template <class T>
void pack_b(const Operand<T>& b, Int n, Int depth, T* to, Int panel_stride)
{
    constexpr int unit = Units<T>::n;
    const Int padded = round_up(depth, Units<T>::k);
    with_flag(is_complex<T> && b.conjugated, [&]<bool conjugated>() {
        using To = ToB<T, conjugated>;
        Int j = pack_full<unit>(b, n, depth, to, panel_stride, To{});
        to += j / unit * panel_stride;
        const auto edge = [&]<int width>(Int present) {
            pack_edge<width, 1>(b, j, present, depth, to, To{});
            to += width * To::copies * padded;
            j += present;
        };
        if (n - j >= unit / 2) edge.template operator()<unit / 2>(unit / 2);
        if constexpr (unit == 8) {
            if (n - j >= 2) edge.template operator()<2>(2);
            if (n - j >= 1) edge.template operator()<2>(1);
        } else {
            if (n - j >= 1) edge.template operator()<1>(1);
        }
    });
}

} // namespace ork::gemm
