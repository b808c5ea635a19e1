// SPDX-License-Identifier: MIT
// A sequence of rotations of neighbouring columns.
#pragma once

#include "lapack/columns.h"

namespace ork::lapack {

namespace sweep {

// The column that two rotations share stays in registers between them.
template <int registers, int width, class R>
[[gnu::always_inline]] inline void turn_rows(Int count, const R* c, const R* s, R* x, Int step)
{
    Vec<R> carried[registers];
#pragma GCC unroll 4
    for (int r = 0; r < registers; ++r) carried[r] = load<width>(x + r * width);
    for (Int k = 0; k < count; ++k) {
        const Vec<R> cosine = broadcast(c[k]), sine = broadcast(s[k]);
        R* next = x + step;
#pragma GCC unroll 4
        for (int r = 0; r < registers; ++r) {
            const Vec<R> y = load<width>(next + r * width);
            store<width>(x + r * width, cosine * carried[r] + sine * y);
            carried[r] = cosine * y - sine * carried[r];
        }
        x = next;
    }
#pragma GCC unroll 4
    for (int r = 0; r < registers; ++r) store<width>(x + r * width, carried[r]);
}

} // namespace sweep

// Rotation k = 0 ... count - 1 takes columns k and k + 1 (x, y) to (c x + s y, c y - s x). Column k starts at x + k
// step; step may be negative. All are real, with complex columns taken as their parts.
template <class R>
inline void turn_columns(Int rows, Int count, const R* c, const R* s, R* x, Int step)
{
    constexpr int lanes = Vec<R>::lanes;
    Int i = 0;
    for (; i + 4 * lanes <= rows; i += 4 * lanes) sweep::turn_rows<4, lanes>(count, c, s, x + i, step);
    if (i + 2 * lanes <= rows) sweep::turn_rows<2, lanes>(count, c, s, x + i, step), i += 2 * lanes;
    if (i + lanes <= rows) sweep::turn_rows<1, lanes>(count, c, s, x + i, step), i += lanes;
    for (; i < rows; ++i) sweep::turn_rows<1, 1>(count, c, s, x + i, step);
}

} // namespace ork::lapack
