// SPDX-License-Identifier: MIT
// y = alpha op(A) x + beta y for a compressed-row matrix.
#pragma once

#include "spblas/csr.h"
#include "spblas/rule.h"
#include "spblas/scale.h"

namespace ork::spblas {

// Rows first .. last of A, 0-based and exclusive.
template <class Int>
struct Rows {
    Int first, last;
};

template <class Int, class T>
inline T row_dot(const Csr<Int, T>& a, Int row, int base, bool conjugate, const T* x)
{
    T s{};
    for (Int k = a.first(row); k < a.last(row); ++k)
        s = s + a.val[k] * x[a.indx[k] - base];
    return s;
}

template <Rule r, class Int, class T>
[[gnu::noinline]] void csr_mvout(Rows<Int> rows, Int m, T alpha, Csr<Int, T> a, const T* x, T* y, T beta)
{
    if constexpr (r.type == 'g' && !r.transpose) {
        for (Int i = rows.first; i < rows.last; ++i) {
            const T s = row_dot(a, i, r.base, r.conjugate, x);
            y[i] = beta == T{} ? alpha * s : y[i] * beta + s * alpha;
        }
    }
}

} // namespace ork::spblas
