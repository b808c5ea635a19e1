// SPDX-License-Identifier: MIT
// C <- beta C before a product is added to it.
#pragma once

#include "blas/gemm/units.h"

namespace ork::gemm {

// beta = 0 writes zeros without reading C, so that no NaN survives; beta = 1 is the caller's to skip. Four columns at a
// time, two vectors of each.
template <class T, class S>
void scale(Int m, Int n, S beta, T* c, Int ldc)
{
    constexpr int lanes = Vec<T>::lanes, step = 2 * lanes;
    const Factor<T, S> factor(beta);
    const bool clear = beta == S(0);
    const auto columns = [&]<int count>(T* first) {
        Int i = 0;
        for (; i + step <= m; i += step)
#pragma GCC unroll 4
            for (int j = 0; j < count; ++j) {
                T* x = first + j * ldc + i;
                store<lanes>(x, clear ? Vec<T>{} : factor * load<lanes>(x));
                store<lanes>(x + lanes, clear ? Vec<T>{} : factor * load<lanes>(x + lanes));
            }
        for (; i < m; ++i)
            for (int j = 0; j < count; ++j) {
                T& x = first[j * ldc + i];
                x = clear ? T{} : beta * x;
            }
    };
    Int j = 0;
    for (; j + 4 <= n; j += 4) columns.template operator()<4>(c + j * ldc);
    for (; j < n; ++j) columns.template operator()<1>(c + j * ldc);
}

} // namespace ork::gemm
