// SPDX-License-Identifier: MIT
// A sparse matrix as a list of square blocks, random ones for every member, and what op(A) is in full: the one place
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

// Rows of random length, some of them empty and some full; unsorted and with places that are stored twice unless it is
// to be solved with.
template <class T>
Sparse<T> random_sparse(const Structure& a, Random& random)
{
    Sparse<T> matrix{a.rows, a.columns, a.lb, {}};
    const bool upper = a.shape.uplo == 'u';
    const double beside = a.solve ? 1.0 / static_cast<double>(a.lb * a.columns) : 1.0;
    const auto append = [&](std::int64_t row, std::int64_t column) {
        Block<T> block{row, column, {}};
        for (std::int64_t i = row * a.lb; i < (row + 1) * a.lb; ++i)
            for (std::int64_t j = column * a.lb; j < (column + 1) * a.lb; ++j) {
                T value = random.uniform<T>();
                if (!counts(a.shape, i, j) && !a.finite_unused)
                    value = not_a_number<T>();
                else if (i != j)
                    value *= static_cast<Real<T>>(beside);
                else if (a.solve)
                    value += scalar<T>(std::real(value) < 0 ? -1 : 1, 0);
                block.value.push_back(value);
            }
        matrix.blocks.push_back(std::move(block));
    };
    for (std::int64_t row = 0; row < a.rows; ++row) {
        const std::int64_t fill = random.integer(-3, 10); // tenths; at random a row is empty, at random full
        std::int64_t first = row - random.integer(-1, row);
        for (std::int64_t column = 0; column < a.columns; ++column) {
            const bool diagonal = row == column;
            bool stored = a.profile ? first <= column && column <= row : random.integer(0, 9) < fill;
            if (diagonal && a.solve && a.shape.diag != 'u') stored = true;
            if (!stored) continue;
            const bool swap = a.profile && upper;
            append(swap ? column : row, swap ? row : column);
            if (!a.solve && !a.profile && random.integer(0, 7) == 0) append(row, column);
        }
    }
    if (!a.solve)
        for (std::size_t k = matrix.blocks.size(); k > 1; --k)
            std::swap(matrix.blocks[k - 1],
                      matrix.blocks[static_cast<std::size_t>(random.integer(0, static_cast<std::int64_t>(k) - 1))]);
    return matrix;
}

// op(A) in full, as the letters mean it. The scale of an element is the sum of the magnitudes of what was stored there.
class Dense {
public:
    using R = long double;

    template <class T>
    Dense(const Sparse<T>& a, Shape s)
    {
        const std::int64_t m = a.rows * a.lb, n = a.columns * a.lb;
        // A Hermitian matrix transposed is its conjugate, also where its diagonal has imaginary parts.
        const bool transpose = spblas::transposes(s.op) && s.type != 'h';
        const bool conjugate = s.type == 'h' ? s.op == 't' || s.op == 's' : spblas::conjugates(s.op);
        rows_ = transpose ? n : m;
        columns_ = transpose ? m : n;
        elements_.resize(static_cast<std::size_t>(m * n));
        const auto add = [&](std::int64_t i, std::int64_t j, Wide<R> value, bool used) {
            Expected<R>& element = at(transpose ? j : i, transpose ? i : j);
            if (used) element.value += conjugate ? conj(value) : value;
            const R size = magnitude(value);
            if (size == size) element.scale += size;
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

    std::int64_t rows() const { return rows_; }
    std::int64_t columns() const { return columns_; }
    const Expected<R>& operator()(std::int64_t i, std::int64_t j) const
    {
        return elements_[static_cast<std::size_t>(i * columns_ + j)];
    }

    // Row i of alpha op(A) x + beta y; y is not looked at for beta = 0.
    template <class T, class X>
    Expected<R> product(std::int64_t i, T alpha, X&& x, T beta, T y) const
    {
        Expected<R> sum;
        const Wide<R> a(alpha);
        for (std::int64_t j = 0; j < columns_; ++j) {
            const Expected<R>& element = (*this)(i, j);
            if (element.scale == 0) continue;
            const Wide<R> factor = multiply<T>(a, Wide<R>(x(j)));
            sum.value += multiply<T>(element.value, factor);
            sum.scale += element.scale * magnitude(factor);
        }
        if (beta != T{}) sum.add(multiply<T>(Wide<R>(beta), Wide<R>(y)));
        return sum;
    }

private:
    Expected<R>& at(std::int64_t i, std::int64_t j) { return elements_[static_cast<std::size_t>(i * columns_ + j)]; }

    std::int64_t rows_ = 0, columns_ = 0;
    std::vector<Expected<R>> elements_;
};

} // namespace ork::test
