// SPDX-License-Identifier: MIT
// x <- alpha x. Only alpha = 1 is a quick return: alpha = 0 multiplies, so NaN and infinity become NaN.
#include "blas/elementwise.h"
#include "blas/level1_kernels.h"

namespace ork {
namespace {

template <class T, class S>
struct Scal {
    static constexpr int group = std::is_same_v<S, Complex<float>> ? 4 : 1, lanes = Vec<T>::lanes;
    Factor<T, S> alpha;

    template <int width>
    [[gnu::always_inline]] void at(const T*, T* x) const
    {
        if constexpr (width > lanes) {
            const FourAhead<T> a(x);
#pragma GCC unroll 4
            for (int j = 0; j < group; ++j) store<lanes>(x + j * lanes, a.times(alpha, j));
        } else {
            store<width>(x, times<width>(alpha, x));
        }
    }
};

template <class S, class T>
void scal(Int n, S alpha, T* x, Int incx)
{
    if (n <= 0) return;
    if (alpha == S{1}) [[unlikely]]
        return;
    if (incx == -1) incx = 1;
    each(n, Scal<T, S>{Factor<T, S>(alpha)}, x, incx, x, incx);
}

} // namespace
} // namespace ork

using namespace ork;

void ork_blas_nx2_xsscal(const int64_t* n, const float* alpha, float* x, const int64_t* incx)
{
    scal(*n, *alpha, x, *incx);
}

void ork_blas_nx2_xdscal(const int64_t* n, const double* alpha, double* x, const int64_t* incx)
{
    scal(*n, *alpha, x, *incx);
}

void ork_blas_nx2_xcscal(const int64_t* n, const ork_complex_float* alpha, ork_complex_float* x, const int64_t* incx)
{
    scal(*n, *pairs(alpha), pairs(x), *incx);
}

void ork_blas_nx2_xzscal(const int64_t* n, const ork_complex_double* alpha, ork_complex_double* x, const int64_t* incx)
{
    scal(*n, *pairs(alpha), pairs(x), *incx);
}

void ork_blas_nx2_xcsscal(const int64_t* n, const float* alpha, ork_complex_float* x, const int64_t* incx)
{
    scal(*n, *alpha, pairs(x), *incx);
}

void ork_blas_nx2_xzdscal(const int64_t* n, const double* alpha, ork_complex_double* x, const int64_t* incx)
{
    scal(*n, *alpha, pairs(x), *incx);
}
