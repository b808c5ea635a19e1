// SPDX-License-Identifier: MIT
// One row of C = alpha A + B.
#pragma once

#include "sparse/block.h"

namespace ork::sparse {

// Where entries of one operand, or of C, stand.
template <class Int, class T>
struct RowEntries {
    const Int* cols;
    const T* vals;
    std::int64_t count;
    Int base;
    bool transpose; // blocks, on the way to C
};

template <class Int, class T>
class RowSum {
public:
    RowSum(std::int64_t b, Int base, Int* cols, T* vals, T alpha)
        : b_(b), base_(base), cols_(cols), vals_(vals), alpha_(alpha)
    {
    }

    void take_a(const RowEntries<Int, T>& a, std::int64_t i, std::int64_t at, std::int64_t column)
    {
        cols_[at] = static_cast<Int>(column + base_);
        pass_block<Passing::scaled>(b_, a.transpose, alpha_, a.vals + i * b_ * b_, block(at));
    }
    void take_b(const RowEntries<Int, T>& b, std::int64_t j, std::int64_t at, std::int64_t column)
    {
        cols_[at] = static_cast<Int>(column + base_);
        pass_block<Passing::copied>(b_, b.transpose, alpha_, b.vals + j * b_ * b_, block(at));
    }
    void add_a(const RowEntries<Int, T>& a, std::int64_t i, std::int64_t at)
    {
        pass_block<Passing::added>(b_, a.transpose, alpha_, a.vals + i * b_ * b_, block(at));
    }

private:
    T* block(std::int64_t at) { return vals_ + at * b_ * b_; }

    std::int64_t b_;
    Int base_;
    Int* cols_;
    T* vals_;
    Factor<T> alpha_;
};

template <class Int, class T>
void add_sorted(std::int64_t n, const RowEntries<Int, T>& a, const RowEntries<Int, T>& b, RowSum<Int, T> c)
{
    for (std::int64_t i = 0, j = 0, out = 0; i < a.count || j < b.count; ++out) {
        const std::int64_t in_a = i < a.count ? std::int64_t{a.cols[i]} - a.base : n;
        const std::int64_t in_b = j < b.count ? std::int64_t{b.cols[j]} - b.base : n;
        if (in_a < in_b) {
            c.take_a(a, i++, out, in_a);
        } else {
            c.take_b(b, j++, out, in_b);
            if (in_a == in_b) c.add_a(a, i++, out);
        }
    }
}

// place[column] - 1 is where C has the entry of B in that column.
template <class Int, class T>
void add_unsorted(const RowEntries<Int, T>& a, const RowEntries<Int, T>& b, RowSum<Int, T> c, Int* place)
{
    for (std::int64_t j = 0; j < b.count; ++j) {
        const std::int64_t column = std::int64_t{b.cols[j]} - b.base;
        c.take_b(b, j, j, column);
        place[column] = static_cast<Int>(j + 1);
    }
    std::int64_t out = b.count;
    for (std::int64_t i = 0; i < a.count; ++i) {
        const std::int64_t column = std::int64_t{a.cols[i]} - a.base;
        if (place[column] != 0)
            c.add_a(a, i, place[column] - 1);
        else
            c.take_a(a, i, out++, column);
    }
    for (std::int64_t j = 0; j < b.count; ++j) place[std::int64_t{b.cols[j]} - b.base] = 0;
}

} // namespace ork::sparse
