// SPDX-License-Identifier: MIT
// y <- y + alpha op(A) x for vectors of any increment.
//
// op(A) = A: y(i) <- (..((y(i) + t(0) a(i, 0)) + t(1) a(i, 1)) ..) with t(j) = alpha x(j) (columns.h).
// op(A) transposed: the rows are cut into chunks of 1000 from the top; for one after the other,
// y(j) <- y(j) + alpha (sum over the chunk) (column_sums.h).
// Neither depends on the increments, on addresses, or on what other rows (as it stands) or columns (transposed) are in
// the call.
#pragma once

#include "blas/level2/column_sums.h"
#include "blas/level2/columns.h"

namespace ork::level2 {

// t <- alpha x, at most `panel` elements
template <class T>
inline void scaled(Int n, T alpha, Strided<const T> x, T* t)
{
    constexpr int lanes = Vec<T>::lanes;
    const Factor<T> factor(alpha);
    Int i = 0;
    if (x.contiguous()) [[likely]] {
        for (; i + 4 * lanes <= n; i += 4 * lanes)
#pragma GCC unroll 4
            for (int j = 0; j < 4; ++j) store<lanes>(t + i + j * lanes, factor * load<lanes>(x.first + i + j * lanes));
        for (; i + lanes <= n; i += lanes) store<lanes>(t + i, factor * load<lanes>(x.first + i));
    }
    for (; i < n; ++i) store<1>(t + i, factor * load<1>(x.at(i)));
}
template <class T>
inline void scaled(Int n, One, Strided<const T> x, T* t)
{
    gather(n, x, t);
}
template <class T>
inline void scaled(Int n, MinusOne, Strided<const T> x, T* t)
{
    for (Int i = 0; i < n; ++i) t[i] = MinusOne() * get(x.at(i));
}

// op(A) = A, contiguous y
template <class Alpha, class T>
[[gnu::noinline]] void add_long_product(Loads loads, Int m, Int n, Alpha alpha, const T* a, Int lda, Strided<const T> x,
                                        T* y)
{
    constexpr Int most = 1 << 13; // rows of which y stays in the second level of cache
    Buffer<T, panel> factors;
    T* const t = factors.data();
    for (Int i = 0; i < m; i += most)
        for (Int j = 0; j < n; j += panel) {
            const Int rows = m - i < most ? m - i : most, columns = n - j < panel ? n - j : panel;
            scaled(columns, alpha, x.from(j), t);
            add_columns(loads, rows, columns, a + i + j * lda, lda, t, y + i);
        }
}

template <class Alpha, class T>
inline void add_product(Loads loads, Int m, Int n, Alpha alpha, const T* a, Int lda, Strided<const T> x, T* y)
{
    if (m <= columns::tile_rows<T>) return columns::few_rows(m, n, alpha, a, lda, x.first, x.inc, y);
    add_long_product(loads, m, n, alpha, a, lda, x, y);
}

// body(first, count, elements) for y in pieces of at most `size` elements, gathered and put back.
template <Int size, class T, class Body>
[[gnu::noinline]] void in_pieces(Int n, Strided<T> y, const Body& body)
{
    Buffer<T, size> gathered;
    for (Int i = 0; i < n; i += size) {
        const Int count = n - i < size ? n - i : size;
        gather<T>(count, y.from(i), gathered.data());
        body(i, count, gathered.data());
        scatter(count, gathered.data(), y.from(i));
    }
}

// y(i) takes every product in turn when its increment is 0.
template <class Alpha, class T>
[[gnu::noinline]] void add_product_to_one(Int m, Int n, Alpha alpha, const T* a, Int lda, Strided<const T> x, T* y)
{
    for (Int j = 0; j < n; ++j, a += lda) {
        T t;
        scaled(1, alpha, x.from(j), &t);
        for (Int i = 0; i < m; ++i) put(y, get(y) + t * get(a + i));
    }
}

// op(A) = A, any y
template <class Alpha, class T>
[[gnu::noinline]] void add_product(Loads loads, Int m, Int n, Alpha alpha, const T* a, Int lda, Strided<const T> x,
                                   Strided<T> y)
{
    if (y.contiguous()) return add_product(loads, m, n, alpha, a, lda, x, y.first);
    if (y.inc == 0) return add_product_to_one(m, n, alpha, a, lda, x, y.first);
    for (Int j = 0; j < n; j += panel)
        in_pieces<chunk>(m, y, [&](Int i, Int rows, T* part) {
            add_product(loads, rows, n - j < panel ? n - j : panel, alpha, a + i + j * lda, lda, x.from(j), part);
        });
}

// op(A) transposed, contiguous y
template <bool conjugated, class Alpha, class T>
[[gnu::noinline]] void add_transposed_in_chunks(Loads loads, Int m, Int n, Alpha alpha, const T* a, Int lda,
                                                Strided<const T> x, T* y)
{
    Buffer<T, chunk> gathered;
    for (Int i = 0; i < m; i += chunk) {
        const Int rows = m - i < chunk ? m - i : chunk;
        gather(rows, x.from(i), gathered.data());
        add_column_sums<conjugated>(loads, rows, n, alpha, a + i, lda, gathered.data(), y);
    }
}

template <bool conjugated, class Alpha, class T>
[[gnu::noinline]] void add_transposed(Loads loads, Int m, Int n, Alpha alpha, const T* a, Int lda, Strided<const T> x,
                                      Strided<T> y)
{
    const auto columns = [&](Int j, Int count, T* part) {
        if (x.contiguous())
            add_column_sums<conjugated>(loads, m, count, alpha, a + j * lda, lda, x.first, part);
        else
            add_transposed_in_chunks<conjugated>(loads, m, count, alpha, a + j * lda, lda, x, part);
    };
    if (y.contiguous()) return columns(0, n, y.first);
    if (y.inc != 0) return in_pieces<panel>(n, y, columns);
    for (Int j = 0; j < n; ++j) columns(j, 1, y.first);
}

} // namespace ork::level2
