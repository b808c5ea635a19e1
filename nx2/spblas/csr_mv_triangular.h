// SPDX-License-Identifier: MIT
// y = alpha op(A) x + beta y for a triangular or diagonal matrix. What is stored outside the triangle, and with a unit
// diagonal on it, is ignored.
#pragma once

#include "simd/scale.h"
#include "spblas/csr.h"
#include "spblas/csr_mv.h"
#include "spblas/form.h"
#include "spblas/rule.h"

namespace ork::spblas {

// Writes y of the rows and nothing else.
template <Rule r, class Int, class T>
[[gnu::noipa]] void triangular_product(const Int* first, const Int* last, Form form, const Int*, const T* alpha,
                                       const T* val, const Int* indx, const Int* pntrb, const Int* pntre, const T* x,
                                       T* y, const T* beta)
{
    const Csr<Int, T> a{val, indx, pntrb, pntre};
    const std::int64_t base = form.base;
    const Rows rows{std::int64_t{*first} - 1, *last};
    const bool far = is_far(a, rows);
    for (std::int64_t i = rows.first; i < rows.last; ++i) {
        T s = r.unit ? x[i] : T{};
        if (far) fetch_entries(a, a.first(i));
        for (std::int64_t k = a.first(i), end = a.last(i); k < end; ++k) {
            const std::int64_t j = indx[k] - base;
            if (in_triangle<r>(i, j) || (!r.unit && j == i)) s = s + direct<r>(val[k]) * x[j];
        }
        put_row(y[i], s, *alpha, *beta, *beta == T{});
    }
}

template <Rule r, class Int, class T>
[[gnu::noipa]] void triangular_transposed(const Int* size, Form form, const T* alpha, const T* val, const Int* indx,
                                          const Int* pntrb, const Int* pntre, const T* x, T* y, const T* beta)
{
    scale(*size, *beta, y);
    const Csr<Int, T> a{val, indx, pntrb, pntre};
    const std::int64_t base = form.base, m = *size;
    const bool far = is_far(a, Rows{0, m});
    for (std::int64_t i = 0; i < m; ++i) {
        const T t = *alpha * x[i];
        if (far) fetch_entries(a, a.first(i));
        for (std::int64_t k = a.first(i), end = a.last(i); k < end; ++k) {
            const std::int64_t j = indx[k] - base;
            if (in_triangle<r>(i, j) || (!r.unit && j == i)) y[j] = y[j] + direct<r>(val[k]) * t;
        }
        if constexpr (r.unit) y[i] = y[i] + t;
    }
}

// Only entries on the diagonal count.
template <Rule r, class Int, class T>
[[gnu::noipa]] void diagonal_product(const Int* size, Form form, const T* alpha, const T* val, const Int* indx,
                                     const Int* pntrb, const Int* pntre, const T* x, T* y, const T* beta)
{
    const Csr<Int, T> a{val, indx, pntrb, pntre};
    const std::int64_t base = form.base, m = *size;
    for (std::int64_t i = 0; i < m; ++i) {
        T d = r.unit ? T(1) : T{};
        if constexpr (!r.unit)
            for (std::int64_t k = a.first(i), end = a.last(i); k < end; ++k)
                if (indx[k] - base == i) d = d + direct<r>(val[k]);
        put_row(y[i], d * x[i], *alpha, *beta, *beta == T{});
    }
}

} // namespace ork::spblas
