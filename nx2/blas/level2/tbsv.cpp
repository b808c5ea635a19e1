// SPDX-License-Identifier: MIT
// x <- op(A)^-1 x, A a triangle stored as a band or packed.
//
// Not transposed: x(j) is divided by the diagonal, then its column's products leave the elements that follow, one
// column after the other. Transposed: the sum of the column's products but those with the `nearest` elements solved
// last leaves x(j) first, then those leave it one by one, the latest last, and the rest is divided. So what an element
// still waits for when the one before it is solved is short.
#include <utility>

#include "blas/divide.h"
#include "blas/level2/banded_triangle.h"
#include "blas/level2_kernels.h"

namespace ork::level2 {
namespace {

constexpr Int nearest = 4;

template <class R>
inline R minus(R a)
{
    return -a;
}
template <class R>
inline Complex<R> minus(Complex<R> a)
{
    return {-a.re, -a.im};
}

// Takes off the element nearest to the diagonal: its row and coefficient.
template <bool upper, class T>
inline std::pair<Int, T> take_nearest(StoredColumn<const T>& column)
{
    --column.count;
    if constexpr (upper) return {column.end(), get(column.a + column.count)};
    return {column.row++, get(column.a++)};
}
template <bool upper, class T>
inline StoredColumn<const T> without_nearest(StoredColumn<const T> column, Int count)
{
    if constexpr (upper) return {column.row, column.count - count, column.a};
    return {column.row + count, column.count - count, column.a + count};
}

template <bool upper, bool narrow, class T>
[[gnu::noinline]] void solve(const BandedTriangle<const T>& triangle, bool unit, Strided<T> x)
{
    if constexpr (narrow) x.inc = 1;
    using Pair = Pass<true, false, 2, 1, T>;
    const bool far = triangle.far(), pairs = !narrow && x.contiguous();
    const auto solved = [&](const auto& walk, T value) {
        if (!unit) value = divided(value, get(walk.diagonal));
        put_whole(x.at(walk.j), value);
        return value;
    };
    T following{}; // the element that comes next, when it is in no hurry to memory
    bool known = false;
    for (Walk<upper, !upper, const T> walk(triangle); !walk.ended(); walk.advance()) {
        const T value = solved(walk, known ? following : get(x.at(walk.j)));
        auto first = walk.beside();
        known = first.count > 0;
        if (!known) continue;
        const auto [row, a] = take_nearest<upper>(first);
        following = get(x.at(row)) - value * a;
        if (pairs && walk.left() > 1) {
            const auto next = walk.next();
            auto second = next.beside();
            if (Pair::match(without_nearest<upper>(first, 1), without_nearest<upper>(second, 1))) {
                const T other = solved(next, following);
                const auto [third, b] = take_nearest<upper>(first);
                following = (get(x.at(third)) - value * b) - other * take_nearest<upper>(second).second;
                Pair pair({first, second}, {minus(value), minus(other)}, x.first, nullptr);
                pair.begin(far);
                pair.template finish<0>();
                pair.template finish<1>();
                walk = next;
                continue;
            }
        }
        add_column<narrow>(first, minus(value), x, far);
    }
}

template <bool upper, bool narrow, class T>
[[gnu::noinline]] void solve_transposed(const BandedTriangle<const T>& triangle, bool conjugated, bool unit,
                                        Strided<T> x)
{
    if constexpr (narrow) x.inc = 1;
    using Pair = Pass<false, true, 2, parts_alone<T>, T>;
    const bool far = triangle.far(), pairs = !narrow && x.contiguous();
    const auto coefficient = [&](const T* a) { return conjugated ? conjugate<true>(get(a)) : get(a); };
    const auto near = [](const auto& beside) { return beside.count < nearest ? beside.count : nearest; };
    T last{}; // the element solved last, which is wanted before a store and a load would bring it
    const auto finish = [&](const auto& walk, const StoredColumn<const T>& beside, T value)
        __attribute__((always_inline))
    {
        const T* a = upper ? beside.a + beside.count - near(beside) : beside.a + near(beside) - 1;
        const T* element = x.at(upper ? beside.end() - near(beside) : beside.row + near(beside) - 1);
        for (Int i = near(beside); i > 1; --i) {
            value = value - coefficient(a) * get(element);
            a += upper ? 1 : -1, element += upper ? x.inc : -x.inc;
        }
        if (beside.count > 0) value = value - coefficient(a) * last;
        if (!unit) value = divided(value, coefficient(walk.diagonal));
        last = value;
        put_whole(x.at(walk.j), value);
    };
    for (Walk<upper, upper, const T> walk(triangle); !walk.ended(); walk.advance()) {
        const auto beside = walk.beside(), first = without_nearest<upper>(beside, near(beside));
        const T value = get(x.at(walk.j));
        if (first.count == 0) {
            finish(walk, beside, value);
            continue;
        }
        if (pairs && walk.left() > 0) {
            const auto next = walk.next();
            const auto beside_next = next.beside(), second = without_nearest<upper>(beside_next, near(beside_next));
            if (Pair::match(first, second)) {
                Pair pair({first, second}, {T{}, T{}}, nullptr, x.first);
                pair.begin(far);
                pair.template finish<0>();
                pair.template finish<1>();
                finish(walk, beside, value - pair.result[0].total(conjugated));
                finish(next, beside_next, get(x.at(next.j)) - pair.result[1].total(conjugated));
                walk = next;
                continue;
            }
        }
        finish(walk, beside, value - column_sum<narrow, T>(first, x, conjugated, far));
    }
}

template <class T>
void solve(const BandedTriangle<const T>& triangle, const char* trans, const char* diag, T* x, Int incx)
{
    const Op op(*trans);
    contiguous(triangle.n, Strided<T>(x, triangle.n, incx), [&](Strided<T> v) {
        with_flag(triangle.upper, [&]<bool upper>() {
            with_flag(triangle.reach < few<T> && v.contiguous(), [&]<bool narrow>() {
                if (op.transposed)
                    solve_transposed<upper, narrow>(triangle, op.conjugated, is_unit(diag), v);
                else
                    solve<upper, narrow>(triangle, is_unit(diag), v);
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
        level2::solve(level2::band(uplo, *n, *k, pairs(a), *lda), trans, diag, pairs(x), *incx);                       \
    }
#define PACKED(symbol, T)                                                                                              \
    void symbol(const char* uplo, const char* trans, const char* diag, const int64_t* n, const T* ap, T* x,            \
                const int64_t* incx)                                                                                   \
    {                                                                                                                  \
        level2::solve(level2::packed(uplo, *n, pairs(ap)), trans, diag, pairs(x), *incx);                              \
    }
BAND(ork_blas_nx2_stbsv, float)
BAND(ork_blas_nx2_dtbsv, double)
BAND(ork_blas_nx2_ctbsv, ork_complex_float)
BAND(ork_blas_nx2_ztbsv, ork_complex_double)
PACKED(ork_blas_nx2_stpsv, float)
PACKED(ork_blas_nx2_dtpsv, double)
PACKED(ork_blas_nx2_ctpsv, ork_complex_float)
PACKED(ork_blas_nx2_ztpsv, ork_complex_double)
