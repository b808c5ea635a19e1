// SPDX-License-Identifier: MIT
// A few right-hand sides of one row at once: `ColumnGroup` of column-major operands, `LaneGroup` of row-major ones.
#pragma once

#include <cstddef>
#include <cstdint>

#include "blas/divide.h"
#include "simd/scale.h"

namespace ork::spblas {

using Index = std::ptrdiff_t; // positions and strides, whatever integer the caller counts with

// p + by where that may lie outside the array, as positions do that count from 1.
template <class T>
inline T* moved(T* p, Index by)
{
    return reinterpret_cast<T*>(reinterpret_cast<std::uintptr_t>(p) +
                                static_cast<std::uintptr_t>(by) * sizeof(T)); // modulo 2^64
}

// val or its conjugate.
template <class T>
struct Conjugation {
    Real<T> sign;

    explicit Conjugation(bool conjugate) : sign(conjugate ? -1 : 1) {}
    T operator()(T value) const
    {
        if constexpr (is_complex<T>)
            return {value.re, sign * value.im};
        else
            return value;
    }
};

// C and B, or y and x as a single column. Row i of right-hand side j stands `i * row + j * side` from the first.
template <class T>
struct Operands {
    const T* b;
    T* c;
    Index b_row, b_side, c_row, c_side;
    Index sides;

    Operands(const T* x, T* y) : b(x), c(y), b_row(1), b_side(0), c_row(1), c_side(0), sides(1) {}
    Operands(bool row_major, const T* b, Index ldb, T* c, Index ldc, Index first, Index last)
        : b_row(row_major ? ldb : 1), b_side(row_major ? 1 : ldb), c_row(row_major ? ldc : 1),
          c_side(row_major ? 1 : ldc), sides(last < first ? 0 : last - first + 1)
    {
        this->b = moved(b, (first - 1) * b_side);
        this->c = moved(c, (first - 1) * c_side);
    }
};

// By value, so that what is divided can stay in registers where it is multiplied instead.
template <class T>
[[gnu::noinline, gnu::cold]] T divided_apart(T x, T d)
{
    return divided(x, d);
}

// x / d, by multiplying with the inverse of d where that has one: the next row of a solve waits for the result, but not
// for the inverse.
template <class T>
inline T quotient(T x, T d)
{
    T inverse;
    return invert(d, inverse) ? inverse * x : divided_apart(x, d);
}

template <class T, int count>
struct ColumnGroup {
    static constexpr int sides = count;
    T v[count];

    static Index at(Index row, Index) { return row; }
    static ColumnGroup load(const T* p, Index side)
    {
        ColumnGroup a;
#pragma GCC unroll 4
        for (int j = 0; j < count; ++j) a.v[j] = p[j * side];
        return a;
    }
    void store(T* p, Index side) const
    {
#pragma GCC unroll 4
        for (int j = 0; j < count; ++j) p[j * side] = v[j];
    }
    void add(T a, const ColumnGroup& x)
    {
#pragma GCC unroll 4
        for (int j = 0; j < count; ++j) v[j] = v[j] + a * x.v[j];
    }
    void subtract(T a, const ColumnGroup& x)
    {
#pragma GCC unroll 4
        for (int j = 0; j < count; ++j) v[j] = v[j] - a * x.v[j];
    }
    void divide(T d)
    {
        T inverse;
        const bool multiplies = invert(d, inverse);
#pragma GCC unroll 4
        for (int j = 0; j < count; ++j) v[j] = multiplies ? inverse * v[j] : divided_apart(v[j], d);
    }
};

template <class T, int vectors, int width>
struct LaneGroup {
    static constexpr int sides = vectors * width;
    Vec<T> v[vectors];

    static Index at(Index row, Index stride) { return row * stride; }
    static LaneGroup load(const T* p, Index)
    {
        LaneGroup a;
#pragma GCC unroll 4
        for (int j = 0; j < vectors; ++j) a.v[j] = ork::load<width>(p + j * width);
        return a;
    }
    void store(T* p, Index) const
    {
#pragma GCC unroll 4
        for (int j = 0; j < vectors; ++j) ork::store<width>(p + j * width, v[j]);
    }
    void add(T a, const LaneGroup& x)
    {
        const Factor<T> factor(a);
#pragma GCC unroll 4
        for (int j = 0; j < vectors; ++j) v[j] = sum(factor * x.v[j], v[j]);
    }
    void subtract(T a, const LaneGroup& x)
    {
        const Factor<T> factor(a);
#pragma GCC unroll 4
        for (int j = 0; j < vectors; ++j) v[j] = v[j] - factor * x.v[j];
    }
    void divide(T d)
    {
        T inverse;
        if (invert(d, inverse)) {
            const Factor<T> factor(inverse);
#pragma GCC unroll 4
            for (int j = 0; j < vectors; ++j) v[j] = factor * v[j];
            return;
        }
        T elements[sides];
        store(elements, 0);
        for (int j = 0; j < sides; ++j) elements[j] = divided(elements[j], d);
        *this = load(elements, 0);
    }
};

// f(group type, operands of that group) for all right-hand sides.
template <class Group, class T, class F>
inline void while_groups(Operands<T>& o, F& f)
{
    for (; o.sides >= Group::sides; o.sides -= Group::sides) {
        f(Group{}, static_cast<const Operands<T>&>(o));
        o.b += Group::sides * o.b_side, o.c += Group::sides * o.c_side;
    }
}

template <class T, class F>
inline void for_lanes(Operands<T> o, F f)
{
    constexpr int lanes = Vec<T>::lanes;
    while_groups<LaneGroup<T, 4, lanes>>(o, f);
    while_groups<LaneGroup<T, 2, lanes>>(o, f);
    while_groups<LaneGroup<T, 1, lanes>>(o, f);
    if constexpr (lanes > 1) while_groups<LaneGroup<T, 1, 1>>(o, f);
}

template <class T, class F>
inline void for_columns(Operands<T> o, F f)
{
    while_groups<ColumnGroup<T, 4>>(o, f);
    while_groups<ColumnGroup<T, 1>>(o, f);
}

template <class T, class F>
inline void for_groups(bool row_major, const Operands<T>& o, F f)
{
    row_major ? for_lanes(o, f) : for_columns(o, f);
}

// Rows first .. last (exclusive) of C times beta.
template <class T>
inline void scale_rows(bool row_major, Index first, Index last, T beta, const Operands<T>& o)
{
    if (last <= first) return;
    if (row_major)
        for (Index i = first; i < last; ++i) scale(o.sides, beta, o.c + i * o.c_row);
    else
        for (Index j = 0; j < o.sides; ++j) scale(last - first, beta, o.c + j * o.c_side + first);
}

} // namespace ork::spblas
