// SPDX-License-Identifier: MIT
// Scratch of products: what is known of the columns of one row of C while its products are added up. All of it is zero
// between rows.
//
// Of ways to make sorted rows these were measured in one run (squares of lap3d:20, lap3d:60, pow:8000:16; double, Zen
// 5, nanoseconds a row, counting and page faults included): a bit a column, read in order, 120, 225, 1560; a byte a
// column, so that marking loads nothing, 135, 280, 1840; a list that is sorted by counting the smaller ones in
// registers, for rows to 32, 146, 268. Counting by bits instead of stamps takes twice as long in grids and five times
// in power laws.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "ork/abi/sparse/products.h"
#include "simd/complex.h"

namespace ork::sparse {

template <class Int, class T>
class Scratch {
public:
    // One of the three at a time, an element a column.
    T* sums;
    Int* stamps; // of the last row that met the column
    Int* places; // of the block in the row of C, plus 1

    Scratch(void* work, std::int64_t columns)
        : sums(static_cast<T*>(work)), stamps(static_cast<Int*>(work)), places(static_cast<Int*>(work)),
          words_(columns / 64 + 1)
    {
        constexpr std::int64_t unit = std::max(sizeof(T), sizeof(Int));
        marks_ = reinterpret_cast<std::uint64_t*>(static_cast<char*>(work) + (columns * unit + 15) / 16 * 16);
        tops_ = marks_ + words_;
    }

    // Of a row with `room` entries the marks are read word by word, or only where `tops_` says that there are some.
    bool dense(std::int64_t room) const { return 2 * room >= words_; }

    void mark(std::int64_t column) { marks_[column >> 6] |= std::uint64_t{1} << (column & 63); }
    // For rows that are not dense.
    void mark_with_top(std::int64_t column)
    {
        std::uint64_t& word = marks_[column >> 6];
        const std::uint64_t before = word;
        word = before | std::uint64_t{1} << (column & 63);
        if (before == 0) {
            const std::int64_t top = column >> 12;
            tops_[top] |= std::uint64_t{1} << ((column >> 6) & 63);
            low_ = std::min(low_, top), high_ = std::max(high_, top);
        }
    }

    // Marked columns, ascending, plus base, into cols, and their sums into vals unless that is null; nothing is left of
    // them here. Returns their number. Of a dense row none is before `from`.
    std::int64_t collect(bool dense, std::int64_t from, Int base, Int* cols, T* vals)
    {
        return dense ? collect_dense(from, base, cols, vals) : collect_sparse(base, cols, vals);
    }

private:
    std::int64_t collect_sparse(Int base, Int* cols, T* vals)
    {
        std::int64_t count = 0;
        for (std::int64_t top = low_; top <= high_; ++top) {
            std::uint64_t words = tops_[top];
            tops_[top] = 0;
            for (; words != 0; words &= words - 1) {
                const std::int64_t word = top * 64 + __builtin_ctzll(words);
                std::uint64_t bits = marks_[word];
                marks_[word] = 0;
                for (; bits != 0; bits &= bits - 1, ++count) {
                    const std::int64_t column = word * 64 + __builtin_ctzll(bits);
                    cols[count] = static_cast<Int>(column + base);
                    if (vals != nullptr) vals[count] = sums[column], sums[column] = T{};
                }
            }
        }
        low_ = INT64_MAX, high_ = -1;
        return count;
    }

    // A word's columns are written four at a time, whatever their number: a branch for each costs more (pow:8000:16:
    // the row takes 3070 ns, not 2050).
    std::int64_t collect_dense(std::int64_t from, Int base, Int* cols, T* vals)
    {
        constexpr int full = 256;
        Int found[full + 64 + 4];
        std::int64_t count = 0;
        for (std::int64_t word = from >> 6; word < words_;) {
            int pending = 0;
            for (; word < words_ && pending < full; ++word) {
                std::uint64_t bits = marks_[word];
                marks_[word] = 0;
                const int end = pending + __builtin_popcountll(bits);
                for (int at = pending; at < end || at == pending; at += 4)
                    for (int j = 0; j < 4; ++j, bits &= bits - 1)
                        found[at + j] = static_cast<Int>(word * 64 + __builtin_ctzll(bits | std::uint64_t{1} << 63));
                pending = end;
            }
            for (int k = 0; k < pending; ++k) cols[count + k] = static_cast<Int>(found[k] + base);
            if (vals != nullptr)
                for (int k = 0; k < pending; ++k) {
                    vals[count + k] = sums[found[k]];
                    sums[found[k]] = T{};
                }
            count += pending;
        }
        return count;
    }

    std::uint64_t *marks_, *tops_;
    std::int64_t words_, low_ = INT64_MAX, high_ = -1;
};

} // namespace ork::sparse
