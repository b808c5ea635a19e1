// SPDX-License-Identifier: MIT
// A = Q B P^H with an upper bidiagonal, real B: Householder reflectors from both sides in turn (Golub and Van Loan,
// Matrix Computations, 5.4.8).
#pragma once

#include "lapack/spectral/orthogonal.h"

namespace ork::lapack {

// d (n) and e (n - 1): diagonals of B. The vectors of Q's reflectors stay below the diagonal of a, those of P's right
// of the superdiagonal, by rows and not conjugated. row: n elements of scratch.
template <class T>
inline void reduce_to_bidiagonal(Int n, T* a, Int lda, Real<T>* d, Real<T>* e, T* tauq, T* taup, T* row)
{
    for (Int i = 0; i < n; ++i) {
        T* at = a + i * lda + i;
        const Int rest = n - i - 1;
        tauq[i] = generate_reflector(rest + 1, at[0], at + 1);
        d[i] = real_part(at[0]);
        if (rest == 0) return;
        reflect_from_left(rest + 1, rest, at + 1, conj(tauq[i]), at + lda, lda);
        // The reflector that takes the conjugated row to a multiple of the first axis does so from the right with the
        // row itself.
        for (Int j = 0; j < rest; ++j) row[j] = conj(at[(j + 1) * lda]);
        taup[i] = generate_reflector(rest, row[0], row + 1);
        e[i] = real_part(row[0]);
        reflect_from_right(rest, rest, row + 1, taup[i], at + lda + 1, lda);
        for (Int j = 1; j < rest; ++j) at[(j + 1) * lda] = row[j];
    }
}

// The vectors of P's reflectors from rows to columns one further right, which may be below the diagonal of the same
// matrix, and then P itself.
template <class T>
inline void form_right(Int n, const T* a, Int lda, T* v, Int ldv, const T* taup)
{
    for (Int i = 0; i + 2 < n; ++i)
        for (Int j = i + 2; j < n; ++j) v[(i + 1) * ldv + j] = a[j * lda + i];
    v[0] = T(1);
    for (Int j = 1; j < n; ++j) v[j] = v[j * ldv] = T{};
    if (n > 1) form_orthogonal(n - 1, v + ldv + 1, ldv, taup);
}

template <class T>
inline void form_left(Int n, const T* a, Int lda, T* u, Int ldu, const T* tauq)
{
    if (u != a)
        for (Int j = 0; j < n; ++j)
            for (Int i = j + 1; i < n; ++i) u[j * ldu + i] = a[j * lda + i];
    form_orthogonal(n, u, ldu, tauq);
}

} // namespace ork::lapack
