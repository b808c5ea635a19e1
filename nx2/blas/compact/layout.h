// SPDX-License-Identifier: MIT
// The compact layout of many small matrices of one size: packs of w matrices, in which element (i, j) of all of them
// stands in w adjacent places, so that a register holds the same element of several matrices. A complex element is w
// real parts, then w imaginary ones. Packs follow each other.
#pragma once

#include <cstdint>

#include "simd/complex.h"

namespace ork::compact {

using Int = std::int64_t;

constexpr Int by_rows = 101, by_columns = 102;

// Bytes of one part of an element in a pack; 0 for a format that does not exist.
constexpr Int pack_bytes(Int format) { return format == 181 ? 16 : format == 182 ? 32 : format == 183 ? 64 : 0; }

// A matrix of one pack as registers: element (i, j) starts at data + i row_stride + j column_stride (in real numbers),
// its imaginary parts `imaginary` behind it.
template <class R>
struct Matrix {
    R* data;
    Int row_stride, column_stride, imaginary;

    R* at(Int i, Int j) const { return data + i * row_stride + j * column_stride; }
    // What begins at element (i, j).
    Matrix from(Int i, Int j) const { return {at(i, j), row_stride, column_stride, imaginary}; }
    Matrix transposed() const { return {data, column_stride, row_stride, imaginary}; }
    operator Matrix<const R>() const requires(!std::is_const_v<R>)
    {
        return {data, row_stride, column_stride, imaginary};
    }
};

// The matrices of all packs. `columns` and `ld` are those of the array, before any transposition.
template <class T, class R>
struct Packs {
    R* data;
    Int ld, lines, width; // lines: columns of the array (rows when it is stored by rows); width: w

    static constexpr Int parts = is_complex<T> ? 2 : 1;
    Int pack_size() const { return ld * lines * width * parts; }

    // Pack `pack` from register `lane` on; transposed exchanges the strides.
    Matrix<R> matrix(Int pack, Int lane, bool along_rows) const
    {
        const Int element = width * parts;
        return {data + pack * pack_size() + lane, along_rows ? ld * element : element,
                along_rows ? element : ld * element, width};
    }
};

} // namespace ork::compact
