// SPDX-License-Identifier: MIT
// A sparse matrix in the arrays of each format, in guarded pages, as the kernels take it.
#pragma once

#include <tuple>

#include "spblas/sparse.h"
#include "support/guarded.h"

namespace ork::test {

// What a format leaves to the caller.
struct Arrangement {
    Shape shape;             // base, layout of blocks, triangle of a profile
    std::int64_t start = 0;  // number of the first position
    bool gaps = false;       // unused places between the rows, and all rows but the first in another order
    std::int64_t spare = 0;  // of a diagonal's length
    Guard side = Guard::end; // which end of every array touches the inaccessible page
    std::size_t offset = 0;  // reals between it and the values
};

template <class T>
struct Arrays {
    std::vector<T> val;
    std::vector<std::int64_t> indx, begin, end; // coo: rows and columns; dia: diagonals; sky: positions in begin
    std::int64_t number = 0;                    // order of a block, number of entries or diagonals
    std::int64_t lval = 0;
};

// csr, bsr by rows, bsc by columns.
template <class T>
Arrays<T> compressed(const Sparse<T>& a, const Arrangement& how, bool by_columns)
{
    const std::int64_t lines = by_columns ? a.columns : a.rows, base = how.shape.base - '0';
    Arrays<T> result;
    result.number = a.lb;
    result.begin.resize(static_cast<std::size_t>(lines));
    result.end.resize(result.begin.size());
    std::vector<std::vector<const Block<T>*>> blocks(result.begin.size());
    for (const Block<T>& block : a.blocks)
        blocks[static_cast<std::size_t>(by_columns ? block.column : block.row)].push_back(&block);
    for (std::int64_t l = 0; l < lines; ++l) {
        const std::int64_t line = how.gaps && l > 0 ? lines - l : l;
        const auto position = [&] { return static_cast<std::int64_t>(result.indx.size()) + how.start; };
        if (how.gaps && l > 0) {
            result.indx.push_back(base);
            result.val.insert(result.val.end(), static_cast<std::size_t>(a.lb * a.lb), not_a_number<T>());
        }
        result.begin[static_cast<std::size_t>(line)] = position();
        for (const Block<T>* block : blocks[static_cast<std::size_t>(line)]) {
            result.indx.push_back((by_columns ? block->row : block->column) + base);
            for (std::int64_t k = 0; k < a.lb * a.lb; ++k) {
                const std::int64_t turned = k % a.lb * a.lb + k / a.lb;
                result.val.push_back(block->value[static_cast<std::size_t>(how.shape.layout == 'c' ? k : turned)]);
            }
        }
        result.end[static_cast<std::size_t>(line)] = position();
    }
    return result;
}

template <class T>
Arrays<T> coordinates(const Sparse<T>& a, const Arrangement& how)
{
    Arrays<T> result;
    for (const Block<T>& block : a.blocks) {
        result.val.push_back(block.value[0]);
        result.indx.push_back(block.row + how.shape.base - '0');
        result.begin.push_back(block.column + how.shape.base - '0');
    }
    result.number = static_cast<std::int64_t>(a.blocks.size());
    return result;
}

// In the order in which the diagonals are met. A place that is stored twice is on two equal diagonals. Values outside
// the matrix are NaN.
template <class T>
Arrays<T> diagonals(const Sparse<T>& a, const Arrangement& how)
{
    Arrays<T> result;
    result.lval = a.rows + how.spare;
    std::vector<bool> taken;
    for (const Block<T>& block : a.blocks) {
        const std::int64_t distance = block.column - block.row;
        for (std::size_t d = 0;; ++d) {
            const std::size_t first = d * static_cast<std::size_t>(result.lval);
            if (d == result.indx.size()) {
                result.indx.push_back(distance);
                for (std::int64_t i = 0; i < result.lval; ++i) {
                    const bool inside = i < a.rows && 0 <= i + distance && i + distance < a.columns;
                    result.val.push_back(inside ? T{} : not_a_number<T>());
                    taken.push_back(!inside);
                }
            }
            const std::size_t at = first + static_cast<std::size_t>(block.row);
            if (result.indx[d] != distance || taken[at]) continue;
            result.val[at] = block.value[0];
            taken[at] = true;
            break;
        }
    }
    result.number = static_cast<std::int64_t>(result.indx.size());
    return result;
}

template <class T>
Arrays<T> profile(const Sparse<T>& a, const Arrangement& how)
{
    Arrays<T> result;
    std::vector<std::vector<T>> profiles(static_cast<std::size_t>(a.rows)); // from the diagonal away
    for (const Block<T>& block : a.blocks) {
        auto& values = profiles[static_cast<std::size_t>(std::max(block.row, block.column))];
        const auto distance = static_cast<std::size_t>(std::abs(block.row - block.column));
        values.resize(std::max(values.size(), distance + 1));
        values[distance] = block.value[0];
    }
    for (const auto& values : profiles) {
        result.begin.push_back(static_cast<std::int64_t>(result.val.size()) + how.start);
        result.val.insert(result.val.end(), values.rbegin(), values.rend());
    }
    result.begin.push_back(static_cast<std::int64_t>(result.val.size()) + how.start);
    return result;
}

template <class T>
Arrays<T> arrange(Format format, const Sparse<T>& a, const Arrangement& how)
{
    switch (format) {
    case Format::coo:
        return coordinates(a, how);
    case Format::dia:
        return diagonals(a, how);
    case Format::sky:
        return profile(a, how);
    default:
        return compressed(a, how, format == Format::bsc);
    }
}

template <class Int, class T>
class Stored {
public:
    Stored(const Arrays<T>& arrays, const Arrangement& how)
        : number_(static_cast<Int>(arrays.number)), lval_(static_cast<Int>(arrays.lval)),
          val_(arrays.val, how.side, how.offset * sizeof(Real<T>)), indx_(narrow(arrays.indx), how.side),
          begin_(narrow(arrays.begin), how.side), end_(narrow(arrays.end), how.side)
    {
        val_.read_only(), indx_.read_only(), begin_.read_only(), end_.read_only();
    }

    // The pointers of Calls<format, Int, T>.
    template <Format format>
    auto arguments() const
    {
        const T* val = val_.data();
        const Int *indx = indx_.data(), *begin = begin_.data(), *end = end_.data(), *number = &number_, *lval = &lval_;
        if constexpr (format == Format::csr)
            return std::tuple(val, indx, begin, end);
        else if constexpr (format == Format::coo)
            return std::tuple(val, indx, begin, number);
        else if constexpr (format == Format::dia)
            return std::tuple(val, lval, indx, number);
        else if constexpr (format == Format::sky)
            return std::tuple(val, begin);
        else
            return std::tuple(number, val, indx, begin, end);
    }

private:
    static std::vector<Int> narrow(const std::vector<std::int64_t>& values) { return {values.begin(), values.end()}; }

    Int number_, lval_;
    Guarded<T> val_;
    Guarded<Int> indx_, begin_, end_;
};

} // namespace ork::test
