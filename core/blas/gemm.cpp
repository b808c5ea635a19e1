// SPDX-License-Identifier: MIT
#include "blas/gemm.h"

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

} // namespace ork::blas
