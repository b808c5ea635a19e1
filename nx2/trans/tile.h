// SPDX-License-Identifier: MIT
// Transposition with unit strides by squares that fit a register a column, and by tiles of one cache line a side: a
// tile reads whole lines and writes whole lines.
#pragma once

#include "trans/operands.h"

namespace ork::trans {

// The square of lanes x lanes elements at (i, j) goes to (to_i, to_j), if not said otherwise to (j, i).
template <class T, class From, class To>
[[gnu::always_inline]] inline void square(const From& from, const To& to, Int i, Int j, Int to_i, Int to_j)
{
    constexpr int lanes = Vec<T>::lanes;
    Vec<T> x[lanes];
#pragma GCC unroll 4
    for (int k = 0; k < lanes; ++k) x[k] = from.template get<lanes>(i, j + k);
    transpose(x);
#pragma GCC unroll 4
    for (int k = 0; k < lanes; ++k) put<lanes>(to, to_i, to_j + k, x[k]);
}
template <class T, class From, class To>
[[gnu::always_inline]] inline void square(const From& from, const To& to, Int i, Int j)
{
    square<T>(from, to, i, j, j, i);
}

// Of any size: squares, and single elements at the edges.
template <class T, class From, class To>
[[gnu::noinline]] void transpose_edge(Int m, Int n, const From& from, const To& to)
{
    constexpr int lanes = Vec<T>::lanes;
    const From source = from;
    const To sink = to;
    const Int whole_m = m - m % lanes, whole_n = n - n % lanes;
    for (Int i = 0; i < whole_m; i += lanes)
        for (Int j = 0; j < whole_n; j += lanes) square<T>(source, sink, i, j);
    for (Int i = 0; i < m; ++i)
        for (Int j = i < whole_m ? whole_n : 0; j < n; ++j) put<1>(sink, j, i, source.template get<1>(i, j));
}

// m x n elements: rows of tiles from left to right, so that runs of a column of the result are written as they stand.
template <class T, class From, class To>
[[gnu::noinline]] void transpose_tiles(Int m, Int n, const From& from, const To& to)
{
    constexpr int lanes = Vec<T>::lanes, side = line<T>;
    const From source = from; // in registers, whatever is stored meanwhile
    const To sink = to;
    const Int whole_m = m - m % side, whole_n = n - n % side;
    for (Int i = 0; i < whole_m; i += side)
        for (Int j = 0; j < whole_n; j += side)
#pragma GCC unroll 4
            for (int k = 0; k < side; k += lanes)
#pragma GCC unroll 4
                for (int l = 0; l < side; l += lanes) square<T>(source, sink, i + k, j + l);
    if (whole_n < n) transpose_edge<T>(whole_m, n - whole_n, source.from(0, whole_n), sink.from(whole_n, 0));
    if (whole_m < m) transpose_edge<T>(m - whole_m, n, source.from(whole_m, 0), sink.from(0, whole_m));
}

// Columns of A that are transposed together, by the 4096-byte pages that they and the columns of B span, so that both
// stay in the first level of address translation; leading dimensions in bytes. Where that leaves few columns, 32 are
// taken all the same: in the second-level cache columns of 4096 bytes run 1.7 to 2.7 times as fast as by 8.
inline Int strip_width(Int lda, Int ldb)
{
    constexpr Int page = 4096, aliasing = 32768, least = 32;
    const Int pages_a = (lda + page - 1) / lda, pages_b = (ldb + page - 1) / ldb;
    const bool few = ldb <= page || pages_a * lda % aliasing == 0;
    const Int width = few ? 8 * pages_a : (62 - (pages_b + 7) / pages_b) * pages_a;
    return width < least ? least : width;
}

template <class T, class From, class To>
void transpose_strips(Int m, Int n, Int width, const From& from, const To& to)
{
    for (Int j = 0; j < n; j += width)
        transpose_tiles<T>(m, n - j < width ? n - j : width, from.from(0, j), to.from(j, 0));
}

} // namespace ork::trans
