// SPDX-License-Identifier: MIT
// Row i of C as the entries of one row of the left factor, each with a row of the right one: the loop that all products
// of sparse matrices share.
#pragma once

#include "simd/fetch.h"
#include "sparse/block.h"
#include "sparse/scratch.h"

namespace ork::sparse {

template <class Int, class T>
struct LeftRow {
    const Int* cols;
    const T* vals;
    std::int64_t count;
    Int base;
};

template <class Int, class T>
inline LeftRow<Int, T> left_row(const Rows<Int, T>& a, std::int64_t i, std::int64_t block = 1)
{
    const std::int64_t begin = std::int64_t{a.first[i]} - a.base, end = std::int64_t{a.last[i]} - a.base;
    return {a.cols + begin, a.vals + begin * block * block, end - begin, a.base};
}

// The part of C that is computed: all, or the columns j >= i of row i, for which rows of the right factor ascend.
enum class Part { whole, upper };

// body(entry of the left row, entry of B, its column) in their order. Rows of B lie anywhere: the one after the next is
// fetched meanwhile (pow:100000:16: 0.8 of the time; grids: no change).
template <Part part, class Int, class T, class Body>
[[gnu::always_inline]] inline void for_products(const LeftRow<Int, T>& left, const Rows<Int, T>& b, std::int64_t i,
                                                bool values, Body body)
{
    constexpr std::int64_t ahead = 2;
    for (std::int64_t k = 0; k < left.count; ++k) {
        if (k + ahead < left.count) {
            const std::int64_t next = std::int64_t{b.first[left.cols[k + ahead] - left.base]} - b.base;
            fetch_at(b.cols, next * std::int64_t{sizeof(Int)});
            if (values) fetch_at(b.vals, next * std::int64_t{sizeof(T)});
        }
        const std::int64_t row = std::int64_t{left.cols[k]} - left.base, end = std::int64_t{b.last[row]} - b.base;
        std::int64_t l = std::int64_t{b.first[row]} - b.base;
        if constexpr (part == Part::upper)
            l = std::lower_bound(b.cols + l, b.cols + end, static_cast<Int>(i + b.base)) - b.cols;
        for (; l < end; ++l) body(k, l, std::int64_t{b.cols[l]} - b.base);
    }
}

// How many columns the row has. `stamp` differs from those of all other rows. New columns go to `found` unless that is
// null.
template <Part part, class Int, class T>
[[gnu::noinline]] Int count_row(const LeftRow<Int, T>& left, const Rows<Int, T>& b, std::int64_t i, Int* stamps,
                                Int stamp, Int* found = nullptr)
{
    Int count = 0;
    if (found == nullptr)
        for_products<part>(left, b, i, false, [&](std::int64_t, std::int64_t, std::int64_t column) {
            count = static_cast<Int>(count + (stamps[column] != stamp));
            stamps[column] = stamp;
        });
    else
        for_products<part>(left, b, i, false, [&](std::int64_t, std::int64_t, std::int64_t column) {
            if (stamps[column] == stamp) return;
            found[count++] = static_cast<Int>(column);
            stamps[column] = stamp;
        });
    return count;
}

// The columns of the row, and with vals its values. Room is for `room` entries; the number is returned.
template <Part part, bool values, class Int, class T>
[[gnu::noinline]] std::int64_t fill_row(const LeftRow<Int, T>& left, const Rows<Int, T>& b, std::int64_t i,
                                        std::int64_t room, Scratch<Int, T>& scratch, Int base, Int* cols, T* vals)
{
    Scratch<Int, T> s = scratch; // addresses of its own, which stores through others don't change
    const bool dense = s.dense(room);
    const auto add = [&](std::int64_t k, std::int64_t l, std::int64_t column) {
        if constexpr (values) s.sums[column] = s.sums[column] + left.vals[k] * b.vals[l];
    };
    if (dense)
        for_products<part>(left, b, i, values, [&](std::int64_t k, std::int64_t l, std::int64_t column) {
            add(k, l, column);
            s.mark(column);
        });
    else
        for_products<part>(left, b, i, values, [&](std::int64_t k, std::int64_t l, std::int64_t column) {
            add(k, l, column);
            s.mark_with_top(column);
        });
    return s.collect(dense, part == Part::upper ? i : 0, base, cols, values ? vals : nullptr);
}

// The values of row i, whose `count` columns are known.
template <Part part, class Int, class T>
[[gnu::noinline]] void revalue_row(const LeftRow<Int, T>& left, const Rows<Int, T>& b, std::int64_t i, T* sums,
                                   Int base, std::int64_t count, const Int* cols, T* vals)
{
    for_products<part>(left, b, i, true, [&](std::int64_t k, std::int64_t l, std::int64_t column) {
        sums[column] = sums[column] + left.vals[k] * b.vals[l];
    });
    for (std::int64_t l = 0; l < count; ++l) {
        T& element = sums[std::int64_t{cols[l]} - base];
        vals[l] = element;
        element = T{};
    }
}

// The same of blocks.
template <Part part, class Int, class T>
[[gnu::noinline]] void revalue_row(const LeftRow<Int, T>& left, const Rows<Int, T>& b, std::int64_t i,
                                   const BlockProduct<T>& product, Int* places, Int base, std::int64_t count,
                                   const Int* cols, T* vals)
{
    const std::int64_t size = product.b * product.b;
    for (std::int64_t l = 0; l < count; ++l) places[std::int64_t{cols[l]} - base] = static_cast<Int>(l + 1);
    std::memset(static_cast<void*>(vals), 0, static_cast<std::size_t>(count * size) * sizeof(T));
    for_products<part>(left, b, i, false, [&](std::int64_t k, std::int64_t l, std::int64_t column) {
        const std::int64_t place = places[column];
        if (place != 0) product.add(left.vals + k * size, b.vals + l * size, vals + (place - 1) * size);
    });
    for (std::int64_t l = 0; l < count; ++l) places[std::int64_t{cols[l]} - base] = 0;
}

} // namespace ork::sparse
