// SPDX-License-Identifier: MIT
#include "blas/norm.h"

#include <cmath>
#include <limits>

double ork::blas::norm_of_nonfinite(std::int64_t n, const double* x, std::int64_t incx, int count)
{
    const std::int64_t step = (incx < 0 ? -incx : incx) * count;
    bool infinite = false;
    for (std::int64_t i = 0; i < n; ++i)
        for (int part = 0; part < count; ++part) {
            const double a = x[i * step + part];
            if (std::isnan(a)) return std::numeric_limits<double>::quiet_NaN();
            infinite |= std::isinf(a);
        }
    return infinite ? std::numeric_limits<double>::infinity() : std::numeric_limits<double>::quiet_NaN();
}
