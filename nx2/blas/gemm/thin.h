// SPDX-License-Identifier: MIT
// Products with few columns of B (or, seen from the other side, few rows of A): the long operand streams by column
// after column, and the sums wait in a buffer of the first level of cache. Real types.
#pragma once

#include "blas/gemm/direct_tile.h"

namespace ork::gemm {

// A product seen from its long side: out(r, j) = sum of wide(r, l) * narrow(l, j), j < count, where `wide` is
// contiguous in r. Either A is wide and the narrow side is B, or, transposed, B is wide and the narrow side is A.
template <class T>
struct Thin {
    Operand<T> wide, narrow;
    Int rows, count, depth;
    T wide_scale, narrow_scale; // alpha, on whichever of them is A
    T* out;
    Int row_stride, column_stride;
};

// sums[0 .. count) += wide * narrow, four steps of depth and `columns` columns at a time.
template <bool scaled, int columns, int steps, class T>
inline void thin_step(Int rows, const T* wide, Int depth_stride, T scale, const T* narrow, T* sums, Int sum_stride)
{
    constexpr int lanes = Vec<T>::lanes;
    Vec<T> element[columns][steps];
    for (int j = 0; j < columns; ++j)
        for (int s = 0; s < steps; ++s) element[j][s] = broadcast(narrow[j * deepest_block + s]);
    const Vec<T> factor = broadcast(scale);
    for (Int r = 0; r < rows; r += lanes) {
        Vec<T> sum[columns];
#pragma GCC unroll 2
        for (int j = 0; j < columns; ++j) sum[j] = load_aligned(sums + j * sum_stride + r);
#pragma GCC unroll 4
        for (int s = 0; s < steps; ++s) {
            Vec<T> x = load(wide + s * depth_stride + r);
            if constexpr (scaled) x = factor * x;
#pragma GCC unroll 2
            for (int j = 0; j < columns; ++j) sum[j] = sum[j] + x * element[j][s];
        }
#pragma GCC unroll 2
        for (int j = 0; j < columns; ++j) store_aligned(sums + j * sum_stride + r, sum[j]);
    }
}

template <bool overwrite, class T>
void multiply_thin(const Thin<T>& p)
{
    constexpr Int most = 8,
                  waiting = 8192 / sizeof(T); // sums that wait: a quarter of the first level of cache, or less
    const Int chunk = waiting / p.count / 16 * 16;
    alignas(16) T sums[waiting];
    alignas(16) T narrow[most * deepest_block];
    for (Int j = 0; j < p.count; ++j)
        for (Int l = 0; l < p.depth; ++l) narrow[j * deepest_block + l] = p.narrow_scale * *p.narrow.at(j, l);
    const Int lanes = Vec<T>::lanes;
    for (Int row = 0; row < p.rows; row += chunk) {
        const Int rows = p.rows - row < chunk ? p.rows - row : chunk, vectors = rows / lanes * lanes;
        for (Int i = 0; i < p.count * chunk; ++i) sums[i] = T{};
        with_flag(p.wide_scale != T(1), [&]<bool scaled>() {
            const auto steps = [&]<int count>(Int l) {
                const T* wide = p.wide.at(row, l);
                Int j = 0;
                for (; j + 2 <= p.count; j += 2)
                    thin_step<scaled, 2, count>(vectors, wide, p.wide.depth_stride, p.wide_scale,
                                                narrow + j * deepest_block + l, sums + j * chunk, chunk);
                if (j < p.count)
                    thin_step<scaled, 1, count>(vectors, wide, p.wide.depth_stride, p.wide_scale,
                                                narrow + j * deepest_block + l, sums + j * chunk, chunk);
            };
            Int l = 0;
            for (; l + 4 <= p.depth; l += 4) steps.template operator()<4>(l);
            for (; l < p.depth; ++l) steps.template operator()<1>(l);
        });
        for (Int r = vectors; r < rows; ++r)
            for (Int j = 0; j < p.count; ++j) {
                T sum{};
                for (Int l = 0; l < p.depth; ++l)
                    sum += (p.wide_scale * *p.wide.at(row + r, l)) * narrow[j * deepest_block + l];
                sums[j * chunk + r] = sum;
            }
        for (Int j = 0; j < p.count; ++j) {
            T* out = p.out + row * p.row_stride + j * p.column_stride;
            const T* sum = sums + j * chunk;
            for (Int r = 0; r < rows; ++r, out += p.row_stride) *out = overwrite ? sum[r] : *out + sum[r];
        }
    }
}

// The two ways to see a product so.
template <class T>
Thin<T> wide_a(const Product<T>& p)
{
    return {p.a, p.b, p.m, p.n, p.k, p.alpha, T(1), p.c, 1, p.ldc};
}

template <class T>
Thin<T> wide_b(const Product<T>& p)
{
    return {p.b, p.a, p.n, p.m, p.k, T(1), p.alpha, p.c, p.ldc, 1};
}

} // namespace ork::gemm
