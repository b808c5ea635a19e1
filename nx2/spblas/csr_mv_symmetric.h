// SPDX-License-Identifier: MIT
// y = alpha A x + beta y for a symmetric, Hermitian or skew matrix of which one triangle is read.
#pragma once

#include "spblas/row_dot.h"
#include "spblas/scale.h"

namespace ork::spblas {

// Scales the whole of y, m elements, in every call; then each row adds its own sum and scatters the mirrored entries.
// Entries of the other triangle are ignored; a skew matrix has a diagonal of zeros, whatever is stored.
template <Rule r, class Int, class T>
[[gnu::noinline]] void symmetric_product(const Int* first, const Int* last, Options options, const Int* m,
                                         const T* alpha, const T* val, const Int* indx, const Int* pntrb,
                                         const Int* pntre, const T* x, T* y, const T* beta)
{
    scale(*m, *beta, y);
    const Csr<Int, T> a{val, indx, pntrb, pntre};
    const T factor = options.negate ? Real<T>(-1) * *alpha : *alpha;
    const std::int64_t base = options.base;
    for (std::int64_t i = std::int64_t{*first} - 1; i < *last; ++i) {
        const T xi = x[i], scaled = xi * factor;
        T s{};
        fetch(val + a.first(i)), fetch(indx + a.first(i));
        for (std::int64_t k = a.first(i), end = a.last(i); k < end; ++k) {
            const std::int64_t j = indx[k] - base;
            if (in_triangle<r>(i, j)) {
                s = s + direct<r>(val[k]) * x[j];
                y[j] = y[j] + scaled * mirrored<r>(val[k]);
            } else if (r.type != 'a' && j == i) {
                s = s + direct<r>(val[k]) * xi;
            }
        }
        y[i] = s * factor + y[i];
    }
}

// The same with a diagonal of ones, whatever is stored: the product with the whole row comes first, as in the general
// kernel, and what doesn't belong to the triangle is then taken off again. So a NaN stored there spoils the row.
template <Rule r, class Int, class T>
[[gnu::noinline]] void unit_symmetric_product(const Int* first, const Int* last, Options options, const Int* m,
                                              const T* alpha, const T* val, const Int* indx, const Int* pntrb,
                                              const Int* pntre, const T* x, T* y, const T* beta)
{
    scale(*m, *beta, y);
    const Csr<Int, T> a{val, indx, pntrb, pntre};
    const std::int64_t base = options.base;
    for (std::int64_t i = std::int64_t{*first} - 1; i < *last; ++i) {
        const T scaled = *alpha * x[i];
        const std::int64_t begin = a.first(i), end = a.last(i);
        // Positions count from the base here: x[column - base].
        y[i] = y[i] + *alpha * (base == 0 ? row_dot<0, r.conjugate, false>(val + begin, indx + begin, end - begin, x)
                                          : row_dot<1, r.conjugate, false>(val + begin, indx + begin, end - begin, x));
        T extra{};
        for (std::int64_t k = begin; k < end; ++k) {
            const std::int64_t j = indx[k] - base;
            if (in_triangle<r>(i, j))
                y[j] = y[j] + mirrored<r>(val[k]) * scaled;
            else
                extra = extra + (*alpha * direct<r>(val[k])) * x[j];
        }
        y[i] = (y[i] - extra) + scaled;
    }
}

} // namespace ork::spblas
