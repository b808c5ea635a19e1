// SPDX-License-Identifier: MIT
// The micro-kernel over packed panels: C (m x n, column-major) = C + A B, or C = A B, where A stands in panels of
// Units::m rows and B in panels of 8, then 4, then 2 columns (packing in pack_a.h and pack_b.h). A panel of B stays in
// the first level of cache while every panel of A passes by it.
#pragma once

#include "blas/gemm/tile_d.h"
#include "simd/vec.h"

namespace ork::gemm {

// How a finished tile meets C.
struct Finish {
    bool overwrite; // C is written without being read (the first block of depth of a product with beta = 0)
    bool prefetch;  // the tile's lines of C are asked for before its depth loop
    bool aligned;   // every column of C is 16-byte aligned
};

template <Finish finish, class T>
inline void finish_column(T* c, Vec<T> sum)
{
    if constexpr (finish.aligned)
        store_aligned(c, finish.overwrite ? sum : load_aligned(c) + sum);
    else
        store(c, finish.overwrite ? sum : load(c) + sum);
}

template <Finish finish, class T>
inline void finish_element(T* c, T sum)
{
    *c = finish.overwrite ? sum : *c + sum;
}

// All full row panels against one panel of 8 columns.
template <Finish finish, Arrangement arrangement>
void panel8(Int rows, Int depth, const double* a, Int a_stride, const double* b, double* c, Int ldc)
{
    for (Int i = 0; i < rows; i += 2, a += a_stride, c += 2) {
        if constexpr (finish.prefetch) {
#pragma GCC unroll 8
            for (int j = 0; j < 8; ++j) _mm_prefetch(reinterpret_cast<const char*>(c + j * ldc), _MM_HINT_T0);
        }
        const TileD<arrangement> tile = multiply_tile<arrangement>(a, b, depth);
#pragma GCC unroll 8
        for (int j = 0; j < 8; ++j) finish_column<finish>(c + j * ldc, Vec<double>{tile.column(j)});
    }
}

// The same for a panel of `width` columns of which `columns` exist: a pair's missing column is never multiplied, so it
// raises no flag. `together` row panels at a time keep eight sums under way.
template <Finish finish, int width, int columns, int together, class T>
inline Int panel_edge_rows(Int row, Int rows, Int depth, const T* a, Int a_stride, const T* b, T* c, Int ldc)
{
    constexpr int lanes = Vec<T>::lanes;
    for (; row + together * lanes <= rows; row += together * lanes) {
        const T* panel = a + row / lanes * a_stride;
        Vec<T> sum[columns][together] = {};
        for (Int l = 0; l < depth; ++l) {
            Vec<T> rows_of_a[together];
#pragma GCC unroll 4
            for (int i = 0; i < together; ++i) rows_of_a[i] = load_aligned(panel + i * a_stride + l * lanes);
#pragma GCC unroll 4
            for (int j = 0; j < columns; ++j) {
                const Vec<T> element = broadcast(b[l * width + j]);
#pragma GCC unroll 4
                for (int i = 0; i < together; ++i) sum[j][i] = sum[j][i] + rows_of_a[i] * element;
            }
        }
#pragma GCC unroll 4
        for (int j = 0; j < columns; ++j)
#pragma GCC unroll 4
            for (int i = 0; i < together; ++i) finish_column<finish>(c + row + i * lanes + j * ldc, sum[j][i]);
    }
    return row;
}

template <Finish finish, int width, int columns, class T>
void panel_edge(Int rows, Int depth, const T* a, Int a_stride, const T* b, T* c, Int ldc)
{
    static_assert(Units<T>::m == Vec<T>::lanes);
    constexpr int together = columns == 4 ? 2 : 4;
    const Int row = panel_edge_rows<finish, width, columns, together>(0, rows, depth, a, a_stride, b, c, ldc);
    panel_edge_rows<finish, width, columns, 1>(row, rows, depth, a, a_stride, b, c, ldc);
}

// One row of A, the last of an odd number, against a panel.
template <Finish finish, int width, int columns, class T>
void single_row(Int depth, const T* a, const T* b, T* c, Int ldc)
{
    constexpr int lanes = Vec<T>::lanes, stride = static_cast<int>(Units<T>::m);
    if constexpr (columns % lanes == 0) {
        Vec<T> sum[columns / lanes] = {};
        for (Int l = 0; l < depth; ++l)
#pragma GCC unroll 4
            for (int j = 0; j < columns / lanes; ++j)
                sum[j] = sum[j] + broadcast(a[l * stride]) * load_aligned(b + l * width + j * lanes);
#pragma GCC unroll 8
        for (int j = 0; j < columns; ++j) finish_element<finish>(c + j * ldc, lane(sum[j / lanes], j % lanes));
    } else {
        T sum[columns] = {};
        for (Int l = 0; l < depth; ++l)
            for (int j = 0; j < columns; ++j) sum[j] += a[l * stride] * b[l * width + j];
        for (int j = 0; j < columns; ++j) finish_element<finish>(c + j * ldc, sum[j]);
    }
}

// A block: m x n of C, with `depth` the padded depth of both packed operands (a multiple of Units::k) and the distances
// from panel to panel in elements. The 4-wide panel and the pairs of B stand where the next 8-wide panel would.
template <Finish finish, Arrangement arrangement, class T>
void multiply_packed(Int m, Int n, Int depth, const T* a, Int a_stride, const T* b, Int b_stride, T* c, Int ldc)
{
    constexpr Int unit = Units<T>::m;
    const Int rows = m / unit * unit;
    const T* last_rows = a + rows / unit * a_stride;
    const auto panel = [&]<int width, int columns>() {
        if (rows > 0) {
            if constexpr (width == 8)
                panel8<finish, arrangement>(rows, depth, a, a_stride, b, c, ldc);
            else
                panel_edge<finish, width, columns>(rows, depth, a, a_stride, b, c, ldc);
        }
        for (Int i = rows; i < m; ++i) single_row<finish, width, columns>(depth, last_rows + (i - rows), b, c + i, ldc);
        c += columns * ldc;
    };
    Int j = 0;
    for (; j + 8 <= n; j += 8, b += b_stride) panel.template operator()<8, 8>();
    if (n - j >= 4) panel.template operator()<4, 4>(), j += 4, b += 4 * depth;
    if (n - j >= 2) panel.template operator()<2, 2>(), j += 2, b += 2 * depth;
    if (n - j >= 1) panel.template operator()<2, 1>();
}

} // namespace ork::gemm
