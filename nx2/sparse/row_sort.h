// SPDX-License-Identifier: MIT
// Sorting the entries of rows, whatever an entry holds: keys with the positions that they come from are merged, then
// each array follows. Stable.
#pragma once

#include "sparse/record.h"

namespace ork::sparse {

template <class Int>
struct Key {
    Int major, minor, position;

    friend bool operator<(const Key& a, const Key& b)
    {
        return a.major != b.major ? a.major < b.major : a.minor < b.minor;
    }
};

// Sorts keys[0 .. count) with as many in `other`; returns which of the two holds the result. Runs of eight by
// insertion, then merges bottom up.
template <class Int>
Key<Int>* merge_sort(Key<Int>* keys, Key<Int>* other, std::int64_t count)
{
    constexpr std::int64_t run = 8;
    for (std::int64_t start = 0; start < count; start += run) {
        const std::int64_t end = start + run < count ? start + run : count;
        for (std::int64_t i = start + 1; i < end; ++i) {
            const Key<Int> key = keys[i];
            std::int64_t at = i;
            for (; at > start && key < keys[at - 1]; --at) keys[at] = keys[at - 1];
            keys[at] = key;
        }
    }
    for (std::int64_t width = run; width < count; width *= 2) {
        for (std::int64_t start = 0; start < count; start += 2 * width) {
            const std::int64_t middle = start + width < count ? start + width : count;
            const std::int64_t end = middle + width < count ? middle + width : count;
            std::int64_t left = start, right = middle;
            for (std::int64_t i = start; i < end; ++i)
                other[i] =
                    right == end || (left < middle && !(keys[right] < keys[left])) ? keys[left++] : keys[right++];
        }
        Key<Int>* const sorted = other;
        other = keys, keys = sorted;
    }
    return keys;
}

// Rows of coo, nothing otherwise.
template <class Int>
inline Int* majors_of(const Matrix& a)
{
    return a.format == Format::coo ? static_cast<Int*>(a.first) : nullptr;
}

template <class Int>
void fill_keys(const Matrix& a, Range<Int> range, Key<Int>* keys)
{
    const Int *const majors = majors_of<Int>(a), *const index = index_of<Int>(a);
    for (Int k = range.first; k < range.last; ++k) *keys++ = {majors != nullptr ? majors[k] : Int{0}, index[k], k};
}

struct Order {
    bool ascending, distinct;
};
template <class Int>
Order order_of(const Matrix& a, Range<Int> range)
{
    const Int *const majors = majors_of<Int>(a), *const index = index_of<Int>(a);
    bool distinct = true;
    for (Int k = range.first + 1; k < range.last; ++k) {
        if (majors != nullptr && majors[k - 1] != majors[k]) {
            if (majors[k - 1] > majors[k]) return {false, false};
        } else {
            if (index[k - 1] > index[k]) return {false, false};
            if (index[k - 1] == index[k]) distinct = false;
        }
    }
    return {true, distinct};
}

// Sets `sorted` and `distinct`; returns the number of entries of the longest line that is out of order, 0 when none is.
template <class Int>
std::int64_t note_order(Matrix& a)
{
    bool distinct = true;
    std::int64_t longest = 0;
    for (std::int64_t i = 0; i < lines_of(a); ++i) {
        const auto range = line<Int>(a, i);
        const Order order = order_of(a, range);
        const std::int64_t length = std::int64_t{range.last} - range.first;
        if (!order.ascending && length > longest) longest = length;
        distinct = distinct && order.distinct;
    }
    a.sorted = longest == 0 ? 1 : 0;
    a.distinct = longest == 0 && distinct ? 1 : 0;
    return longest;
}

template <class Int>
int sort_rows(Matrix& a)
{
    const std::int64_t longest = a.sorted ? 0 : note_order<Int>(a), bytes = entry_bytes(a);
    if (longest == 0) return record_done;
    auto* const keys = static_cast<Key<Int>*>(new_array(longest, 2 * sizeof(Key<Int>)));
    auto* const values = static_cast<char*>(new_array(longest, bytes));
    const bool memory = keys != nullptr && values != nullptr;
    for (std::int64_t i = 0; memory && i < lines_of(a); ++i) {
        const auto range = line<Int>(a, i);
        if (order_of(a, range).ascending) continue;
        const std::int64_t count = std::int64_t{range.last} - range.first;
        fill_keys(a, range, keys);
        const Key<Int>* const sorted = merge_sort(keys, keys + count, count);
        Int *const majors = majors_of<Int>(a), *const index = index_of<Int>(a);
        for (std::int64_t k = 0; k < count; ++k) {
            std::memcpy(values + k * bytes, value_at(a, sorted[k].position), bytes);
            if (majors != nullptr) majors[range.first + k] = sorted[k].major;
            index[range.first + k] = sorted[k].minor;
        }
        std::memcpy(value_at(a, range.first), values, count * bytes);
    }
    ork_serv_free(keys);
    ork_serv_free(values);
    if (!memory) return record_no_memory;
    note_order<Int>(a);
    return record_done;
}

} // namespace ork::sparse
