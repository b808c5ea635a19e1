// SPDX-License-Identifier: MIT
// Square blocks of order b, b * b adjacent elements: copies in either layout, and products.
#pragma once

#include <cstdint>
#include <cstring>

#include "simd/complex.h"

namespace ork::sparse {

enum Layout : int { row_major = 0, column_major = 1 };

// How an element travels from one block to another.
enum class Passing {
    copied, // every bit as it is
    scaled, // alpha a
    added   // c + alpha a
};

template <Passing passing, int width, class T>
[[gnu::always_inline]] inline void pass(const Factor<T>& alpha, const T* a, T* c)
{
    if constexpr (passing == Passing::copied)
        store<width>(c, load<width>(a));
    else if constexpr (passing == Passing::scaled)
        store<width>(c, alpha * load<width>(a));
    else
        store<width>(c, sum(load<width>(c), alpha * load<width>(a)));
}

// `count` elements that stand together in both, a register of two at a time.
template <Passing passing, class T>
inline void pass_straight(std::int64_t count, const Factor<T>& alpha, const T* a, T* c)
{
    constexpr int lanes = Vec<T>::lanes;
    std::int64_t k = 0;
    for (; k + lanes <= count; k += lanes) pass<passing, lanes>(alpha, a + k, c + k);
    for (; k < count; ++k) pass<passing, 1>(alpha, a + k, c + k);
}

// Line by line of C, from A with stride b, eight elements a step; the rest of a line is a case of its own.
template <Passing passing, class T>
inline void pass_transposed(std::int64_t b, const Factor<T>& alpha, const T* a, T* c)
{
    for (std::int64_t r = 0; r < b; ++r, c += b) {
        const T* source = a + r;
        std::int64_t k = 0;
        for (; k + 8 <= b; k += 8)
#pragma GCC unroll 8
            for (int j = 0; j < 8; ++j) pass<passing, 1>(alpha, source + (k + j) * b, c + k + j);
        switch (b - k) {
        case 7:
            pass<passing, 1>(alpha, source + (k + 6) * b, c + k + 6);
            [[fallthrough]];
        case 6:
            pass<passing, 1>(alpha, source + (k + 5) * b, c + k + 5);
            [[fallthrough]];
        case 5:
            pass<passing, 1>(alpha, source + (k + 4) * b, c + k + 4);
            [[fallthrough]];
        case 4:
            pass<passing, 1>(alpha, source + (k + 3) * b, c + k + 3);
            [[fallthrough]];
        case 3:
            pass<passing, 1>(alpha, source + (k + 2) * b, c + k + 2);
            [[fallthrough]];
        case 2:
            pass<passing, 1>(alpha, source + (k + 1) * b, c + k + 1);
            [[fallthrough]];
        case 1:
            pass<passing, 1>(alpha, source + k * b, c + k);
            [[fallthrough]];
        default:
            break;
        }
    }
}

template <Passing passing, class T>
inline void pass_block(std::int64_t b, bool transpose, const Factor<T>& alpha, const T* a, T* c)
{
    if (transpose && b > 1)
        pass_transposed<passing>(b, alpha, a, c);
    else
        pass_straight<passing>(b * b, alpha, a, c);
}

// A block as it is or conjugated, transposed or not; c is another block.
template <class T>
inline void copy_block(std::int64_t b, bool transpose, bool conjugate, const T* a, T* c)
{
    pass_block<Passing::copied>(b, transpose, Factor<T>(T{}), a, c);
    if constexpr (is_complex<T>)
        if (conjugate)
            for (std::int64_t k = 0; k < b * b; ++k) c[k] = conj(c[k]);
}

// C += A B of blocks, each element inner index by inner index. C has lines (rows of row-major, columns of column-major
// blocks) of stride `line`; scale, unless it is 1, multiplies the factor whose elements are taken singly: A of a
// row-major C, otherwise B.
template <class T>
struct BlockProduct {
    std::int64_t b, line;
    bool columns; // C of column-major blocks
    // A line of C is the sum of elements, from `single`, times lines of the other factor. When these lines stand apart
    // (`split`), C is computed element by element.
    std::int64_t single_line, single_inner;
    bool split, scaled;
    T scale;

    BlockProduct(std::int64_t b, int layout_a, int layout_b, int layout_c, std::int64_t line, T scale)
        : b(b), line(line), columns(layout_c == column_major), split(false), scaled(!(scale == T{1})), scale(scale)
    {
        const bool along = columns ? layout_b == column_major : layout_a == row_major;
        single_line = along ? b : 1, single_inner = along ? 1 : b;
        split = columns ? layout_a != column_major : layout_b != row_major;
    }

    void add(const T* a, const T* right, T* c) const
    {
        const T *single = columns ? right : a, *lines = columns ? a : right;
        for (std::int64_t r = 0; r < b; ++r, single += single_line, c += line) {
            if (split)
                add_split(single, lines, c);
            else
                add_line(single, lines, c);
        }
    }

private:
    T element(const T* single, std::int64_t t) const
    {
        return scaled ? scale * single[t * single_inner] : single[t * single_inner];
    }
    void add_split(const T* single, const T* lines, T* c) const
    {
        for (std::int64_t j = 0; j < b; ++j) {
            T sum = c[j];
            for (std::int64_t t = 0; t < b; ++t) sum = sum + element(single, t) * lines[j * b + t];
            c[j] = sum;
        }
    }
    template <int registers, int width>
    [[gnu::always_inline]] inline void add_registers(const T* single, const T* lines, T* c) const
    {
        Vec<T> sums[registers];
#pragma GCC unroll 4
        for (int j = 0; j < registers; ++j) sums[j] = load<width>(c + j * width);
        for (std::int64_t t = 0; t < b; ++t) {
            const Factor<T> factor(element(single, t));
#pragma GCC unroll 4
            for (int j = 0; j < registers; ++j) sums[j] = sum(sums[j], factor * load<width>(lines + t * b + j * width));
        }
#pragma GCC unroll 4
        for (int j = 0; j < registers; ++j) store<width>(c + j * width, sums[j]);
    }
    void add_line(const T* single, const T* lines, T* c) const
    {
        constexpr int lanes = Vec<T>::lanes;
        std::int64_t k = 0;
        for (; k + 4 * lanes <= b; k += 4 * lanes) add_registers<4, lanes>(single, lines + k, c + k);
        for (; k + lanes <= b; k += lanes) add_registers<1, lanes>(single, lines + k, c + k);
        for (; k < b; ++k) add_registers<1, 1>(single, lines + k, c + k);
    }
};

} // namespace ork::sparse
