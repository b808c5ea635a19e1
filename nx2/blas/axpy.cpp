// SPDX-License-Identifier: MIT
// y <- alpha x + y. Each element is y + alpha x: for complex ones y + (ac - bd, ad + bc).
#include "blas/elementwise.h"
#include "blas/level1_kernels.h"

namespace ork {
namespace {

template <class T>
struct Axpy {
    static constexpr int group = is_complex<T> ? 4 : 1, lanes = Vec<T>::lanes;
    Factor<T> alpha;

    template <int width>
    [[gnu::always_inline]] void at(const T* x, T* y) const
    {
        if constexpr (width > lanes) {
            const FourAhead<T> a(x);
#pragma GCC unroll 4
            for (int j = 0; j < group; ++j)
                store<lanes>(y + j * lanes, sum(a.times(alpha, j), load<lanes>(y + j * lanes)));
        } else {
            store<width>(y, sum(times<width>(alpha, x), load<width>(y)));
        }
    }
};

template <class T>
void axpy(Int n, T alpha, const T* x, Int incx, T* y, Int incy)
{
    if (n <= 0) return;
    if (alpha == T{}) [[unlikely]]
        return;                                    // nothing of x reaches y, be it NaN
    if (incx == -1 && incy == -1) incx = incy = 1; // the same pairs, also where the vectors overlap
    each(n, Axpy<T>{Factor<T>(alpha)}, x, incx, y, incy);
}

} // namespace
} // namespace ork

using namespace ork;

void ork_blas_nx2_xsaxpy(const int64_t* n, const float* alpha, const float* x, const int64_t* incx, float* y,
                         const int64_t* incy)
{
    axpy(*n, *alpha, x, *incx, y, *incy);
}

void ork_blas_nx2_xdaxpy(const int64_t* n, const double* alpha, const double* x, const int64_t* incx, double* y,
                         const int64_t* incy)
{
    axpy(*n, *alpha, x, *incx, y, *incy);
}

void ork_blas_nx2_xcaxpy(const int64_t* n, const ork_complex_float* alpha, const ork_complex_float* x,
                         const int64_t* incx, ork_complex_float* y, const int64_t* incy)
{
    axpy(*n, *pairs(alpha), pairs(x), *incx, pairs(y), *incy);
}

void ork_blas_nx2_xzaxpy(const int64_t* n, const ork_complex_double* alpha, const ork_complex_double* x,
                         const int64_t* incx, ork_complex_double* y, const int64_t* incy)
{
    axpy(*n, *pairs(alpha), pairs(x), *incx, pairs(y), *incy);
}
