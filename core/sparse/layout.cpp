// SPDX-License-Identifier: MIT
#include "sparse/layout.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstring>
#include <limits>

#include "ork/abi/services.h"
#include "sparse/handle.h"
#include "sparse/kernels.h"
#include "spblas/split.h"
#include "threads/pool.h"

namespace ork::sparse {
namespace {

using Index = std::int64_t;
constexpr double infinite = std::numeric_limits<double>::infinity();

constexpr Index chunk = 32;          // rows of a chunk of diagonals: whole blocks of every precision's kernel
constexpr Index far_bytes = 8 << 20; // a matrix of more comes from memory in every product

// What an entry costs by precision, s d c z, and where the matrix comes from, near caches or memory. Fitted on AMD
// family 26 to what the kernels took on grids of 5, 7 and 27 points and on finite elements.
struct Rates {
    double entry;    // of a row; 1 is a long row from near caches
    double brief;    // the same in rows below eight, against longer ones: complex products one by one
    double slice;    // with those that fill up
    double diagonal; // likewise
};
constexpr Rates rates[4][2] = {{{1.00, 1.00, 0.80, 0.45}, {1.50, 1.00, 1.00, 0.52}},
                               {{1.00, 1.00, 0.95, 0.80}, {1.50, 1.00, 1.10, 1.05}},
                               {{1.00, 2.20, 0.82, 0.80}, {1.15, 2.00, 0.92, 0.82}},
                               {{1.00, 1.85, 0.90, 1.35}, {1.22, 1.60, 1.10, 1.50}}};

template <class Int>
struct RowArrays {
    const Int *cols, *pointers; // cols from `base` on
    Index count, base;

    explicit RowArrays(const MvPlan& plan)
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

// Memory that is about to be written whole. Making its pages one by one would take as long as writing it: large pieces
// lie in large pages, if the system has them to give, and small ones are made in one call.
void* take(Index bytes)
{
    constexpr Index page = 4096, large_page = 2 << 20;
    const bool large = bytes >= 2 * large_page;
    const auto size = static_cast<std::size_t>(std::max<Index>(bytes, 64));
    void* const memory = ork_serv_malloc(size, large ? large_page : 64);
    if (memory == nullptr) return nullptr;
    if (large) {
        madvise(memory, size, MADV_HUGEPAGE);
    } else if (bytes >= 16 * page) {
#ifdef MADV_POPULATE_WRITE // Linux 5.14; elsewhere pages come as they are written
        char* const first = static_cast<char*>(memory) - reinterpret_cast<std::uintptr_t>(memory) % page;
        madvise(first, static_cast<std::size_t>(static_cast<char*>(memory) + bytes - first), MADV_POPULATE_WRITE);
#endif
    }
    return memory;
}
constexpr Index rounded(Index bytes) { return (bytes + 63) / 64 * 64; }

// What the lengths of rows say.
struct Lengths {
    Index stored4 = 0, stored8 = 0; // numbers in slices
    Index changes = 0;              // rows of another length than the one before
    Index brief = 0;                // entries of rows below eight

    Lengths() = default;
    template <class Int>
    explicit Lengths(const RowArrays<Int>& rows)
    {
        Index before = rows.count > 0 ? rows.length(0) : 0;
        for (Index first = 0; first < rows.count; first += 8) {
            Index width[2] = {};
            for (Index i = first, last = std::min(first + 8, rows.count); i < last; ++i) {
                const Index length = rows.length(i);
                width[i / 4 % 2] = std::max(width[i / 4 % 2], length);
                changes += length != before;
                brief += length < 8 ? length : 0;
                before = length;
            }
            stored4 += 4 * (width[0] + width[1]);
            stored8 += 8 * std::max(width[0], width[1]);
        }
    }
};

// Whether every column is that of the row before plus 1. Two narrow ones are compared at a time: columns are never so
// large that one of a pair could reach into the other.
inline bool shifted(const std::int32_t* cols, const std::int32_t* before, Index count)
{
    Index k = 0;
    for (; k + 2 <= count; k += 2) {
        std::uint64_t here, there;
        std::memcpy(&here, cols + k, 8);
        std::memcpy(&there, before + k, 8);
        if (here - there != 0x1'0000'0001) return false;
    }
    return k == count || cols[k] == before[k] + 1;
}
inline bool shifted(const std::int64_t* cols, const std::int64_t* before, Index count)
{
    Index k = 0;
    while (k < count && cols[k] == before[k] + 1) ++k;
    return k == count;
}

// same(i, k, length) for a row i whose entries from k on lie on the diagonals of those of the row before, as most rows
// of grids do; take(i, k, d) for each entry of other rows, the d-th, until it returns false.
template <class Int, class Same, class Take>
[[gnu::always_inline]] inline bool walk(const RowArrays<Int>& rows, Index first, Index last, Same same, Take take)
{
    const Int* before = nullptr;
    Index length_before = 0;
    for (Index i = first; i < last; ++i) {
        const Index begin = rows.begin(i), length = rows.length(i);
        const Int* const cols = rows.cols + begin;
        if (length == length_before && shifted(cols, before, length))
            same(i, begin, length);
        else
            for (Index d = 0; d < length; ++d)
                if (!take(i, begin + d, d)) return false;
        before = cols, length_before = length;
    }
    return true;
}

// Which diagonals have entries. False if there are too many. `mark` has a byte, cleared, for each that there can be.
template <class Int>
bool find_diagonals(const RowArrays<Int>& rows, std::uint8_t* mark, Costs& costs)
{
    Index count = 0;
    const bool few = walk(
        rows, 0, rows.count, [](Index, Index, Index) {},
        [&](Index i, Index k, Index) {
            const Index distance = rows.column(k) - i;
            std::uint8_t& seen = mark[distance + rows.count - 1];
            if (seen != 0) return true;
            if (count == Costs::most_diagonals) return false;
            seen = 1;
            costs.distance[count++] = distance;
            return true;
        });
    std::sort(costs.distance, costs.distance + count);
    costs.diagonal_count = few ? count : 0;
    return few;
}

} // namespace

Costs costs_of(const MvPlan& plan, bool distinct)
{
    Costs costs;
    costs.diagonals = infinite;
    costs.diagonal_count = 0;
    const Index size = element_size(plan.precision);
    const double n = static_cast<double>(plan.rows), nnz = static_cast<double>(plan.entries);
    const bool far = plan.entries * (size + plan.index_bytes) > far_bytes;
    Lengths lengths;
    with_width(plan, [&](auto width) {
        const RowArrays<decltype(width)> rows(plan);
        lengths = Lengths(rows);
        if (!distinct || plan.entries == 0) return;
        const Index all = plan.rows + plan.columns - 1;
        if (void* const mark = ork_serv_calloc(static_cast<std::size_t>(all), 1, 64, 0)) {
            find_diagonals(rows, static_cast<std::uint8_t*>(mark), costs);
            ork_serv_free(mark);
        }
    });
    costs.stored4 = lengths.stored4, costs.stored8 = lengths.stored8;
    const Rates& rate = rates[precision_number(plan.precision)][far];
    costs.rows = rate.entry * (nnz + (rate.brief - 1) * static_cast<double>(lengths.brief)) + 2 * n +
                 3 * static_cast<double>(lengths.changes);
    costs.slices4 = rate.slice * static_cast<double>(costs.stored4) + 0.7 * n;
    costs.slices8 = rate.slice * static_cast<double>(costs.stored8) + 0.6 * n;
    if (costs.diagonal_count > 0) {
        const Index reach = costs.distance[costs.diagonal_count - 1] - costs.distance[0];
        const double edge = std::min(n, static_cast<double>(reach)); // rows that are done one by one
        costs.diagonals = static_cast<double>(costs.diagonal_count) * (rate.diagonal * n + edge);
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
        const RowArrays<Int> rows(plan);
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

bool into_diagonals(MvPlan& plan, const Costs& costs)
{
    const Index size = element_size(plan.precision), width = plan.index_bytes, count = costs.diagonal_count;
    const Index chunks = (plan.rows + chunk - 1) / chunk, stored = chunks * count * chunk;
    const Index distances_at = rounded(stored * size), bytes = distances_at + count * width;
    const Index all = plan.rows + plan.columns - 1;
    char* const memory = static_cast<char*>(take(bytes));
    std::uint8_t* const number = static_cast<std::uint8_t*>(ork_serv_calloc(static_cast<std::size_t>(all), 1, 64, 0));
    if (memory == nullptr || number == nullptr) {
        ork_serv_free(memory);
        ork_serv_free(number);
        return false;
    }
    for (Index d = 0; d < count; ++d) number[costs.distance[d] + plan.rows - 1] = static_cast<std::uint8_t>(d);
    with_sizes(plan, [&](auto integer, auto element) {
        using Int = decltype(integer);
        using Element = decltype(element);
        const RowArrays<Int> rows(plan);
        const Element* const from = static_cast<const Element*>(plan.vals);
        Element* const vals = reinterpret_cast<Element*>(memory);
        // From left to right, so that a sum takes the entries of sorted rows in their order.
        Int* const distances = reinterpret_cast<Int*>(memory + distances_at);
        for (Index d = 0; d < count; ++d) distances[d] = static_cast<Int>(costs.distance[d]);
        const int parts = spblas::threads_for(static_cast<double>(stored));
        threads::run(parts, [&](int part) {
            const spblas::Range range = spblas::strip(chunks, 1, parts, part);
            for (Index c = range.first; c < range.end(); ++c) {
                Element* const to = vals + c * count * chunk;
                std::memset(static_cast<void*>(to), 0, static_cast<std::size_t>(count * chunk) * sizeof(Element));
                Index at[Costs::most_diagonals]; // of the row before
                walk(
                    rows, c * chunk, std::min((c + 1) * chunk, rows.count),
                    [&](Index i, Index k, Index length) {
                        for (Index d = 0; d < length; ++d) to[at[d] + i % chunk] = from[k + d];
                    },
                    [&](Index i, Index k, Index d) {
                        at[d] = number[rows.column(k) - i + rows.count - 1] * chunk;
                        to[at[d] + i % chunk] = from[k];
                        return true;
                    });
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
