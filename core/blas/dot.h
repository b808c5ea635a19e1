// SPDX-License-Identifier: MIT
// sb + sum of x_i y_i, which is sb when there is nothing to add; the kernel returns 0 then.
#pragma once

#include "blas/kernels.h"

namespace ork::blas {

inline float dot_from(const std::int64_t* n, const float* sb, const float* x, const std::int64_t* incx, const float* y,
                      const std::int64_t* incy)
{
    return *n < 1 ? *sb : kernels::xsdsdot(n, sb, x, incx, y, incy);
}

} // namespace ork::blas
