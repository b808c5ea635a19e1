// SPDX-License-Identifier: MIT
// The micro-kernel over packed panels: C (m x n, column-major) = C + A B, or C = A B, where A stands in panels of
// Units::m rows and B in panels of four registers, then two, then one (packing in pack.h). A panel of B stays in the
// first level of cache while every panel of A passes by it.
#pragma once

#include "blas/gemm/product.h"
#include "blas/gemm/tile.h"

namespace ork::gemm {

// How a finished tile meets C.
struct Finish {
    bool overwrite; // C is written without being read (the first block of depth of a product with beta = 0)
    bool prefetch;  // the tile's lines of C are asked for before its depth loop
    bool aligned;   // every column of C is 16-byte aligned
};

// The first `rows` of the rows in `sum`, fewer than a panel has only at the lower edge of C.
template <Finish finish, class T>
[[gnu::always_inline]] inline void finish_column(T* c, Vec<Real<T>> sum, Int rows)
{
    using R = Real<T>;
    R* x = reinterpret_cast<R*>(c);
    if (rows == Units<T>::m) {
        if constexpr (finish.aligned)
            store_aligned(x, finish.overwrite ? sum : load_aligned(x) + sum);
        else
            store(x, finish.overwrite ? sum : load(x) + sum);
    } else {
        alignas(16) R lanes[16 / sizeof(R)];
        store_aligned(lanes, sum);
        for (Int i = 0; i < rows * Int(sizeof(T) / sizeof(R)); ++i)
            x[i] = finish.overwrite ? lanes[i] : x[i] + lanes[i];
    }
}

// `together` row panels against a panel of `vectors` registers, of which `columns` columns exist. A missing column
// shares its register with the last one and meets zeros instead of A, and a half of A without rows is left out, so that
// padding raises no flag.
template <Finish finish, int vectors, int columns, int together, bool both_halves, class T>
inline void edge_sums(Int rows, Int depth, const T* a, Int a_stride, const T* b, T* c, Int ldc)
{
    using R = Real<T>;
    constexpr int halves = is_complex<T> ? 2 * columns : columns; // of 8 bytes in a row of B
    constexpr int step = 16 / sizeof(R);
    Sums<Arrangement::broadcast, vectors> sums[together] = {};
    const R* x = reinterpret_cast<const R*>(b);
    const auto half = [](const R* p) {
        const double* pair = reinterpret_cast<const double*>(p);
        return from_bits<R>(halves < 2 * vectors ? _mm_load_sd(pair) : _mm_loaddup_pd(pair));
    };
    const auto add = [](__m128d& sum, Vec<R> product) { sum = bits(from_bits<R>(sum) + product); };
    for (Int l = 0; l < depth; ++l, x += vectors * step) {
#pragma GCC unroll 4
        for (int i = 0; i < together; ++i) {
            const R* rows_of_a = reinterpret_cast<const R*>(a + i * a_stride) + l * step;
            const Vec<R> a0 = half(rows_of_a), a1 = both_halves ? half(rows_of_a + step / 2) : a0;
#pragma GCC unroll 4
            for (int p = 0; p < vectors; ++p) {
                add(sums[i].first[p], a0 * load_aligned(x + p * step));
                if constexpr (both_halves) add(sums[i].second[p], a1 * load_aligned(x + p * step));
            }
        }
    }
#pragma GCC unroll 4
    for (int i = 0; i < together; ++i)
#pragma GCC unroll 4
        for (int j = 0; j < columns; ++j)
            finish_column<finish>(c + i * Units<T>::m + j * ldc, column<T>(sums[i], j), rows);
}

template <Finish finish, int vectors, int columns, int together, class T>
inline void edge_tiles(Int rows, Int depth, const T* a, Int a_stride, const T* b, T* c, Int ldc)
{
    with_flag(rows * sizeof(T) > 8, [&]<bool both_halves>() {
        edge_sums<finish, vectors, columns, together, both_halves>(rows, depth, a, a_stride, b, c, ldc);
    });
}

// All row panels against one full panel of columns. What is left below full row panels (the last odd row) goes to the
// edge.
template <Finish finish, Arrangement arrangement, class T>
void full_panel(Int m, Int depth, const T* a, Int a_stride, const T* b, T* c, Int ldc)
{
    using R = Real<T>;
    constexpr Int unit = Units<T>::m, columns = Units<T>::n;
    Int i = 0;
    for (; i + unit <= m; i += unit, a += a_stride, c += unit) {
        if constexpr (finish.prefetch) {
#pragma GCC unroll 8
            for (int j = 0; j < columns; ++j) _mm_prefetch(reinterpret_cast<const char*>(c + j * ldc), _MM_HINT_T0);
        }
        const auto sums =
            multiply_tile<arrangement>(reinterpret_cast<const R*>(a), reinterpret_cast<const R*>(b), depth);
#pragma GCC unroll 8
        for (int j = 0; j < columns; ++j) finish_column<finish>(c + j * ldc, column<T>(sums, j), unit);
    }
    if (i < m) edge_tiles<finish, 4, columns, 1>(m - i, depth, a, a_stride, b, c, ldc);
}

// All row panels against such a panel: enough of them at a time to keep eight sums under way.
template <Finish finish, int vectors, int columns, class T>
void edge_panel(Int m, Int depth, const T* a, Int a_stride, const T* b, T* c, Int ldc)
{
    constexpr Int unit = Units<T>::m;
    constexpr int together = vectors == 2 ? 2 : 4;
    Int i = 0;
    for (; i + together * unit <= m; i += together * unit)
        edge_tiles<finish, vectors, columns, together>(unit, depth, a + i / unit * a_stride, a_stride, b, c + i, ldc);
    for (; i < m; i += unit)
        edge_tiles<finish, vectors, columns, 1>(m - i < unit ? m - i : unit, depth, a + i / unit * a_stride, a_stride,
                                                b, c + i, ldc);
}

// A block: m x n of C, with `depth` the padded depth of both packed operands (a multiple of Units::k) and the distances
// from panel to panel in elements. The narrower panels of B stand where the next full one would, one behind the other.
template <Finish finish, Arrangement arrangement, class T>
void multiply_packed(Int m, Int n, Int depth, const T* a, Int a_stride, const T* b, Int b_stride, T* c, Int ldc)
{
    constexpr Int unit = Units<T>::n, half_step = Units<T>::b_step / 2;
    if (m < 1) return;
    Int j = 0;
    for (; j + unit <= n; j += unit, b += b_stride)
        full_panel<finish, arrangement>(m, depth, a, a_stride, b, c + j * ldc, ldc);
    if (n - j >= unit / 2) {
        edge_panel<finish, 2, unit / 2>(m, depth, a, a_stride, b, c + j * ldc, ldc);
        j += unit / 2;
        b += half_step * depth;
    }
    if constexpr (unit == 8) // a register holds two real columns, but one complex
        if (n - j >= 2) {
            edge_panel<finish, 1, 2>(m, depth, a, a_stride, b, c + j * ldc, ldc);
            j += 2;
            b += half_step / 2 * depth;
        }
    if (n - j >= 1) edge_panel<finish, 1, 1>(m, depth, a, a_stride, b, c + j * ldc, ldc);
}

} // namespace ork::gemm
