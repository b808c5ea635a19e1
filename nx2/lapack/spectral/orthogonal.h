// SPDX-License-Identifier: MIT
// The product of reflectors that a reduction has left below a diagonal.
#pragma once

#include "lapack/reflector.h"

namespace ork::lapack {

// Q = H(1) H(2) ... H(n), n x n: column j of q holds the vector of H(j) below the diagonal, which becomes column j of
// Q.
template <class T>
inline void form_orthogonal(Int n, T* q, Int ldq, const T* tau)
{
    for (Int j = n - 1; j >= 0; --j) {
        T* column = q + j * ldq + j;
        const Int rows = n - j;
        reflect_from_left(rows, rows - 1, column + 1, tau[j], column + ldq, ldq);
        multiply(rows - 1, T{} - tau[j], column + 1);
        column[0] = T(1) - tau[j];
        for (Int i = 0; i < j; ++i) q[j * ldq + i] = T{};
    }
}

} // namespace ork::lapack
