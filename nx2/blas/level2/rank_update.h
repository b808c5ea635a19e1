// SPDX-License-Identifier: MIT
// Updates of one triangle of a symmetric or Hermitian matrix by one product or two:
//     a(i, j) <- (a(i, j) + x(i) t(j)) + y(i) u(j)
// with t(j) = alpha x(j) for one, t(j) = alpha y(j) and u(j) = alpha x(j) for two; Hermitian: t(j) = alpha conj(..),
// u(j) = conj(alpha x(j)), only real parts count on the diagonal, and its imaginary parts become 0. Every element's
// bits depend on nothing beside it, so any share of the columns gives those of the whole.
#pragma once

#include "blas/level2/update.h"

namespace ork::level2 {

// Columns [first, last) of the rows [top, bottom) of one triangle. `beside` holds those rows of the vectors and
// factors_of(j, t) computes the factors of column j. Two columns at a time: what they have in common is a rectangle,
// and one element of the diagonal is left over.
template <bool upper, bool aligned, int terms, class T, class FactorsOf>
[[gnu::noinline]] void rank_update(Int top, Int bottom, Int first, Int last, Beside<T, terms> beside, T* a, Int lda,
                                   const FactorsOf& factors_of)
{
    const auto inside = [&](Int i) { return i >= top && i < bottom; };
    const auto update = [&]<int count>(Int begin, Int end, const T(*t)[terms], T* column) __attribute__((always_inline))
    {
        begin = (begin > top ? begin : top) - top, end = (end < bottom ? end : bottom) - top;
        if (begin < end) update::columns<aligned, count, terms>(begin, end, beside, t, column + top, lda);
    };
    const auto make_real = [&](Int j) __attribute__((always_inline))
    {
        if constexpr (is_complex<T>)
            if (inside(j)) put(&a[j + j * lda].im, Real<T>(0));
    };
    Int j = first;
    T t[2][terms];
    for (; j + 2 <= last; j += 2) {
        factors_of(j, t[0]), factors_of(j + 1, t[1]);
        T* const column = a + j * lda;
        const Int left = upper ? j + 1 : j; // the element that only one of the two has
        if (inside(left)) update.template operator()<1>(left, left + 1, t + (left - j), column + (left - j) * lda);
        update.template operator()<2>(upper ? top : j + 1, upper ? j + 1 : bottom, t, column);
        make_real(j), make_real(j + 1);
    }
    if (j < last) {
        factors_of(j, t[0]);
        update.template operator()<1>(upper ? top : j, upper ? j + 1 : bottom, t, a + j * lda);
        make_real(j);
    }
}

template <int terms, class T, class FactorsOf>
inline void rank_update(bool upper, bool aligned, Int top, Int bottom, Int first, Int last, Beside<T, terms> beside,
                        T* a, Int lda, const FactorsOf& factors_of)
{
    with_flag(upper, [&]<bool upper>() {
        with_flag(aligned, [&]<bool aligned>() {
            rank_update<upper, aligned, terms>(top, bottom, first, last, beside, a, lda, factors_of);
        });
    });
}

} // namespace ork::level2
