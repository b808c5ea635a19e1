// SPDX-License-Identifier: MIT
// y <- alpha op(A) x + beta y, A a band. Column j holds rows j - ku .. j + kl, as far as there are such rows.
#include "blas/level2/banded_column.h"
#include "blas/level2/scale.h"
#include "blas/level2_kernels.h"

namespace ork::level2 {
namespace {

template <class T>
struct Band {
    Int m, n, kl, ku;
    const T* a;
    Int lda;

    StoredColumn<const T> column(Int j) const
    {
        const Int row = j > ku ? j - ku : 0, end = j + kl + 1 < m ? j + kl + 1 : m;
        return {row, end - row, a + j * lda + ku - j + row};
    }
    bool far() const { return is_far<T>(n * (kl + ku)); }
    // Later columns have no rows.
    Int columns() const { return n < m + ku ? n : m + ku; }
};

template <bool narrow, class T>
[[gnu::noinline]] void add_product(const Band<T> band, T alpha, Strided<const T> x, Strided<T> y)
{
    if constexpr (narrow) x.inc = y.inc = 1;
    using Pair = Pass<true, false, 2, 1, T>;
    const bool far = band.far(), pairs = !narrow && y.contiguous();
    const Int n = band.columns();
    for (Int j = 0; j < n; ++j) {
        const T t = alpha * get(x.at(j));
        const auto column = band.column(j);
        if (pairs && j + 1 < n) {
            const auto next = band.column(j + 1);
            if (Pair::match(column, next)) {
                Pair pair({column, next}, {t, alpha * get(x.at(j + 1))}, y.first, nullptr);
                pair.begin(far);
                pair.template finish<0>();
                pair.template finish<1>();
                ++j;
                continue;
            }
        }
        add_column<narrow>(column, t, y, far);
    }
}

template <bool narrow, class T>
[[gnu::noinline]] void add_transposed_product(const Band<T> band, T alpha, Strided<const T> x, Strided<T> y,
                                              bool conjugated)
{
    if constexpr (narrow) x.inc = y.inc = 1;
    using Pair = Pass<false, true, 2, parts_alone<T>, T>;
    const bool far = band.far(), pairs = !narrow && x.contiguous();
    const Int n = band.columns();
    const auto add = [&](Int j, T sum) { put_whole(y.at(j), get(y.at(j)) + alpha * sum); };
    for (Int j = 0; j < n; ++j) {
        const auto column = band.column(j);
        if (pairs && j + 1 < n) {
            const auto next = band.column(j + 1);
            if (Pair::match(column, next)) {
                Pair pair({column, next}, {T{}, T{}}, nullptr, x.first);
                pair.begin(far);
                pair.template finish<0>();
                pair.template finish<1>();
                add(j, pair.result[0].total(conjugated));
                add(++j, pair.result[1].total(conjugated));
                continue;
            }
        }
        add(j, column_sum<narrow>(column, x, conjugated, far));
    }
}

template <class T>
void gbmv(Op op, const Band<T>& band, T alpha, const T* x, Int incx, T beta, T* y, Int incy)
{
    if (band.m == 0 || band.n == 0 || (alpha == T{} && beta == T(1))) return;
    const Int lenx = op.transposed ? band.m : band.n, leny = op.transposed ? band.n : band.m;
    const Strided<T> all_y(y, leny, incy);
    scale(leny, beta, all_y);
    if (alpha == T{}) return;
    contiguous(lenx, Strided<const T>(x, lenx, incx), [&](Strided<const T> v) {
        contiguous(leny, all_y, [&](Strided<T> w) {
            const bool few_beside = band.kl + band.ku + 1 < few<T> && v.contiguous() && w.contiguous();
            with_flag(few_beside, [&]<bool narrow>() {
                if (op.transposed)
                    add_transposed_product<narrow>(band, alpha, v, w, op.conjugated);
                else
                    add_product<narrow>(band, alpha, v, w);
            });
        });
    });
}

} // namespace
} // namespace ork::level2

using namespace ork;

#define GBMV(symbol, T)                                                                                                \
    void symbol(const char* trans, const int64_t* m, const int64_t* n, const int64_t* kl, const int64_t* ku,           \
                const T* alpha, const T* a, const int64_t* lda, const T* x, const int64_t* incx, const T* beta, T* y,  \
                const int64_t* incy)                                                                                   \
    {                                                                                                                  \
        level2::gbmv(level2::Op(*trans), {*m, *n, *kl, *ku, pairs(a), *lda}, *pairs(alpha), pairs(x), *incx,           \
                     *pairs(beta), pairs(y), *incy);                                                                   \
    }
GBMV(ork_blas_nx2_sgbmv, float)
GBMV(ork_blas_nx2_dgbmv, double)
GBMV(ork_blas_nx2_cgbmv, ork_complex_float)
GBMV(ork_blas_nx2_zgbmv, ork_complex_double)
