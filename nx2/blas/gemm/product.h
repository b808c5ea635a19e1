// SPDX-License-Identifier: MIT
// A product as the ways through the multiply see it: C (m x n, column-major) = C + (alpha A) B, or C = (alpha A) B.
#pragma once

#include "blas/gemm/units.h"
#include "simd/vec.h"

namespace ork::gemm {

// Where an operand's elements are. `outer` counts the rows of op(A) or the columns of op(B), `depth` what is summed
// over; one of the strides is 1.
template <class T>
struct Operand {
    const T* data;
    Int outer_stride, depth_stride;

    const T* at(Int outer, Int depth) const { return data + outer * outer_stride + depth * depth_stride; }
    Operand from(Int outer, Int depth) const { return {at(outer, depth), outer_stride, depth_stride}; }
};

template <class T>
struct Product {
    Int m, n, k;
    T alpha;
    Operand<T> a, b;
    T* c;
    Int ldc;
    bool overwrite; // C is written without being read

    Product(bool transa, bool transb, Int m, Int n, Int k, T alpha, const T* a, Int lda, const T* b, Int ldb, T* c,
            Int ldc, bool overwrite)
        : m(m), n(n), k(k),
          alpha(alpha), a{a, transa ? lda : 1, transa ? 1 : lda}, b{b, transb ? 1 : ldb, transb ? ldb : 1}, c(c),
          ldc(ldc), overwrite(overwrite)
    {
    }

    // The steps of depth [first, first + depth): what remains to be added once the steps before are in C.
    Product block(Int first, Int depth) const
    {
        Product part = *this;
        part.k = depth;
        part.a = a.from(0, first);
        part.b = b.from(0, first);
        part.overwrite = overwrite && first == 0;
        return part;
    }
};

// Calls body with `flag` as a compile-time value.
template <class Body>
inline void with_flag(bool flag, Body&& body)
{
    if (flag)
        body.template operator()<true>();
    else
        body.template operator()<false>();
}

} // namespace ork::gemm
