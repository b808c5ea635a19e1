// SPDX-License-Identifier: MIT
// Making and releasing the records behind handles. What knows no precision counts values in bytes.
#pragma once

#include <cstdint>
#include <cstring>

#include "frame/core_imports.h"
#include "ork/abi/sparse/handle.h"

namespace ork::sparse {

enum RecordStatus : int { record_done = 0, record_no_memory = 1, record_too_large = 2, record_no_place = 3 };

inline std::int64_t number_bytes(char precision) { return precision == 's' ? 4 : precision == 'z' ? 16 : 8; }
inline std::int64_t entry_bytes(const Matrix& a) { return number_bytes(a.precision) * a.block * a.block; }

// Rows or, of csc, columns; in blocks where there are blocks. Of coo the whole is one line.
inline std::int64_t lines_of(const Matrix& a)
{
    return a.format == Format::coo ? 1 : a.format == Format::csc ? a.cols : a.rows;
}

// The entries of a line, counted from the start of the arrays.
template <class Int>
struct Range {
    Int first, last;
};
template <class Int>
inline Range<Int> line(const Matrix& a, std::int64_t i)
{
    if (a.format == Format::coo) return {0, static_cast<Int>(a.entries)};
    const Int base = static_cast<Int>(a.base);
    return {static_cast<Int>(static_cast<const Int*>(a.first)[i] - base),
            static_cast<Int>(static_cast<const Int*>(a.last)[i] - base)};
}

template <class Int>
inline Int* index_of(const Matrix& a)
{
    return static_cast<Int*>(a.index);
}
inline char* value_at(const Matrix& a, std::int64_t position)
{
    return static_cast<char*>(a.values) + position * entry_bytes(a);
}

// Null when there is no memory, and for what no number of bytes can say.
inline void* new_array(std::int64_t count, std::int64_t bytes)
{
    std::int64_t all;
    if (__builtin_mul_overflow(count, bytes, &all)) return nullptr;
    return ork_serv_malloc(static_cast<std::size_t>(all), 64);
}

// With nothing in it but the environment; null when there is no memory.
inline Matrix* new_record(const Environment* environment, char precision, int index_bytes)
{
    auto* const a = static_cast<Matrix*>(ork_serv_malloc(sizeof(Matrix), 64));
    if (a == nullptr) return nullptr;
    *a = {};
    a->mark = Matrix::alive;
    a->precision = precision;
    a->index_bytes = static_cast<std::int8_t>(index_bytes);
    a->block = 1;
    a->wrong_row = a->wrong_position = -1;
    a->memory = static_cast<std::int8_t>(environment != nullptr ? environment->memory : 1);
    return a;
}

inline void release_arrays(Matrix& a)
{
    ork_serv_free(a.values);
    ork_serv_free(a.index);
    if (!a.one_pointer_array()) ork_serv_free(a.last);
    ork_serv_free(a.first);
}

inline void release_record(Matrix* a)
{
    if (a == nullptr) return;
    if (a->owns_arrays) release_arrays(*a);
    ork_serv_free(a->hints);
    a->mark = 0;
    ork_serv_free(a);
}

// A record of A's precision, width, base and memory policy with arrays of its own, of which only the pointers of an
// empty matrix are written. rows, cols and entries count blocks.
struct Shape {
    Format format;
    std::int64_t rows, cols, block, entries;
    int layout;
};
template <class Int>
inline Matrix* new_matrix(const Matrix& a, const Shape& shape)
{
    Matrix* const c = new_record(nullptr, a.precision, sizeof(Int));
    if (c == nullptr) return nullptr;
    c->base = a.base, c->memory = a.memory;
    c->format = shape.format, c->layout = static_cast<std::int8_t>(shape.layout);
    c->rows = shape.rows, c->cols = shape.cols, c->block = shape.block, c->entries = shape.entries;
    c->owns_arrays = 1;
    const bool coo = shape.format == Format::coo;
    const std::int64_t lines = lines_of(*c);
    c->values = new_array(shape.entries, entry_bytes(*c));
    c->index = new_array(shape.entries, sizeof(Int));
    c->first = new_array(coo ? shape.entries : lines + 1, sizeof(Int));
    if (c->values == nullptr || c->index == nullptr || c->first == nullptr) {
        release_record(c);
        return nullptr;
    }
    if (!coo) {
        c->last = static_cast<Int*>(c->first) + 1;
        static_cast<Int*>(c->first)[0] = static_cast<Int>(c->base);
    }
    return c;
}

template <class R>
inline void turn_imaginary(R* values, std::int64_t count)
{
    for (std::int64_t i = 1; i < 2 * count; i += 2) values[i] = -values[i];
}
// values[0 .. count), conjugated where they are complex.
inline void conjugate(char precision, void* values, std::int64_t count)
{
    if (precision == 'c') turn_imaginary(static_cast<float*>(values), count);
    if (precision == 'z') turn_imaginary(static_cast<double*>(values), count);
}

} // namespace ork::sparse
