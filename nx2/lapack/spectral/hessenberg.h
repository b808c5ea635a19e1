// SPDX-License-Identifier: MIT
// A = Q H Q^T with H zero below its subdiagonal: Householder (Golub and Van Loan, Matrix Computations, 7.4.3).
#pragma once

#include "lapack/spectral/orthogonal.h"

namespace ork::lapack {

// Rows and columns lo ... hi of a matrix that is triangular outside them. The reflectors' vectors stay below the
// subdiagonal; tau: n elements, those of lo ... hi - 1 are set.
template <class R>
inline void reduce_to_hessenberg(Int n, Int lo, Int hi, R* a, Int lda, R* tau)
{
    for (Int i = lo; i < hi; ++i) {
        const Int order = hi - i;
        R* v = a + i * lda + i + 2;
        tau[i] = generate_reflector(order, a[i * lda + i + 1], v);
        reflect_from_right(hi + 1, order, v, tau[i], a + (i + 1) * lda, lda);
        reflect_from_left(order, n - i - 1, v, tau[i], a + (i + 1) * lda + i + 1, lda);
    }
}

template <class R>
inline void form_hessenberg_vectors(Int n, Int lo, Int hi, const R* a, Int lda, const R* tau, R* q, Int ldq)
{
    for (Int j = 0; j < n; ++j)
        for (Int i = 0; i < n; ++i) q[j * ldq + i] = i == j;
    for (Int j = lo; j < hi; ++j)
        for (Int i = j + 2; i <= hi; ++i) q[(j + 1) * ldq + i] = a[j * lda + i];
    if (lo < hi) form_orthogonal(hi - lo, q + (lo + 1) * ldq + lo + 1, ldq, tau + lo);
}

} // namespace ork::lapack
