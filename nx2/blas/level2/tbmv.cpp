// SPDX-License-Identifier: MIT
// x <- op(A) x, A a triangle stored as a band or packed. Columns are taken in the order in which every element of x is
// read before it is overwritten. Not transposed, x(j) gets the diagonal's product first and then those of the columns
// in turn; transposed, it is the diagonal's product plus the column's sum.
#include "blas/level2/banded_triangle.h"
#include "blas/level2_kernels.h"

namespace ork::level2 {
namespace {

template <bool upper, bool transposed, bool narrow, class T>
[[gnu::noinline]] void multiply(const BandedTriangle<const T>& triangle, bool conjugated, bool unit, Strided<T> x)
{
    if constexpr (narrow) x.inc = 1;
    using Pair = Pass<!transposed, transposed, 2, transposed ? parts_alone<T> : 1, T>;
    const bool far = triangle.far(), pairs = !narrow && x.contiguous();
    const auto own = [&](const T* diagonal, T value) {
        if (unit) return value;
        const T d = get(diagonal);
        return (conjugated ? conjugate<true>(d) : d) * value;
    };
    for (Walk<upper, upper != transposed, const T> walk(triangle); !walk.ended(); walk.advance()) {
        const T value = get(x.at(walk.j));
        const auto beside = walk.beside();
        if (pairs && walk.left() > 0) {
            const auto next = walk.next();
            const auto beside_next = next.beside();
            if (Pair::match(beside, beside_next)) {
                const T other = get(x.at(next.j));
                T a = own(walk.diagonal, value), b = own(next.diagonal, other);
                Pair pair({beside, beside_next}, {value, other}, x.first, x.first);
                if constexpr (!transposed) put_whole(x.at(walk.j), a), put_whole(x.at(next.j), b);
                pair.begin(far);
                pair.template finish<0>();
                pair.template finish<1>();
                if constexpr (transposed) {
                    put_whole(x.at(walk.j), a + pair.result[0].total(conjugated));
                    put_whole(x.at(next.j), b + pair.result[1].total(conjugated));
                }
                walk = next;
                continue;
            }
        }
        if constexpr (transposed) {
            put_whole(x.at(walk.j), own(walk.diagonal, value) + column_sum<narrow, T>(beside, x, conjugated, far));
        } else {
            put_whole(x.at(walk.j), own(walk.diagonal, value));
            add_column<narrow>(beside, value, x, far);
        }
    }
}

template <class T>
void product(const BandedTriangle<const T>& triangle, const char* trans, const char* diag, T* x, Int incx)
{
    const Op op(*trans);
    contiguous(triangle.n, Strided<T>(x, triangle.n, incx), [&](Strided<T> v) {
        with_flag(triangle.upper, [&]<bool upper>() {
            with_flag(triangle.reach < few<T> && v.contiguous(), [&]<bool narrow>() {
                if (op.transposed)
                    multiply<upper, true, narrow>(triangle, op.conjugated, is_unit(diag), v);
                else
                    multiply<upper, false, narrow>(triangle, false, is_unit(diag), v);
            });
        });
    });
}

} // namespace
} // namespace ork::level2

using namespace ork;

#define BAND(symbol, T)                                                                                                \
    void symbol(const char* uplo, const char* trans, const char* diag, const int64_t* n, const int64_t* k, const T* a, \
                const int64_t* lda, T* x, const int64_t* incx)                                                         \
    {                                                                                                                  \
        level2::product(level2::band(uplo, *n, *k, pairs(a), *lda), trans, diag, pairs(x), *incx);                     \
    }
#define PACKED(symbol, T)                                                                                              \
    void symbol(const char* uplo, const char* trans, const char* diag, const int64_t* n, const T* ap, T* x,            \
                const int64_t* incx)                                                                                   \
    {                                                                                                                  \
        level2::product(level2::packed(uplo, *n, pairs(ap)), trans, diag, pairs(x), *incx);                            \
    }
BAND(ork_blas_nx2_stbmv, float)
BAND(ork_blas_nx2_dtbmv, double)
BAND(ork_blas_nx2_ctbmv, ork_complex_float)
BAND(ork_blas_nx2_ztbmv, ork_complex_double)
PACKED(ork_blas_nx2_stpmv, float)
PACKED(ork_blas_nx2_dtpmv, double)
PACKED(ork_blas_nx2_ctpmv, ork_complex_float)
PACKED(ork_blas_nx2_ztpmv, ork_complex_double)
