// SPDX-License-Identifier: MIT
// From any format to compressed rows or columns, by counting: how many entries each line gets, where they begin, and
// then each entry in the order of A to the next place of its line.
#pragma once

#include "sparse/copy.h"
#include "sparse/row_sort.h"

namespace ork::sparse {

// visit(row, column, position of the value in numbers), counted from 0.
template <class Int, class Visit>
void for_each_number(const Matrix& a, Visit visit)
{
    const Int base = static_cast<Int>(a.base);
    const Int* const index = index_of<Int>(a);
    if (a.format == Format::coo) {
        const Int* const rows = majors_of<Int>(a);
        for (std::int64_t k = 0; k < a.entries; ++k)
            visit(static_cast<Int>(rows[k] - base), static_cast<Int>(index[k] - base), k);
        return;
    }
    const Int b = static_cast<Int>(a.block);
    for (std::int64_t i = 0; i < lines_of(a); ++i) {
        const auto range = line<Int>(a, i);
        const Int at = static_cast<Int>(i);
        for (std::int64_t k = range.first; k < range.last; ++k) {
            const Int other = static_cast<Int>(index[k] - base);
            if (a.format == Format::csr)
                visit(at, other, k);
            else if (a.format == Format::csc)
                visit(other, at, k);
            else
                for (Int r = 0; r < b; ++r)
                    for (Int c = 0; c < b; ++c)
                        visit(static_cast<Int>(at * b + r), static_cast<Int>(other * b + c),
                              (k * b + (a.layout == 0 ? r : c)) * b + (a.layout == 0 ? c : r));
        }
    }
}

// Numbers as bytes; they may alias, since the same memory is conjugated as real numbers.
struct [[gnu::may_alias]] Number4 {
    std::uint32_t bits;
};
struct [[gnu::may_alias]] Number8 {
    std::uint64_t bits;
};
struct [[gnu::may_alias]] Number16 {
    std::uint64_t bits[2];
};

template <class Int, class Number>
void scatter(const Matrix& a, Matrix& c, bool by_columns_of_a)
{
    const Int base = static_cast<Int>(c.base);
    // first[i] is the next place of line i; afterwards each is the begin of the line behind it, and they move up by
    // one.
    Int *const next = static_cast<Int*>(c.first), *const index = index_of<Int>(c);
    const Number* const from = static_cast<const Number*>(a.values);
    Number* const to = static_cast<Number*>(c.values);
    for_each_number<Int>(a, [&](Int row, Int column, std::int64_t position) {
        const Int place = static_cast<Int>(next[by_columns_of_a ? column : row]++ - base);
        index[place] = static_cast<Int>((by_columns_of_a ? row : column) + base);
        to[place] = from[position];
    });
    const std::int64_t lines = lines_of(c);
    std::memmove(next + 1, next, static_cast<std::size_t>(lines) * sizeof(Int));
    next[0] = base;
}

template <class Int>
Matrix* gather_lines(const Matrix& a, const Shape& shape, bool by_columns_of_a)
{
    Matrix* const c = new_matrix<Int>(a, shape);
    if (c == nullptr) return nullptr;
    const std::int64_t lines = lines_of(*c);
    Int* const first = static_cast<Int*>(c->first);
    std::memset(first, 0, static_cast<std::size_t>(lines + 1) * sizeof(Int));
    for_each_number<Int>(a, [&](Int row, Int column, std::int64_t) { ++first[by_columns_of_a ? column : row]; });
    Int sum = static_cast<Int>(c->base);
    for (std::int64_t i = 0; i <= lines; ++i) {
        const Int count = first[i];
        first[i] = sum;
        sum = static_cast<Int>(sum + count);
    }
    switch (number_bytes(a.precision)) {
    case 4:
        scatter<Int, Number4>(a, *c, by_columns_of_a);
        break;
    case 8:
        scatter<Int, Number8>(a, *c, by_columns_of_a);
        break;
    default:
        scatter<Int, Number16>(a, *c, by_columns_of_a);
    }
    return c;
}

template <class Int>
constexpr std::int64_t most = sizeof(Int) == 4 ? INT32_MAX : INT64_MAX;

inline bool transposes(int op) { return op == 1 || op == 2; }
inline bool conjugates(int op) { return op >= 2; }

// As HandleCalls::convert_csr has it.
template <class Int>
int convert_lines(const Matrix& a, int op, bool by_columns, Matrix** result)
{
    const bool by_columns_of_a = by_columns != transposes(op);
    const std::int64_t rows = a.rows * a.block, cols = a.cols * a.block;
    std::int64_t entries;
    if (__builtin_mul_overflow(a.entries, a.block * a.block, &entries) || entries > most<Int> - 1)
        return record_too_large;
    const Shape shape = {by_columns ? Format::csc : Format::csr,
                         transposes(op) ? cols : rows,
                         transposes(op) ? rows : cols,
                         1,
                         entries,
                         0};
    Matrix* c;
    if (a.format == (by_columns_of_a ? Format::csc : Format::csr)) {
        c = copy_lines<Int>(a);
        if (c == nullptr) return record_no_memory;
        c->format = shape.format, c->rows = shape.rows, c->cols = shape.cols;
    } else {
        c = gather_lines<Int>(a, shape, by_columns_of_a);
        if (c == nullptr) return record_no_memory;
        if (sort_rows<Int>(*c) != record_done) {
            release_record(c);
            return record_no_memory;
        }
    }
    if (conjugates(op)) conjugate(a.precision, c->values, entries);
    *result = c;
    return record_done;
}

} // namespace ork::sparse
