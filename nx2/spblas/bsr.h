// SPDX-License-Identifier: MIT
// Rows of square blocks in a caller's arrays, and what is to be done with them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "simd/complex.h"
#include "simd/gather.h"

namespace ork::spblas::bsr {

// Which block columns of a row count: first <= j < last.
struct Columns {
    std::int64_t first, last;
    bool have(std::int64_t j) const { return first <= j && j < last; }
};

// y_i = beta y_i + alpha B x_j over the blocks of a row, or y_j = y_j + alpha_mirrored B^T x_i. A product of dense
// matrices has `count` vectors x and y: element r of vector j is x[r + j * ldx], or x[r * ldx + j] where dense matrices
// lie by rows.
// Both widths of integers share the bodies: a decision a block is little beside the block.
template <class T>
struct BlockTask {
    std::int64_t lb;
    const T* val;
    const void* indx;
    const void *pntrb, *pntre; // positions count from pntrb[0]
    bool wide;                 // indx, pntrb and pntre are of 64 bits, or of 32
    std::int64_t base;
    const T* x;
    T* y;
    std::int64_t ldx, ldy, count;
    T alpha, alpha_mirrored, beta;
    bool conjugate, conjugate_mirrored, by_rows, dense_by_rows;
    bool whole, lower, direct;
    bool far; // the blocks come from memory

    std::int64_t number(const void* array, std::int64_t i) const
    {
        return wide ? static_cast<const std::int64_t*>(array)[i] : static_cast<const std::int32_t*>(array)[i];
    }
    std::int64_t first(std::int64_t row) const { return number(pntrb, row) - number(pntrb, 0); }
    std::int64_t last(std::int64_t row) const { return number(pntre, row) - number(pntrb, 0); } // exclusive
    std::int64_t column(std::int64_t k) const { return number(indx, k) - base; }
    const T* block(std::int64_t k) const { return val + k * lb * lb; }
    std::int64_t x_at(std::int64_t row) const { return row * lb * (dense_by_rows ? ldx : 1); }
    std::int64_t y_at(std::int64_t row) const { return row * lb * (dense_by_rows ? ldy : 1); }

    Columns columns(std::int64_t row) const
    {
        constexpr auto lowest = std::numeric_limits<std::int64_t>::min();
        constexpr auto highest = std::numeric_limits<std::int64_t>::max();
        return {whole || lower ? lowest : row + 1, !whole && lower ? row : highest};
    }
};

// What lies ahead of block k of the storage, which is read now. The numbers of columns come in by the hardware.
template <class T>
[[gnu::always_inline]] inline void fetch_block(const T* block, std::int64_t size)
{
    for (std::int64_t i = 0; i < size; i += 64 / static_cast<std::int64_t>(sizeof(T))) fetch(block + i);
}

// A stored value as a rule uses it.
template <class T>
inline T entry(T value, bool conjugate)
{
    if constexpr (is_complex<T>) return conjugate ? conj(value) : value;
    return value;
}

} // namespace ork::spblas::bsr
