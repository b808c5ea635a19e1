// SPDX-License-Identifier: MIT
// Products of k Householder reflectors as one block, H(1) ... H(k) = I - V T V^H: V unit lower trapezoidal as geqrf
// leaves it, T upper triangular. Schreiber and Van Loan, "A storage-efficient WY representation for products of
// Householder transformations", 1989.
#pragma once

#include "lapack/level3.h"

namespace ork::lapack {

template <class T>
struct BlockReflector {
    Int length, k;     // rows and columns of V
    Matrix<const T> v; // as geqrf leaves it
    Matrix<T> top, t;  // V's first k rows with the ones and zeros written out; T
    static constexpr Int memory(Int k) { return 2 * k * k; }
};

// The block of the reflectors in columns of A with their factors tau. memory: BlockReflector::memory(k) elements.
template <class T>
BlockReflector<T> form_block(Int length, Int k, Matrix<const T> v, const T* tau, T* memory);

enum class Side { left, right };

// C <- op(H) C, or C op(H); `others` columns or rows of C beside those that H mixes. work: k * others elements.
template <class T>
void apply_block(Side side, bool adjoint, const BlockReflector<T>& h, Int others, Matrix<T> c, T* work);

} // namespace ork::lapack
