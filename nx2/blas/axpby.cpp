// SPDX-License-Identifier: MIT
// y <- alpha x + beta y. With beta = 0, y is written without being read.
#include "blas/elementwise.h"
#include "blas/level1_kernels.h"

namespace ork {
namespace {

template <class T>
struct Axpby {
    Factor<T> alpha, beta;

    template <int width>
    [[gnu::always_inline]] void at(const T* x, T* y) const
    {
        store<width>(y, sum(times<width>(alpha, x), times<width>(beta, y)));
    }
};

template <class T>
struct Ax {
    Factor<T> alpha;

    template <int width>
    [[gnu::always_inline]] void at(const T* x, T* y) const
    {
        store<width>(y, times<width>(alpha, x));
    }
};

template <class T>
void axpby(Int n, T alpha, const T* x, Int incx, T beta, T* y, Int incy)
{
    if (n <= 0) return;
    if (beta == T{})
        each(n, Ax<T>{Factor<T>(alpha)}, x, incx, y, incy);
    else
        each(n, Axpby<T>{Factor<T>(alpha), Factor<T>(beta)}, x, incx, y, incy);
}

} // namespace
} // namespace ork

using namespace ork;

void ork_blas_nx2_xsaxpby(const int64_t* n, const float* alpha, const float* x, const int64_t* incx, const float* beta,
                          float* y, const int64_t* incy)
{
    axpby(*n, *alpha, x, *incx, *beta, y, *incy);
}

void ork_blas_nx2_xdaxpby(const int64_t* n, const double* alpha, const double* x, const int64_t* incx,
                          const double* beta, double* y, const int64_t* incy)
{
    axpby(*n, *alpha, x, *incx, *beta, y, *incy);
}

void ork_blas_nx2_xcaxpby(const int64_t* n, const ork_complex_float* alpha, const ork_complex_float* x,
                          const int64_t* incx, const ork_complex_float* beta, ork_complex_float* y, const int64_t* incy)
{
    axpby(*n, *pairs(alpha), pairs(x), *incx, *pairs(beta), pairs(y), *incy);
}

void ork_blas_nx2_xzaxpby(const int64_t* n, const ork_complex_double* alpha, const ork_complex_double* x,
                          const int64_t* incx, const ork_complex_double* beta, ork_complex_double* y,
                          const int64_t* incy)
{
    axpby(*n, *pairs(alpha), pairs(x), *incx, *pairs(beta), pairs(y), *incy);
}
