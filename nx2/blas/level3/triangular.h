// SPDX-License-Identifier: MIT
// Triangular systems and products, B <- op(A)^-1 B, op(A) B, B op(A)^-1 or B op(A), in one form. B is a row of slices:
// its rows when A stands on the left, its columns when A stands on the right. Slice i of the product is the sum over l
// of coefficient(i, l) times slice l, where the coefficients are op(A) or its transpose.
//
// Recursion over the order of A (Elmroth, Gustavson, Jonsson, Kagstrom: "Recursive blocked algorithms and hybrid data
// structures for dense matrix library software", 2004): the square part beside two halves is a multiply, and a triangle
// of order `leaf` is worked on in registers. The halves depend on the order alone, so a column (left) or a row (right)
// of B has the same bits whatever stands beside it.
#pragma once

#include "blas/gemm/multiply.h"
#include "blas/gemm/scale.h"

namespace ork::level3 {

using gemm::Int;
using gemm::Operand;

constexpr Int leaf = 16;

// The coefficients: a triangle, lower when slice i needs the slices before it.
template <class T>
struct Coefficients {
    const T* a;
    Int i_stride, l_stride;
    bool conjugated, lower, unit;

    const T* at(Int i, Int l) const { return a + i * i_stride + l * l_stride; }
    Coefficients from(Int first) const
    {
        Coefficients rest = *this;
        rest.a = at(first, first);
        return rest;
    }
};

template <class T>
struct Slices {
    bool rows; // of B; otherwise its columns
    T* b;
    Int ldb, length; // of a slice

    T* at(Int slice, Int element) const { return rows ? b + slice + element * ldb : b + element + slice * ldb; }
    Slices from(Int first) const { return {rows, at(first, 0), ldb, length}; }
};

// Slices [i, i + rows) += scale times their coefficients at [l, l + depth) times those slices.
template <class T>
void add_slices(const Coefficients<T>& t, const Slices<T>& x, Int i, Int rows, Int l, Int depth, T scale)
{
    const Operand<T> square{t.at(i, l), t.i_stride, t.l_stride, t.conjugated};
    if (x.rows)
        gemm::multiply(
            gemm::Product<T>{rows, x.length, depth, scale, square, {x.at(l, 0), x.ldb, 1}, x.at(i, 0), x.ldb, false});
    else
        gemm::multiply(
            gemm::Product<T>{x.length, rows, depth, scale, {x.at(l, 0), 1, x.ldb}, square, x.at(i, 0), x.ldb, false});
}

// Order of the first part: the largest leaf * 2^q below n, so that blocks of depth stay whole.
constexpr Int first_part(Int n)
{
    Int part = leaf;
    while (2 * part < n) part *= 2;
    return part;
}

// Each part needs what the other was before (a product) or has become (a solve) on one side of the diagonal.
template <class Leaf, class T>
void recurse(const Coefficients<T>& t, const Slices<T>& x, Int n)
{
    if (n <= leaf) return Leaf::run(t, x, n);
    const Int half = first_part(n);
    const auto first = [&] { recurse<Leaf>(t, x, half); };
    const auto second = [&] { recurse<Leaf>(t.from(half), x.from(half), n - half); };
    if (t.lower == Leaf::solves)
        first();
    else
        second();
    if (t.lower)
        add_slices(t, x, half, n - half, Int{0}, half, T(Leaf::solves ? -1 : 1));
    else
        add_slices(t, x, Int{0}, half, half, n - half, T(Leaf::solves ? -1 : 1));
    if (t.lower == Leaf::solves)
        second();
    else
        first();
}

// The letters and matrices of a call; alpha is applied to B first. alpha = 0 clears B and reads nothing.
template <class Leaf, class T>
void triangular(char side, char uplo, char trans, char diag, Int m, Int n, T alpha, const T* a, Int lda, T* b, Int ldb)
{
    if (m <= 0 || n <= 0) return;
    if (!(alpha == T(1))) gemm::scale(m, n, alpha, b, ldb);
    if (alpha == T(0)) return;
    const gemm::Op op(trans);
    const bool left = gemm::is_letter(side, 'L');
    const bool plain = op.transposed != left; // the coefficients are A as it stands
    const Coefficients<T> t{a,
                            plain ? 1 : lda,
                            plain ? lda : 1,
                            op.conjugated,
                            gemm::is_letter(uplo, 'L') == plain,
                            gemm::is_letter(diag, 'U')};
    recurse<Leaf>(t, Slices<T>{left, b, ldb, left ? n : m}, left ? m : n);
}

} // namespace ork::level3
