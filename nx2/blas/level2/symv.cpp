// SPDX-License-Identifier: MIT
// y <- alpha A x + beta y, A symmetric or Hermitian (symv.h). Other increments than 1 change no bit: blocks of 128
// columns and chunks of 1000 rows pass through buffers.
#include "blas/level2/symv.h"
#include "blas/level2/scale.h"
#include "blas/level2_kernels.h"

namespace ork {
namespace {
using namespace level2;

Int least(Int a, Int b) { return a < b ? a : b; }

// body.operator()<upper, aligned>()
template <class Body>
void with_triangle(const char* uplo, Loads loads, Body&& body)
{
    with_flag(is_upper(uplo), [&]<bool upper>() {
        with_flag(loads.aligned, [&]<bool aligned>() { body.template operator()<upper, aligned>(); });
    });
}

// y <- y + alpha A x, contiguous.
template <bool upper, bool aligned, class T>
void add_product(bool far, Int n, T alpha, const T* a, Int lda, const T* x, T* y)
{
    for (Int j = 0; j < n; j += panel) {
        const Int columns = least(panel, n - j), end = j + columns;
        const T* const block = a + j * lda;
        if constexpr (!upper) symmetric::triangle<upper, aligned>(columns, alpha, block + j, lda, x + j, y + j);
        const Int first = upper ? 0 : end, rows = upper ? j : n - end;
        if (rows > 0)
            with_flag(far, [&]<bool far>() {
                symmetric::rectangle<aligned, far>(rows, columns, alpha, block + first, lda, x + first, y + first,
                                                   x + j, y + j);
            });
        if constexpr (upper) symmetric::triangle<upper, aligned>(columns, alpha, block + j, lda, x + j, y + j);
    }
}

// Any increments.
template <bool upper, bool aligned, class T>
[[gnu::noinline]] void add_product(Int n, T alpha, const T* a, Int lda, Strided<const T> x, Strided<T> y)
{
    Buffer<T, panel> own_x, own_y;
    Buffer<T, chunk> rows_x, rows_y;
    for (Int j = 0; j < n; j += panel) {
        const Int columns = least(panel, n - j), end = j + columns;
        const T* const block = a + j * lda;
        gather(columns, x.from(j), own_x.data());
        gather<T>(columns, y.from(j), own_y.data());
        const auto triangle = [&] {
            symmetric::triangle<upper, aligned, T>(columns, alpha, block + j, lda, own_x.data(), own_y.data());
        };
        if constexpr (!upper) triangle();
        const Int last = upper ? j : n;
        for (Int i = upper ? 0 : end; i < last; i += chunk) {
            const Int rows = least(chunk, last - i);
            gather(rows, x.from(i), rows_x.data());
            gather<T>(rows, y.from(i), rows_y.data());
            symmetric::rectangle<aligned, false, T>(rows, columns, alpha, block + i, lda, rows_x.data(), rows_y.data(),
                                                    own_x.data(), own_y.data());
            scatter(rows, rows_y.data(), y.from(i));
        }
        if constexpr (upper) triangle();
        scatter(columns, own_y.data(), y.from(j));
    }
}

template <bool switchable = false, class T>
void symv(const char* uplo, Int n, T alpha, const T* a, Int lda, const T* x, Int incx, T beta, T* y, Int incy)
{
    if (n == 0 || (alpha == T{} && beta == T(1))) return;
    Loads loads = loads_of(n, n, a, lda);
    if (switchable && one_loop_for_all()) loads.aligned = false;
    scale(n, beta, Strided<T>(y, n, incy));
    if (alpha == T{}) return;
    with_triangle(uplo, loads, [&]<bool upper, bool aligned>() {
        if (incx == 1 && incy == 1) return add_product<upper, aligned>(loads.ahead != 0, n, alpha, a, lda, x, y);
        add_product<upper, aligned, T>(n, alpha, a, lda, {x, n, incx}, {y, n, incy});
    });
}

template <class T>
void symv_kernel(const char* uplo, Int n, T alpha, const T* a, Int lda, const T* x, T* y)
{
    if (n == 0 || alpha == T{}) return;
    const Loads loads = loads_of(n, n, a, lda);
    with_triangle(uplo, loads, [&]<bool upper, bool aligned>() {
        add_product<upper, aligned>(loads.ahead != 0, n, alpha, a, lda, x, y);
    });
}

} // namespace
} // namespace ork

using namespace ork;

void ork_blas_nx2_xssymv(const char* uplo, const int64_t* n, const float* alpha, const float* a, const int64_t* lda,
                         const float* x, const int64_t* incx, const float* beta, float* y, const int64_t* incy)
{
    symv<true>(uplo, *n, *alpha, a, *lda, x, *incx, *beta, y, *incy);
}

void ork_blas_nx2_xdsymv(const char* uplo, const int64_t* n, const double* alpha, const double* a, const int64_t* lda,
                         const double* x, const int64_t* incx, const double* beta, double* y, const int64_t* incy)
{
    symv(uplo, *n, *alpha, a, *lda, x, *incx, *beta, y, *incy);
}

void ork_blas_nx2_chemv(const char* uplo, const int64_t* n, const ork_complex_float* alpha, const ork_complex_float* a,
                        const int64_t* lda, const ork_complex_float* x, const int64_t* incx,
                        const ork_complex_float* beta, ork_complex_float* y, const int64_t* incy)
{
    symv(uplo, *n, *pairs(alpha), pairs(a), *lda, pairs(x), *incx, *pairs(beta), pairs(y), *incy);
}

void ork_blas_nx2_zhemv(const char* uplo, const int64_t* n, const ork_complex_double* alpha,
                        const ork_complex_double* a, const int64_t* lda, const ork_complex_double* x,
                        const int64_t* incx, const ork_complex_double* beta, ork_complex_double* y, const int64_t* incy)
{
    symv(uplo, *n, *pairs(alpha), pairs(a), *lda, pairs(x), *incx, *pairs(beta), pairs(y), *incy);
}

void ork_blas_nx2_xssymv_kernel(const char* uplo, const int64_t* n, const float* alpha, const float* a,
                                const int64_t* lda, const float* x, float* y)
{
    symv_kernel(uplo, *n, *alpha, a, *lda, x, y);
}

void ork_blas_nx2_xdsymv_kernel(const char* uplo, const int64_t* n, const double* alpha, const double* a,
                                const int64_t* lda, const double* x, double* y)
{
    symv_kernel(uplo, *n, *alpha, a, *lda, x, y);
}
