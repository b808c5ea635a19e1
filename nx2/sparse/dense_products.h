// SPDX-License-Identifier: MIT
// Products of sparse matrices with a dense C: element (i, j) is c[i * row + j * column], of which row or column is 1.
#pragma once

#include "simd/scale.h"
#include "sparse/conjugated.h"
#include "sparse/product_rows.h"

namespace ork::sparse {

template <class T>
struct DenseResult {
    T* c;
    std::int64_t row, column;

    static DenseResult in_layout(int layout, T* c, std::int64_t ldc)
    {
        return layout == row_major ? DenseResult{c, ldc, 1} : DenseResult{c, 1, ldc};
    }
    T& operator()(std::int64_t i, std::int64_t j) const { return c[i * row + j * column]; }

    // Rows first .. last, or what of them is in the upper triangle, times beta.
    void prepare(bool upper, std::int64_t first, std::int64_t last, std::int64_t columns, T beta) const
    {
        if (beta == T{1}) return;
        if (column == 1)
            for (std::int64_t i = first; i < last; ++i) {
                const std::int64_t from = upper ? i : 0;
                scale(columns - from, beta, &(*this)(i, from));
            }
        else if (first < last)
            for (std::int64_t j = upper ? first : 0; j < columns; ++j)
                scale((upper ? std::min(last, j + 1) : last) - first, beta, &(*this)(first, j));
    }
};

template <class T>
inline T scaled(T alpha, T a)
{
    return alpha == T{1} ? a : alpha * a; // 1 * a is not a for complex numbers with an infinity or -0
}

template <Part part, class Int, class T>
[[gnu::noinline]] void multiply_dense(std::int64_t first, std::int64_t last, std::int64_t columns, T alpha,
                                      const Rows<Int, T>& a, const Rows<Int, T>& b, T beta, DenseResult<T> c)
{
    c.prepare(part == Part::upper, first, last, columns, beta);
    for (std::int64_t i = first; i < last; ++i) {
        const LeftRow<Int, T> left = left_row(a, i);
        T* const row = &c(i, 0);
        for_products<part>(left, b, i, true, [&](std::int64_t k, std::int64_t l, std::int64_t column) {
            T& element = row[column * c.column];
            element = element + scaled(alpha, left.vals[k]) * b.vals[l];
        });
    }
}

// In blocks, whose lines are those of C.
template <class Int, class T>
void multiply_dense_blocks(int layout, std::int64_t first, std::int64_t last, std::int64_t columns, std::int64_t block,
                           T alpha, const Rows<Int, T>& a, const Rows<Int, T>& b, T beta, T* c, std::int64_t ldc)
{
    const auto result = DenseResult<T>::in_layout(layout, c, ldc);
    const BlockProduct<T> product(block, layout, layout, layout, ldc, alpha);
    const std::int64_t size = block * block;
    result.prepare(false, first * block, last * block, columns * block, beta);
    for (std::int64_t i = first; i < last; ++i) {
        const LeftRow<Int, T> left = left_row(a, i, block);
        for_products<Part::whole>(left, b, i, false, [&](std::int64_t k, std::int64_t l, std::int64_t column) {
            product.add(left.vals + k * size, b.vals + l * size, &result(i * block, column * block));
        });
    }
}

// Rows first .. last of the upper triangle of alpha A^H A + beta C, A of `rows` rows.
template <class Int, class T>
[[gnu::noinline]] void square_transposed(std::int64_t first, std::int64_t last, std::int64_t order, std::int64_t rows,
                                         T alpha, const Rows<Int, T>& a, T beta, DenseResult<T> c)
{
    c.prepare(true, first, last, order, beta);
    for (std::int64_t k = 0; k < rows; ++k) {
        const LeftRow<Int, T> row = left_row(a, k);
        for (std::int64_t p = 0; p < row.count; ++p) {
            const std::int64_t i = std::int64_t{row.cols[p]} - row.base;
            if (i < first || i >= last) continue;
            const T factor = scaled(alpha, conjugated(row.vals[p]));
            for (std::int64_t q = 0; q < row.count; ++q) {
                const std::int64_t j = std::int64_t{row.cols[q]} - row.base;
                if (j >= i) c(i, j) = c(i, j) + factor * row.vals[q];
            }
        }
    }
}

// A dense Hermitian matrix of which the upper triangle is read: element (i, j) is b[i * row + j * column].
template <class T>
struct DenseHermitian {
    const T* b;
    std::int64_t row, column, order;

    // y = y + a times row i.
    void add_row(T a, std::int64_t i, T* y) const
    {
        for (std::int64_t j = 0; j < i; ++j) y[j] = y[j] + a * conjugated(b[j * row + i * column]);
        for (std::int64_t j = i; j < order; ++j) y[j] = y[j] + a * b[i * row + j * column];
    }
};

// Rows first .. last of the upper triangle of alpha A B A^H + beta C, C of order `order`; ab: a row of A B.
template <class Int, class T>
[[gnu::noinline]] void triple_dense(std::int64_t first, std::int64_t last, std::int64_t order, T alpha,
                                    const Rows<Int, T>& a, const DenseHermitian<T>& b, T beta, DenseResult<T> c, T* ab)
{
    c.prepare(true, first, last, order, beta);
    for (std::int64_t i = first; i < last; ++i) {
        const LeftRow<Int, T> row = left_row(a, i);
        scale(b.order, T{}, ab);
        for (std::int64_t k = 0; k < row.count; ++k) b.add_row(row.vals[k], std::int64_t{row.cols[k]} - row.base, ab);
        for (std::int64_t j = i; j < order; ++j) {
            const LeftRow<Int, T> other = left_row(a, j);
            T sum{};
            for (std::int64_t k = 0; k < other.count; ++k)
                sum = sum + ab[std::int64_t{other.cols[k]} - other.base] * conjugated(other.vals[k]);
            c(i, j) = c(i, j) + scaled(alpha, sum);
        }
    }
}

} // namespace ork::sparse
