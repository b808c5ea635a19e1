// SPDX-License-Identifier: MIT
// Packing: A into panels of Units::m rows multiplied by alpha, B into panels of 8 columns, both with the depth padded
// with zeros to a multiple of Units::k. Panels are read by the micro-kernel front to back.
//
//   A panel, one step of depth: alpha a(i, l), alpha a(i+1, l)     a row that does not exist is 0
//   B panel, one step of depth: b(l, j) ... b(l, j+7)              then a panel of 4 columns and pairs; a missing
//   column is 0
//
// Loads are unaligned throughout: on operands that happen to be aligned they cost the same and give the same bytes.
#pragma once

#include "blas/gemm/product.h"
#include "simd/vec.h"

namespace ork::gemm {

// One panel of `width` that starts at `from`, or what exists of it, element by element.
template <int width, class T, class Scale>
void pack_edge(const T* from, Int outer_stride, Int depth_stride, Int present, Int depth, T* to, Scale scale)
{
    const Int padded = round_up(depth, Units<T>::k);
    for (Int l = 0; l < padded; ++l)
        for (Int r = 0; r < width; ++r)
            *to++ = l < depth && r < present ? scale(from[r * outer_stride + l * depth_stride]) : T{};
}

// Full panels of an operand whose outer direction is contiguous. Four steps of depth at a time run along all panels:
// the operand is read down its columns, and each visit fills whole cache lines of a panel.
template <int width, class T, class Scale>
void pack_contiguous(const T* from, Int depth_stride, Int panels, Int depth, T* to, Int panel_stride, Scale scale)
{
    constexpr int lanes = Vec<T>::lanes, unit = Units<T>::k;
    for (Int l = 0; l < depth; l += unit, from += unit * depth_stride, to += unit * width) {
        const Int steps = depth - l < unit ? depth - l : unit;
        for (Int p = 0; p < panels; ++p) {
            const T* x = from + p * width;
            T* panel = to + p * panel_stride;
            if (steps == unit) {
#pragma GCC unroll 4
                for (int s = 0; s < unit; ++s)
#pragma GCC unroll 8
                    for (int r = 0; r < width; r += lanes)
                        store_aligned(panel + s * width + r, scale(load(x + s * depth_stride + r)));
            } else {
                for (int s = 0; s < unit; ++s)
                    for (int r = 0; r < width; ++r)
                        panel[s * width + r] = s < steps ? scale(x[s * depth_stride + r]) : T{};
            }
        }
    }
}

// One full panel of an operand whose depth is contiguous, filled up with zeros to a depth of `padded`: squares of
// lanes x lanes elements are transposed in registers.
template <int width, class T, class Scale>
inline void pack_transposing(const T* from, Int outer_stride, Int depth, Int padded, T* to, Scale scale)
{
    constexpr int lanes = Vec<T>::lanes;
    Int l = 0;
    for (; l + lanes <= depth; l += lanes, to += lanes * width)
#pragma GCC unroll 8
        for (int r = 0; r < width; r += lanes) {
            Vec<T> square[lanes];
#pragma GCC unroll 4
            for (int i = 0; i < lanes; ++i) square[i] = load(from + (r + i) * outer_stride + l);
            transpose(square);
#pragma GCC unroll 4
            for (int i = 0; i < lanes; ++i) store_aligned(to + i * width + r, scale(square[i]));
        }
    for (; l < padded; ++l)
        for (int r = 0; r < width; ++r) *to++ = l < depth ? scale(from[r * outer_stride + l]) : T{};
}

// All full panels of one width; returns how many of `count` rows or columns they took.
template <int width, class T, class Scale>
Int pack_full(const Operand<T>& x, Int count, Int depth, T* to, Int panel_stride, Scale scale)
{
    const Int panels = count / width;
    if (x.outer_stride == 1 && panels > 0)
        pack_contiguous<width>(x.data, x.depth_stride, panels, depth, to, panel_stride, scale);
    else
        for (Int p = 0; p < panels; ++p)
            pack_transposing<width>(x.at(p * width, 0), x.outer_stride, depth, round_up(depth, Units<T>::k),
                                    to + p * panel_stride, scale);
    return panels * width;
}

template <class T>
struct Scaled {
    T alpha;

    Vec<T> operator()(Vec<T> x) const { return broadcast(alpha) * x; }
    T operator()(T x) const { return alpha * x; }
};

template <class T>
void pack_a(const Operand<T>& a, Int m, Int depth, T* to, Int panel_stride, T alpha)
{
    constexpr int unit = Units<T>::m;
    const Scaled<T> scale{alpha};
    const Int packed = pack_full<unit>(a, m, depth, to, panel_stride, scale);
    if (packed < m)
        pack_edge<unit>(a.at(packed, 0), a.outer_stride, a.depth_stride, m - packed, depth,
                        to + packed / unit * panel_stride, scale);
}

template <class T>
void pack_b(const Operand<T>& b, Int n, Int depth, T* to, Int panel_stride)
{
    const auto as_it_is = [](auto x) { return x; };
    Int j = pack_full<8>(b, n, depth, to, panel_stride, as_it_is);
    to += j / 8 * panel_stride;
    const Int padded = round_up(depth, Units<T>::k);
    const auto edge = [&]<int width>(Int present) {
        pack_edge<width>(b.at(j, 0), b.outer_stride, b.depth_stride, present, depth, to, as_it_is);
        to += width * padded;
        j += present;
    };
    if (n - j >= 4) edge.template operator()<4>(4);
    if (n - j >= 2) edge.template operator()<2>(2);
    if (n - j >= 1) edge.template operator()<2>(1);
}

} // namespace ork::gemm
