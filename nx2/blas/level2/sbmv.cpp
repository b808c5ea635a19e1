// SPDX-License-Identifier: MIT
// y <- alpha A x + beta y, A symmetric or Hermitian, one triangle of it stored as a band or packed. Column by column:
// the stored elements beside the diagonal serve as a column of A and, conjugated, as a row; then y(j) gets the product
// with the diagonal and after it alpha times the row's sum. Imaginary parts of a Hermitian diagonal are not read.
#include "blas/level2/banded_triangle.h"
#include "blas/level2/scale.h"
#include "blas/level2_kernels.h"

namespace ork::level2 {
namespace {

template <class T>
inline T real_times(Real<T> a, T x)
{
    return a * x;
}

template <bool upper, bool narrow, class T>
[[gnu::noinline]] void add_symmetric(const BandedTriangle<const T>& triangle, T alpha, Strided<const T> x, Strided<T> y)
{
    if constexpr (narrow) x.inc = y.inc = 1;
    using Pair = Pass<true, true, 2, parts_beside_y<T>, T>;
    const bool far = triangle.far(), pairs = !narrow && x.contiguous() && y.contiguous();
    const auto add = [&](Int j, const T* diagonal, T t, T sum) {
        put_whole(y.at(j), get(y.at(j)) + real_times(get(reals(diagonal)), t) + alpha * sum);
    };
    for (Walk<upper, true, const T> walk(triangle); !walk.ended(); walk.advance()) {
        const T t = alpha * get(x.at(walk.j));
        const auto beside = walk.beside();
        if (pairs && walk.left() > 0) {
            const auto next = walk.next();
            const auto beside_next = next.beside();
            if (Pair::match(beside, beside_next)) {
                const T u = alpha * get(x.at(next.j));
                Pair pair({beside, beside_next}, {t, u}, y.first, x.first);
                pair.begin(far);
                pair.template finish<0>();
                add(walk.j, walk.diagonal, t, pair.result[0].total(is_complex<T>)); // before next reaches y(j)
                pair.template finish<1>();
                add(next.j, next.diagonal, u, pair.result[1].total(is_complex<T>));
                walk = next;
                continue;
            }
        }
        add(walk.j, walk.diagonal, t, add_and_sum<narrow>(beside, t, y, x, is_complex<T>, far));
    }
}

template <bool asks_for_one_loop = false, class T>
void product(const BandedTriangle<const T>& triangle, T alpha, const T* x, Int incx, T beta, T* y, Int incy)
{
    const Int n = triangle.n;
    if (n == 0 || (alpha == T{} && beta == T(1))) return;
    if constexpr (asks_for_one_loop) one_loop_for_all(); // there is no other
    const Strided<T> all_y(y, n, incy);
    scale(n, beta, all_y);
    if (alpha == T{}) return;
    contiguous(n, Strided<const T>(x, n, incx), [&](Strided<const T> v) {
        contiguous(n, all_y, [&](Strided<T> w) {
            const bool few_beside = triangle.reach < few<T> && v.contiguous() && w.contiguous();
            with_flag(triangle.upper, [&]<bool upper>() {
                with_flag(few_beside, [&]<bool narrow>() { add_symmetric<upper, narrow>(triangle, alpha, v, w); });
            });
        });
    });
}

} // namespace
} // namespace ork::level2

using namespace ork;

#define BAND(symbol, T, asks)                                                                                          \
    void symbol(const char* uplo, const int64_t* n, const int64_t* k, const T* alpha, const T* a, const int64_t* lda,  \
                const T* x, const int64_t* incx, const T* beta, T* y, const int64_t* incy)                             \
    {                                                                                                                  \
        level2::product<asks>(level2::band(uplo, *n, *k, pairs(a), *lda), *pairs(alpha), pairs(x), *incx,              \
                              *pairs(beta), pairs(y), *incy);                                                          \
    }
#define PACKED(symbol, T)                                                                                              \
    void symbol(const char* uplo, const int64_t* n, const T* alpha, const T* ap, const T* x, const int64_t* incx,      \
                const T* beta, T* y, const int64_t* incy)                                                              \
    {                                                                                                                  \
        level2::product(level2::packed(uplo, *n, pairs(ap)), *pairs(alpha), pairs(x), *incx, *pairs(beta), pairs(y),   \
                        *incy);                                                                                        \
    }
BAND(ork_blas_nx2_ssbmv, float, false)
BAND(ork_blas_nx2_dsbmv, double, true)
BAND(ork_blas_nx2_chbmv, ork_complex_float, true)
BAND(ork_blas_nx2_zhbmv, ork_complex_double, false)
PACKED(ork_blas_nx2_sspmv, float)
PACKED(ork_blas_nx2_dspmv, double)
PACKED(ork_blas_nx2_chpmv, ork_complex_float)
PACKED(ork_blas_nx2_zhpmv, ork_complex_double)
