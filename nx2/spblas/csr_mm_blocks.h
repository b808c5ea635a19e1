// SPDX-License-Identifier: MIT
// In which order a product with many right-hand sides goes through a compressed-row matrix: a cost model in bytes of
// cache, an entry of A at 12, of B and C at 20.
#pragma once

#include <cstdint>

namespace ork::spblas {

// `count` blocks of `size` rows, the last one with the remainder too. Every right-hand side is done in a block before
// the next block; a single block therefore means right-hand side by right-hand side over all rows.
struct RowBlocks {
    std::int64_t size, count;
    friend constexpr bool operator==(RowBlocks, RowBlocks) = default;
};

// For a matrix of m rows, n columns and so many entries. A matrix without rows, columns or entries is one block.
constexpr RowBlocks row_blocks(std::int64_t m, std::int64_t n, std::int64_t entries, std::int64_t right_hand_sides)
{
    if (m <= 0 || n <= 0 || entries <= 0) return {m, 1};
    constexpr double cache = 1.7e7;
    const float avg = static_cast<float>(entries) / static_cast<float>(m);
    const double size = cache / (12.0 * avg + 20.0 * static_cast<double>(n)) * 0.25;
    const double work = (20.0 * avg + 12.0 * static_cast<double>(n)) * static_cast<double>(m);
    const float ratio =
        20.0f * static_cast<float>(m) * static_cast<float>(right_hand_sides) / (12.0f * avg * static_cast<float>(m));
    if (!(work >= cache && ratio >= 0.5f)) return {m, 1};
    const std::int64_t rows = size < 1 ? 1 : static_cast<std::int64_t>(size);
    return m / rows < 1 ? RowBlocks{m, 1} : RowBlocks{rows, m / rows};
}

} // namespace ork::spblas
