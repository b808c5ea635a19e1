// SPDX-License-Identifier: MIT
// y1 <- alpha A x1 + beta y1 and y2 <- alpha A' x2 + beta y2 (conjugate transpose of complex A) in one sweep: every
// column is loaded once for both.
#include "blas/level2/banded_column.h"
#include "blas/level2/scale.h"
#include "blas/level2_kernels.h"

namespace ork::level2 {
namespace {

template <class T>
[[gnu::noinline]] void add_both(Int m, Int n, T alpha, const T* a, Int lda, Strided<const T> x1, Strided<const T> x2,
                                Strided<T> y1, Strided<T> y2)
{
    using Pair = Pass<true, true, 2, parts_beside_y<T>, T>;
    const bool far = is_far<T>(m * n), pairs = x2.contiguous() && y1.contiguous();
    const auto column = [&](Int j) -> StoredColumn<const T> { return {0, m, a + j * lda}; };
    const auto factor = [&](Int j) { return alpha * get(x1.at(j)); };
    const auto add = [&](Int j, T sum) { put(y2.at(j), get(y2.at(j)) + alpha * sum); };
    for (Int j = 0; j < n; ++j) {
        if (pairs && j + 1 < n && Pair::match(column(j), column(j + 1))) {
            Pair pair({column(j), column(j + 1)}, {factor(j), factor(j + 1)}, y1.first, x2.first);
            pair.begin(far);
            pair.template finish<0>();
            pair.template finish<1>();
            add(j, pair.result[0].total(is_complex<T>));
            add(++j, pair.result[1].total(is_complex<T>));
        } else {
            add(j, add_and_sum<false>(column(j), factor(j), y1, x2, is_complex<T>, far));
        }
    }
}

template <class T>
void gem2v(Int m, Int n, T alpha, const T* a, Int lda, const T* x1, Int incx1, const T* x2, Int incx2, T beta, T* y1,
           Int incy1, T* y2, Int incy2)
{
    if (m == 0 || n == 0 || (alpha == T{} && beta == T(1))) return;
    const Strided<T> all_y1(y1, m, incy1), all_y2(y2, n, incy2);
    scale(m, beta, all_y1);
    scale(n, beta, all_y2);
    if (alpha == T{}) return;
    contiguous(m, Strided<const T>(x2, m, incx2), [&](Strided<const T> v) {
        contiguous(m, all_y1,
                   [&](Strided<T> w) { add_both(m, n, alpha, a, lda, Strided<const T>(x1, n, incx1), v, w, all_y2); });
    });
}

} // namespace
} // namespace ork::level2

using namespace ork;

#define GEM2V(symbol, T)                                                                                               \
    void symbol(const int64_t* m, const int64_t* n, const T* alpha, const T* a, const int64_t* lda, const T* x1,       \
                const int64_t* incx1, const T* x2, const int64_t* incx2, const T* beta, T* y1, const int64_t* incy1,   \
                T* y2, const int64_t* incy2)                                                                           \
    {                                                                                                                  \
        level2::gem2v(*m, *n, *pairs(alpha), pairs(a), *lda, pairs(x1), *incx1, pairs(x2), *incx2, *pairs(beta),       \
                      pairs(y1), *incy1, pairs(y2), *incy2);                                                           \
    }
GEM2V(ork_blas_nx2_sgem2vu, float)
GEM2V(ork_blas_nx2_dgem2vu, double)
GEM2V(ork_blas_nx2_cgem2vc, ork_complex_float)
GEM2V(ork_blas_nx2_zgem2vc, ork_complex_double)
