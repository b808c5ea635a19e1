// SPDX-License-Identifier: MIT
// y = alpha A x + beta y for a symmetric, Hermitian or skew matrix of which one triangle is read.
#pragma once

#include "simd/scale.h"
#include "spblas/form.h"
#include "spblas/row_dot.h"

namespace ork::spblas {

// Each row adds its own sum and scatters the mirrored entries. Entries of the other triangle are ignored; a skew matrix
// has a diagonal of zeros, whatever is stored.
template <Rule r, bool far, class Int, class T>
[[gnu::noinline]] void symmetric_rows(Rows rows, T alpha, Csr<Int, T> a, const T* x, T* y, std::int64_t base)
{
    const T* const xb = counted_from(base, x);
    T* const yb = counted_from(base, y);
    for (std::int64_t i = rows.first; i < rows.last; ++i) {
        const std::int64_t row = i + base;
        const T xi = x[i], scaled = xi * alpha;
        T s{};
        std::int64_t k = a.first(i);
        if constexpr (far) fetch_entries(a, k);
        for (const std::int64_t end = a.last(i); k < end; ++k) {
            const std::int64_t column = a.indx[k];
            if (in_triangle<r>(row, column)) {
                s = s + direct<r>(a.val[k]) * xb[column];
                yb[column] = yb[column] + scaled * mirrored<r>(a.val[k]);
            } else if (r.type != 'a' && column == row) {
                s = s + direct<r>(a.val[k]) * xi;
            }
        }
        y[i] = s * alpha + y[i];
    }
}

// Scales the whole of y, m elements, in every call.
template <Rule r, class Int, class T>
[[gnu::noipa]] void symmetric_product(const Int* first, const Int* last, Form form, const Int* m, const T* alpha,
                                      const T* val, const Int* indx, const Int* pntrb, const Int* pntre, const T* x,
                                      T* y, const T* beta)
{
    scale(*m, *beta, y);
    const Csr<Int, T> a{val, indx, pntrb, pntre};
    const T factor = form.negate ? Real<T>(-1) * *alpha : *alpha;
    const Rows rows{std::int64_t{*first} - 1, *last};
    if (is_complex<T> || is_far(a, rows))
        symmetric_rows<r, true>(rows, factor, a, x, y, form.base);
    else
        symmetric_rows<r, is_complex<T>>(rows, factor, a, x, y, form.base);
}

// The same with a diagonal of ones, whatever is stored: the product with the whole row comes first, as in the general
// kernel, and what doesn't belong to the triangle is then taken off again. So a NaN stored there spoils the row.
template <Rule r, class Int, class T>
[[gnu::noipa]] void unit_symmetric_product(const Int* first, const Int* last, Form form, const Int* m, const T* alpha,
                                           const T* val, const Int* indx, const Int* pntrb, const Int* pntre,
                                           const T* x, T* y, const T* beta)
{
    scale(*m, *beta, y);
    const Csr<Int, T> a{val, indx, pntrb, pntre};
    const std::int64_t base = form.base;
    const T* const xb = counted_from(base, x);
    T* const yb = counted_from(base, y);
    const Rows rows{std::int64_t{*first} - 1, *last};
    const bool far = is_far(a, rows);
    for (std::int64_t i = rows.first; i < rows.last; ++i) {
        const T scaled = *alpha * x[i];
        const std::int64_t begin = a.first(i), end = a.last(i);
        if (far) fetch_entries(a, begin);
        y[i] = y[i] + *alpha * (base == 0 ? row_dot<0, r.conjugate, false>(val + begin, indx + begin, end - begin, x)
                                          : row_dot<1, r.conjugate, false>(val + begin, indx + begin, end - begin, x));
        T extra{};
        for (std::int64_t k = begin; k < end; ++k) {
            const std::int64_t column = indx[k];
            if (in_triangle<r>(i + base, column))
                yb[column] = yb[column] + mirrored<r>(val[k]) * scaled;
            else
                extra = extra + (*alpha * direct<r>(val[k])) * xb[column];
        }
        y[i] = (y[i] - extra) + scaled;
    }
}

} // namespace ork::spblas
