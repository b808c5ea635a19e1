// SPDX-License-Identifier: MIT
// One triangle of a product. The tiles away from the diagonal are the whole product's; a tile on the diagonal is summed
// beside C, and the part of it that is wanted is added. Every element has the bits of the whole product.
#pragma once

#include "blas/gemm/blocked.h"

namespace ork::gemm {

// Adds to C, or writes, the elements of the wanted triangle in rows [first, last) and columns [column, column + count)
// from `sums`, whose element (0, 0) belongs to (row, column).
template <class T>
inline void add_corner(bool lower, bool overwrite, const T* sums, Int ld, Int row, Int first, Int last, Int column,
                       Int count, T* c, Int ldc)
{
    for (Int j = column; j < column + count; ++j) {
        const Int begin = lower && j > first ? j : first, end = !lower && j + 1 < last ? j + 1 : last;
        const T* sum = sums + (j - column) * ld - row;
        for (Int i = begin; i < end; ++i) {
            T& x = c[i + j * ldc];
            x = overwrite ? sum[i] : x + sum[i];
        }
    }
}

struct Triangle {
    bool lower;

    bool meets(Int row, Int rows, Int column, Int columns) const
    {
        return lower ? row + rows > column : row < column + columns;
    }

    // Panel after panel of columns: rows that are wanted whole, and those that the diagonal crosses.
    template <class T>
    void multiply(const PackedBlock<T>& block, Int row, Int rows, Int column, Int columns, bool overwrite, T* c,
                  Int ldc) const
    {
        constexpr Int unit = Units<T>::m, width = Units<T>::n;
        const auto clamp = [&](Int x) { return x < 0 ? 0 : x < rows ? x : rows; };
        // Panels that the diagonal does not reach go together.
        const Int whole = lower ? row - column : columns;
        Int j = 0;
        if (whole >= width) {
            j = (whole < columns ? whole / width * width : columns);
            if (lower) block.multiply(0, rows, 0, j, overwrite, c + row + column * ldc, ldc);
        }
        if (!lower) {
            const Int crossed = row + rows - column; // columns from here on are wanted whole
            j = crossed <= 0 ? 0 : crossed < columns ? round_up(crossed, width) : columns;
            if (j < columns) block.multiply(0, rows, j, columns - j, overwrite, c + row + (column + j) * ldc, ldc);
        }
        const Int from = lower ? j : 0, to = lower ? columns : j < columns ? j : columns;
        for (Int p = from; p < to; p += width) {
            const Int count = to - p < width ? to - p : width, diagonal = column + p - row;
            const Int top = clamp(diagonal) / unit * unit, bottom = clamp(round_up(clamp(diagonal + count), unit));
            T* out = c + row + (column + p) * ldc;
            if (lower && bottom < rows) block.multiply(bottom, rows - bottom, p, count, overwrite, out + bottom, ldc);
            if (!lower && top > 0) block.multiply(0, top, p, count, overwrite, out, ldc);
            if (top < bottom) {
                constexpr Int height = width + 2 * unit;
                alignas(16) T sums[height * width];
                block.multiply(top, bottom - top, p, count, true, sums, height);
                add_corner(lower, overwrite, sums, height, row + top, row + top, row + bottom, column + p, count, c,
                           ldc);
            }
        }
    }

    // A panel of rows is multiplied with the columns before its corner or behind it, then with the corner's.
    template <class T, class S>
    void multiply_direct(const Product<T, S>& whole, Int kb) const
    {
        const Int step = kb < deepest_block ? kb : deepest_block;
        for (Int l = 0; l < whole.k; l += step) {
            const auto p = whole.block(l, whole.k - l < step ? whole.k - l : step);
            with_flag(p.overwrite, [&]<bool overwrite>() { add_tiles<overwrite>(p); });
        }
    }

private:
    template <bool overwrite, class T, class S>
    void add_tiles(const Product<T, S>& p) const
    {
        for_each_panel(
            p, [&]<int vectors, bool full>(Int row, const T* a, Int a_stride, Tail tail, Int first, Int last) {
                const auto columns = [&](Int from, Int count, T* c, Int ldc) {
                    auto part = p;
                    part.n = count;
                    part.b = p.b.from(from, 0);
                    part.c = c;
                    part.ldc = ldc;
                    return part;
                };
                const Int from = lower ? 0 : last, count = lower ? first : p.n - last;
                if (count > 0)
                    direct_panel<overwrite, vectors, full>(columns(from, count, p.c + from * p.ldc, p.ldc), row, a,
                                                           a_stride, tail);
                constexpr Int height = 2 * Vec<T>::lanes;
                alignas(16) T sums[height * height];
                direct_panel<true, vectors, full>(columns(first, last - first, sums, height), 0, a, a_stride, tail);
                add_corner(lower, overwrite, sums, height, row, first, last, first, last - first, p.c, p.ldc);
            });
    }
};

} // namespace ork::gemm
