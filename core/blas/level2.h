// SPDX-License-Identifier: MIT
// Matrix-vector routines on threads: gemv, ger, syr, syr2, trmv. What is divided is the result (rows or columns of the
// matrix), never a sum, so every element has the bits that one thread would give. symv and its like write to every
// element from every column, and a solve goes from element to element: they stay on the calling thread, and so do bands
// and packed matrices, where there is little work to an element.
#pragma once

#include "blas/kernels.h"
#include "blas/strips.h"
#include "blas/work_buffer.h"

namespace ork::blas {

// Bytes of the matrix that a further thread must take over. Measured on two processors (Zen 5) with a worker that still
// spins, in double precision: from 4 MiB of matrix on two threads are 0.8 to 1.6 times as fast, at 8 MiB 1.06 (gemv T),
// 1.46 (gemv N), 1.12 (ger), 1.01 (syr), 1.10 (syr2), at 32 MiB 1.4 to 1.8; at 2 MiB they lose, because the halves of a
// matrix in the second level of cache change processors.
inline constexpr double matrix_bytes_per_thread = 4 << 20;

// trmv additionally copies its vector: 0.85 (lower, N) to 1.35 (T) at 8 MiB, 1.04 to 1.65 at 16.
inline constexpr double triangle_bytes_per_thread = 8 << 20;

// Strips of rows are pieces of every column, which should be worth going there; kernels take up to four columns at
// once.
inline constexpr std::int64_t rows_at_once = 64, columns_at_once = 4;

template <class T>
inline double matrix_bytes(std::int64_t m, std::int64_t n)
{
    return static_cast<double>(m) * static_cast<double>(n) * sizeof(T);
}

// Elements first .. first + count - 1 of a vector of n, as an argument of a smaller call.
template <class T>
inline T* part_of(T* x, std::int64_t n, std::int64_t incx, std::int64_t first, std::int64_t count)
{
    return x + (incx < 0 ? n - first - count : first) * (incx < 0 ? -incx : incx);
}

// y <- alpha op(A) x + beta y by rows of op(A).
template <auto& kernel, class T, class S>
[[gnu::noinline]] void gemv_threaded(int threads, const char* trans, const std::int64_t* m, const std::int64_t* n,
                                     const T* alpha, const S* a, const std::int64_t* lda, const T* x,
                                     const std::int64_t* incx, const T* beta, T* y, const std::int64_t* incy)
{
    const bool plain = is_letter(trans, 'N');
    const std::int64_t length = plain ? *m : *n;
    const auto strip = [&](std::int64_t first, std::int64_t count) {
        kernel(trans, plain ? &count : m, plain ? n : &count, alpha, a + (plain ? first : first * *lda), lda, x, incx,
               beta, part_of(y, length, *incy, first, count), incy);
    };
    run_strips(length, threads, strip, plain ? rows_at_once : columns_at_once);
}

template <class T, class S, auto& kernel>
inline void gemv(const char* trans, const std::int64_t* m, const std::int64_t* n, const T* alpha, const S* a,
                 const std::int64_t* lda, const T* x, const std::int64_t* incx, const T* beta, T* y,
                 const std::int64_t* incy)
{
    const double bytes = matrix_bytes<S>(*m, *n);
    if (bytes >= 2 * matrix_bytes_per_thread) [[unlikely]]
        return gemv_threaded<kernel>(affordable_threads(bytes, matrix_bytes_per_thread), trans, m, n, alpha, a, lda, x,
                                     incx, beta, y, incy);
    kernel(trans, m, n, alpha, a, lda, x, incx, beta, y, incy);
}

// A <- alpha x y' + A by columns.
template <auto& kernel, class T>
[[gnu::noinline]] void ger_threaded(int threads, const std::int64_t* m, const std::int64_t* n, const T* alpha,
                                    const T* x, const std::int64_t* incx, const T* y, const std::int64_t* incy, T* a,
                                    const std::int64_t* lda)
{
    const auto strip = [&](std::int64_t first, std::int64_t count) {
        kernel(m, &count, alpha, x, incx, part_of(y, *n, *incy, first, count), incy, a + first * *lda, lda);
    };
    run_strips(*n, threads, strip, columns_at_once);
}

template <class T, auto& kernel>
inline void ger(const std::int64_t* m, const std::int64_t* n, const T* alpha, const T* x, const std::int64_t* incx,
                const T* y, const std::int64_t* incy, T* a, const std::int64_t* lda)
{
    const double bytes = matrix_bytes<T>(*m, *n);
    if (bytes >= 2 * matrix_bytes_per_thread) [[unlikely]]
        return ger_threaded<kernel>(affordable_threads(bytes, matrix_bytes_per_thread), m, n, alpha, x, incx, y, incy,
                                    a, lda);
    kernel(m, n, alpha, x, incx, y, incy, a, lda);
}

// A <- alpha x x' + A and A <- alpha x y' + alpha y x' + A, one triangle, by columns.
template <auto& kernel, class... Arguments>
[[gnu::noinline]] void update_triangle(int threads, const char* uplo, const std::int64_t* n, Arguments... arguments)
{
    run_triangle_strips(is_letter(uplo, 'L'), *n, threads, [&](std::int64_t first, std::int64_t count) {
        const std::int64_t first_column = first + 1, last_column = first + count;
        kernel(&first_column, &last_column, uplo, n, arguments...);
    });
}

template <class T, auto& kernel, auto& part_kernel>
inline void syr(const char* uplo, const std::int64_t* n, const T* alpha, const T* x, const std::int64_t* incx, T* a,
                const std::int64_t* lda)
{
    const double bytes = matrix_bytes<T>(*n, *n) / 2;
    if (bytes >= 2 * matrix_bytes_per_thread) [[unlikely]]
        return update_triangle<part_kernel>(affordable_threads(bytes, matrix_bytes_per_thread), uplo, n, alpha, x, incx,
                                            a, lda);
    kernel(uplo, n, alpha, x, incx, a, lda);
}

template <class T, auto& kernel, auto& part_kernel>
inline void syr2(const char* uplo, const std::int64_t* n, const T* alpha, const T* x, const std::int64_t* incx,
                 const T* y, const std::int64_t* incy, T* a, const std::int64_t* lda)
{
    const double bytes = matrix_bytes<T>(*n, *n) / 2;
    if (bytes >= 2 * matrix_bytes_per_thread) [[unlikely]]
        return update_triangle<part_kernel>(affordable_threads(bytes, matrix_bytes_per_thread), uplo, n, alpha, x, incx,
                                            y, incy, a, lda);
    kernel(uplo, n, alpha, x, incx, y, incy, a, lda);
}

// x <- op(A) x by elements, from a copy of x. Returns false when there is no memory for it.
template <auto& part_kernel, class T>
[[gnu::noinline]] bool trmv_threaded(int threads, const char* uplo, const char* trans, const char* diag,
                                     const std::int64_t* n, const T* a, const std::int64_t* lda, T* x,
                                     const std::int64_t* incx)
{
    const WorkBuffer<T> copy(2 * *n); // x, and the results where x has gaps
    if (copy.data() == nullptr) return false;
    T* const from = copy.data();
    for (std::int64_t i = 0; i < *n; ++i) from[i] = *part_of(x, *n, *incx, i, 1);
    const bool fewer_and_fewer = is_letter(uplo, 'L') != is_letter(trans, 'N'); // products to an element
    run_triangle_strips(fewer_and_fewer, *n, threads, [&](std::int64_t first, std::int64_t count) {
        const std::int64_t one = 1, first_element = first + 1, last_element = first + count;
        T* const to = *incx == 1 ? x + first : from + *n + first;
        part_kernel(&first_element, &last_element, uplo, trans, diag, n, a, lda, from, &one, to);
        if (*incx != 1)
            for (std::int64_t i = 0; i < count; ++i) *part_of(x, *n, *incx, first + i, 1) = to[i];
    });
    return true;
}

template <class T, auto& kernel, auto& part_kernel>
inline void trmv(const char* uplo, const char* trans, const char* diag, const std::int64_t* n, const T* a,
                 const std::int64_t* lda, T* x, const std::int64_t* incx)
{
    const double bytes = matrix_bytes<T>(*n, *n) / 2;
    if (bytes >= 2 * triangle_bytes_per_thread) [[unlikely]] {
        const int threads = affordable_threads(bytes, triangle_bytes_per_thread);
        if (threads > 1 && trmv_threaded<part_kernel>(threads, uplo, trans, diag, n, a, lda, x, incx)) return;
    }
    kernel(uplo, trans, diag, n, a, lda, x, incx);
}

} // namespace ork::blas
