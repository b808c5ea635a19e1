// SPDX-License-Identifier: MIT
// gemmt, syrk, herk, syr2k, her2k: a triangle of C takes products. The threads share its columns, in strips of about
// equal area; a strip is a triangle on the diagonal, a smaller problem of the same kind, and a rectangle, a gemm. Every
// element has the bits that one thread would give.
#pragma once

#include "blas/gemm.h"
#include "blas/routine.h"
#include "blas/strips.h"

namespace ork::blas {

// op(A), of which a product takes rows, or op(B), of which it takes columns: element (0, 0) of it from row or column i
// on.
template <class T>
struct Factor {
    char op;
    bool along; // rows or columns i lie i elements apart, not i leading dimensions
    const T* data;
    const std::int64_t* lead;

    const T* from(std::int64_t i) const { return data + (along ? i : i * *lead); }
};
template <class T>
inline Factor<T> left_factor(char op, const T* a, const std::int64_t* lda)
{
    return {op, is_letter(&op, 'N'), a, lda};
}
template <class T>
inline Factor<T> right_factor(char op, const T* b, const std::int64_t* ldb)
{
    return {op, !is_letter(&op, 'N'), b, ldb};
}

// The part of a strip beside its triangle: rows of C.
struct Rectangle {
    std::int64_t row, rows, column, columns;
};
inline Rectangle beside(bool lower, std::int64_t n, std::int64_t first, std::int64_t count)
{
    return lower ? Rectangle{first + count, n - first - count, first, count} : Rectangle{0, first, first, count};
}

// The rectangle of C <- alpha A B + beta C.
template <class T>
inline void multiply(const Rectangle& r, const std::int64_t* k, const T* alpha, const Factor<T>& a, const Factor<T>& b,
                     const T* beta, T* c, const std::int64_t* ldc)
{
    if (r.rows > 0)
        GemmKernel<T>::call(&a.op, &b.op, &r.rows, &r.columns, k, alpha, a.from(r.row), a.lead, b.from(r.column),
                            b.lead, beta, c + r.row + r.column * *ldc, ldc);
}

inline double triangle_work(std::int64_t n, std::int64_t k, int products)
{
    return static_cast<double>(n) * static_cast<double>(n) * static_cast<double>(k) * products / 2;
}

// Whether a product is added to C at all, and threads pay.
template <class S>
inline bool threads_pay(double work, const S* alpha)
{
    return work >= 2 * gemm_work_per_thread && !(*alpha == S());
}

template <auto& kernel, class T>
[[gnu::noinline]] void gemmt_threaded(int threads, const char* uplo, const char* transa, const char* transb,
                                      const std::int64_t* n, const std::int64_t* k, const T* alpha, const T* a,
                                      const std::int64_t* lda, const T* b, const std::int64_t* ldb, const T* beta, T* c,
                                      const std::int64_t* ldc)
{
    const bool lower = is_letter(uplo, 'L');
    const auto left = left_factor(*transa, a, lda), right = right_factor(*transb, b, ldb);
    run_triangle_strips(lower, *n, threads, [&](std::int64_t first, std::int64_t count) {
        kernel(uplo, transa, transb, &count, k, alpha, left.from(first), lda, right.from(first), ldb, beta,
               c + first * (1 + *ldc), ldc);
        multiply(beside(lower, *n, first, count), k, alpha, left, right, beta, c, ldc);
    });
}

template <class T, auto& kernel>
inline void gemmt(const char* uplo, const char* transa, const char* transb, const std::int64_t* n,
                  const std::int64_t* k, const T* alpha, const T* a, const std::int64_t* lda, const T* b,
                  const std::int64_t* ldb, const T* beta, T* c, const std::int64_t* ldc)
{
    const double work = triangle_work(*n, *k, 1);
    if (threads_pay(work, alpha)) [[unlikely]]
        return gemmt_threaded<kernel>(affordable_threads(work, gemm_work_per_thread), uplo, transa, transb, n, k, alpha,
                                      a, lda, b, ldb, beta, c, ldc);
    kernel(uplo, transa, transb, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}

// Letters of A and A' in A A' or A' A.
struct Letters {
    char left, right;
};
inline Letters product_letters(const char* trans, char transposed)
{
    return is_letter(trans, 'N') ? Letters{'N', transposed} : Letters{transposed, 'N'};
}

// beta C, where beta is real, so that the products can be added; returns what is left to do with C. With beta = 0 the
// first product overwrites C.
template <class R>
Complex<R> scale_by_real(const Rectangle& r, const R* beta, Complex<R>* c, const std::int64_t* ldc);

// Whether all numbers of an m x n matrix are finite.
template <class R>
bool is_finite(std::int64_t m, std::int64_t n, const Complex<R>* a, std::int64_t lda);

// syrk and herk.
template <auto& kernel, class T, class S>
[[gnu::noinline]] void syrk_threaded(int threads, const char* uplo, const char* trans, const std::int64_t* n,
                                     const std::int64_t* k, const S* alpha, const T* a, const std::int64_t* lda,
                                     const S* beta, T* c, const std::int64_t* ldc)
{
    constexpr bool hermitian = !std::is_same_v<S, T>;
    const bool lower = is_letter(uplo, 'L'), plain = is_letter(trans, 'N');
    const auto [left, right] = product_letters(trans, hermitian ? 'C' : 'T');
    // herk multiplies by a real alpha and gemm by a complex one, which makes NaN of infinity; of finite numbers both
    // make the same.
    if constexpr (hermitian)
        if (!is_finite(plain ? *n : *k, plain ? *k : *n, a, *lda)) threads = 1;
    const auto rows = left_factor(left, a, lda), columns = right_factor(right, a, lda);
    run_triangle_strips(lower, *n, threads, [&](std::int64_t first, std::int64_t count) {
        kernel(uplo, trans, &count, k, alpha, rows.from(first), lda, beta, c + first * (1 + *ldc), ldc);
        const Rectangle r = beside(lower, *n, first, count);
        if constexpr (hermitian) {
            const T complex_alpha = *alpha, rest = scale_by_real(r, beta, c, ldc);
            multiply(r, k, &complex_alpha, rows, columns, &rest, c, ldc);
        } else {
            multiply(r, k, alpha, rows, columns, beta, c, ldc);
        }
    });
}

template <class T, class S, auto& kernel>
inline void syrk(const char* uplo, const char* trans, const std::int64_t* n, const std::int64_t* k, const S* alpha,
                 const T* a, const std::int64_t* lda, const S* beta, T* c, const std::int64_t* ldc)
{
    const double work = triangle_work(*n, *k, 1);
    if (threads_pay(work, alpha)) [[unlikely]]
        return syrk_threaded<kernel>(affordable_threads(work, gemm_work_per_thread), uplo, trans, n, k, alpha, a, lda,
                                     beta, c, ldc);
    kernel(uplo, trans, n, k, alpha, a, lda, beta, c, ldc);
}

// syr2k and her2k: all of the first product is added before the second.
template <auto& kernel, class T, class S>
[[gnu::noinline]] void syr2k_threaded(int threads, const char* uplo, const char* trans, const std::int64_t* n,
                                      const std::int64_t* k, const T* alpha, const T* a, const std::int64_t* lda,
                                      const T* b, const std::int64_t* ldb, const S* beta, T* c, const std::int64_t* ldc)
{
    constexpr bool hermitian = !std::is_same_v<S, T>;
    const bool lower = is_letter(uplo, 'L');
    const auto [left, right] = product_letters(trans, hermitian ? 'C' : 'T');
    const auto a_rows = left_factor(left, a, lda), b_rows = left_factor(left, b, ldb);
    const auto a_columns = right_factor(right, a, lda), b_columns = right_factor(right, b, ldb);
    run_triangle_strips(lower, *n, threads, [&](std::int64_t first, std::int64_t count) {
        kernel(uplo, trans, &count, k, alpha, a_rows.from(first), lda, b_rows.from(first), ldb, beta,
               c + first * (1 + *ldc), ldc);
        const Rectangle r = beside(lower, *n, first, count);
        T second = *alpha, rest;
        if constexpr (hermitian)
            second = std::conj(*alpha), rest = scale_by_real(r, beta, c, ldc);
        else
            rest = *beta;
        const T one(1);
        multiply(r, k, alpha, a_rows, b_columns, &rest, c, ldc);
        multiply(r, k, &second, b_rows, a_columns, &one, c, ldc);
    });
}

template <class T, class S, auto& kernel>
inline void syr2k(const char* uplo, const char* trans, const std::int64_t* n, const std::int64_t* k, const T* alpha,
                  const T* a, const std::int64_t* lda, const T* b, const std::int64_t* ldb, const S* beta, T* c,
                  const std::int64_t* ldc)
{
    const double work = triangle_work(*n, *k, 2);
    if (threads_pay(work, alpha)) [[unlikely]]
        return syr2k_threaded<kernel>(affordable_threads(work, gemm_work_per_thread), uplo, trans, n, k, alpha, a, lda,
                                      b, ldb, beta, c, ldc);
    kernel(uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}

} // namespace ork::blas
