// SPDX-License-Identifier: MIT
// Products with one row or column against an operand that is contiguous in the depth. Real types.
#pragma once

#include "blas/gemm/thin.h"

namespace ork::gemm {

// Thin with one column, `wide` contiguous in the depth: `groups` vectors of rows at a time, whose squares of elements
// are transposed in registers, so that a lane sums one row in order. Eight rows of doubles keep the adders busy (four
// chains of two additions), and their addresses fit the addressing modes; sixteen lost a third to address arithmetic.
template <bool scaled, int groups, class T>
inline void vector_sums(Int depth, const T* wide, Int stride, T scale, const T* narrow, T* sums)
{
    constexpr int lanes = Vec<T>::lanes;
    const Vec<T> factor = broadcast(scale);
    Vec<T> sum[groups] = {};
    const T* row[groups];
#pragma GCC unroll 4
    for (int g = 0; g < groups; ++g) row[g] = wide + g * lanes * stride;
    const auto step = [&](Int l) __attribute__((always_inline))
    {
        Vec<T> element[lanes];
#pragma GCC unroll 4
        for (int i = 0; i < lanes; ++i) element[i] = broadcast(narrow[l + i]);
#pragma GCC unroll 4
        for (int g = 0; g < groups; ++g) {
            Vec<T> square[lanes];
#pragma GCC unroll 4
            for (int i = 0; i < lanes; ++i) square[i] = load(row[g] + i * stride + l);
            transpose(square);
#pragma GCC unroll 4
            for (int i = 0; i < lanes; ++i) {
                if constexpr (scaled) square[i] = factor * square[i];
                sum[g] = sum[g] + square[i] * element[i];
            }
        }
    };
    Int l = 0;
#pragma GCC unroll 1
    for (; l + lanes <= depth; l += lanes) step(l);
#pragma GCC unroll 4
    for (int g = 0; g < groups; ++g) store_aligned(sums + g * lanes, sum[g]);
    for (; l < depth; ++l)
        for (int r = 0; r < groups * lanes; ++r) {
            const T x = wide[r * stride + l];
            sums[r] += (scaled ? scale * x : x) * narrow[l];
        }
}

// The whole depth, blocks of kb for one group of rows after another, so that `wide` is read along its columns.
template <class T>
void multiply_vector(const Thin<T>& p, Int kb, bool overwrite)
{
    constexpr int lanes = Vec<T>::lanes, groups = 4;
    constexpr Int most = 8192 / sizeof(T);
    alignas(16) T narrow[most], sums[groups * lanes];
    const Int stride = p.wide.outer_stride, chunk = most / kb * kb;
    for (Int start = 0; start < p.depth; start += chunk) {
        const Int end = p.depth - start < chunk ? p.depth : start + chunk;
        for (Int l = start; l < end; ++l) narrow[l - start] = p.narrow_scale * *p.narrow.at(0, l);
        const auto rows = [&]<int vectors, bool scaled>(Int row) {
            for (Int l = start; l < end; l += kb) {
                const Int depth = end - l < kb ? end - l : kb;
                vector_sums<scaled, vectors>(depth, p.wide.at(row, l), stride, p.wide_scale, narrow + (l - start),
                                             sums);
                for (int r = 0; r < vectors * lanes; ++r) {
                    T* out = p.out + (row + r) * p.row_stride;
                    *out = overwrite && l == 0 ? sums[r] : *out + sums[r];
                }
            }
        };
        with_flag(p.wide_scale != T(1), [&]<bool scaled>() {
            Int row = 0;
            for (; row + groups * lanes <= p.rows; row += groups * lanes) rows.template operator()<groups, scaled>(row);
            for (; row + lanes <= p.rows; row += lanes) rows.template operator()<1, scaled>(row);
            for (; row < p.rows; ++row)
                for (Int l = start; l < end; l += kb) {
                    const T* wide = p.wide.at(row, 0);
                    T sum{};
                    for (Int i = l; i < end && i < l + kb; ++i) sum += (p.wide_scale * wide[i]) * narrow[i - start];
                    T* out = p.out + row * p.row_stride;
                    *out = overwrite && l == 0 ? sum : *out + sum;
                }
        });
    }
}

} // namespace ork::gemm
