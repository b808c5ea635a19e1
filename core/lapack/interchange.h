// SPDX-License-Identifier: MIT
// Rows of a matrix exchanged as pivots say.
#pragma once

#include "lapack/level3.h"
#include "lapack/pivots.h"

namespace ork::lapack {

enum class Order { forward, backward };

// Exchanges row i of A with row ipiv(first + i) - base for i = 0 .. count - 1, or in the opposite order; n columns. Row
// `base` + 1 of the pivots is A's first.
template <class T>
void exchange_rows(Int n, Matrix<T> a, Pivots ipiv, Int first, Int count, Int base, Order order);

} // namespace ork::lapack
