// SPDX-License-Identifier: MIT
// y <- x, and x <-> y.
//
// Adjacent elements are copied by libc's memmove while they stay in the second-level cache: it may use registers wider
// than this library's, and was up to twice as fast as 128-bit moves on Zen 5; for longer vectors it was up to half as
// fast, as it neither fetches ahead nor keeps y in the caches.
#include "blas/elementwise.h"
#include "blas/level1_kernels.h"

namespace ork {
namespace {

template <class T>
struct Copy {
    template <int width>
    [[gnu::always_inline]] void at(const T* x, T* y) const
    {
        store<width>(y, load<width>(x));
    }
};

template <class T>
struct Swap {
    template <int width>
    [[gnu::always_inline]] void at(T* x, T* y) const
    {
        const auto from_x = load<width>(x), from_y = load<width>(y);
        store<width>(x, from_y);
        store<width>(y, from_x);
    }
};

template <class T>
void copy(Int n, const T* x, Int incx, T* y, Int incy)
{
    if (n <= 0) return;
    const Int bytes = n * static_cast<Int>(sizeof(T));
    if (incx == 1 && incy == 1 && bytes < 1 << 20 && !overlap(x, y, bytes)) [[likely]]
        std::memmove(y, x, static_cast<std::size_t>(bytes));
    else
        each(n, Copy<T>{}, x, incx, y, incy);
}

template <class T>
void swap(Int n, T* x, Int incx, T* y, Int incy)
{
    if (n <= 0) return;
    each(n, Swap<T>{}, x, incx, y, incy);
}

} // namespace
} // namespace ork

using namespace ork;

void ork_blas_nx2_xscopy(const int64_t* n, const float* x, const int64_t* incx, float* y, const int64_t* incy)
{
    copy(*n, x, *incx, y, *incy);
}

void ork_blas_nx2_xdcopy(const int64_t* n, const double* x, const int64_t* incx, double* y, const int64_t* incy)
{
    copy(*n, x, *incx, y, *incy);
}

void ork_blas_nx2_xccopy(const int64_t* n, const ork_complex_float* x, const int64_t* incx, ork_complex_float* y,
                         const int64_t* incy)
{
    copy(*n, pairs(x), *incx, pairs(y), *incy);
}

void ork_blas_nx2_xzcopy(const int64_t* n, const ork_complex_double* x, const int64_t* incx, ork_complex_double* y,
                         const int64_t* incy)
{
    copy(*n, pairs(x), *incx, pairs(y), *incy);
}

void ork_blas_nx2_xsswap(const int64_t* n, float* x, const int64_t* incx, float* y, const int64_t* incy)
{
    swap(*n, x, *incx, y, *incy);
}

void ork_blas_nx2_xdswap(const int64_t* n, double* x, const int64_t* incx, double* y, const int64_t* incy)
{
    swap(*n, x, *incx, y, *incy);
}

void ork_blas_nx2_xcswap(const int64_t* n, ork_complex_float* x, const int64_t* incx, ork_complex_float* y,
                         const int64_t* incy)
{
    swap(*n, pairs(x), *incx, pairs(y), *incy);
}

void ork_blas_nx2_xzswap(const int64_t* n, ork_complex_double* x, const int64_t* incx, ork_complex_double* y,
                         const int64_t* incy)
{
    swap(*n, pairs(x), *incx, pairs(y), *incy);
}
