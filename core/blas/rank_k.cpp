// SPDX-License-Identifier: MIT
#include "blas/rank_k.h"

#include <cstring>
#include <limits>

namespace ork::blas {

template <class R>
Complex<R> scale_by_real(const Rectangle& r, const R* beta, Complex<R>* c, const std::int64_t* ldc)
{
    if (*beta == 0 || *beta == 1 || r.rows <= 0) return *beta;
    const std::int64_t one = 1;
    for (std::int64_t j = r.column; j < r.column + r.columns; ++j) {
        Complex<R>* column = c + r.row + j * *ldc;
        if constexpr (std::is_same_v<R, float>)
            kernels::xcsscal(&r.rows, beta, column, &one);
        else
            kernels::xzdscal(&r.rows, beta, column, &one);
    }
    return 1;
}

// By the exponents, so that no exception flag is raised: one more makes the sign bit of those that are all ones.
template <class R>
bool is_finite(std::int64_t m, std::int64_t n, const Complex<R>* a, std::int64_t lda)
{
    using Bits = std::conditional_t<sizeof(R) == 4, std::uint32_t, std::uint64_t>;
    constexpr int mantissa = std::numeric_limits<R>::digits - 1, bits = 8 * sizeof(R);
    constexpr Bits one = Bits{1} << mantissa, sign = Bits{1} << (bits - 1), exponent = sign - one;
    for (std::int64_t j = 0; j < n; ++j) {
        Bits sums = 0;
        for (std::int64_t i = 0; i < m; ++i) {
            Bits part[2];
            std::memcpy(part, a + i + j * lda, sizeof part);
            sums |= ((part[0] & exponent) + one) | ((part[1] & exponent) + one);
        }
        if ((sums & sign) != 0) return false;
    }
    return true;
}

template Complex<float> scale_by_real(const Rectangle&, const float*, Complex<float>*, const std::int64_t*);
template Complex<double> scale_by_real(const Rectangle&, const double*, Complex<double>*, const std::int64_t*);
template bool is_finite(std::int64_t, std::int64_t, const Complex<float>*, std::int64_t);
template bool is_finite(std::int64_t, std::int64_t, const Complex<double>*, std::int64_t);

} // namespace ork::blas
