// SPDX-License-Identifier: MIT
// Cholesky of a small matrix. The upper variant computes the columns of U as the lower one computes the rows of L: the
// same sums with rows and columns exchanged, of u(k, i) conj(u(k, j)) for l(i, k) conj(l(j, k)).
#pragma once

#include "lapack/small/operand.h"

namespace ork::lapack {

// Element (i, j) of L, or (j, i) of U.
template <bool upper, class T>
inline T& element(T* a, Int lda, Int i, Int j)
{
    return upper ? a[j + i * lda] : a[i + j * lda];
}

// a(j, j) less the squares before it: even and odd ones apart, the last of an odd number singly.
template <bool upper, class T>
inline Real<T> reduced_diagonal(Int j, T* a, Int lda)
{
    using R = Real<T>;
    const auto square = [&](Int k) -> R {
        const T x = element<upper>(a, lda, j, k);
        if constexpr (is_complex<T>)
            return x.re * x.re + x.im * x.im;
        else
            return x * x;
    };
    R even = 0, odd = 0;
    Int k = 0;
    for (; k + 2 <= j; k += 2) even = even - square(k), odd = odd - square(k + 1);
    R d = real_part(element<upper>(a, lda, j, j)) + (even + odd);
    if (k < j) d = d - square(k);
    return d;
}

template <bool upper, class T>
inline Int cholesky(Int n, T* a, Int lda)
{
    using R = Real<T>;
    for (Int j = 0; j < n; ++j) {
        const R d = reduced_diagonal<upper>(j, a, lda);
        if (!(d > 0)) {
            element<upper>(a, lda, j, j) = T(d);
            return j + 1;
        }
        const R diagonal = root(d);
        element<upper>(a, lda, j, j) = T(diagonal);
        for (Int i = j + 1; i < n; ++i) {
            T x = element<upper>(a, lda, i, j);
            for (Int k = 0; k < j; ++k) x = x - element<upper>(a, lda, i, k) * conj(element<upper>(a, lda, j, k));
            if constexpr (is_complex<T>)
                element<upper>(a, lda, i, j) = {x.re / diagonal, x.im / diagonal};
            else
                element<upper>(a, lda, i, j) = x / diagonal;
        }
    }
    return 0;
}

} // namespace ork::lapack
