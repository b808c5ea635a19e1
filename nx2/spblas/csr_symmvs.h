// SPDX-License-Identifier: MIT
// y = A x for a symmetric matrix in three arrays, 1-based, of which the triangle that `uplo` names is read.
#pragma once

#include "spblas/csr_mv_symmetric.h"

namespace ork::spblas {

template <class Int, class T>
inline void symmetric_product_of_three_arrays(char uplo, const Int* m, const T* val, const Int* indx, const Int* ia,
                                              const T* x, T* y)
{
    constexpr Rule lower = rule<T>(letters("csr1nslnf__mvout_par")), upper = rule<T>(letters("csr1nsunf__mvout_par"));
    const bool is_lower = uplo == 'L' || uplo == 'l';
    const auto product = is_lower ? symmetric_product<lower.with_run_time_base(), Int, T>
                                  : symmetric_product<upper.with_run_time_base(), Int, T>;
    const Int first = 1;
    const T one = 1, zero = 0;
    product(&first, m, form(lower), m, &one, val, indx, ia, ia + 1, x, y, &zero);
}

} // namespace ork::spblas
