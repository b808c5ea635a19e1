// SPDX-License-Identifier: MIT
// A product as the ways through the multiply see it: C (m x n, column-major) = C + (alpha A) B, or C = (alpha A) B.
#pragma once

#include <cstring>

#include "blas/gemm/units.h"

namespace ork::gemm {

// An option letter, of either case.
constexpr bool is_letter(char given, char upper_case) { return (given & ~0x20) == upper_case; }

// What is done to an operand: a letter of the interface. 'N' in either case is the operand as it stands, 'C' the
// conjugate transpose, every other letter the transpose.
struct Op {
    bool transposed, conjugated;

    explicit Op(char letter) : transposed(!is_letter(letter, 'N')), conjugated(is_letter(letter, 'C')) {}
};

// Where an operand's elements are. `outer` counts the rows of op(A) or the columns of op(B), `depth` what is summed
// over; one of the strides is 1.
template <class T>
struct Operand {
    const T* data;
    Int outer_stride, depth_stride;
    bool conjugated = false;

    const T* at(Int outer, Int depth) const { return data + outer * outer_stride + depth * depth_stride; }
    Operand from(Int outer, Int depth) const { return {at(outer, depth), outer_stride, depth_stride, conjugated}; }
};

template <class T>
Operand<T> rows_of(Op op, const T* a, Int lda)
{
    return {a, op.transposed ? lda : 1, op.transposed ? 1 : lda, op.conjugated};
}
template <class T>
Operand<T> columns_of(Op op, const T* b, Int ldb)
{
    return {b, op.transposed ? 1 : ldb, op.transposed ? ldb : 1, op.conjugated};
}

// S is the type of alpha: T, or its real type where the formula has a real one, which must not meet the other part of
// an infinite number.
template <class T, class S = T>
struct Product {
    Int m, n, k;
    S alpha;
    Operand<T> a, b;
    T* c;
    Int ldc;
    bool overwrite; // C is written without being read

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

// An element that may stand anywhere.
template <class T>
inline T element(const T* p)
{
    T x;
    std::memcpy(&x, p, sizeof x);
    return x;
}

// Calls body with `flag` as a compile-time value.
template <class Body>
inline void with_flag(bool flag, Body&& body)
{
    if (flag)
        body.template operator()<true>();
    else
        body.template operator()<false>();
}

template <bool conjugated, class X>
inline X conjugate(X x)
{
    if constexpr (conjugated && requires { conj(x); }) // real numbers are their own conjugates
        return conj(x);
    else
        return x;
}

} // namespace ork::gemm
