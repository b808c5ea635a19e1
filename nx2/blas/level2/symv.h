// SPDX-License-Identifier: MIT
// y <- y + alpha A x with one triangle of a symmetric or Hermitian A stored, which is read once: column j gives t(j) =
// alpha x(j) times itself to the rows beside the diagonal and its product with x to y(j). Contiguous vectors.
//
// The order of additions. The columns go from left to right in groups of 4 (complex: 2). A group adds, in this order:
// to its own rows the products with the square on the diagonal, column after column; to every other row of the triangle
// t(j) a(i, j), column after column; and to y(j) alpha times its sums over those rows, taken in pieces: the rows that
// share a block of 128 with the group, and the others in chunks of 1000, from the top of the matrix (upper) or from the
// end of that block (lower). Upper: the chunks, the block, the square. Lower: the square, the block, the chunks. In a
// sum, registers go to one accumulator, what fills none to its lower lanes (single numbers: two, then one); then as in
// column_sums.h.
#pragma once

#include "blas/level2/column_sums.h"
#include "blas/level2/columns.h"

namespace ork::level2 {
namespace symmetric {

template <class T>
constexpr int group = is_complex<T> ? 2 : 4;

// Elements of the diagonal are real.
template <class T>
[[gnu::always_inline]] inline T times_diagonal(T t, T a)
{
    if constexpr (is_complex<T>)
        return {t.re * a.re, t.im * a.re};
    else
        return t * a;
}

// y(i) += t(j) a(i, j) for the rows of the group; `a` points to the square on the diagonal.
template <bool upper, int count, class T>
[[gnu::always_inline]] inline void square(const T* t, const T* a, Int lda, T* y)
{
    T sum[count];
#pragma GCC unroll 4
    for (int i = 0; i < count; ++i) sum[i] = get(y + i);
#pragma GCC unroll 4
    for (int j = 0; j < count; ++j)
#pragma GCC unroll 4
        for (int i = 0; i < count; ++i) {
            if (i == j)
                sum[i] = sum[i] + times_diagonal(t[j], get(a + j + j * lda));
            else if ((i < j) == upper)
                sum[i] = sum[i] + t[j] * get(a + i + j * lda);
            else
                sum[i] = sum[i] + t[j] * conjugate<true>(get(a + j + i * lda));
        }
    put_together(y, sum);
}

// Rows beside the square: y(i) += t(j) a(i, j), and own(j) += alpha sum of conj(a(i, j)) x(i).
template <bool aligned, bool far, int count, class T>
[[gnu::always_inline]] inline void piece(Int rows, Factor<T> alpha, const columns::Factors<T, count>& t, const T* a,
                                         Int lda, const T* x, T* y, T* own)
{
    constexpr int lanes = Vec<T>::lanes, pass = 2;
    if (rows <= 0) return;
    Reader<aligned, count, T> column(a, lda);
    sums::Sums<T> s[(count + lanes - 1) / lanes * lanes];
    const auto step = [&]<int width>(int i, Vec<T> with) __attribute__((always_inline))
    {
        Vec<T> v = load<width>(y + i);
#pragma GCC unroll 4
        for (int j = 0; j < count; ++j) {
            const T* element = column.at(j, i);
            if constexpr (width == lanes) {
                const Vec<T> c = load_column<aligned, width>(element);
                v = sum(v, t.factor[j] * c);
                s[j].add_in_place(c, with);
            } else {
                v = sum(v, t.factor[j] * load<width>(element));
                s[j].add_in_place(sums::load_few(element, width), with);
            }
        }
        store<width>(y + i, v);
    };
    const auto advance = [&](Int done) __attribute__((always_inline))
    {
        column.advance(done);
        x += done, y += done;
    };
    for (Int i = rows / (pass * lanes); i > 0; --i) {
        if constexpr (far) column.prefetch(ahead);
#pragma GCC unroll 2
        for (int r = 0; r < pass; ++r) step.template operator()<lanes>(r * lanes, load<lanes>(x + r * lanes));
        advance(pass * lanes);
    }
    if (rows & lanes) {
        step.template operator()<lanes>(0, load<lanes>(x));
        advance(lanes);
    }
    if constexpr (lanes == 4)
        if (rows & 2) {
            step.template operator()<2>(0, sums::load_few(x, 2));
            advance(2);
        }
    if constexpr (lanes > 1)
        if (rows & 1) step.template operator()<1>(0, sums::load_few(x, 1));
    sums::add_totals<true, count>(alpha, s, own);
}

// Groups of columns: body.operator()<count>(first) for all n, or for as many as fill groups and then one by one.
template <class T, class Body>
[[gnu::always_inline]] inline void each_group(Int n, Body&& body)
{
    Int j = 0;
    for (; j + group<T> <= n; j += group<T>) body.template operator()<group<T>>(j);
    if constexpr (group<T> == 4)
        if (n & 2) {
            body.template operator()<2>(j);
            j += 2;
        }
    if (n & 1) body.template operator()<1>(j);
}

// Triangle of at most `panel` columns.
template <bool upper, bool aligned, class T>
[[gnu::noinline]] void triangle(Int n, T alpha, const T* a, Int lda, const T* x, T* y)
{
    each_group<T>(
        n, [&]<int count>(Int j) __attribute__((always_inline)) {
            T t[count];
#pragma GCC unroll 4
            for (int l = 0; l < count; ++l) t[l] = alpha * get(x + j + l);
            const T* const columns = a + j * lda;
            const auto beside = [&](Int first, Int rows) __attribute__((always_inline))
            {
                piece<aligned, false, count, T>(rows, Factor<T>(alpha), columns::Factors<T, count>(t), columns + first,
                                                lda, x + first, y + first, y + j);
            };
            if constexpr (upper) beside(0, j);
            square<upper, count>(t, columns + j, lda, y + j);
            if constexpr (!upper) beside(j + count, n - j - count);
        });
}

// What the rectangle of m rows beside n columns of the diagonal adds to y beside the rows and to `own` beside the
// columns.
template <bool aligned, bool far, class T>
[[gnu::noinline]] void rectangle(Int m, Int n, T alpha, const T* a, Int lda, const T* x, T* y, const T* own_x, T* own)
{
    each_group<T>(
        n, [&]<int count>(Int j) __attribute__((always_inline)) {
            T t[count];
#pragma GCC unroll 4
            for (int l = 0; l < count; ++l) t[l] = alpha * get(own_x + j + l);
            const columns::Factors<T, count> factors(t);
            for (Int i = 0; i < m; i += chunk)
                piece<aligned, far, count, T>(m - i < chunk ? m - i : chunk, Factor<T>(alpha), factors, a + i + j * lda,
                                              lda, x + i, y + i, own + j);
        });
}

} // namespace symmetric
} // namespace ork::level2
