// SPDX-License-Identifier: MIT
#include "sparse/layout.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstring>
#include <limits>

#include "ork/abi/services.h"
#include "sparse/handle.h"
#include "spblas/split.h"
#include "threads/pool.h"

namespace ork::sparse {
namespace {

using Index = std::int64_t;
constexpr double infinite = std::numeric_limits<double>::infinity();

constexpr Index most_diagonals = 128;
constexpr Index chunk = 32;          // rows of a chunk of diagonals: whole blocks of every precision's kernel
constexpr Index far_bytes = 8 << 20; // a matrix of more comes from memory in every product

template <class Int>
struct Rows {
    const Int *cols, *pointers; // cols from `base` on
    Index count, base;

    explicit Rows(const MvPlan& plan)
        : cols(static_cast<const Int*>(plan.cols)), pointers(static_cast<const Int*>(plan.pointers)), count(plan.rows),
          base(plan.base)
    {
    }
    Index begin(Index row) const { return Index{pointers[row]} - pointers[0]; }
    Index length(Index row) const { return Index{pointers[row + 1]} - pointers[row]; }
    Index column(Index k) const { return Index{cols[k]} - base; }
};

// body(Int{}) with the width of the plan.
template <class Body>
auto with_width(const MvPlan& plan, Body body)
{
    return plan.index_bytes == 4 ? body(std::int32_t{}) : body(std::int64_t{});
}
struct Sixteen {
    std::uint64_t half[2];
};
// body(Int{}, Element{}) with a type of the size of an element.
template <class Body>
void with_sizes(const MvPlan& plan, Body body)
{
    with_width(plan, [&](auto width) {
        switch (element_size(plan.precision)) {
        case 4:
            return body(width, std::uint32_t{});
        case 8:
            return body(width, std::uint64_t{});
        default:
            return body(width, Sixteen{});
        }
    });
}

// Large pieces lie in large pages if the system has them to give: the pages of 4 KiB of a copy take longer to make than
// the copy.
void* take(Index bytes)
{
    constexpr Index page = 2 << 20;
    const bool large = bytes >= 2 * page;
    void* const memory = ork_serv_malloc(static_cast<std::size_t>(std::max<Index>(bytes, 64)), large ? page : 64);
    if (large && memory != nullptr) madvise(memory, static_cast<std::size_t>(bytes), MADV_HUGEPAGE);
    return memory;
}
constexpr Index rounded(Index bytes) { return (bytes + 63) / 64 * 64; }

template <class Int>
Index stored_in_slices(const Rows<Int>& rows, Index height)
{
    Index stored = 0;
    for (Index first = 0; first < rows.count; first += height) {
        Index width = 0;
        for (Index i = first, last = std::min(first + height, rows.count); i < last; ++i)
            width = std::max(width, rows.length(i));
        stored += width * height;
    }
    return stored;
}

// How many diagonals have entries, at most most_diagonals (0: more), and how far they reach to both sides together.
// `mark` has a byte, cleared, for each diagonal there can be.
template <class Int>
Index count_diagonals(const Rows<Int>& rows, std::uint8_t* mark, Index& reach)
{
    Index count = 0, low = 0, high = 0;
    for (Index i = 0; i < rows.count; ++i)
        for (Index k = rows.begin(i), end = k + rows.length(i); k < end; ++k) {
            const Index distance = rows.column(k) - i;
            std::uint8_t& seen = mark[distance + rows.count - 1];
            if (seen != 0) continue;
            if (++count > most_diagonals) return 0;
            seen = 1;
            low = std::min(low, distance), high = std::max(high, distance);
        }
    reach = high - low;
    return count;
}

} // namespace

Costs costs_of(const MvPlan& plan, bool distinct)
{
    Costs costs{0, infinite, infinite, infinite, 0, 0, 0};
    const Index size = element_size(plan.precision);
    const double n = static_cast<double>(plan.rows), nnz = static_cast<double>(plan.entries);
    const bool far = plan.entries * (size + plan.index_bytes) > far_bytes;
    Index changes = 0, reach = 0; // rows of another length than the one before
    with_width(plan, [&](auto width) {
        const Rows<decltype(width)> rows(plan);
        for (Index i = 1; i < rows.count; ++i) changes += rows.length(i) != rows.length(i - 1);
        costs.stored4 = stored_in_slices(rows, 4);
        costs.stored8 = stored_in_slices(rows, 8);
        if (!distinct || plan.entries == 0) return;
        const Index all = plan.rows + plan.cols - 1;
        if (void* const mark = ork_serv_calloc(static_cast<std::size_t>(all), 1, 64, 0)) {
            costs.diagonal_count = count_diagonals(rows, static_cast<std::uint8_t*>(mark), reach);
            ork_serv_free(mark);
        }
    });
    // Values that stand side by side against gathered ones, and what a row or slice costs beside.
    const double row_entry = far ? 1.5 : 1.0, slice_entry = far ? 1.1 : 0.95;
    costs.rows = row_entry * nnz + 2 * n + 3 * static_cast<double>(changes);
    costs.slices4 = slice_entry * static_cast<double>(costs.stored4) + 0.7 * n;
    costs.slices8 = slice_entry * static_cast<double>(costs.stored8) + 0.6 * n;
    if (costs.diagonal_count > 0) {
        const double entry = (far ? 1.05 : 0.8) * static_cast<double>(size) / 8;
        const double edge = std::min(n, static_cast<double>(reach)); // rows that are done one by one
        costs.diagonals = static_cast<double>(costs.diagonal_count) * (entry * n + edge);
    }
    return costs;
}

bool into_slices(MvPlan& plan, Index height, Index stored)
{
    const Index size = element_size(plan.precision), width = plan.index_bytes;
    const Index slices = (plan.rows + height - 1) / height;
    const Index cols_at = rounded(stored * size), pointers_at = cols_at + rounded(stored * width);
    const Index bytes = pointers_at + (slices + 1) * width;
    char* const memory = static_cast<char*>(take(bytes));
    if (memory == nullptr) return false;
    with_sizes(plan, [&](auto integer, auto element) {
        using Int = decltype(integer);
        using Element = decltype(element);
        const Rows<Int> rows(plan);
        const Element* const from = static_cast<const Element*>(plan.vals);
        Element* const vals = reinterpret_cast<Element*>(memory);
        Int* const cols = reinterpret_cast<Int*>(memory + cols_at);
        Int* const pointers = reinterpret_cast<Int*>(memory + pointers_at);
        Index end = 0;
        for (Index s = 0; s < slices; ++s) {
            pointers[s] = static_cast<Int>(end);
            Index longest = 0;
            for (Index i = s * height, last = std::min(i + height, rows.count); i < last; ++i)
                longest = std::max(longest, rows.length(i));
            end += longest * height;
        }
        pointers[slices] = static_cast<Int>(end);
        const int parts = spblas::threads_for(static_cast<double>(stored));
        threads::run(parts, [&](int part) {
            const spblas::Range range = spblas::strip(slices, 1, parts, part);
            for (Index s = range.first; s < range.end(); ++s) {
                const Index longest = (Index{pointers[s + 1]} - pointers[s]) / height;
                Index filler = 0; // a column that is at hand in the slice
                for (Index r = 0; r < height; ++r) {
                    const Index row = s * height + r, length = row < rows.count ? rows.length(row) : 0;
                    const Index k = row < rows.count ? rows.begin(row) : 0;
                    Element* const v = vals + pointers[s] + r;
                    Int* const c = cols + pointers[s] + r;
                    for (Index g = 0; g < length; ++g) {
                        v[g * height] = from[k + g];
                        c[g * height] = static_cast<Int>(filler = rows.column(k + g));
                    }
                    for (Index g = length; g < longest; ++g) {
                        v[g * height] = Element{};
                        c[g * height] = static_cast<Int>(filler);
                    }
                }
            }
        });
    });
    plan.layout = Layout::slices;
    plan.height = height, plan.count = slices, plan.stored = stored;
    plan.base = 0;
    plan.vals = memory, plan.cols = memory + cols_at, plan.pointers = memory + pointers_at;
    plan.memory = memory, plan.bytes = bytes;
    return true;
}

bool into_diagonals(MvPlan& plan, Index count)
{
    const Index size = element_size(plan.precision), width = plan.index_bytes;
    const Index chunks = (plan.rows + chunk - 1) / chunk, stored = chunks * count * chunk;
    const Index distances_at = rounded(stored * size), bytes = distances_at + count * width;
    const Index all = plan.rows + plan.cols - 1;
    char* const memory = static_cast<char*>(take(bytes));
    std::int16_t* const number = static_cast<std::int16_t*>(ork_serv_calloc(static_cast<std::size_t>(all), 2, 64, 0));
    if (memory == nullptr || number == nullptr) {
        ork_serv_free(memory);
        ork_serv_free(number);
        return false;
    }
    with_sizes(plan, [&](auto integer, auto element) {
        using Int = decltype(integer);
        using Element = decltype(element);
        const Rows<Int> rows(plan);
        const Element* const from = static_cast<const Element*>(plan.vals);
        Element* const vals = reinterpret_cast<Element*>(memory);
        Int* const distances = reinterpret_cast<Int*>(memory + distances_at);
        // Diagonals from left to right, so that a sum takes the entries of sorted rows in their order.
        Index found = 0;
        for (Index i = 0; i < rows.count && found < count; ++i)
            for (Index k = rows.begin(i), end = k + rows.length(i); k < end; ++k) {
                const Index distance = rows.column(k) - i;
                std::int16_t& seen = number[distance + rows.count - 1];
                if (seen == 0) distances[found++] = static_cast<Int>(distance), seen = 1;
            }
        std::sort(distances, distances + count);
        for (Index d = 0; d < count; ++d) number[distances[d] + rows.count - 1] = static_cast<std::int16_t>(d);
        const int parts = spblas::threads_for(static_cast<double>(stored));
        threads::run(parts, [&](int part) {
            const spblas::Range range = spblas::strip(chunks, 1, parts, part);
            std::memset(static_cast<void*>(vals + range.first * count * chunk), 0,
                        static_cast<std::size_t>(range.count * count * chunk) * sizeof(Element));
            for (Index i = range.first * chunk, last = std::min(range.end() * chunk, rows.count); i < last; ++i) {
                Element* const row = vals + i / chunk * (count * chunk) + i % chunk;
                for (Index k = rows.begin(i), end = k + rows.length(i); k < end; ++k)
                    row[number[rows.column(k) - i + rows.count - 1] * chunk] = from[k];
            }
        });
    });
    ork_serv_free(number);
    plan.layout = Layout::diagonals;
    plan.height = chunk, plan.count = count, plan.stored = stored;
    plan.base = 0;
    plan.vals = memory, plan.cols = memory + distances_at, plan.pointers = nullptr;
    plan.memory = memory, plan.bytes = bytes;
    return true;
}

} // namespace ork::sparse
