// SPDX-License-Identifier: MIT
// A <- alpha x x' + A and A <- alpha x y' + alpha' y x' + A, one triangle, packed; conjugate transposes for Hermitian
// matrices, whose diagonal becomes real. An element gets the product of x first, then that of y.
#include "blas/level2/banded_triangle.h"
#include "blas/level2_kernels.h"

namespace ork::level2 {
namespace {

// a(0 .. n) <- a + t x + u y, contiguous but for increments of x and y.
template <class T>
[[gnu::always_inline]] inline void add_two(Int n, T t, Strided<const T> x, T u, Strided<const T> y, T* a)
{
    constexpr int lanes = Vec<T>::lanes;
    const Factor<T> first(t), second(u);
    const auto step = [&]<int width>(Int i) __attribute__((always_inline))
    {
        store<width>(a + i, sum(sum(load<width>(a + i), times<width>(first, x.at(i))), times<width>(second, y.at(i))));
    };
    Int i = 0;
    if (x.contiguous() && y.contiguous()) {
        x.inc = y.inc = 1;
        for (; i + 4 * lanes <= n; i += 4 * lanes)
#pragma GCC unroll 4
            for (int j = 0; j < 4; ++j) step.template operator()<lanes>(i + j * lanes);
        for (; i + lanes <= n; i += lanes) step.template operator()<lanes>(i);
    }
    for (; i < n; ++i) step.template operator()<1>(i);
}

template <class T>
[[gnu::always_inline]] inline void add_one(Int n, T t, Strided<const T> x, T* a)
{
    constexpr int lanes = Vec<T>::lanes;
    const Factor<T> factor(t);
    const auto step = [&]<int width>(Int i) __attribute__((always_inline))
    {
        store<width>(a + i, sum(load<width>(a + i), factor * pinned(load<width>(x.at(i)))));
    };
    Int i = 0;
    if (x.contiguous()) {
        x.inc = 1;
        for (; i + 4 * lanes <= n; i += 4 * lanes)
#pragma GCC unroll 4
            for (int j = 0; j < 4; ++j) step.template operator()<lanes>(i + j * lanes);
        for (; i + lanes <= n; i += lanes) step.template operator()<lanes>(i);
    }
    for (; i < n; ++i) step.template operator()<1>(i);
}

template <class T>
inline void put_diagonal(T* diagonal, T term)
{
    if constexpr (is_complex<T>)
        put(diagonal, T{get(reals(diagonal)) + term.re, 0});
    else
        put(diagonal, get(diagonal) + term);
}

template <bool upper, class T>
[[gnu::noinline]] void update(const BandedTriangle<T>& triangle, Real<T> alpha, Strided<const T> x)
{
    for (Walk<upper, true, T> walk(triangle); !walk.ended(); walk.advance()) {
        const T own = get(x.at(walk.j)), t = alpha * conjugate<true>(own);
        const auto beside = walk.beside();
        add_one(beside.count, t, x.from(beside.row), beside.a);
        put_diagonal(walk.diagonal, t * own);
    }
}

template <bool upper, class T>
[[gnu::noinline]] void update(const BandedTriangle<T>& triangle, T alpha, Strided<const T> x, Strided<const T> y)
{
    for (Walk<upper, true, T> walk(triangle); !walk.ended(); walk.advance()) {
        const T own = get(x.at(walk.j)), other = get(y.at(walk.j));
        const T t = alpha * conjugate<true>(other), u = conjugate<true>(alpha * own);
        const auto beside = walk.beside();
        add_two(beside.count, t, x.from(beside.row), u, y.from(beside.row), beside.a);
        put_diagonal(walk.diagonal, t * own + u * other);
    }
}

template <class T>
void rank_1(const char* uplo, Int n, Real<T> alpha, const T* x, Int incx, T* ap)
{
    if (n == 0 || alpha == 0) return;
    contiguous(n, Strided<const T>(x, n, incx), [&](Strided<const T> v) {
        with_flag(is_upper(uplo), [&]<bool upper>() { update<upper>(packed(uplo, n, ap), alpha, v); });
    });
}

template <bool asks_for_one_loop = false, class T>
void rank_2(const char* uplo, Int n, T alpha, const T* x, Int incx, const T* y, Int incy, T* ap)
{
    if (n == 0 || alpha == T{}) return;
    if constexpr (asks_for_one_loop) one_loop_for_all(); // there is no other
    contiguous(n, Strided<const T>(x, n, incx), [&](Strided<const T> v) {
        contiguous(n, Strided<const T>(y, n, incy), [&](Strided<const T> w) {
            with_flag(is_upper(uplo), [&]<bool upper>() { update<upper>(packed(uplo, n, ap), alpha, v, w); });
        });
    });
}

} // namespace
} // namespace ork::level2

using namespace ork;

#define RANK_1(symbol, R, T)                                                                                           \
    void symbol(const char* uplo, const int64_t* n, const R* alpha, const T* x, const int64_t* incx, T* ap)            \
    {                                                                                                                  \
        level2::rank_1(uplo, *n, *alpha, pairs(x), *incx, pairs(ap));                                                  \
    }
#define RANK_2(symbol, T, asks)                                                                                        \
    void symbol(const char* uplo, const int64_t* n, const T* alpha, const T* x, const int64_t* incx, const T* y,       \
                const int64_t* incy, T* ap)                                                                            \
    {                                                                                                                  \
        level2::rank_2<asks>(uplo, *n, *pairs(alpha), pairs(x), *incx, pairs(y), *incy, pairs(ap));                    \
    }
RANK_1(ork_blas_nx2_sspr, float, float)
RANK_1(ork_blas_nx2_dspr, double, double)
RANK_1(ork_blas_nx2_chpr, float, ork_complex_float)
RANK_1(ork_blas_nx2_zhpr, double, ork_complex_double)
RANK_2(ork_blas_nx2_sspr2, float, true)
RANK_2(ork_blas_nx2_dspr2, double, false)
RANK_2(ork_blas_nx2_chpr2, ork_complex_float, false)
RANK_2(ork_blas_nx2_zhpr2, ork_complex_double, false)
