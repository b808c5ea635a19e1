// SPDX-License-Identifier: MIT
// Solutions with the factors of LU, one right-hand side or four at a time. Without transposition columns of the factors
// are subtracted, each multiplied by an element of x that is done; with it x(i) receives
//     - sum of a(k, i) x(k), or of conj(a(k, i)) x(k),
// added up in as many lanes as a register has.
#pragma once

#include "blas/divide.h"
#include "lapack/columns.h"
#include "lapack/small/tile.h"

namespace ork::lapack {

// x <- L^-1 x (unit lower) or U^-1 x, in order of the columns of the triangle.
template <bool lower, int columns, class T>
inline void solve_by_columns(Int n, const T* a, Int lda, T* x, Int ldx)
{
    for (Int step = 0; step < n; ++step) {
        const Int j = lower ? step : n - 1 - step;
        const T* column = a + j * lda;
        T* y[columns];
        T f[columns];
#pragma GCC unroll 4
        for (int q = 0; q < columns; ++q) {
            y[q] = x + q * ldx;
            if constexpr (!lower) y[q][j] = divided(y[q][j], column[j]);
            f[q] = y[q][j];
        }
        const Int first = lower ? j + 1 : 0;
        each<T>(lower ? n - j - 1 : j, [&]<int width>(Int i) {
            const Rows<T> l(load<width>(column + first + i));
#pragma GCC unroll 4
            for (int q = 0; q < columns; ++q) {
                T* at = y[q] + first + i;
                store<width>(at, load<width>(at) - product<false>(l, Number<T>(f[q])));
            }
        });
    }
}

// x <- op(U)^-1 x or op(L)^-1 x for op the transpose, conjugated or not.
template <bool lower, bool conjugated, class T>
inline void solve_by_sums(Int n, const T* a, Int lda, T* x)
{
    for (Int step = 0; step < n; ++step) {
        const Int j = lower ? n - 1 - step : step;
        const T* column = a + j * lda;
        const Int first = lower ? j + 1 : 0, count = lower ? n - j - 1 : j;
        if constexpr (conjugated || !is_complex<T>) {
            x[j] = x[j] - dot(count, column + first, x + first);
        } else { // dot conjugates its first operand
            T sum{};
            for (Int i = first; i < first + count; ++i) sum = sum + column[i] * x[i];
            x[j] = x[j] - sum;
        }
        if constexpr (!lower) x[j] = divided(x[j], conjugated ? conj(column[j]) : column[j]);
    }
}

} // namespace ork::lapack
