// SPDX-License-Identifier: MIT
// y = op(A)^-1 y in place, for a triangular or diagonal matrix in compressed rows.
//
// Rows are trusted to be sorted by column. The diagonal is the entry at which the walk over the triangle's entries
// ends, whatever stands there: a row that is not sorted, or has no diagonal, gives a wrong result.
#pragma once

#include "blas/divide.h"
#include "spblas/csr.h"
#include "spblas/rule.h"

namespace ork::spblas {

// By rows: a lower triangle from the first row on, an upper one from the last row up, each row from its far end towards
// the diagonal.
template <Rule r, class Int, class T>
[[gnu::noinline]] void triangular_solve(const Int* size, Options options, const T* val, const Int* indx,
                                        const Int* pntrb, const Int* pntre, T* y)
{
    const Csr<Int, T> a{val, indx, pntrb, pntre};
    const std::int64_t base = options.base, m = *size;
    constexpr int step = r.lower ? 1 : -1;
    for (std::int64_t count = 0; count < m; ++count) {
        const std::int64_t i = r.lower ? count : m - 1 - count;
        const std::int64_t begin = a.first(i), end = a.last(i), past = r.lower ? end : begin - 1;
        std::int64_t k = r.lower ? begin : end - 1;
        T s{};
        for (; k != past; k += step) {
            const std::int64_t j = indx[k] - base;
            if (!in_triangle<r>(i, j)) break;
            s = s + direct<r>(val[k]) * y[j];
        }
        const T rest = y[i] - s;
        y[i] = r.unit ? rest : divided(rest, direct<r>(val[k]));
    }
}

// By columns of the transposed triangle, which are the rows of A: in the opposite direction.
template <Rule r, class Int, class T>
[[gnu::noinline]] void transposed_solve(const Int* size, Options options, const T* val, const Int* indx,
                                        const Int* pntrb, const Int* pntre, T* y)
{
    const Csr<Int, T> a{val, indx, pntrb, pntre};
    const std::int64_t base = options.base, m = *size;
    constexpr int step = r.lower ? 1 : -1;
    for (std::int64_t count = 0; count < m; ++count) {
        const std::int64_t i = r.lower ? m - 1 - count : count;
        const std::int64_t begin = a.first(i), end = a.last(i), past = r.lower ? end : begin - 1;
        const std::int64_t from = r.lower ? begin : end - 1;
        std::int64_t k = from;
        if constexpr (!r.unit) {
            while (k != past && in_triangle<r>(i, std::int64_t{indx[k] - base})) k += step;
            y[i] = divided(y[i], direct<r>(val[k]));
        }
        const T yi = y[i];
        for (std::int64_t l = from; l != (r.unit ? past : k); l += step) {
            const std::int64_t j = indx[l] - base;
            if (r.unit && !in_triangle<r>(i, j)) break;
            y[j] = y[j] - direct<r>(val[l]) * yi;
        }
    }
}

// The first entry of each row that stands on the diagonal.
template <Rule r, class Int, class T>
[[gnu::noinline]] void diagonal_solve(const Int* size, Options options, const T* val, const Int* indx, const Int* pntrb,
                                      const Int* pntre, T* y)
{
    const Csr<Int, T> a{val, indx, pntrb, pntre};
    const std::int64_t base = options.base, m = *size;
    for (std::int64_t i = 0; i < m; ++i) {
        std::int64_t k = a.first(i);
        while (indx[k] - base != i) ++k;
        y[i] = divided(y[i], direct<r>(val[k]));
    }
}

} // namespace ork::spblas
