// SPDX-License-Identifier: MIT
// Products of block rows of which only a part counts. The whole of a row goes by the kernels of blocks in a caller's
// arrays (spblas/bsr_calls.h).
#pragma once

#include "sparse/csr_mv.h"

namespace ork::sparse {

// Which entries of block row i count: blocks left of `low` and right of `high` whole, a block at i by its entries.
enum class BlockPart { lower_blocks, lower, upper };

// The numbers of a block by row and column.
struct BlockShape {
    Index order, row, column; // strides

    BlockShape(Index order, Index layout) : order(order), row(layout == 0 ? order : 1), column(layout == 0 ? 1 : order)
    {
    }
    Index size() const { return order * order; }
};

// Rows of a block that have their sums together.
template <class T>
struct RowSums {
    static constexpr int most = 8;
    T v[most];

    // Rows first .. first + count of a block times x; of row r the columns begin(r) <= c < end(r).
    template <class Begin, class End>
    [[gnu::always_inline]] void add(const T* block, const BlockShape& shape, Index first, Index count, const T* x,
                                    Begin begin, End end)
    {
        for (Index r = 0; r < count; ++r) {
            const T* row = block + (first + r) * shape.row;
            T s = v[r];
            for (Index c = begin(first + r), last = end(first + r); c < last; ++c) s = s + row[c * shape.column] * x[c];
            v[r] = s;
        }
    }
    void add(const T* block, const BlockShape& shape, Index first, Index count, const T* x)
    {
        add(
            block, shape, first, count, x, [](Index) { return Index{0}; }, [&](Index) { return shape.order; });
    }
};

// sums(first, count, RowSums&) of the rows of a block in turn, to y.
template <class T, class Sums>
[[gnu::always_inline]] inline void block_row(const BlockShape& shape, const Scaling<T>& scaling, T* y, Sums sums)
{
    for (Index first = 0; first < shape.order; first += RowSums<T>::most) {
        const Index count = shape.order - first < RowSums<T>::most ? shape.order - first : RowSums<T>::most;
        RowSums<T> s{};
        sums(first, count, s);
        for (Index r = 0; r < count; ++r) y[first + r] = scaling.apply(s.v[r], y[first + r]);
    }
}

template <class Int, class T>
[[gnu::noinline]] void partial_rows(Share<Int, T> a, Index row_first, Index base, BlockShape shape, BlockPart part,
                                    bool unit, Scaling<T> scaling, const T* x, T* y)
{
    for (Index i = 0, k = 0; i < a.rows; ++i) {
        const Index row = row_first + i, length = a.length(i), end = k + (length > 0 ? length : 0);
        block_row(shape, scaling, y + i * shape.order, [&](Index first, Index count, RowSums<T>& s) {
            if (unit)
                for (Index r = 0; r < count; ++r) s.v[r] = x[row * shape.order + first + r];
            for (Index e = k; e < end; ++e) {
                const Index j = Index{a.cols[e]} - base;
                const T *block = a.vals + e * shape.size(), *from = x + j * shape.order;
                if (part == BlockPart::upper ? j > row : j < row || (j == row && part == BlockPart::lower_blocks))
                    s.add(block, shape, first, count, from);
                else if (j == row && part == BlockPart::lower)
                    s.add(
                        block, shape, first, count, from, [](Index) { return Index{0}; },
                        [&](Index r) { return r + !unit; });
                else if (j == row)
                    s.add(
                        block, shape, first, count, from, [&](Index r) { return r + unit; },
                        [&](Index) { return shape.order; });
            }
        });
        k = end;
    }
}

// The blocks first .. last of a diagonal, vals and y at the first of them.
template <class T>
[[gnu::noinline]] void diagonal_blocks(Index first, Index last, BlockShape shape, const T* vals, Scaling<T> scaling,
                                       const T* x, T* y)
{
    for (Index i = first; i < last; ++i, vals += shape.size(), y += shape.order)
        block_row(shape, scaling, y, [&](Index from, Index count, RowSums<T>& s) {
            s.add(vals, shape, from, count, x + i * shape.order);
        });
}

} // namespace ork::sparse
