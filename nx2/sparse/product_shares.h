// SPDX-License-Identifier: MIT
// Shares of sparse C = A B and of its upper triangle: counts, columns, values. The left factor is left(i), its row i.
#pragma once

#include "sparse/product_rows.h"

namespace ork::sparse {

// Rows of A itself.
template <class Int, class T>
struct RowsOf {
    const Rows<Int, T>& a;
    std::int64_t block;

    LeftRow<Int, T> operator()(std::int64_t i) const { return left_row(a, i, block); }
};

// Rows of A B, in scratch. `values`: they are wanted.
template <class Int, class T, bool values>
class RowsOfProduct {
public:
    // work: triple_work<Int, T>(rows, columns, block); a null product: not of blocks.
    RowsOfProduct(void* work, std::int64_t rows, std::int64_t columns, const Rows<Int, T>& a, const Rows<Int, T>& b,
                  const BlockProduct<T>* product)
        : a_{a, product == nullptr ? 1 : product->b}, b_(b), product_(product), columns_(columns),
          scratch_(static_cast<char*>(work) + product_work<Int, T>(rows), columns),
          cols_(reinterpret_cast<Int*>(static_cast<char*>(work) + product_work<Int, T>(rows) +
                                       product_work<Int, T>(columns))),
          vals_(reinterpret_cast<T*>(reinterpret_cast<char*>(cols_) + (columns * sizeof(Int) + 15) / 16 * 16))
    {
    }

    LeftRow<Int, T> operator()(std::int64_t i)
    {
        const LeftRow<Int, T> left = a_(i);
        constexpr std::int64_t entries = 8; // of A B for one of A: a guess, of which only speed depends
        const std::int64_t room = std::min(columns_, entries * left.count);
        std::int64_t count;
        if constexpr (values) {
            if (product_ == nullptr) {
                count = fill_row<Part::whole, true>(left, b_, i, room, scratch_, Int{0}, cols_, vals_);
            } else {
                count = fill_row<Part::whole, false>(left, b_, i, room, scratch_, Int{0}, cols_, vals_);
                revalue_row<Part::whole>(left, b_, i, *product_, scratch_.places, Int{0}, count, cols_, vals_);
            }
        } else {
            count = fill_row<Part::whole, false>(left, b_, i, room, scratch_, Int{0}, cols_, vals_);
        }
        return {cols_, vals_, count, 0};
    }

    // Work is zero again.
    void clear(std::int64_t rows) const
    {
        if (rows <= 0) return;
        const std::int64_t size = columns_ * a_.block * a_.block;
        std::memset(cols_, 0, static_cast<std::size_t>(columns_) * sizeof(Int));
        if (values) std::memset(static_cast<void*>(vals_), 0, static_cast<std::size_t>(size) * sizeof(T));
    }

private:
    RowsOf<Int, T> a_;
    const Rows<Int, T>& b_;
    const BlockProduct<T>* product_;
    std::int64_t columns_;
    Scratch<Int, T> scratch_;
    Int* cols_;
    T* vals_;
};

template <Part part, class Int, class T, class Left>
void count_share(Int first, Int last, Int columns, Left&& left, const Rows<Int, T>& b, Int* counts, void* work)
{
    if (first >= last) return;
    Int* const stamps = static_cast<Int*>(work);
    for (Int i = first; i < last; ++i)
        counts[i - first] = count_row<part>(left(i), b, i, stamps, static_cast<Int>(i - first + 1));
    std::memset(stamps, 0, static_cast<std::size_t>(columns) * sizeof(Int));
}

// What a share does with row i: room for `room` entries of C, or as many columns.
template <class Int, class T, class Body>
inline void for_rows(Int first, Int last, const Result<Int, T>& c, Body body)
{
    for (Int i = first; i < last; ++i) {
        const std::int64_t begin = std::int64_t{c.first[i]} - c.base;
        body(i, begin, std::int64_t{c.last[i]} - c.base - begin);
    }
}

template <Part part, bool values, class Int, class T, class Left>
void fill_share(Int first, Int last, Int columns, Left&& left, const Rows<Int, T>& b, const Result<Int, T>& c,
                Int* counts, void* work)
{
    Scratch<Int, T> scratch(work, columns);
    for_rows(first, last, c, [&](Int i, std::int64_t begin, std::int64_t room) {
        const std::int64_t count = fill_row<part, values>(left(i), b, i, room, scratch, c.base, c.cols + begin,
                                                          values ? c.vals + begin : nullptr);
        if (counts != nullptr) counts[i - first] = static_cast<Int>(count);
    });
}

template <Part part, class Int, class T, class Left>
void fill_block_share(Int first, Int last, Int columns, const BlockProduct<T>& product, Left&& left,
                      const Rows<Int, T>& b, const Result<Int, T>& c, Int* counts, void* work)
{
    Scratch<Int, T> scratch(work, columns);
    for_rows(first, last, c, [&](Int i, std::int64_t begin, std::int64_t room) {
        Int* const cols = c.cols + begin;
        const LeftRow<Int, T> row = left(i);
        const std::int64_t count = fill_row<part, false>(row, b, i, room, scratch, c.base, cols, c.vals);
        revalue_row<part>(row, b, i, product, scratch.places, c.base, count, cols,
                          c.vals + begin * product.b * product.b);
        if (counts != nullptr) counts[i - first] = static_cast<Int>(count);
    });
}

template <Part part, class Int, class T, class Left>
void revalue_share(Int first, Int last, Int columns, Left&& left, const Rows<Int, T>& b, const Result<Int, T>& c,
                   void* work)
{
    Scratch<Int, T> scratch(work, columns);
    for_rows(first, last, c, [&](Int i, std::int64_t begin, std::int64_t count) {
        revalue_row<part>(left(i), b, i, scratch.sums, c.base, count, c.cols + begin, c.vals + begin);
    });
}

template <Part part, class Int, class T, class Left>
void revalue_block_share(Int first, Int last, Int columns, const BlockProduct<T>& product, Left&& left,
                         const Rows<Int, T>& b, const Result<Int, T>& c, void* work)
{
    Scratch<Int, T> scratch(work, columns);
    for_rows(first, last, c, [&](Int i, std::int64_t begin, std::int64_t count) {
        revalue_row<part>(left(i), b, i, product, scratch.places, c.base, count, c.cols + begin,
                          c.vals + begin * product.b * product.b);
    });
}

} // namespace ork::sparse
