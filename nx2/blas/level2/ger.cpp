// SPDX-License-Identifier: MIT
// A <- alpha x y' + A, y' transposed or conjugate transposed. Every element is a(i, j) + x(i) t(j) with
// t(j) = alpha y(j), or alpha conj(y(j)).
#include "blas/level2/tile_rows.h"
#include "blas/level2/update.h"
#include "blas/level2_kernels.h"

namespace ork {
namespace {
using namespace level2;

// Two columns at a time: one lost a quarter, four lost a tenth.
template <bool aligned, bool far, bool conjugated, class T>
void update_rows(Int m, Int n, T alpha, const T* x, Strided<const T> y, T* a, Int lda)
{
    const auto factor = [&](Int j) __attribute__((always_inline))
    {
        return alpha * conjugate<conjugated>(get(y.at(j)));
    };
    Int j = 0;
    for (; j + 2 <= n; j += 2, a += 2 * lda) {
        const T t[2][1] = {{factor(j)}, {factor(j + 1)}};
        update::columns<aligned, far, 2, 1, T>(0, m, {{x}}, t, a, lda);
    }
    for (; j < n; ++j, a += lda) {
        const T t[1][1] = {{factor(j)}};
        update::columns<aligned, far, 1, 1, T>(0, m, {{x}}, t, a, lda);
    }
}

// Few rows: x stays in registers. The last of them begins so early that it ends with the last row, and meets what the
// one before has not stored yet, so that the rows they share come out the same from both.
template <int width, int registers, bool conjugated, class T>
[[gnu::noinline]] void tile(Int m, Int n, T alpha, const T* x, Strided<const T> y, T* a, Int lda)
{
    const Int last = m - width;
    Vec<T> v[registers];
#pragma GCC unroll 8
    for (int r = 0; r < registers; ++r) v[r] = load<width>(x + (r == registers - 1 ? last : r * width));
#pragma GCC unroll 1
    for (; n > 0; --n, a += lda, y.first += y.inc) {
        const Factor<T> t(alpha * conjugate<conjugated>(get(y.first)));
        const Vec<T> end = sum(load<width>(a + last), t * v[registers - 1]);
#pragma GCC unroll 8
        for (int r = 0; r < registers - 1; ++r) store<width>(a + r * width, sum(load<width>(a + r * width), t * v[r]));
        store<width>(a + last, end);
    }
}

template <bool conjugated = false, class T>
void ger(Int m, Int n, T alpha, const T* x, Int incx, const T* y, Int incy, T* a, Int lda)
{
    if (m == 0 || n == 0 || alpha == T{}) return;
    const Strided<const T> from(y, n, incy);
    if (incx == 1 && m <= 8 * Vec<T>::lanes)
        return with_tile<T>(
            m, [&]<int width, int registers>() { tile<width, registers, conjugated>(m, n, alpha, x, from, a, lda); });
    with_loads(loads_of(m, n, a, lda), [&]<bool aligned, bool far>() {
        if (incx == 1) return update_rows<aligned, far, conjugated>(m, n, alpha, x, from, a, lda);
        const Strided<const T> rows(x, m, incx);
        Buffer<T, chunk> gathered;
        for (Int i = 0; i < m; i += chunk) {
            const Int count = m - i < chunk ? m - i : chunk;
            gather(count, rows.from(i), gathered.data());
            update_rows<aligned, false, conjugated, T>(count, n, alpha, gathered.data(), from, a + i, lda);
        }
    });
}

} // namespace
} // namespace ork

using namespace ork;

void ork_blas_nx2_xsger(const int64_t* m, const int64_t* n, const float* alpha, const float* x, const int64_t* incx,
                        const float* y, const int64_t* incy, float* a, const int64_t* lda)
{
    ger(*m, *n, *alpha, x, *incx, y, *incy, a, *lda);
}

void ork_blas_nx2_xdger(const int64_t* m, const int64_t* n, const double* alpha, const double* x, const int64_t* incx,
                        const double* y, const int64_t* incy, double* a, const int64_t* lda)
{
    ger(*m, *n, *alpha, x, *incx, y, *incy, a, *lda);
}

void ork_blas_nx2_xcgeru(const int64_t* m, const int64_t* n, const ork_complex_float* alpha, const ork_complex_float* x,
                         const int64_t* incx, const ork_complex_float* y, const int64_t* incy, ork_complex_float* a,
                         const int64_t* lda)
{
    ger(*m, *n, *pairs(alpha), pairs(x), *incx, pairs(y), *incy, pairs(a), *lda);
}

void ork_blas_nx2_xzgeru(const int64_t* m, const int64_t* n, const ork_complex_double* alpha,
                         const ork_complex_double* x, const int64_t* incx, const ork_complex_double* y,
                         const int64_t* incy, ork_complex_double* a, const int64_t* lda)
{
    ger(*m, *n, *pairs(alpha), pairs(x), *incx, pairs(y), *incy, pairs(a), *lda);
}

void ork_blas_nx2_xcgerc(const int64_t* m, const int64_t* n, const ork_complex_float* alpha, const ork_complex_float* x,
                         const int64_t* incx, const ork_complex_float* y, const int64_t* incy, ork_complex_float* a,
                         const int64_t* lda)
{
    ger<true>(*m, *n, *pairs(alpha), pairs(x), *incx, pairs(y), *incy, pairs(a), *lda);
}

void ork_blas_nx2_xzgerc(const int64_t* m, const int64_t* n, const ork_complex_double* alpha,
                         const ork_complex_double* x, const int64_t* incx, const ork_complex_double* y,
                         const int64_t* incy, ork_complex_double* a, const int64_t* lda)
{
    ger<true>(*m, *n, *pairs(alpha), pairs(x), *incx, pairs(y), *incy, pairs(a), *lda);
}
