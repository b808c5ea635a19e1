// SPDX-License-Identifier: MIT
// Between groups of adjacent columns of a matrix and vectors that are contiguous.
#pragma once

#include "simd/complex.h"

namespace ork::dft {

// Rows ahead that are asked for: each stands in another page, so translations are what a pass would wait for.
inline constexpr std::int64_t rows_ahead = 16;

// column[c * rows + i] = matrix[i * row_stride + c], c < width. A row's share of eight double numbers is two cache
// lines, read once.
template <int width, class C>
void gather(const C* matrix, std::int64_t row_stride, std::int64_t rows, C* column)
{
    for (std::int64_t i = 0; i < rows; ++i, matrix += row_stride) {
        const C* ahead = i + rows_ahead < rows ? matrix + rows_ahead * row_stride : matrix;
        __builtin_prefetch(ahead);
        __builtin_prefetch(ahead + width - 1);
        for (int c = 0; c < width; ++c) column[c * rows + i] = matrix[c];
    }
}

// The way back.
template <int width, class C>
void scatter(const C* column, std::int64_t rows, C* matrix, std::int64_t row_stride)
{
    for (std::int64_t i = 0; i < rows; ++i, matrix += row_stride) {
        C* ahead = i + rows_ahead < rows ? matrix + rows_ahead * row_stride : matrix;
        __builtin_prefetch(ahead, 1);
        __builtin_prefetch(ahead + width - 1, 1);
        for (int c = 0; c < width; ++c) matrix[c] = column[c * rows + i];
    }
}

// Fewer columns than a group: pairs and fours together, others one by one.
template <class C>
void scatter_some(int width, const C* column, std::int64_t rows, C* matrix, std::int64_t row_stride)
{
    constexpr signed char together[8] = {1, 1, 2, 1, 4, 1, 1, 1};
    switch (together[width & 7]) {
    case 2:
        return scatter<2>(column, rows, matrix, row_stride);
    case 4:
        return scatter<4>(column, rows, matrix, row_stride);
    default:
        for (int c = 0; c < width; ++c) scatter<1>(column + c * rows, rows, matrix + c, row_stride);
    }
}

} // namespace ork::dft
