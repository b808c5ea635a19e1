// SPDX-License-Identifier: MIT
// Between groups of adjacent columns of a matrix and vectors that are contiguous.
#pragma once

#include "simd/complex.h"

namespace ork::dft {

// Rows ahead that are asked for: each stands in another page, so translations are what a pass would wait for.
inline constexpr std::int64_t rows_ahead = 16;
template <class C>
inline constexpr int line_of = 64 / static_cast<int>(sizeof(C)); // numbers of a cache line

// column[c * length + i] = matrix[i * row_stride + c], c < width, i < rows. A row's share of eight double numbers is
// two cache lines, read once.
template <int width, class C>
void gather(const C* matrix, std::int64_t row_stride, std::int64_t rows, C* column, std::int64_t length)
{
    for (std::int64_t i = 0; i < rows; ++i, matrix += row_stride) {
        const C* const ahead = i + rows_ahead < rows ? matrix + rows_ahead * row_stride : matrix;
        for (int c = 0; c < width; c += line_of<C>) __builtin_prefetch(ahead + c);
        __builtin_prefetch(ahead + width - 1);
#pragma GCC unroll 16
        for (int c = 0; c < width; ++c) column[c * length + i] = matrix[c];
    }
}

// The way back; `cold`: the matrix is not the one that was gathered from, whose lines are still in cache.
template <int width, class C>
void scatter(const C* column, std::int64_t length, std::int64_t rows, C* matrix, std::int64_t row_stride, bool cold)
{
    for (std::int64_t i = 0; i < rows; ++i, matrix += row_stride) {
        if (cold) {
            C* const ahead = i + rows_ahead < rows ? matrix + rows_ahead * row_stride : matrix;
            for (int c = 0; c < width; c += line_of<C>) __builtin_prefetch(ahead + c, 1);
            __builtin_prefetch(ahead + width - 1, 1);
        }
#pragma GCC unroll 16
        for (int c = 0; c < width; ++c) matrix[c] = column[c * length + i];
    }
}

// Fewer columns than a group: pairs and fours together, others one by one.
template <class C>
void scatter_some(int width, const C* column, std::int64_t rows, C* matrix, std::int64_t row_stride, bool cold)
{
    constexpr signed char together[8] = {1, 1, 2, 1, 4, 1, 1, 1};
    switch (together[width & 7]) {
    case 2:
        return scatter<2>(column, rows, rows, matrix, row_stride, cold);
    case 4:
        return scatter<4>(column, rows, rows, matrix, row_stride, cold);
    default:
        for (int c = 0; c < width; ++c) scatter<1>(column + c * rows, rows, rows, matrix + c, row_stride, cold);
    }
}

} // namespace ork::dft
