// SPDX-License-Identifier: MIT
// What a member's letters ask for, with the members that are equal by algebra called equal: a symmetric matrix
// transposed is itself, a Hermitian one its conjugate, a skew one its negative, real numbers are their own conjugates.
// Kernels are templates over a Rule, so equal members share one body.
#pragma once

#include "ork/abi/spblas.h"
#include "simd/complex.h"

namespace ork::spblas {

struct Rule {
    int base;
    char type; // g s h t a d
    bool lower, unit;
    bool transpose;
    bool conjugate; // the values as they are stored
    bool negate;    // alpha
    bool row_major;

    // The rule of a body that learns base and sign while it runs and has no dense matrices.
    constexpr Rule with_run_time_base() const
    {
        Rule r = *this;
        r.base = 0, r.negate = false, r.row_major = false;
        return r;
    }
};

template <class T>
constexpr Rule rule(Shape s)
{
    Rule r{s.base - '0',  s.type,           s.uplo == 'l',
           s.diag == 'u', transposes(s.op), is_complex<T> && conjugates(s.op),
           false,         s.layout == 'c'};
    if (s.type == 'h' && transposes(s.op)) r.conjugate = s.op == 't';
    if (s.type == 'a') r.negate = r.transpose;
    if (s.type != 'g' && s.type != 't') r.transpose = false;
    return r;
}

template <bool conjugate, class T>
inline T conjugate_if(T value)
{
    if constexpr (conjugate)
        return conj(value);
    else
        return value;
}

// The value of a stored entry under the rule.
template <Rule r, class T>
inline T direct(T value)
{
    return conjugate_if<r.conjugate>(value);
}

// The value at the mirrored place of a symmetric, Hermitian or skew matrix.
template <Rule r, class T>
inline T mirrored(T value)
{
    if constexpr (r.type == 'a')
        return Real<T>(-1) * direct<r>(value);
    else
        return conjugate_if < r.type == 'h' ? !r.conjugate : r.conjugate > (value);
}

// Whether an off-diagonal entry belongs to the triangle that is read.
template <Rule r, class Int>
inline bool in_triangle(Int row, Int column)
{
    return r.lower ? column < row : column > row;
}

} // namespace ork::spblas
