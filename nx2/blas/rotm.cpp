// SPDX-License-Identifier: MIT
// Modified plane rotation: x <- h11 x + h12 y, y <- h21 x + h22 y. param[0] says which of H = param[1 .. 4] (h11, h21,
// h12, h22) are given: -1 all; 0 the off-diagonal ones, h11 = h22 = 1; 1 the diagonal ones, h12 = 1 and h21 = -1;
// -2 none, H is the identity and nothing is done.
#include "blas/elementwise.h"
#include "blas/level1_kernels.h"

namespace ork {
namespace {

template <class T>
struct Rotm {
    Factor<T> h11, h21, h12, h22;

    template <int width>
    [[gnu::always_inline]] void at(T* x, T* y) const
    {
        const auto a = load<width>(x), b = load<width>(y);
        store<width>(x, sum(h11 * a, h12 * b));
        store<width>(y, sum(h21 * a, h22 * b));
    }
};

template <class T>
void rotm(Int n, T* x, Int incx, T* y, Int incy, const T* param)
{
    const T flag = param[0];
    if (n <= 0 || flag == -2) return;
    // A product with 1 or -1 is exact, so one body serves the three forms.
    const bool diagonal = !(flag == 0), off_diagonal = !(flag > 0); // which the caller has given
    const T h11 = diagonal ? param[1] : 1, h21 = off_diagonal ? param[2] : -1;
    const T h12 = off_diagonal ? param[3] : 1, h22 = diagonal ? param[4] : 1;
    each(n, Rotm<T>{Factor<T>(h11), Factor<T>(h21), Factor<T>(h12), Factor<T>(h22)}, x, incx, y, incy);
}

} // namespace
} // namespace ork

using namespace ork;

void ork_blas_nx2_xsrotm(const int64_t* n, float* x, const int64_t* incx, float* y, const int64_t* incy,
                         const float* param)
{
    rotm(*n, x, *incx, y, *incy, param);
}

void ork_blas_nx2_xdrotm(const int64_t* n, double* x, const int64_t* incx, double* y, const int64_t* incy,
                         const double* param)
{
    rotm(*n, x, *incx, y, *incy, param);
}
