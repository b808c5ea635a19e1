// SPDX-License-Identifier: MIT
// A rectangle of elements that stays in registers while products are subtracted from it, and the one step that
// factorisations, triangular solves and inverses are made of.
#pragma once

#include "lapack/compact/select.h"
#include "lapack/compact/slices.h"

namespace ork::lapack {

// Elements of a tile's side: with its operands and a product, 9 (real) or 4 (complex, two registers each) fill the 16
// registers.
template <class T>
inline constexpr int edge = is_complex<T> ? 2 : 3;

// p + stride, which the compiler takes for a pointer of its own: otherwise it keeps the distance of every element from
// the first, in memory for want of registers.
template <class R>
inline R* further(R* p, Int stride)
{
    p += stride;
    asm("" : "+r"(p));
    return p;
}

template <int rows, int columns, class T>
struct Tile {
    using R = Real<T>;
    Lanes<T> x[rows][columns];

    void get(const Matrix<const R>& a)
    {
        const R* column = a.data;
#pragma GCC unroll 8
        for (int c = 0; c < columns; ++c, column = further(column, a.column_stride))
#pragma GCC unroll 8
            for (int r = 0; r < rows; ++r) x[r][c] = Lanes<T>::get(column + r * a.row_stride, a.imaginary);
    }
    // Rows `first` and below.
    void put(const Matrix<R>& a, int first = 0) const
    {
        R* column = a.data;
#pragma GCC unroll 8
        for (int c = 0; c < columns; ++c, column = further(column, a.column_stride))
#pragma GCC unroll 8
            for (int r = first; r < rows; ++r) x[r][c].put(column + r * a.row_stride, a.imaginary);
    }
    // - l u, l rows x depth, u depth x columns, u conjugated if asked.
    template <bool conjugate>
    void subtract(const Matrix<const R>& l, const Matrix<const R>& u, Int depth)
    {
        const R *at_l = l.data, *at_u = u.data;
        const Int row = l.row_stride, column = u.column_stride, im_l = l.imaginary, im_u = u.imaginary;
        for (Int k = 0; k < depth; ++k, at_l += l.column_stride, at_u += u.row_stride) {
            Lanes<T> left[rows];
#pragma GCC unroll 8
            for (int r = 0; r < rows; ++r) left[r] = Lanes<T>::get(at_l + r * row, im_l);
#pragma GCC unroll 8
            for (int c = 0; c < columns; ++c) {
                const Lanes<T> right = Lanes<T>::get(at_u + c * column, im_u);
#pragma GCC unroll 8
                for (int r = 0; r < rows; ++r) x[r][c].template subtract_product<conjugate>(left[r], right);
            }
        }
    }
    // L U in place, square. The reciprocal of the last pivot is formed if rows follow below; each goes to keep(c, q).
    template <class Keep>
    void factor(bool rows_follow, Keep&& keep)
    {
#pragma GCC unroll 8
        for (int c = 0; c < columns; ++c) {
            if (c + 1 == columns && !rows_follow) return;
            const Lanes<T> q = reciprocal(x[c][c]);
            keep(c, q);
#pragma GCC unroll 8
            for (int r = c + 1; r < rows; ++r) x[r][c] = x[r][c] * q;
#pragma GCC unroll 8
            for (int k = c + 1; k < columns; ++k)
#pragma GCC unroll 8
                for (int r = c + 1; r < rows; ++r) x[r][k].template subtract_product<false>(x[r][c], x[c][k]);
        }
    }
};

// What ends column c of a solve: nothing, a factor or a real divisor.
enum class Diagonal { unit, reciprocal, divisor };

// Where factor or divisor of column c is: data + c stride.
template <class R>
struct Ends {
    const R* data;
    Int stride, imaginary;
};

// t <- t u^-1 within the tile; u: the triangle of its columns, above the diagonal.
template <bool conjugate, Diagonal diagonal, int rows, int columns, class T>
inline void finish(Tile<rows, columns, T>& t, const Matrix<const Real<T>>& u, const Ends<Real<T>>& ends)
{
#pragma GCC unroll 8
    for (int c = 0; c < columns; ++c) {
#pragma GCC unroll 8
        for (int k = 0; k < c; ++k) {
            const Lanes<T> right = Lanes<T>::at(u, k, c);
#pragma GCC unroll 8
            for (int r = 0; r < rows; ++r) t.x[r][c].template subtract_product<conjugate>(t.x[r][k], right);
        }
        if constexpr (diagonal == Diagonal::reciprocal) {
            const Lanes<T> factor = Lanes<T>::get(ends.data + c * ends.stride, ends.imaginary);
#pragma GCC unroll 8
            for (int r = 0; r < rows; ++r) t.x[r][c] = t.x[r][c] * factor;
        } else if constexpr (diagonal == Diagonal::divisor) {
            const Vec<Real<T>> divisor = load(ends.data + c * ends.stride);
#pragma GCC unroll 8
            for (int r = 0; r < rows; ++r) t.x[r][c] = t.x[r][c] / divisor;
        }
    }
}

// Columns depth .. depth + columns - 1 of x in x u = b, in place: those before are solved. u: the same columns.
template <class T, bool conjugate, Diagonal diagonal, int rows, int columns>
inline void solve(const Matrix<Real<T>>& x, const Matrix<const Real<T>>& u, Int depth, const Ends<Real<T>>& ends)
{
    Tile<rows, columns, T> t;
    t.get(x.from(0, depth));
    t.template subtract<conjugate>(x, u, depth);
    finish<conjugate, diagonal>(t, u.from(depth, 0), ends);
    t.put(x.from(0, depth));
}

} // namespace ork::lapack
