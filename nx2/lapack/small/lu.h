// SPDX-License-Identifier: MIT
// LU of a matrix, four columns at a time: they get what all columns to their left do to them, then are factored as a
// panel.
#pragma once

#include "lapack/small/panel.h"
#include "lapack/small/tile.h"

namespace ork::lapack {

// Rows first + 1 .. last change places with those that ipiv (from 1) names, in columns from `begin` to `end`, four of
// them a step.
template <class T>
inline void exchange_rows(Int first, Int last, const Int* ipiv, T* a, Int lda, Int begin, Int end)
{
    const auto columns = [&]<int count>(T* x) {
        for (Int j = first; j < last; ++j) {
            const Int p = ipiv[j] - 1;
#pragma GCC unroll 4
            for (int q = 0; q < count; ++q) {
                const T kept = x[j + q * lda];
                x[j + q * lda] = x[p + q * lda], x[p + q * lda] = kept;
            }
        }
    };
    Int k = begin;
    for (; k + 4 <= end; k += 4) columns.template operator()<4>(a + k * lda);
    for (; k < end; ++k) columns.template operator()<1>(a + k * lda);
}

// x <- L^-1 x for `rows` rows, unit lower.
template <int rows, int columns, class T>
[[gnu::always_inline]] inline void solve_square(const T* l, Int lda, T* x, Int ldx)
{
    T factor[rows][rows];
#pragma GCC unroll 4
    for (int t = 0; t < rows; ++t)
#pragma GCC unroll 4
        for (int i = t + 1; i < rows; ++i) factor[i][t] = l[i + t * lda];
#pragma GCC unroll 4
    for (int q = 0; q < columns; ++q) {
        T y[rows];
#pragma GCC unroll 4
        for (int i = 0; i < rows; ++i) y[i] = x[i + q * ldx];
#pragma GCC unroll 4
        for (int i = 1; i < rows; ++i)
#pragma GCC unroll 4
            for (int t = 0; t < i; ++t) y[i] = y[i] - factor[i][t] * y[t];
#pragma GCC unroll 4
        for (int i = 1; i < rows; ++i) x[i + q * ldx] = y[i];
    }
}

// X <- L^-1 X for L of `depth` rows, unit lower, and `columns` columns of X.
template <int columns, class T>
inline void solve_unit_lower(Int depth, const T* l, Int lda, T* x, Int ldx)
{
    Int r = 0;
    for (; r + 4 <= depth; r += 4) {
        if (r > 0) subtract_products<false, columns>(Int(4), r, l + r, lda, x, Int(1), ldx, x + r, ldx);
        solve_square<4, columns>(l + r + r * lda, lda, x + r, ldx);
    }
    for (; r < depth; ++r) subtract_products<false, columns>(Int(1), r, l + r, lda, x, Int(1), ldx, x + r, ldx);
}

template <bool pivoting, class T>
inline void factor(Int m, Int n, T* a, Int lda, Int* ipiv, Real<T> safe, Int& info)
{
    const auto block = [&]<int columns>(Int j) {
        T* x = a + j * lda;
        const Int above = j < m ? j : m;
        solve_unit_lower<columns>(above, a, lda, x, lda);
        if (j >= m) return;
        subtract_products<false, columns>(m - j, j, a + j, lda, x, Int(1), lda, x + j, lda);
        const Panel<T> panel{m - j, x + j, lda};
        panel.template factor<columns, pivoting>(safe, j, ipiv + j, info);
        if constexpr (pivoting) {
            const Int last = j + columns < m ? j + columns : m;
            exchange_rows(j, last, ipiv, a, lda, 0, j);
            exchange_rows(j, last, ipiv, a, lda, j + columns, n);
        }
    };
    Int j = 0;
    for (; j + 4 <= n; j += 4) block.template operator()<4>(j);
    switch (n - j) {
    case 1:
        return block.template operator()<1>(j);
    case 2:
        return block.template operator()<2>(j);
    case 3:
        return block.template operator()<3>(j);
    }
}

} // namespace ork::lapack
