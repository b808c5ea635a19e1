// SPDX-License-Identifier: MIT
// C <- C - L U where L and U lie in the same matrix as C: a rectangle of C stays in registers over the whole depth,
// each element sees its products in the order of the depth.
#pragma once

#include "lapack/small/operand.h"

namespace ork::lapack {

// registers x columns of C, `width` rows a register (all lanes, or one row that fills them). L by columns of distance
// ldl, U(k, q) at u + k row + q column.
template <bool conjugate, int registers, int width, int columns, class T>
[[gnu::always_inline]] inline void subtract_tile(Int depth, const T* l, Int ldl, const T* u, Int row, Int column, T* c,
                                                 Int ldc)
{
    Vec<T> x[registers][columns];
#pragma GCC unroll 4
    for (int q = 0; q < columns; ++q)
#pragma GCC unroll 4
        for (int r = 0; r < registers; ++r) x[r][q] = load<width>(c + r * width + q * ldc);
    for (Int k = 0; k < depth; ++k, l += ldl, u += row) {
#pragma GCC unroll 4
        for (int r = 0; r < registers; ++r) {
            const Rows<T> left(load<width>(l + r * width));
#pragma GCC unroll 4
            for (int q = 0; q < columns; ++q) x[r][q] = x[r][q] - product<conjugate>(left, Number<T>(u + q * column));
        }
    }
#pragma GCC unroll 4
    for (int q = 0; q < columns; ++q)
#pragma GCC unroll 4
        for (int r = 0; r < registers; ++r) store<width>(c + r * width + q * ldc, x[r][q]);
}

// `rows` x columns of C.
template <bool conjugate, int columns, class T>
[[gnu::noinline]] void subtract_products(Int rows, Int depth, const T* l, Int ldl, const T* u, Int row, Int column,
                                         T* c, Int ldc)
{
    constexpr int lanes = Vec<T>::lanes;
    Int i = 0;
    for (; i + 2 * lanes <= rows; i += 2 * lanes)
        subtract_tile<conjugate, 2, lanes, columns>(depth, l + i, ldl, u, row, column, c + i, ldc);
    if (i + lanes <= rows) {
        subtract_tile<conjugate, 1, lanes, columns>(depth, l + i, ldl, u, row, column, c + i, ldc);
        i += lanes;
    }
    for (; i < rows; ++i) subtract_tile<conjugate, 1, 1, columns>(depth, l + i, ldl, u, row, column, c + i, ldc);
}

} // namespace ork::lapack
