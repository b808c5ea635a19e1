// SPDX-License-Identifier: MIT
// Copies with increments, and real multiples of complex vectors. With a negative increment element 0 is the last in
// memory; of equal vectors the later element stays where an increment is 0.
#include "dft/node/node.h"
#include "frame/export.h"

namespace ork::dft {
namespace {

template <class T>
inline T* begin(T* x, std::int64_t n, std::int64_t inc)
{
    return inc < 0 ? x - (n - 1) * inc : x;
}

template <class T>
void copy(std::int64_t n, const T* x, std::int64_t incx, T* y, std::int64_t incy)
{
    if (n <= 0) return;
    if (incx == 1 && incy == 1) {
        constexpr int lanes = Vec<T>::lanes;
        std::int64_t i = 0;
        for (; i + lanes <= n; i += lanes) store<lanes>(y + i, load<lanes>(x + i));
        for (; i < n; ++i) y[i] = x[i];
        return;
    }
    x = begin(x, n, incx), y = begin(y, n, incy);
    for (std::int64_t i = 0; i < n; ++i) y[i * incy] = x[i * incx];
}

template <class R>
void scale(std::int64_t n, R alpha, Complex<R>* x, std::int64_t incx)
{
    if (n <= 0) return;
    using C = Complex<R>;
    const Factor<C, R> factor(alpha);
    constexpr int lanes = Vec<C>::lanes;
    std::int64_t i = 0;
    if (incx == 1) {
        for (; i + lanes <= n; i += lanes) store<lanes>(x + i, factor * load<lanes>(x + i));
    }
    x = begin(x, n, incx);
    for (; i < n; ++i) store<1>(x + i * incx, factor * load<1>(x + i * incx));
}

} // namespace
} // namespace ork::dft

using namespace ork::dft;

#define COPY(letter, T)                                                                                                \
    ORK_EXPORT void ork_dft_nx2_dft_##letter##copy(std::int64_t n, const T* x, std::int64_t incx, T* y,                \
                                                   std::int64_t incy)                                                  \
    {                                                                                                                  \
        copy(n, ork::pairs(x), incx, ork::pairs(y), incy);                                                             \
    }
COPY(s, float)
COPY(d, double)
COPY(c, ork_complex_float)
COPY(z, ork_complex_double)

ORK_EXPORT void ork_dft_nx2_dft_csscal(std::int64_t n, float alpha, ork_complex_float* x, std::int64_t incx)
{
    scale(n, alpha, ork::pairs(x), incx);
}
ORK_EXPORT void ork_dft_nx2_dft_zdscal(std::int64_t n, double alpha, ork_complex_double* x, std::int64_t incx)
{
    scale(n, alpha, ork::pairs(x), incx);
}
