// SPDX-License-Identifier: MIT
// A <- alpha x x' + A of one triangle, alpha real; x' conjugated in the complex routines (rank_update.h).
#include "blas/level2/rank_update.h"
#include "blas/level2_kernels.h"

namespace ork {
namespace {
using namespace level2;

template <class T>
struct FactorOf { // of column j
    Real<T> alpha;
    Strided<const T> x;

    [[gnu::always_inline]] void operator()(Int j, T (&t)[1]) const
    {
        const T element = get(x.at(j));
        if constexpr (is_complex<T>)
            t[0] = {alpha * element.re, alpha * -element.im};
        else
            t[0] = alpha * element;
    }
};

template <class T>
[[gnu::noinline]] void strided(bool upper, Loads loads, Int first, Int last, Int n, const FactorOf<T>& factor, T* a,
                               Int lda)
{
    Buffer<T, chunk> gathered;
    for (Int i = 0; i < n; i += chunk) {
        const Int count = n - i < chunk ? n - i : chunk;
        gather(count, factor.x.from(i), gathered.data());
        rank_update<1, T>(upper, loads, i, i + count, first, last, {{gathered.data()}}, a, lda, factor);
    }
}

// Columns [first, last).
template <class T>
void syr(Int first, Int last, const char* uplo, Int n, Real<T> alpha, const T* x, Int incx, T* a, Int lda)
{
    if (n == 0 || alpha == 0) return;
    const bool upper = is_upper(uplo);
    const FactorOf<T> factor{alpha, Strided<const T>(x, n, incx)};
    if (incx == 1) return rank_update<1, T>(upper, true, n, first, last, {{x}}, a, lda, factor);
    strided(upper, loads_of(n, n, a, lda), first, last, n, factor, a, lda);
}

} // namespace
} // namespace ork

using namespace ork;

void ork_blas_nx2_xssyr(const char* uplo, const int64_t* n, const float* alpha, const float* x, const int64_t* incx,
                        float* a, const int64_t* lda)
{
    syr(0, *n, uplo, *n, *alpha, x, *incx, a, *lda);
}

void ork_blas_nx2_xdsyr(const char* uplo, const int64_t* n, const double* alpha, const double* x, const int64_t* incx,
                        double* a, const int64_t* lda)
{
    syr(0, *n, uplo, *n, *alpha, x, *incx, a, *lda);
}

void ork_blas_nx2_cher(const char* uplo, const int64_t* n, const float* alpha, const ork_complex_float* x,
                       const int64_t* incx, ork_complex_float* a, const int64_t* lda)
{
    syr(0, *n, uplo, *n, *alpha, pairs(x), *incx, pairs(a), *lda);
}

void ork_blas_nx2_zher(const char* uplo, const int64_t* n, const double* alpha, const ork_complex_double* x,
                       const int64_t* incx, ork_complex_double* a, const int64_t* lda)
{
    syr(0, *n, uplo, *n, *alpha, pairs(x), *incx, pairs(a), *lda);
}

void ork_blas_nx2_xssyr_in_thread(const int64_t* first, const int64_t* last, const char* uplo, const int64_t* n,
                                  const float* alpha, const float* x, const int64_t* incx, float* a, const int64_t* lda)
{
    syr(*first - 1, *last, uplo, *n, *alpha, x, *incx, a, *lda);
}

void ork_blas_nx2_xdsyr_in_thread(const int64_t* first, const int64_t* last, const char* uplo, const int64_t* n,
                                  const double* alpha, const double* x, const int64_t* incx, double* a,
                                  const int64_t* lda)
{
    syr(*first - 1, *last, uplo, *n, *alpha, x, *incx, a, *lda);
}
