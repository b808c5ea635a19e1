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
template <bool upper, bool aligned, bool far, int terms, class T, class FactorsOf>
[[gnu::noinline]] void rank_update(Int top, Int bottom, Int first, Int last, Beside<T, terms> beside, T* a, Int lda,
                                   const FactorsOf& factors_of)
{
    const auto inside = [&](Int i) { return i >= top && i < bottom; };
    const auto rectangle = [&]<int count>(Int begin, Int end, const T(*t)[terms], T* column)
        __attribute__((always_inline))
    {
        begin = begin > top ? begin : top, end = end < bottom ? end : bottom;
        if (begin < end)
            update::columns<aligned, far, count, terms>(begin - top, end - top, beside, t, column + top, lda);
    };
    const auto diagonal = [&](Int j, const T(&t)[terms]) __attribute__((always_inline))
    {
        if (!inside(j)) return;
        T* const element = a + j + j * lda;
        T sum = get(element);
#pragma GCC unroll 2
        for (int k = 0; k < terms; ++k) sum = sum + t[k] * get(beside.vector[k] + (j - top));
        put(element, sum);
    };
    const auto make_real = [&](Int j) __attribute__((always_inline))
    {
        if constexpr (is_complex<T>)
            if (inside(j)) put(&a[j + j * lda].im, Real<T>(0));
    };
    Int j = first;
    for (; j + 2 <= last; j += 2) {
        T t[2][terms];
        factors_of(j, t[0]), factors_of(j + 1, t[1]);
        if constexpr (upper)
            diagonal(j + 1, t[1]);
        else
            diagonal(j, t[0]);
        rectangle.template operator()<2>(upper ? top : j + 1, upper ? j + 1 : bottom, t, a + j * lda);
        make_real(j), make_real(j + 1);
    }
    if (j < last) {
        T t[1][terms];
        factors_of(j, t[0]);
        rectangle.template operator()<1>(upper ? top : j, upper ? j + 1 : bottom, t, a + j * lda);
        make_real(j);
    }
}

// The same column by column, all n rows of the triangle: what the other way spends on beginning is more than it saves
// in few columns.
template <bool upper, int terms, class T, class FactorsOf>
[[gnu::noinline]] void small_rank_update(Int n, Int first, Int last, Beside<T, terms> beside, T* a, Int lda,
                                         const FactorsOf& factors_of)
{
    constexpr int lanes = Vec<T>::lanes;
    a += first * lda;
    for (Int j = first; j < last; ++j, a += lda) {
        T t[terms];
        factors_of(j, t);
        const Factor<T> f(t[0]), g(t[terms - 1]);
        const auto step = [&]<int width>(Int i) __attribute__((always_inline))
        {
            Vec<T> s = sum(load<width>(a + i), f * load<width>(beside.vector[0] + i));
            if constexpr (terms == 2) s = sum(s, g * load<width>(beside.vector[1] + i));
            store<width>(a + i, s);
        };
        Int i = upper ? 0 : j;
        const Int end = upper ? j + 1 : n;
        for (; i + lanes <= end; i += lanes) step.template operator()<lanes>(i);
        if constexpr (lanes == 4)
            if (i + 2 <= end) {
                step.template operator()<2>(i);
                i += 2;
            }
        if constexpr (lanes > 1)
            if (i < end) step.template operator()<1>(i);
        if constexpr (is_complex<T>) put(&a[j].im, Real<T>(0));
    }
}

template <int terms, class T, class FactorsOf>
inline void rank_update(bool upper, Loads loads, Int top, Int bottom, Int first, Int last, Beside<T, terms> beside,
                        T* a, Int lda, const FactorsOf& factors_of)
{
    with_flag(upper, [&]<bool upper>() {
        with_loads(loads, [&]<bool aligned, bool far>() {
            rank_update<upper, aligned, far, terms>(top, bottom, first, last, beside, a, lda, factors_of);
        });
    });
}

// All n rows, which are in `beside`.
template <int terms, class T, class FactorsOf>
inline void rank_update(bool upper, bool may_be_aligned, Int n, Int first, Int last, Beside<T, terms> beside, T* a,
                        Int lda, const FactorsOf& factors_of)
{
    constexpr Int small = 16;
    if (n > small) {
        Loads loads = loads_of(n, n, a, lda);
        loads.aligned &= may_be_aligned;
        return rank_update(upper, loads, 0, n, first, last, beside, a, lda, factors_of);
    }
    if (upper)
        small_rank_update<true, terms>(n, first, last, beside, a, lda, factors_of);
    else
        small_rank_update<false, terms>(n, first, last, beside, a, lda, factors_of);
}

} // namespace ork::level2
