// SPDX-License-Identifier: MIT
// A <- alpha x y' + alpha' y x' + A of one triangle, conjugated in the complex routines (rank_update.h).
#include "blas/level2/rank_update.h"
#include "blas/level2_kernels.h"

namespace ork {
namespace {
using namespace level2;

template <class T>
struct FactorsOf { // of column j
    T alpha;
    Strided<const T> x, y;

    [[gnu::always_inline]] void operator()(Int j, T (&t)[2]) const
    {
        t[0] = alpha * conjugate<true>(get(y.at(j)));
        t[1] = conjugate<true>(alpha * get(x.at(j)));
    }
};

template <class T>
[[gnu::noinline]] void strided(bool upper, Loads loads, Int first, Int last, Int n, const FactorsOf<T>& factors, T* a,
                               Int lda)
{
    Buffer<T, chunk> x, y;
    for (Int i = 0; i < n; i += chunk) {
        const Int count = n - i < chunk ? n - i : chunk;
        gather(count, factors.x.from(i), x.data());
        gather(count, factors.y.from(i), y.data());
        rank_update<2, T>(upper, loads, i, i + count, first, last, {{x.data(), y.data()}}, a, lda, factors);
    }
}

// Columns [first, last).
template <class T>
void syr2(Int first, Int last, const char* uplo, Int n, T alpha, const T* x, Int incx, const T* y, Int incy, T* a,
          Int lda)
{
    if (n == 0 || alpha == T{}) return;
    const bool may_be_aligned = is_complex<T> || !one_loop_for_all(); // the real routines ask the switch
    const bool upper = is_upper(uplo);
    const FactorsOf<T> factors{alpha, Strided<const T>(x, n, incx), Strided<const T>(y, n, incy)};
    if (incx == 1 && incy == 1)
        return rank_update<2, T>(upper, may_be_aligned, n, first, last, {{x, y}}, a, lda, factors);
    Loads loads = loads_of(n, n, a, lda);
    loads.aligned &= may_be_aligned;
    strided(upper, loads, first, last, n, factors, a, lda);
}

} // namespace
} // namespace ork

using namespace ork;

void ork_blas_nx2_xssyr2(const char* uplo, const int64_t* n, const float* alpha, const float* x, const int64_t* incx,
                         const float* y, const int64_t* incy, float* a, const int64_t* lda)
{
    syr2(0, *n, uplo, *n, *alpha, x, *incx, y, *incy, a, *lda);
}

void ork_blas_nx2_xdsyr2(const char* uplo, const int64_t* n, const double* alpha, const double* x, const int64_t* incx,
                         const double* y, const int64_t* incy, double* a, const int64_t* lda)
{
    syr2(0, *n, uplo, *n, *alpha, x, *incx, y, *incy, a, *lda);
}

void ork_blas_nx2_cher2(const char* uplo, const int64_t* n, const ork_complex_float* alpha, const ork_complex_float* x,
                        const int64_t* incx, const ork_complex_float* y, const int64_t* incy, ork_complex_float* a,
                        const int64_t* lda)
{
    syr2(0, *n, uplo, *n, *pairs(alpha), pairs(x), *incx, pairs(y), *incy, pairs(a), *lda);
}

void ork_blas_nx2_zher2(const char* uplo, const int64_t* n, const ork_complex_double* alpha,
                        const ork_complex_double* x, const int64_t* incx, const ork_complex_double* y,
                        const int64_t* incy, ork_complex_double* a, const int64_t* lda)
{
    syr2(0, *n, uplo, *n, *pairs(alpha), pairs(x), *incx, pairs(y), *incy, pairs(a), *lda);
}

void ork_blas_nx2_xssyr2_in_thread(const int64_t* first, const int64_t* last, const char* uplo, const int64_t* n,
                                   const float* alpha, const float* x, const int64_t* incx, const float* y,
                                   const int64_t* incy, float* a, const int64_t* lda)
{
    syr2(*first - 1, *last, uplo, *n, *alpha, x, *incx, y, *incy, a, *lda);
}

void ork_blas_nx2_xdsyr2_in_thread(const int64_t* first, const int64_t* last, const char* uplo, const int64_t* n,
                                   const double* alpha, const double* x, const int64_t* incx, const double* y,
                                   const int64_t* incy, double* a, const int64_t* lda)
{
    syr2(*first - 1, *last, uplo, *n, *alpha, x, *incx, y, *incy, a, *lda);
}
