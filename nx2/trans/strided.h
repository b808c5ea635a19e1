// SPDX-License-Identifier: MIT
// Elements that stand apart: one by one.
#pragma once

#include "trans/element.h"

namespace ork::trans {

// Element (i, j) of an array.
template <class T>
struct Strided {
    T* a;
    Int stride, ld;

    T* at(Int i, Int j) const { return a + i * stride + j * ld; }
};

template <class T, class F>
void copy_strided(Int m, Int n, Strided<const T> a, Strided<T> b, const F& f)
{
    for (Int j = 0; j < n; ++j) {
        Int i = 0;
        for (; i + 8 <= m; i += 8)
#pragma GCC unroll 8
            for (Int k = 0; k < 8; ++k) put(b.at(i + k, j), a.at(i + k, j), f);
        for (; i < m; ++i) put(b.at(i, j), a.at(i, j), f);
    }
}

// B (n x m) <- f(A)^T: halves of the longer side, one after the other, until at most 4 x 4 are left, so that every
// cache finds blocks that fit it, whatever the strides (Frigo, Leiserson, Prokop, Ramachandran, FOCS 1999).
template <class T, class F>
void transpose_strided(Int m, Int n, Strided<const T> a, Strided<T> b, const F& f)
{
    while (m > 4 || n > 4) {
        if (m >= n) {
            const Int half = m / 2;
            transpose_strided(half, n, a, b, f);
            a.a = a.at(half, 0), b.a = b.at(0, half), m -= half;
        } else {
            const Int half = n / 2;
            transpose_strided(m, half, a, b, f);
            a.a = a.at(0, half), b.a = b.at(half, 0), n -= half;
        }
    }
    for (Int j = 0; j < n; ++j)
        for (Int i = 0; i < m; ++i) put(b.at(j, i), a.at(i, j), f);
}

} // namespace ork::trans
