// SPDX-License-Identifier: MIT
// C = op(A)^-1 C for a triangular or diagonal matrix of single entries that are sorted by row and then by column.
#pragma once

#include "spblas/coo.h"

namespace ork::spblas {

// Row by row, `step` 1 from the first or -1 from the last. Not transposed, a row's unknowns are known but its own, and
// the diagonal comes last; transposed, the diagonal comes first, and the row's entries take its unknown out of the rows
// that follow. Rows may have no entry but the diagonal, or none at all where that is taken as one.
// Constants where this is inlined with constants.
template <class Group, class Int, class T>
[[gnu::always_inline]] inline void coo_solve(Terms terms, bool lower, bool direct, Index size, const Coo<Int, T>& a,
                                             const Operands<T>& o)
{
    const Conjugation<T> conjugated(terms.conjugate());
    const bool off_diagonal = direct || terms.mirrored();
    const bool forward = terms.forward() || !off_diagonal;
    const Index step = forward ? 1 : -1, end = forward ? a.nnz : -1;
    T* const first = moved(o.c, -terms.base() * o.c_row);
    const auto c = [&](Index i) { return first + Group::at(i, o.c_row); };
    const Ahead ahead(forward, a.bytes(0, a.nnz));

    Index k = forward ? 0 : a.nnz - 1, row = terms.base() + (forward ? 0 : size - 1), row_before = row - step;
    Group before{}; // its result, at hand sooner than from memory
    for (Index left = size; left > 0; --left, row += step) {
        Group x = Group::load(c(row), o.c_side);
        const Index begin = k;
        for (; k != end && a.row[k] == row; k += step) {
            const Index column = a.column[k];
            const T value = conjugated(a.val[k]);
            if (column == row) {
                if (!terms.unit()) x.divide(value);
            } else if (off_diagonal && (column < row) == lower) {
                if (direct) {
                    x.subtract(value, column == row_before ? before : Group::load(c(column), o.c_side));
                } else {
                    Group other = Group::load(c(column), o.c_side);
                    other.subtract(value, x);
                    other.store(c(column), o.c_side);
                }
            }
        }
        if (ahead.bytes != 0)
            for (Index fetched = begin; (k - fetched) * step > 0; fetched += 8 * step) fetch(ahead, a, fetched);
        x.store(c(row), o.c_side);
        before = x;
        row_before = row;
    }
}

template <bool lower, bool direct, class Int, class T>
[[gnu::noinline]] void coo_solve_vector(Terms terms, Index size, const Coo<Int, T>& a, const Operands<T>& o)
{
    coo_solve<ColumnGroup<T, 1>>(terms, lower, direct, size, a, o);
}

template <class Group, class Int, class T>
[[gnu::noinline]] void coo_solve_group(Terms terms, Index size, const Coo<Int, T>& a, const Operands<T>& o)
{
    coo_solve<Group>(terms, terms.lower(), terms.direct(), size, a, o);
}

template <class Int, class T>
[[gnu::noinline]] void coo_solve(Terms terms, Index size, const Coo<Int, T>& a, T* y)
{
    const auto solve =
        terms.lower()    ? terms.direct() ? coo_solve_vector<true, true, Int, T> : coo_solve_vector<true, false, Int, T>
           : terms.direct() ? coo_solve_vector<false, true, Int, T>
                         : coo_solve_vector<false, false, Int, T>;
    solve(terms, size, a, {y, y});
}

template <class Int, class T>
[[gnu::noinline]] void coo_solve(Terms terms, Index size, const Coo<Int, T>& a, const Operands<T>& o)
{
    for_groups(terms.row_major(), o,
               [&]<class Group>(Group, const Operands<T>& part) { coo_solve_group<Group>(terms, size, a, part); });
}

} // namespace ork::spblas
