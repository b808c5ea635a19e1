// SPDX-License-Identifier: MIT
// C <- alpha op(A) op(B) + beta C on the threads of the pool. C is cut into a grid of blocks; each part is a call of
// the kernel on its block of C, its rows of op(A) and its columns of op(B). The depth is never cut, and an element's
// additions run over the depth in an order that does not depend on its neighbours, so a grid changes no bit.
#pragma once

#include <algorithm>
#include <cstdint>

#include "blas/kernels.h"
#include "blas/strips.h"

namespace ork::blas {

// The kernel of one thread.
template <class T>
struct GemmKernel;
template <>
struct GemmKernel<float> {
    static constexpr auto& call = kernels::xsgemm;
};
template <>
struct GemmKernel<double> {
    static constexpr auto& call = kernels::xdgemm;
};
template <>
struct GemmKernel<ork_complex_float> {
    static constexpr auto& call = kernels::xcgemm;
};
template <>
struct GemmKernel<ork_complex_double> {
    static constexpr auto& call = kernels::xzgemm;
};

// How C is divided: row_parts x column_parts pieces of `rows` x `columns` elements, the last of each line smaller.
struct GemmGrid {
    int row_parts, column_parts;
    std::int64_t rows, columns;
};

// The division of an m x n problem of depth k for at most `threads` threads; one part where threads would not pay.
GemmGrid gemm_grid(std::int64_t m, std::int64_t n, std::int64_t k, int threads);

// Multiplications that a further thread must save. Measured on two processors (Zen 5): with a worker that still spins
// two threads win from 40 x 40 x 40 on, with one that must be woken first from about 96 x 96 x 96 on (1.1 to 1.3 times
// as fast there, 0.9 to 0.95 times at 80), which is where two threads begin.
inline constexpr double gemm_work_per_thread = 96.0 * 96 * 96 / 2;

// By a kernel of gemm's arguments, whose operands may be of other types than C.
template <auto& kernel, class T, class A, class B>
[[gnu::noinline]] void gemm_threaded(const char* transa, const char* transb, const std::int64_t* m,
                                     const std::int64_t* n, const std::int64_t* k, const T* alpha, const A* a,
                                     const std::int64_t* lda, const B* b, const std::int64_t* ldb, const T* beta, T* c,
                                     const std::int64_t* ldc)
{
    const GemmGrid grid = *alpha == T() ? GemmGrid{1, 1, *m, *n} : gemm_grid(*m, *n, *k, threads::limit());
    const int parts = grid.row_parts * grid.column_parts;
    if (parts == 1) return kernel(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);

    const bool a_by_rows = !is_letter(transa, 'N'), b_by_rows = !is_letter(transb, 'N');
    threads::run(parts, [&](int part) {
        const std::int64_t row = part % grid.row_parts * grid.rows, column = part / grid.row_parts * grid.columns;
        const std::int64_t rows = std::min(grid.rows, *m - row), columns = std::min(grid.columns, *n - column);
        kernel(transa, transb, &rows, &columns, k, alpha, a + (a_by_rows ? row * *lda : row), lda,
               b + (b_by_rows ? column : column * *ldb), ldb, beta, c + row + column * *ldc, ldc);
    });
}

// In line, so that a small multiply goes straight from the checks to the kernel.
template <auto& kernel, class T, class A, class B>
inline void gemm_by(const char* transa, const char* transb, const std::int64_t* m, const std::int64_t* n,
                    const std::int64_t* k, const T* alpha, const A* a, const std::int64_t* lda, const B* b,
                    const std::int64_t* ldb, const T* beta, T* c, const std::int64_t* ldc)
{
    if (*m == 0 || *n == 0 || ((*alpha == T() || *k == 0) && *beta == T(1))) return;
    const double work = static_cast<double>(*m) * static_cast<double>(*n) * static_cast<double>(*k);
    if (work < 2 * gemm_work_per_thread) [[likely]]
        return kernel(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
    gemm_threaded<kernel>(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}

template <class T>
inline constexpr auto& gemm = gemm_by<GemmKernel<T>::call, T, T, T>;

} // namespace ork::blas
