// SPDX-License-Identifier: MIT
// A sparse matrix as a list of square blocks, random ones for every member, and the elements of op(A): the one place
// where the tests turn letters into numbers.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <numeric>
#include <vector>

#include "ork/abi/spblas.h"
#include "support/random.h"
#include "support/reference.h"

namespace ork::test {

using spblas::Format;
using spblas::Routine;
using spblas::Shape;

template <class T>
T scalar(double re, double im)
{
    if constexpr (is_complex<T>)
        return {static_cast<Real<T>>(re), static_cast<Real<T>>(im)};
    else
        return static_cast<T>(re);
}

template <class T>
T not_a_number()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    return scalar<T>(nan, nan);
}

// A value at a place; with lb > 1 a block of lb * lb values, row by row.
template <class T>
struct Block {
    std::int64_t row, column;
    std::vector<T> value;
};

template <class T>
struct Sparse {
    std::int64_t rows, columns; // of blocks
    std::int64_t lb = 1;
    std::vector<Block<T>> blocks; // in the order in which they are to be stored; equal places add up
};

// Whether a stored value enters a member's arithmetic.
inline bool counts(Shape s, std::int64_t row, std::int64_t column)
{
    if (s.type == 'g') return true;
    if (row == column) return s.type != 'a' && s.diag != 'u';
    return s.type != 'd' && (s.uplo == 'l') == (column < row);
}

// What a random matrix must suit.
struct Structure {
    Shape shape;
    std::int64_t rows, columns, lb;
    bool solve;         // sorted, no duplicates, a diagonal that can be divided by
    bool profile;       // without holes from the first block of a row (uplo l) or column (u) to the diagonal
    bool finite_unused; // values that don't count are numbers like the others instead of NaN
};

// The block columns in which a row may have something, ascending. Small matrices: all. Large ones: a few diagonals,
// near ones and distant ones.
inline std::vector<std::int64_t> candidates(const Structure& a, std::int64_t row, std::uint64_t choice)
{
    std::vector<std::int64_t> result;
    if (a.rows <= 64) {
        result.resize(static_cast<std::size_t>(a.columns));
        std::iota(result.begin(), result.end(), 0);
        return result;
    }
    Random random(choice);
    for (const std::int64_t distance : {0, 1, 2, 15, 16, 17, 40, 120, 257, 512})
        for (const std::int64_t column : {row - distance, row + distance})
            if (random.integer(0, 2) != 0 && 0 <= column && column < a.columns) result.push_back(column);
    if (row < a.columns) result.push_back(row);
    std::ranges::sort(result);
    result.erase(std::ranges::unique(result).begin(), result.end());
    return result;
}

// Rows of random length, some of them empty and some full; unsorted and with places that are stored twice unless it is
// to be solved with.
template <class T>
Sparse<T> random_sparse(const Structure& a, Random& random)
{
    Sparse<T> matrix{a.rows, a.columns, a.lb, {}};
    const auto beside = static_cast<Real<T>>(a.solve ? 1.0 / static_cast<double>(a.lb * std::min(a.columns, 20L)) : 1);
    const std::uint64_t choice = random.bits();
    const auto append = [&](std::int64_t row, std::int64_t column) {
        Block<T> block{row, column, {}};
        block.value.reserve(static_cast<std::size_t>(a.lb * a.lb));
        for (std::int64_t i = row * a.lb; i < (row + 1) * a.lb; ++i)
            for (std::int64_t j = column * a.lb; j < (column + 1) * a.lb; ++j) {
                T value = random.uniform<T>();
                if (!counts(a.shape, i, j) && !a.finite_unused)
                    value = not_a_number<T>();
                else if (i != j)
                    value *= beside;
                else if (a.solve && (!is_complex<T> || random.integer(0, 1) == 0))
                    value += scalar<T>(std::real(value) < 0 ? -1 : 1, 0);
                else if (a.solve) // dividing, the larger part decides
                    value += scalar<T>(0, std::imag(value) < 0 ? -1 : 1);
                block.value.push_back(value);
            }
        matrix.blocks.push_back(std::move(block));
    };
    for (std::int64_t row = 0; row < a.rows; ++row) {
        if (a.profile) {
            std::int64_t first = row - random.integer(-1, std::min<std::int64_t>(row, 40));
            if (a.solve && a.shape.diag != 'u') first = std::min(first, row);
            for (std::int64_t other = first; other <= row; ++other)
                a.shape.uplo == 'u' ? append(other, row) : append(row, other);
            continue;
        }
        const std::int64_t fill = random.integer(-3, 10); // tenths
        for (const std::int64_t column : candidates(a, row, choice)) {
            const bool needed = row == column && a.solve && a.shape.diag != 'u';
            if (!needed && random.integer(0, 9) >= fill) continue;
            append(row, column);
            if (!a.solve && random.integer(0, 7) == 0) append(row, column);
        }
    }
    if (!a.solve)
        for (std::size_t k = matrix.blocks.size(); k > 1; --k)
            std::swap(matrix.blocks[k - 1],
                      matrix.blocks[static_cast<std::size_t>(random.integer(0, static_cast<std::int64_t>(k) - 1))]);
    return matrix;
}

// op(A) in full, as the letters mean it, kept by its elements that are not zero.
class Model {
public:
    using R = long double;

    template <class T>
    Model(const Sparse<T>& a, Shape s)
    {
        const std::int64_t m = a.rows * a.lb, n = a.columns * a.lb;
        // A Hermitian matrix transposed is its conjugate, also where its diagonal has imaginary parts.
        const bool transpose = spblas::transposes(s.op) && s.type != 'h';
        const bool conjugate = s.type == 'h' ? s.op == 't' || s.op == 's' : spblas::conjugates(s.op);
        columns_ = transpose ? m : n;
        rows_.resize(static_cast<std::size_t>(transpose ? n : m));
        const auto add = [&](std::int64_t i, std::int64_t j, Wide<R> value, bool used) {
            const R size = magnitude(value);
            if (!used && !(size == size)) return;
            const Wide<R> element = !used ? Wide<R>() : conjugate ? conj(value) : value;
            rows_[static_cast<std::size_t>(transpose ? j : i)].push_back({transpose ? i : j, element, size});
        };
        for (const Block<T>& block : a.blocks)
            for (std::int64_t k = 0; k < a.lb * a.lb; ++k) {
                const std::int64_t i = block.row * a.lb + k / a.lb, j = block.column * a.lb + k % a.lb;
                const Wide<R> value(block.value[static_cast<std::size_t>(k)]);
                const bool used = counts(s, i, j);
                add(i, j, value, used);
                if (i == j || s.type == 'g' || s.type == 't' || s.type == 'd') continue;
                add(j, i, s.type == 'a' ? Wide<R>() - value : s.type == 'h' ? conj(value) : value, used);
            }
        if (s.diag == 'u')
            for (std::int64_t i = 0; i < m; ++i) add(i, i, Wide<R>(R(1)), true);
    }

    std::int64_t rows() const { return static_cast<std::int64_t>(rows_.size()); }
    std::int64_t columns() const { return columns_; }

    // Row i of alpha op(A) x + beta y; y is not looked at for beta = 0.
    template <class T, class X>
    Expected<R> product(std::int64_t i, T alpha, X&& x, T beta, T y) const
    {
        Expected<R> sum;
        const Wide<R> a(alpha);
        for (const Element& element : rows_[static_cast<std::size_t>(i)]) {
            const Wide<R> factor = multiply<T>(a, Wide<R>(x(element.column)));
            sum.value += multiply<T>(element.value, factor);
            sum.scale += element.scale * magnitude(factor);
        }
        if (beta != T{}) sum.add(multiply<T>(Wide<R>(beta), Wide<R>(y)));
        return sum;
    }
    // Of the terms of row i, with a few more for the scalars: a sum of them in any order is so many roundings off.
    double terms(std::int64_t i) const { return static_cast<double>(rows_[static_cast<std::size_t>(i)].size()) + 8; }

private:
    // What a member may read and take off again has no value but a size, to which its rounding errors are proportional.
    struct Element {
        std::int64_t column;
        Wide<R> value;
        R scale;
    };
    std::int64_t columns_ = 0;
    std::vector<std::vector<Element>> rows_;
};

} // namespace ork::test
