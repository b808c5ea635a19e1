// SPDX-License-Identifier: MIT
#include "blas/level2/gemv.h"
#include "blas/level2/scale.h"
#include "blas/level2_kernels.h"

namespace ork {
namespace {
using namespace level2;

template <bool switchable = false, class T>
[[gnu::always_inline]] inline void gemv(const char* trans, Int m, Int n, T alpha, const T* a, Int lda, const T* x,
                                        Int incx, T beta, T* y, Int incy)
{
    if (m == 0 || n == 0) return;
    const bool no_product = alpha == T{};
    if (no_product && beta == T(1)) return;
    Loads loads = loads_of(m, n, a, lda);
    if (switchable && one_loop_for_all()) loads.aligned = false;
    const Op op(*trans);
    const Int leny = op.transposed ? n : m, lenx = op.transposed ? m : n;
    const Strided<T> to(y, leny, incy);
    const Strided<const T> from(x, lenx, incx);
    scale(leny, beta, to);
    if (no_product) return;
    if (!op.transposed) {
        if (incy == 1) return add_product(loads, m, n, alpha, a, lda, from, y);
        return add_product(loads, m, n, alpha, a, lda, from, to);
    }
    with_flag(op.conjugated && is_complex<T>, [&]<bool conjugated>() {
        if (incx == 1 && incy == 1) return add_column_sums<conjugated>(loads, m, n, alpha, a, lda, x, y);
        add_transposed<conjugated>(loads, m, n, alpha, a, lda, from, to);
    });
}

} // namespace
} // namespace ork

using namespace ork;

void ork_blas_nx2_xsgemv(const char* trans, const int64_t* m, const int64_t* n, const float* alpha, const float* a,
                         const int64_t* lda, const float* x, const int64_t* incx, const float* beta, float* y,
                         const int64_t* incy)
{
    gemv<true>(trans, *m, *n, *alpha, a, *lda, x, *incx, *beta, y, *incy);
}

void ork_blas_nx2_xdgemv(const char* trans, const int64_t* m, const int64_t* n, const double* alpha, const double* a,
                         const int64_t* lda, const double* x, const int64_t* incx, const double* beta, double* y,
                         const int64_t* incy)
{
    gemv(trans, *m, *n, *alpha, a, *lda, x, *incx, *beta, y, *incy);
}

void ork_blas_nx2_xcgemv(const char* trans, const int64_t* m, const int64_t* n, const ork_complex_float* alpha,
                         const ork_complex_float* a, const int64_t* lda, const ork_complex_float* x,
                         const int64_t* incx, const ork_complex_float* beta, ork_complex_float* y, const int64_t* incy)
{
    gemv(trans, *m, *n, *pairs(alpha), pairs(a), *lda, pairs(x), *incx, *pairs(beta), pairs(y), *incy);
}

void ork_blas_nx2_xzgemv(const char* trans, const int64_t* m, const int64_t* n, const ork_complex_double* alpha,
                         const ork_complex_double* a, const int64_t* lda, const ork_complex_double* x,
                         const int64_t* incx, const ork_complex_double* beta, ork_complex_double* y,
                         const int64_t* incy)
{
    gemv(trans, *m, *n, *pairs(alpha), pairs(a), *lda, pairs(x), *incx, *pairs(beta), pairs(y), *incy);
}
