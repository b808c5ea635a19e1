// SPDX-License-Identifier: MIT
// y = alpha A x + beta y and y = alpha A^T x + beta y for a general matrix in compressed rows.
//
// Bodies take the arguments of the exports as they stand, so that an export is a jump: noipa, as GCC would otherwise
// pass values for addresses.
#pragma once

#include "simd/scale.h"
#include "spblas/form.h"
#include "spblas/row_dot.h"

namespace ork::spblas {

// beta = 0 must not read y: it may hold NaN.
template <class T>
inline void put_row(T& y, T s, T alpha, T beta, bool beta_is_zero)
{
    y = beta_is_zero ? alpha * s : y * beta + s * alpha;
}

// Rows of `length` entries from row i on, as long as they come; returns the first that differs. In matrices of grids
// and meshes most rows are as long as the one before: the loop over a row's entries, and most of the mispredicted
// branches go (1.1 to 1.2 times the plain loop on grids of 5 and 7 points in the second-level cache).
template <int length, int base, bool far, bool beta_is_zero, class Int, class T>
[[gnu::always_inline]] inline std::int64_t equal_rows(std::int64_t i, std::int64_t last, const Csr<Int, T>& a,
                                                      const T* x, T* y, T alpha, T beta)
{
    do {
        const std::int64_t k = a.first(i);
        if constexpr (far) {
            fetch_entries(a, k);
            fetch(y + i), fetch(a.pntrb + i);
        }
        put_row(y[i], short_row_dot<base, length>(a.val + k, a.indx + k, x), alpha, beta, beta_is_zero);
        ++i;
    } while (i < last && a.last(i) - a.first(i) == length);
    return i;
}

// The same for rows of any length but those that equal_rows() serves.
template <int base, bool far, bool beta_is_zero, class Int, class T>
[[gnu::always_inline]] inline std::int64_t other_rows(std::int64_t i, std::int64_t last, const Csr<Int, T>& a,
                                                      const T* x, T* y, T alpha, T beta)
{
    std::int64_t length = a.last(i) - a.first(i);
    do {
        const std::int64_t k = a.first(i);
        put_row(y[i], row_dot<base, false, far>(a.val + k, a.indx + k, length, x), alpha, beta, beta_is_zero);
        if (++i == last) break;
        length = a.last(i) - a.first(i);
    } while (length < 4 || length > 7);
    return i;
}

template <int base, bool far, bool beta_is_zero, class Int, class T>
[[gnu::noinline]] void real_rows(Rows rows, T alpha, Csr<Int, T> a, const T* x, T* y, T beta)
{
    std::int64_t i = rows.first;
    while (i < rows.last) {
        const std::int64_t length = a.last(i) - a.first(i);
        if (length == 5)
            i = equal_rows<5, base, far, beta_is_zero>(i, rows.last, a, x, y, alpha, beta);
        else if (length == 7)
            i = equal_rows<7, base, far, beta_is_zero>(i, rows.last, a, x, y, alpha, beta);
        else if (length == 4)
            i = equal_rows<4, base, far, beta_is_zero>(i, rows.last, a, x, y, alpha, beta);
        else if (length == 6)
            i = equal_rows<6, base, far, beta_is_zero>(i, rows.last, a, x, y, alpha, beta);
        else
            i = other_rows<base, far, beta_is_zero>(i, rows.last, a, x, y, alpha, beta);
    }
}

// Writes y of the rows and nothing else, so threads may share y.
template <Rule r, class Int, class T>
[[gnu::noipa]] void general_product(const Int* first, const Int* last, Form, const Int*, const T* alpha, const T* val,
                                    const Int* indx, const Int* pntrb, const Int* pntre, const T* x, T* y,
                                    const T* beta)
{
    const Rows rows{std::int64_t{*first} - 1, *last};
    if (rows.last <= rows.first) return;
    const Csr<Int, T> a{val, indx, pntrb, pntre};
    if constexpr (is_complex<T>) {
        for (std::int64_t i = rows.first; i < rows.last; ++i) {
            const std::int64_t k = a.first(i);
            const T s = row_dot<r.base, r.conjugate, true>(val + k, indx + k, a.last(i) - k, x);
            put_row(y[i], s, *alpha, *beta, *beta == T{});
        }
    } else if (is_far(a, rows)) {
        (*beta == 0 ? real_rows<r.base, true, true, Int, T> : real_rows<r.base, true, false, Int, T>)(rows, *alpha, a,
                                                                                                      x, y, *beta);
    } else {
        (*beta == 0 ? real_rows<r.base, false, true, Int, T> : real_rows<r.base, false, false, Int, T>)(rows, *alpha, a,
                                                                                                        x, y, *beta);
    }
}

// y[column] += val t for the entries of one row, in their order: equal columns must see each other.
template <int unroll, bool conjugate, class Int, class T>
void scatter_rows(Rows rows, T alpha, Csr<Int, T> a, const T* x, T* y, std::int64_t base)
{
    T* const yb = counted_from(base, y);
    const bool far = is_far(a, rows);
    for (std::int64_t i = rows.first; i < rows.last; ++i) {
        std::int64_t k = a.first(i);
        const std::int64_t end = a.last(i);
        const T t = alpha * x[i];
        if (far) fetch_entries(a, k);
        for (; k + unroll <= end; k += unroll)
#pragma GCC unroll 4
            for (int j = 0; j < unroll; ++j) {
                T& element = yb[a.indx[k + j]];
                element = element + conjugate_if<conjugate>(a.val[k + j]) * t;
            }
        for (; k < end; ++k) yb[a.indx[k]] = yb[a.indx[k]] + conjugate_if<conjugate>(a.val[k]) * t;
    }
}

// Scales the whole of y, m elements, in every call; then row by row into all of y.
template <Rule r, class Int, class T>
[[gnu::noipa]] void general_transposed(const Int* first, const Int* last, Form form, const Int* m, const T* alpha,
                                       const T* val, const Int* indx, const Int* pntrb, const Int* pntre, const T* x,
                                       T* y, const T* beta)
{
    scale(*m, *beta, y);
    const Rows rows{std::int64_t{*first} - 1, *last};
    if (rows.last <= rows.first) return;
    const Csr<Int, T> a{val, indx, pntrb, pntre};
    const double entries = static_cast<double>(a.last(rows.last - 1) - a.first(rows.first));
    const double mean = entries / static_cast<double>(rows.last - rows.first);
    if (mean >= 30)
        scatter_rows<4, r.conjugate>(rows, *alpha, a, x, y, form.base);
    else if (mean >= 6)
        scatter_rows<2, r.conjugate>(rows, *alpha, a, x, y, form.base);
    else
        scatter_rows<1, r.conjugate>(rows, *alpha, a, x, y, form.base);
}

// y = A x of the three-array form, 1-based. Groups of four products, ((p0 + p1) + p2) + p3, are added to the sum one
// after the other; the last one to three are a group too.
template <class Int, class T>
void gemv_rows(Rows rows, const T* val, const Int* indx, const Int* ia, const T* x, T* y)
{
    for (std::int64_t i = rows.first; i < rows.last; ++i) {
        std::int64_t k = std::int64_t{ia[i]} - ia[0];
        const std::int64_t end = std::int64_t{ia[i + 1]} - ia[0];
        const auto product = [&](std::int64_t j) { return val[j] * x[std::int64_t{indx[j]} - 1]; };
        T s{};
        for (; k + 4 <= end; k += 4) s = s + (((product(k) + product(k + 1)) + product(k + 2)) + product(k + 3));
        if (k < end) {
            T group = product(k++);
            for (; k < end; ++k) group = group + product(k);
            s = s + group;
        }
        y[i] = s;
    }
}

} // namespace ork::spblas
