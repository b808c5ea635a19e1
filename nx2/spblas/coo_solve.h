// SPDX-License-Identifier: MIT
// C = op(A)^-1 C for a triangular or diagonal matrix of single entries that are sorted by row and then by column.
#pragma once

#include "spblas/coo.h"

namespace ork::spblas {

// Row by row, `step` 1 from the first or -1 from the last. Not transposed, a row's unknowns are known but its own, and
// the diagonal comes last; transposed, the diagonal comes first, and the row's entries take its unknown out of the rows
// that follow. Rows may have no entry but the diagonal, or none at all where that is taken as one.
template <class Group, class Int, class T>
[[gnu::noinline]] void coo_solve(Terms terms, Index size, const Coo<Int, T>& a, const Operands<T>& o)
{
    const Conjugation<T> conjugated(terms.conjugate());
    const bool lower = terms.lower(), direct = terms.direct(), off_diagonal = direct || terms.mirrored();
    const bool forward = terms.forward() || !off_diagonal;
    const Index step = forward ? 1 : -1, end = forward ? a.nnz : -1;
    const auto c = [&](Int i) { return o.c + Group::at(static_cast<Index>(i) - terms.base(), o.c_row); };

    Index k = forward ? 0 : a.nnz - 1;
    for (Index i = 0; i < size; ++i) {
        const Int row = static_cast<Int>((forward ? i : size - 1 - i) + terms.base());
        Group x = Group::load(c(row), o.c_side);
        for (; k != end && a.row[k] == row; k += step) {
            const Int column = a.column[k];
            if (column == row) {
                if (!terms.unit()) x.divide(conjugated(a.val[k]));
            } else if (off_diagonal && (column < row) == lower) {
                const T minus = T{} - conjugated(a.val[k]);
                Group other = Group::load(c(column), o.c_side);
                if (direct) {
                    x.add(minus, other);
                } else {
                    other.add(minus, x);
                    other.store(c(column), o.c_side);
                }
            }
        }
        x.store(c(row), o.c_side);
    }
}

template <class Int, class T>
[[gnu::noinline]] void coo_solve(Terms terms, Index size, const Coo<Int, T>& a, Operands<T> o)
{
    for_groups(terms.row_major(), o,
               [&]<class Group>(Group, const Operands<T>& part) { coo_solve<Group>(terms, size, a, part); });
}

} // namespace ork::spblas
