// SPDX-License-Identifier: MIT
// symm, hemm, trmm, trsm: a square matrix on one side of an m x n one. The rows of the square one mix the rows of the
// other, so a matrix on the left leaves its columns independent and one on the right its rows; the threads share those.
// Every element has the bits that one thread would give.
#pragma once

#include "blas/gemm.h"
#include "blas/strips.h"

namespace ork::blas {

// C <- alpha A B + beta C or alpha B A + beta C.
template <auto& kernel, class T>
[[gnu::noinline]] void symm_threaded(int threads, const char* side, const char* uplo, const std::int64_t* m,
                                     const std::int64_t* n, const T* alpha, const T* a, const std::int64_t* lda,
                                     const T* b, const std::int64_t* ldb, const T* beta, T* c, const std::int64_t* ldc)
{
    const bool left = is_letter(side, 'L');
    run_strips(left ? *n : *m, threads, [&](std::int64_t first, std::int64_t count) {
        kernel(side, uplo, left ? m : &count, left ? &count : n, alpha, a, lda, b + (left ? first * *ldb : first), ldb,
               beta, c + (left ? first * *ldc : first), ldc);
    });
}

template <class T, auto& kernel>
inline void symm(const char* side, const char* uplo, const std::int64_t* m, const std::int64_t* n, const T* alpha,
                 const T* a, const std::int64_t* lda, const T* b, const std::int64_t* ldb, const T* beta, T* c,
                 const std::int64_t* ldc)
{
    const double order = static_cast<double>(is_letter(side, 'L') ? *m : *n);
    const double work = order * static_cast<double>(*m) * static_cast<double>(*n);
    if (work >= 2 * gemm_work_per_thread) [[unlikely]]
        return symm_threaded<kernel>(affordable_threads(work, gemm_work_per_thread), side, uplo, m, n, alpha, a, lda, b,
                                     ldb, beta, c, ldc);
    kernel(side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc);
}

// B <- alpha op(A) B or alpha B op(A); the same with the inverse of op(A).
template <auto& kernel, class T>
[[gnu::noinline]] void trmm_threaded(int threads, const char* side, const char* uplo, const char* transa,
                                     const char* diag, const std::int64_t* m, const std::int64_t* n, const T* alpha,
                                     const T* a, const std::int64_t* lda, T* b, const std::int64_t* ldb)
{
    const bool left = is_letter(side, 'L');
    run_strips(left ? *n : *m, threads, [&](std::int64_t first, std::int64_t count) {
        kernel(side, uplo, transa, diag, left ? m : &count, left ? &count : n, alpha, a, lda,
               b + (left ? first * *ldb : first), ldb);
    });
}

template <class T, auto& kernel>
inline void trmm(const char* side, const char* uplo, const char* transa, const char* diag, const std::int64_t* m,
                 const std::int64_t* n, const T* alpha, const T* a, const std::int64_t* lda, T* b,
                 const std::int64_t* ldb)
{
    const double order = static_cast<double>(is_letter(side, 'L') ? *m : *n);
    const double work = order / 2 * static_cast<double>(*m) * static_cast<double>(*n);
    if (work >= 2 * gemm_work_per_thread) [[unlikely]]
        return trmm_threaded<kernel>(affordable_threads(work, gemm_work_per_thread), side, uplo, transa, diag, m, n,
                                     alpha, a, lda, b, ldb);
    kernel(side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb);
}

} // namespace ork::blas
