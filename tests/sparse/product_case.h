// SPDX-License-Identifier: MIT
// Operands of sums and products as the kernels take them, and the plain loops that say what must come out, bit for bit.
#pragma once

#include <algorithm>
#include <vector>

#include "sparse/kernel.h"
#include "support/compare.h"
#include "support/guarded.h"
#include "support/random.h"

namespace ork::test {

using Index = std::int64_t;

// A dense matrix, and which of its blocks are places of the sparse one.
template <class T>
struct Dense {
    Index rows, cols, block;
    std::vector<T> value;
    std::vector<bool> place;

    Dense(Index rows, Index cols, Index block)
        : rows(rows), cols(cols), block(block), value(rows * cols * block * block), place(rows * cols)
    {
    }
    T& operator()(Index i, Index j) { return value[i * cols * block + j]; }
    const T& operator()(Index i, Index j) const { return value[i * cols * block + j]; }
};

// Rows of blocks with gaps between them; sizes in blocks.
template <class Int, class T>
struct Stored {
    Index rows, cols, block, layout, base;
    std::vector<Int> first, last, index;
    std::vector<T> vals;

    Stored(Index rows, Index cols, Index block, Index layout, Index base)
        : rows(rows), cols(cols), block(block), layout(layout), base(base)
    {
    }

    // Columns in any order, some twice, and rows without entries.
    static Stored random(Index rows, Index cols, Index most, std::uint64_t seed, Index block = 1, Index layout = 0)
    {
        Random random(seed);
        Stored a(rows, cols, block, layout, random.integer(0, 1));
        for (Index i = 0; i < rows; ++i) {
            a.index.push_back(static_cast<Int>(a.base)), a.add_block(random); // a gap
            a.first.push_back(static_cast<Int>(a.entries() + a.base));
            for (Index k = i % 4 == 2 ? 0 : random.integer(0, most); k > 0; --k) {
                const Index near = i < cols ? i : cols - 1;
                const Index column = k % 3 == 0 ? near : random.integer(0, cols - 1);
                a.index.push_back(static_cast<Int>(column + a.base)), a.add_block(random);
            }
            a.last.push_back(static_cast<Int>(a.entries() + a.base));
        }
        return a;
    }
    void add_block(Random& random)
    {
        for (Index k = 0; k < block * block; ++k) vals.push_back(random.spread<T>(20));
    }

    Index entries() const { return static_cast<Index>(index.size()); }
    Index begin(Index i) const { return first[i] - base; }
    Index end(Index i) const { return last[i] - base; }
    Index column(Index k) const { return index[k] - base; }
    T& at(Index k, Index r, Index c)
    {
        return vals[(k * block + (layout == 0 ? r : c)) * block + (layout == 0 ? c : r)];
    }
    const T& at(Index k, Index r, Index c) const { return const_cast<Stored*>(this)->at(k, r, c); }
    sparse::Rows<Int, T> view() const
    {
        return {vals.data(), index.data(), first.data(), last.data(), static_cast<Int>(base)};
    }

    // body(row, column, position) for each entry in the order of rows.
    template <class Body>
    void each(Body body) const
    {
        for (Index i = 0; i < rows; ++i)
            for (Index k = begin(i); k < end(i); ++k) body(i, column(k), k);
    }

    // A^H with ascending rows; entries of the same place keep their order.
    Stored hermitian() const
    {
        Stored h(cols, rows, block, layout, 1 - base);
        for (Index j = 0; j < cols; ++j) {
            h.first.push_back(static_cast<Int>(h.entries() + h.base));
            each([&](Index i, Index column, Index k) {
                if (column != j) return;
                h.index.push_back(static_cast<Int>(i + h.base));
                h.vals.resize(h.vals.size() + block * block);
                for (Index r = 0; r < block; ++r)
                    for (Index c = 0; c < block; ++c) h.at(h.entries() - 1, r, c) = conjugated(at(k, c, r));
            });
            h.last.push_back(static_cast<Int>(h.entries() + h.base));
        }
        return h;
    }
    // The places of a dense matrix, row by row.
    static Stored compressed(const Dense<T>& d, Index layout)
    {
        Stored a(d.rows, d.cols, d.block, layout, 0);
        for (Index i = 0; i < d.rows; ++i) {
            a.first.push_back(static_cast<Int>(a.entries()));
            for (Index j = 0; j < d.cols; ++j) {
                if (!d.place[i * d.cols + j]) continue;
                a.index.push_back(static_cast<Int>(j));
                a.vals.resize(a.vals.size() + d.block * d.block);
                for (Index r = 0; r < d.block; ++r)
                    for (Index c = 0; c < d.block; ++c)
                        a.at(a.entries() - 1, r, c) = d(i * d.block + r, j * d.block + c);
            }
            a.last.push_back(static_cast<Int>(a.entries()));
        }
        return a;
    }
};

// C = C + factor A B, entry by entry; a factor of 1 is left out.
template <class Int, class T>
void accumulate(const Stored<Int, T>& a, const Stored<Int, T>& b, Dense<T>& c, T factor = T(1))
{
    const Index n = a.block;
    a.each([&](Index i, Index inner, Index k) {
        for (Index l = b.begin(inner); l < b.end(inner); ++l) {
            const Index j = b.column(l);
            c.place[i * c.cols + j] = true;
            for (Index r = 0; r < n; ++r)
                for (Index s = 0; s < n; ++s) {
                    T& element = c(i * n + r, j * n + s);
                    for (Index t = 0; t < n; ++t) {
                        const T left = factor == T(1) ? a.at(k, r, t) : plain_product(factor, a.at(k, r, t));
                        element = element + plain_product(left, b.at(l, t, s));
                    }
                }
        }
    });
}
template <class Int, class T>
Dense<T> product(const Stored<Int, T>& a, const Stored<Int, T>& b)
{
    Dense<T> c(a.rows, b.cols, a.block);
    accumulate(a, b, c);
    return c;
}
template <class T>
Dense<T> upper(Dense<T> c)
{
    for (Index i = 0; i < c.rows; ++i)
        for (Index j = 0; j < i; ++j) c.place[i * c.cols + j] = false;
    return c;
}

} // namespace ork::test
