// SPDX-License-Identifier: MIT
// C is cut into a grid of blocks; each part is a call of the kernel on its block of C, its rows of op(A) and its
// columns of op(B). The depth is never cut, and an element's additions run over the depth in an order that does not
// depend on its neighbours, so a grid changes no bit.
#include "blas/gemm.h"

#include <algorithm>

#include "blas/strips.h"

namespace ork::blas {

GemmGrid gemm_grid(std::int64_t m, std::int64_t n, std::int64_t k, int threads)
{
    GemmGrid best{1, 1, m, n};
    const double area = static_cast<double>(m) * static_cast<double>(n);
    const double affordable = area * static_cast<double>(k) / gemm_work_per_thread;
    if (affordable < threads) threads = static_cast<int>(affordable);

    // A part costs its products, and its share of A and B is packed: an element packed costs about as much as
    // `packing` products.
    constexpr double packing = 8;
    const auto cost = [](double rows, double columns) { return rows * columns + packing * (rows + columns); };
    double lowest = cost(static_cast<double>(m), static_cast<double>(n));
    for (int row_parts = 1; row_parts <= threads; ++row_parts) {
        const int column_parts = threads / row_parts;
        const std::int64_t rows = strip_length(m, row_parts), columns = strip_length(n, column_parts);
        const double c = cost(static_cast<double>(rows), static_cast<double>(columns));
        if (!(c < lowest)) continue;
        lowest = c;
        best = {static_cast<int>((m + rows - 1) / rows), static_cast<int>((n + columns - 1) / columns), rows, columns};
    }
    return best;
}

template <class T>
void gemm_threaded(const char* transa, const char* transb, const std::int64_t* m, const std::int64_t* n,
                   const std::int64_t* k, const T* alpha, const T* a, const std::int64_t* lda, const T* b,
                   const std::int64_t* ldb, const T* beta, T* c, const std::int64_t* ldc)
{
    const GemmGrid grid = *alpha == T() ? GemmGrid{1, 1, *m, *n} : gemm_grid(*m, *n, *k, threads::limit());
    const int parts = grid.row_parts * grid.column_parts;
    if (parts == 1) return GemmKernel<T>::call(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);

    const bool a_by_rows = (*transa & ~0x20) != 'N', b_by_rows = (*transb & ~0x20) != 'N';
    threads::run(parts, [&](int part) {
        const std::int64_t row = part % grid.row_parts * grid.rows, column = part / grid.row_parts * grid.columns;
        const std::int64_t rows = std::min(grid.rows, *m - row), columns = std::min(grid.columns, *n - column);
        GemmKernel<T>::call(transa, transb, &rows, &columns, k, alpha, a + (a_by_rows ? row * *lda : row), lda,
                            b + (b_by_rows ? column : column * *ldb), ldb, beta, c + row + column * *ldc, ldc);
    });
}

#define GEMM_FOR(T)                                                                                                    \
    template void gemm_threaded(const char*, const char*, const std::int64_t*, const std::int64_t*,                    \
                                const std::int64_t*, const T*, const T*, const std::int64_t*, const T*,                \
                                const std::int64_t*, const T*, T*, const std::int64_t*);
GEMM_FOR(float)
GEMM_FOR(double)
GEMM_FOR(ork_complex_float)
GEMM_FOR(ork_complex_double)
#undef GEMM_FOR

} // namespace ork::blas
