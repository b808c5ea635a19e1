// SPDX-License-Identifier: MIT
// Looking at the structure of a record: what is wrong, and in what order its entries stand.
#include "sparse/handle/exports.h"
#include "sparse/row_sort.h"

namespace ork::sparse {
namespace {

using Rule = Fault::Rule;
using Array = Fault::Array;

int found(Matrix* a, Fault* fault, const Fault& f)
{
    *fault = f;
    a->wrong_row = f.row, a->wrong_position = f.position;
    return 1;
}

int right(Matrix* a, std::int64_t entries, bool ascending, bool distinct)
{
    a->entries = entries;
    a->wrong_row = a->wrong_position = -1;
    a->sorted = ascending, a->distinct = ascending && distinct;
    return 0;
}

// Any of values[0 .. count) that is not base .. base + limit - 1: the first of them, or count.
Int first_outside(const Int* values, Int count, Int base, Int limit)
{
    using U = std::make_unsigned_t<Int>;
    for (Int k = 0; k < count; ++k)
        if (static_cast<U>(values[k]) - static_cast<U>(base) >= static_cast<U>(limit)) return k;
    return count;
}

struct Look {
    bool inside, ascending, distinct;
};
// The same and the order at once, without branches: creation reads the indices once.
Look look_at(const Int* values, Int count, Int base, Int limit)
{
    using U = std::make_unsigned_t<Int>;
    Look look = {true, true, true};
    Int previous = static_cast<Int>(base - 1);
    for (Int k = 0; k < count; ++k) {
        const Int value = values[k];
        look.inside &= static_cast<U>(value) - static_cast<U>(base) < static_cast<U>(limit);
        look.ascending &= previous <= value;
        look.distinct &= previous != value;
        previous = value;
    }
    return look;
}

int look_at_lines(Matrix* a, Fault* fault)
{
    const Int *const first = static_cast<const Int*>(a->first), *const last = static_cast<const Int*>(a->last),
                     *const index = index_of<Int>(*a);
    const Int base = static_cast<Int>(a->base);
    const Int limit = static_cast<Int>(a->format == Format::csc ? a->rows : a->cols);
    std::int64_t entries = 0;
    bool ascending = true, distinct = true;
    Int end = base;
    for (std::int64_t i = 0; i < lines_of(*a); ++i) {
        const std::int64_t row = i + base;
        if (first[i] < base)
            return found(a, fault, {Rule::below_base, Array::first, row, i, first[i], base, INT64_MAX});
        if (first[i] < end) return found(a, fault, {Rule::overlap, Array::first, row, i, first[i], end, INT64_MAX});
        if (last[i] < first[i])
            return found(a, fault, {Rule::backwards, Array::last, row, i, last[i], first[i], INT64_MAX});
        end = last[i];
        const Int count = static_cast<Int>(last[i] - first[i]);
        entries += count;
        if (index == nullptr) continue;
        const Int start = static_cast<Int>(first[i] - base);
        const Look look = look_at(index + start, count, base, limit);
        if (!look.inside) {
            const Int k = first_outside(index + start, count, base, limit);
            return found(a, fault,
                         {Rule::outside, Array::index, row, std::int64_t{start} + k, index[start + k], base,
                          std::int64_t{base} + limit - 1});
        }
        ascending &= look.ascending;
        distinct &= look.distinct;
    }
    return right(a, entries, ascending, distinct);
}

int look_at_places(Matrix* a, Fault* fault)
{
    const Int *const rows = majors_of<Int>(*a), *const columns = index_of<Int>(*a);
    const Int base = static_cast<Int>(a->base), count = static_cast<Int>(a->entries);
    const Int row = first_outside(rows, count, base, static_cast<Int>(a->rows));
    const Int column = first_outside(columns, count, base, static_cast<Int>(a->cols));
    if (row < count && row <= column)
        return found(a, fault, {Rule::outside, Array::first, -1, row, rows[row], base, base + a->rows - 1});
    if (column < count)
        return found(a, fault,
                     {Rule::outside, Array::index, rows[column], column, columns[column], base, base + a->cols - 1});
    const Order order = order_of(*a, line<Int>(*a, 0));
    return right(a, a->entries, order.ascending, order.distinct);
}

} // namespace

ORK_SPARSE_HANDLE_EXPORT(HandleCalls, int, get_error_info)(Matrix* a, Fault* fault)
{
    *fault = {};
    return a->format == Format::coo ? look_at_places(a, fault) : look_at_lines(a, fault);
}

ORK_SPARSE_HANDLE_EXPORT(HandleCalls, int, optimize)(Matrix* a, int borrowed_too)
{
    return a->owns_arrays || borrowed_too ? sort_rows<Int>(*a) : 0;
}

} // namespace ork::sparse
