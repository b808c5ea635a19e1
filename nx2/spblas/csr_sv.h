// SPDX-License-Identifier: MIT
// y = op(A)^-1 y in place, for a triangular or diagonal matrix in compressed rows.
//
// Rows are trusted to be sorted by column. The diagonal is the entry at which the walk over the triangle's entries
// ends, whatever stands there: a row that is not sorted, or has no diagonal, gives a wrong result.
#pragma once

#include "blas/divide.h"
#include "spblas/csr.h"
#include "spblas/form.h"
#include "spblas/rule.h"

namespace ork::spblas {

// The entries of one row inside the triangle, from its far end towards the diagonal: `count` of them from `first` on,
// each `step` after the one before. The diagonal, where it counts, comes next.
template <Rule r, class Int, class T>
struct Walk {
    static constexpr int step = r.lower ? 1 : -1;
    std::int64_t first, count;

    Walk(const Csr<Int, T>& a, std::int64_t i, std::int64_t base)
    {
        const std::int64_t begin = a.first(i), end = a.last(i), row = i + base;
        first = r.lower ? begin : end - 1;
        count = end - begin;
        if (count <= 0) return;
        // A matrix that holds nothing but the triangle ends on the diagonal.
        const std::int64_t nearest = first + (count - 1) * step;
        if (a.indx[nearest] == row) {
            do // more than once only where ones are taken for it
                --count;
            while (count > 0 && a.indx[first + (count - 1) * step] == row);
        } else if (!in_triangle<r>(row, std::int64_t{a.indx[nearest]})) {
            count = 0;
            while (in_triangle<r>(row, std::int64_t{a.indx[first + count * step]})) ++count;
        }
    }
};

// By rows: a lower triangle from the first row on, an upper one from the last row up. The result of the row before
// stays in a register: from memory it would come five cycles later, and every row waits for it.
template <Rule r, class Int, class T>
[[gnu::noipa]] void triangular_solve(const Int* size, Form form, const T* val, const Int* indx, const Int* pntrb,
                                     const Int* pntre, T* y)
{
    const Csr<Int, T> a{val, indx, pntrb, pntre};
    const std::int64_t base = form.base, m = *size;
    const T* const yb = counted_from(base, y);
    T before{};
    for (std::int64_t solved = 0; solved < m; ++solved) {
        const std::int64_t i = r.lower ? solved : m - 1 - solved;
        const Walk<r, Int, T> walk(a, i, base);
        constexpr int step = walk.step;
        const std::int64_t past = walk.first + walk.count * step;
        std::int64_t k = walk.first;
        T s{};
        if (walk.count > 0) {
            for (; k != past - step; k += step) s = s + direct<r>(val[k]) * yb[indx[k]];
            s = s + direct<r>(val[k]) * (indx[k] == i - step + base ? before : yb[indx[k]]);
        }
        const T rest = y[i] - s;
        before = r.unit ? rest : divided(rest, direct<r>(val[past]));
        y[i] = before;
    }
}

// By columns of the transposed triangle, which are the rows of A: in the opposite direction.
template <Rule r, class Int, class T>
[[gnu::noipa]] void transposed_solve(const Int* size, Form form, const T* val, const Int* indx, const Int* pntrb,
                                     const Int* pntre, T* y)
{
    const Csr<Int, T> a{val, indx, pntrb, pntre};
    const std::int64_t base = form.base, m = *size;
    T* const yb = counted_from(base, y);
    for (std::int64_t solved = 0; solved < m; ++solved) {
        const std::int64_t i = r.lower ? m - 1 - solved : solved;
        const Walk<r, Int, T> walk(a, i, base);
        constexpr int step = walk.step;
        const std::int64_t past = walk.first + walk.count * step;
        const T yi = r.unit ? y[i] : divided(y[i], direct<r>(val[past]));
        y[i] = yi;
        for (std::int64_t k = past; k != walk.first;) {
            k -= step;
            yb[indx[k]] = yb[indx[k]] - direct<r>(val[k]) * yi;
        }
    }
}

// The first entry of each row that stands on the diagonal.
template <Rule r, class Int, class T>
[[gnu::noipa]] void diagonal_solve(const Int* size, Form form, const T* val, const Int* indx, const Int* pntrb,
                                   const Int* pntre, T* y)
{
    const Csr<Int, T> a{val, indx, pntrb, pntre};
    const std::int64_t base = form.base, m = *size;
    for (std::int64_t i = 0; i < m; ++i) {
        std::int64_t k = a.first(i);
        while (indx[k] - base != i) ++k;
        y[i] = divided(y[i], direct<r>(val[k]));
    }
}

} // namespace ork::spblas
