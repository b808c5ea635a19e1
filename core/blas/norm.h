// SPDX-License-Identifier: MIT
// Euclidean norms in double precision. The scaled recurrence of the kernels divides infinity by infinity when two
// elements are infinite; here such a vector has norm infinity, and NaN only if an element is NaN.
#pragma once

#include "blas/kernels.h"
#include "blas/routine.h"

namespace ork::blas {

// Infinity when an element is infinite and none is NaN, otherwise NaN. Looks at `count` numbers from each of the n
// elements that begin |incx| * count numbers apart.
[[gnu::cold]] double norm_of_nonfinite(std::int64_t n, const double* x, std::int64_t incx, int count);

template <class T>
inline double norm(const std::int64_t* n, const T* x, const std::int64_t* incx)
{
    if constexpr (is_complex<T>) {
        const double r = kernels::xdznrm2(n, x, incx);
        return r == r ? r : norm_of_nonfinite(*n, reinterpret_cast<const double*>(x), *incx, 2);
    } else {
        const double r = kernels::xdnrm2(n, x, incx);
        return r == r ? r : norm_of_nonfinite(*n, x, *incx, 1);
    }
}

} // namespace ork::blas
