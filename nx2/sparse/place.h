// SPDX-License-Identifier: MIT
// Finding the entry of a place.
#pragma once

#include "sparse/row_sort.h"

namespace ork::sparse {

// The first position in index[first .. last) that is `wanted`; last when there is none.
template <class Int>
Int find_index(const Int* index, Int first, Int last, Int wanted, bool sorted)
{
    if (!sorted) {
        while (first < last && index[first] != wanted) ++first;
        return first;
    }
    Int low = first, high = last;
    while (low < high) {
        const Int middle = static_cast<Int>(low + (high - low) / 2);
        if (index[middle] < wanted)
            low = static_cast<Int>(middle + 1);
        else
            high = middle;
    }
    return low < last && index[low] == wanted ? low : last;
}

// Of coo in the order of rows: those of `row`.
template <class Int>
Range<Int> entries_of_row(const Matrix& a, Int row)
{
    const Int* const rows = static_cast<const Int*>(a.first);
    Int bounds[2];
    for (int side = 0; side < 2; ++side) {
        Int low = 0, high = static_cast<Int>(a.entries);
        while (low < high) {
            const Int middle = static_cast<Int>(low + (high - low) / 2);
            if (rows[middle] < row || (side == 1 && rows[middle] == row))
                low = static_cast<Int>(middle + 1);
            else
                high = middle;
        }
        bounds[side] = low;
    }
    return {bounds[0], bounds[1]};
}

// Position in numbers of the first entry of (row, column), which count from the base; -1 when it is not stored.
template <class Int>
std::int64_t find_place(const Matrix& a, Int row, Int column)
{
    const Int base = static_cast<Int>(a.base), i = static_cast<Int>(row - base), j = static_cast<Int>(column - base);
    if (row < base || i >= a.rows * a.block || column < base || j >= a.cols * a.block) return -1;
    const Int* const index = index_of<Int>(a);
    const bool sorted = a.sorted != 0;
    if (a.format == Format::coo) {
        const Int* const rows = static_cast<const Int*>(a.first);
        auto range = sorted ? entries_of_row(a, row) : Range<Int>{0, static_cast<Int>(a.entries)};
        for (; range.first < range.last; ++range.first)
            if (rows[range.first] == row && index[range.first] == column) return range.first;
        return -1;
    }
    const bool by_columns = a.format == Format::csc;
    const Int b = static_cast<Int>(a.block), at = static_cast<Int>((by_columns ? j : i) / b),
              other = static_cast<Int>((by_columns ? i : j) / b);
    const auto range = line<Int>(a, at);
    const Int k = find_index(index, range.first, range.last, static_cast<Int>(other + base), sorted);
    if (k == range.last) return -1;
    const Int r = static_cast<Int>(i % b), c = static_cast<Int>(j % b);
    return (std::int64_t{k} * b + (a.layout == 0 ? r : c)) * b + (a.layout == 0 ? c : r);
}

} // namespace ork::sparse
