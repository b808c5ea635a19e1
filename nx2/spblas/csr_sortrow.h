// SPDX-License-Identifier: MIT
// Rows of a matrix by column: in place, stable, without memory. Runs are sorted by insertion and merged by symmetric
// comparisons (Kim and Kutzner, "Stable minimum storage merging by symmetric comparisons", 2004): O(n log^2 n) moves,
// n when the row is sorted already.
#pragma once

#include <cstdint>

namespace ork::spblas {

template <class Int, class T>
struct SortRow {
    Int* column;
    T* value;

    void swap(std::int64_t i, std::int64_t j) const
    {
        const Int c = column[i];
        const T v = value[i];
        column[i] = column[j], value[i] = value[j];
        column[j] = c, value[j] = v;
    }

    void reverse(std::int64_t first, std::int64_t last) const
    {
        for (; first < --last; ++first) swap(first, last);
    }

    // middle .. last comes before first .. middle.
    void rotate(std::int64_t first, std::int64_t middle, std::int64_t last) const
    {
        reverse(first, middle), reverse(middle, last), reverse(first, last);
    }

    // first .. sorted are sorted; takes the entries up to last in.
    void insert(std::int64_t first, std::int64_t sorted, std::int64_t last) const
    {
        for (; sorted < last; ++sorted) {
            const Int c = column[sorted];
            const T v = value[sorted];
            std::int64_t at = sorted;
            for (; at > first && column[at - 1] > c; --at) column[at] = column[at - 1], value[at] = value[at - 1];
            column[at] = c, value[at] = v;
        }
    }

    // first .. middle and middle .. last are sorted, neither is empty. `start` is where the symmetric binary search
    // finds that the first part's larger entries begin; they change places with as many of the second part.
    void merge(std::int64_t first, std::int64_t middle, std::int64_t last) const
    {
        if (column[middle - 1] <= column[middle]) return;
        if (last - middle == 1) return insert(first, middle, last);
        const std::int64_t half = first + (last - first) / 2, mirror = half + middle;
        std::int64_t start = middle > half ? mirror - last : first, end = middle > half ? half : middle;
        while (start < end) {
            const std::int64_t at = start + (end - start) / 2;
            if (column[at] <= column[mirror - 1 - at])
                start = at + 1;
            else
                end = at;
        }
        end = mirror - start;
        if (start < middle && middle < end) rotate(start, middle, end);
        if (first < start && start < half) merge(first, start, half);
        if (half < end && end < last) merge(half, end, last);
    }

    void sort(std::int64_t length) const
    {
        std::int64_t sorted = 1;
        while (sorted < length && column[sorted - 1] <= column[sorted]) ++sorted;
        if (sorted >= length) return;
        constexpr std::int64_t run = 16;
        for (std::int64_t first = 0; first < length; first += run)
            insert(first, first + 1, first + run < length ? first + run : length);
        for (std::int64_t width = run; width < length; width *= 2)
            for (std::int64_t first = 0; first + width < length; first += 2 * width)
                merge(first, first + width, first + 2 * width < length ? first + 2 * width : length);
    }
};

} // namespace ork::spblas
