// SPDX-License-Identifier: MIT
// x <- op(A) x, A triangular.
//
// The order of additions, for element i of the result. op(A) = A: a(i, i) x(i), and then one product after the other
// from the diagonal outwards. op(A) transposed: a(i, i) x(i); the products in the group's square on the diagonal (four
// rows, counted from the first of the matrix), from the diagonal outwards; the sum over the other rows in the block of
// 128 rows; the sums over the chunks of 1000 rows beside that block, from above (column_sums.h). So it depends on
// nothing but the element's own row (as it stands) or column (transposed), and a share of the elements has the bits of
// the whole.
#include "blas/level2/triangle.h"
#include "blas/level2_kernels.h"

namespace ork {
namespace {
using namespace level2;

// y <- y + A x, each element's products from the diagonal outwards: below it the columns go from right to left.
template <class Shape, class T>
void add_outwards(Loads loads, Int m, Int n, const T* a, Int lda, Strided<const T> x, Strided<T> y)
{
    if constexpr (Shape::upper)
        add_product(loads, m, n, One(), a, lda, x, y);
    else
        add_product(loads, m, n, One(), a + (n - 1) * lda, -lda, Strided<const T>(x.at(n - 1), -x.inc), y);
}

template <int count, class T>
struct Reversed {
    T t[count];
    explicit Reversed(const T* x)
    {
        for (int j = 0; j < count; ++j) t[j] = get(x + count - 1 - j);
    }
};

// x <- op(A) x for the square of a group, in place.
template <class Shape, int count, class T>
[[gnu::always_inline]] inline void square(const T* a, Int lda, T* x)
{
    constexpr bool rows_upwards = Shape::upper != Shape::transposed; // row i needs x(j), j > i
    T v[count], result[count];
#pragma GCC unroll 4
    for (int i = 0; i < count; ++i) v[i] = get(x + i);
#pragma GCC unroll 4
    for (int i = 0; i < count; ++i) {
        result[i] = Shape::unit ? v[i] : conjugate<Shape::conjugated>(get(a + i + i * lda)) * v[i];
#pragma GCC unroll 4
        for (int d = 1; d < count; ++d) {
            const int j = rows_upwards ? i + d : i - d;
            if (j < 0 || j >= count) continue;
            const T* element = Shape::transposed ? a + j + i * lda : a + i + j * lda;
            result[i] = result[i] + conjugate<Shape::conjugated>(get(element)) * v[j];
        }
    }
    put_together(x, result);
}

// x <- op(A) x, contiguous, at most `panel` elements. What a result needs is not replaced before.
template <class Shape, class T>
[[gnu::noinline]] void small_product(Loads loads, Int n, const T* a, Int lda, T* x)
{
    loads.ahead = 0;
    each_group(
        Shape::upper != Shape::transposed, n, [&]<int count>(Int j) __attribute__((always_inline)) {
            const T* const block = a + j * lda;
            const Int first = Shape::upper ? 0 : j + count, rows = Shape::upper ? j : n - j - count;
            if constexpr (Shape::transposed) {
                square<Shape, count>(block + j, lda, x + j);
                if (rows > 0)
                    add_column_sums<Shape::conjugated>(loads, rows, count, One(), block + first, lda, x + first, x + j);
            } else {
                if (rows > 0) {
                    if constexpr (Shape::upper)
                        add_group<count>(rows, block, lda, x + j, x);
                    else
                        add_group<count>(rows, block + first + (count - 1) * lda, -lda, Reversed<count, T>(x + j).t,
                                         x + first);
                }
                square<Shape, count>(block + j, lda, x + j);
            }
        });
}

// x <- op(A) x
template <class Shape, class T>
void whole(Loads loads, Int n, const T* a, Int lda, Strided<T> x)
{
    Buffer<T, panel> gathered;
    each_block<panel>(Shape::upper != Shape::transposed, n, [&](Int j, Int count) {
        T* v = x.at(j);
        if (!x.contiguous()) {
            v = gathered.data();
            gather<T>(count, x.from(j), v);
        }
        const T* const block = a + j * lda;
        const Int first = Shape::upper ? 0 : j + count, rows = Shape::upper ? j : n - j - count;
        if constexpr (Shape::transposed) {
            small_product<Shape>(loads, count, block + j, lda, v);
            if (rows > 0)
                add_transposed<Shape::conjugated, One, T>(loads, rows, count, One(), block + first, lda, x.from(first),
                                                          Strided<T>(v));
        } else {
            if (rows > 0)
                add_outwards<Shape>(loads, rows, count, block + first, lda, Strided<const T>(v), x.from(first));
            small_product<Shape>(loads, count, block + j, lda, v);
        }
        if (!x.contiguous()) scatter(count, v, x.from(j));
    });
}

// Elements [first, last) of op(A) x
template <class Shape, class T>
void share(Loads loads, Int first, Int last, Int n, const T* a, Int lda, Strided<const T> x, T* y)
{
    const Int size = last - first;
    if constexpr (!Shape::transposed) { // a triangle of its own and the rectangle beside it
        gather(size, x.from(first), y);
        whole<Shape>(loads, size, a + first + first * lda, lda, Strided<T>(y));
        const Int j = Shape::upper ? last : 0, columns = Shape::upper ? n - last : first;
        if (columns > 0) add_outwards<Shape>(loads, size, columns, a + first + j * lda, lda, x.from(j), Strided<T>(y));
    } else {
        Buffer<T, panel> gathered;
        T* const v = gathered.data();
        for (Int j = first / panel * panel; j < last; j += panel) {
            const Int end = n - j < panel ? n : j + panel;
            gather(end - j, x.from(j), v);
            small_product<Shape>(loads, end - j, a + j + j * lda, lda, v);
            const Int from = first > j ? first : j, to = last < end ? last : end;
            const Int top = Shape::upper ? 0 : end, rows = Shape::upper ? j : n - end;
            if (rows > 0)
                add_transposed<Shape::conjugated, One, T>(loads, rows, to - from, One(), a + top + from * lda, lda,
                                                          x.from(top), Strided<T>(v + (from - j)));
            for (Int i = from; i < to; ++i) put(y + (i - first), v[i - j]);
        }
    }
}

template <class T>
void trmv(const char* uplo, const char* trans, const char* diag, Int n, const T* a, Int lda, T* x, Int incx)
{
    if (n == 0) return;
    with_shape<T>(Triangle(uplo, trans, diag), [&](auto shape) {
        whole<decltype(shape)>(loads_of(n, n, a, lda), n, a, lda, Strided<T>(x, n, incx));
    });
}

template <class T>
void trmv_in_thread(Int first, Int last, const char* uplo, const char* trans, const char* diag, Int n, const T* a,
                    Int lda, const T* x, Int incx, T* y)
{
    if (first > last) return;
    with_shape<T>(Triangle(uplo, trans, diag), [&](auto shape) {
        share<decltype(shape)>(loads_of(n, n, a, lda), first - 1, last, n, a, lda, Strided<const T>(x, n, incx), y);
    });
}

} // namespace
} // namespace ork

using namespace ork;

void ork_blas_nx2_xstrmv(const char* uplo, const char* trans, const char* diag, const int64_t* n, const float* a,
                         const int64_t* lda, float* x, const int64_t* incx)
{
    trmv(uplo, trans, diag, *n, a, *lda, x, *incx);
}

void ork_blas_nx2_xdtrmv(const char* uplo, const char* trans, const char* diag, const int64_t* n, const double* a,
                         const int64_t* lda, double* x, const int64_t* incx)
{
    trmv(uplo, trans, diag, *n, a, *lda, x, *incx);
}

void ork_blas_nx2_xctrmv(const char* uplo, const char* trans, const char* diag, const int64_t* n,
                         const ork_complex_float* a, const int64_t* lda, ork_complex_float* x, const int64_t* incx)
{
    trmv(uplo, trans, diag, *n, pairs(a), *lda, pairs(x), *incx);
}

void ork_blas_nx2_xztrmv(const char* uplo, const char* trans, const char* diag, const int64_t* n,
                         const ork_complex_double* a, const int64_t* lda, ork_complex_double* x, const int64_t* incx)
{
    trmv(uplo, trans, diag, *n, pairs(a), *lda, pairs(x), *incx);
}

void ork_blas_nx2_xstrmv_in_thread(const int64_t* first, const int64_t* last, const char* uplo, const char* trans,
                                   const char* diag, const int64_t* n, const float* a, const int64_t* lda,
                                   const float* x, const int64_t* incx, float* y)
{
    trmv_in_thread(*first, *last, uplo, trans, diag, *n, a, *lda, x, *incx, y);
}

void ork_blas_nx2_xdtrmv_in_thread(const int64_t* first, const int64_t* last, const char* uplo, const char* trans,
                                   const char* diag, const int64_t* n, const double* a, const int64_t* lda,
                                   const double* x, const int64_t* incx, double* y)
{
    trmv_in_thread(*first, *last, uplo, trans, diag, *n, a, *lda, x, *incx, y);
}

void ork_blas_nx2_xctrmv_in_thread(const int64_t* first, const int64_t* last, const char* uplo, const char* trans,
                                   const char* diag, const int64_t* n, const ork_complex_float* a, const int64_t* lda,
                                   const ork_complex_float* x, const int64_t* incx, ork_complex_float* y)
{
    trmv_in_thread(*first, *last, uplo, trans, diag, *n, pairs(a), *lda, pairs(x), *incx, pairs(y));
}

void ork_blas_nx2_xztrmv_in_thread(const int64_t* first, const int64_t* last, const char* uplo, const char* trans,
                                   const char* diag, const int64_t* n, const ork_complex_double* a, const int64_t* lda,
                                   const ork_complex_double* x, const int64_t* incx, ork_complex_double* y)
{
    trmv_in_thread(*first, *last, uplo, trans, diag, *n, pairs(a), *lda, pairs(x), *incx, pairs(y));
}
