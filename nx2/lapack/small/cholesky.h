// SPDX-License-Identifier: MIT
// Cholesky of a small matrix, A = L L^H, four columns at a time: the square on the diagonal, then the rows below it, a
// few registers of them at once. Entries lose their products in the order of the columns; the squares of a diagonal
// entry are added up in two lanes.
#pragma once

#include "lapack/small/tile.h"

namespace ork::lapack {

inline Vec<double> squared_moduli(Vec<double> a) { return a * a; }
inline Vec<float> squared_moduli(Vec<float> a) { return a * a; }
template <class R>
inline Vec<R> squared_moduli(Vec<Complex<R>> a)
{
    const Vec<R> squares = a.v * a.v;
    return squares + exchanged(squares);
}
template <class R>
inline R squared_modulus(R a)
{
    return a * a;
}
template <class R>
inline R squared_modulus(Complex<R> a)
{
    return a.re * a.re + a.im * a.im;
}
template <class R>
inline R quotient(R a, R d)
{
    return a / d;
}
inline void quotients(double& a, double& b, double d)
{
    const __m128d both = _mm_div_pd(_mm_set_pd(b, a), _mm_set1_pd(d));
    a = _mm_cvtsd_f64(both), b = _mm_cvtsd_f64(_mm_unpackhi_pd(both, both));
}
inline void quotients(float& a, float& b, float d)
{
    const __m128 both = _mm_div_ps(_mm_setr_ps(a, b, 1, 1), _mm_setr_ps(d, d, 1, 1));
    a = _mm_cvtss_f32(both), b = _mm_cvtss_f32(_mm_movehdup_ps(both));
}
template <class R>
inline Complex<R> quotient(Complex<R> a, R d)
{
    quotients(a.re, a.im, d);
    return a;
}

// The lanes of elements from `first` on.
template <class T>
inline Vec<Real<T>> lanes_from(int first)
{
    if constexpr (sizeof(T) == 4)
        return from_bits<float>(_mm_setr_epi32(-(first <= 0), -(first <= 1), -(first <= 2), -(first <= 3)));
    else
        return from_bits<Real<T>>(_mm_set_epi64x(-(first <= (sizeof(T) == 8 ? 1 : 0)), -(first <= 0)));
}

// Rows j .. j + columns - 1 of the columns from j on, which columns 0 .. j - 1 are done with; j is even.
template <class T, int columns>
class DiagonalSquare {
    using R = Real<T>;

public:
    T x[columns][columns]; // [row][column]
    R diagonal[columns];

    // Returns the number of columns done: less than all of them, and that diagonal element is not greater than zero.
    int factor(Int j, const T* l, Int lda)
    {
        R even[columns] = {}, odd[columns] = {};
        const T* square = l + j * lda;
#pragma GCC unroll 4
        for (int q = 0; q < columns; ++q)
#pragma GCC unroll 4
            for (int i = q; i < columns; ++i) x[i][q] = square[i + q * lda];
        if (columns == 4 && j > 0)
            subtract_before(j, l, lda, even, odd);
        else
            for (Int k = 0; k < j; k += 2) {
                const T *first = l + k * lda, *second = first + lda;
#pragma GCC unroll 4
                for (int i = 0; i < columns; ++i) {
                    even[i] -= squared_modulus(first[i]), odd[i] -= squared_modulus(second[i]);
#pragma GCC unroll 4
                    for (int q = 0; q < i; ++q)
                        x[i][q] = x[i][q] - first[i] * conj(first[q]) - second[i] * conj(second[q]);
                }
            }
#pragma GCC unroll 4
        for (int q = 0; q < columns; ++q) {
            if (q >= 2) even[q] -= squared_modulus(x[q][0]), odd[q] -= squared_modulus(x[q][1]);
            R d = real_part(x[q][q]) + (even[q] + odd[q]);
            if (q % 2 == 1) d -= squared_modulus(x[q][q - 1]);
            if (!(d > 0)) [[unlikely]] {
                x[q][q] = T(d);
                return q;
            }
            diagonal[q] = root(d);
            x[q][q] = T(diagonal[q]);
#pragma GCC unroll 4
            for (int i = q + 1; i < columns; ++i) {
#pragma GCC unroll 4
                for (int k = 0; k < q; ++k) x[i][q] = x[i][q] - x[i][k] * conj(x[q][k]);
            }
            // Two numbers a division: the divider is what a small matrix waits for.
            int i = q + 1;
            if constexpr (!is_complex<T>)
#pragma GCC unroll 2
                for (; i + 2 <= columns; i += 2) quotients(x[i][q], x[i + 1][q], diagonal[q]);
#pragma GCC unroll 4
            for (; i < columns; ++i) x[i][q] = quotient(x[i][q], diagonal[q]);
        }
        return columns;
    }

    // What columns 0 .. j - 1 subtract, rows in lanes; nothing is computed of registers that lie above the diagonal.
    [[gnu::always_inline]] inline void subtract_before(Int j, const T* l, Int lda, R (&even)[columns],
                                                       R (&odd)[columns])
    {
        constexpr int lanes = Vec<T>::lanes, registers = (columns + lanes - 1) / lanes;
        const T* square = l + j * lda;
        Vec<T> y[columns - 1][registers];
        Vec<R> sums[2][registers];
        const auto below = [](int q, int r) { return (r + 1) * lanes - 1 > q; };
#pragma GCC unroll 4
        for (int q = 0; q + 1 < columns; ++q) {
#pragma GCC unroll 4
            for (int r = 0; r < registers; ++r)
                y[q][r] = select(lanes_from<T>(q + 1 - r * lanes), load<lanes>(square + q * lda + r * lanes), Vec<T>{});
        }
#pragma GCC unroll 4
        for (int r = 0; r < registers; ++r) sums[0][r] = sums[1][r] = broadcast(R(0));
        for (Int k = 0; k < j; k += 2)
#pragma GCC unroll 2
            for (int half = 0; half < 2; ++half, l += lda) {
#pragma GCC unroll 4
                for (int r = 0; r < registers; ++r) {
                    const Vec<T> v = load<lanes>(l + r * lanes);
                    sums[half][r] = sums[half][r] - squared_moduli(v);
                    const Rows<T> left(v);
#pragma GCC unroll 4
                    for (int q = 0; q + 1 < columns; ++q)
                        if (below(q, r)) y[q][r] = y[q][r] - product<true>(left, Number<T>(l + q));
                }
            }
#pragma GCC unroll 4
        for (int q = 0; q + 1 < columns; ++q) {
#pragma GCC unroll 4
            for (int r = 0; r < registers; ++r) {
                alignas(16) T kept[lanes];
                store<lanes>(kept, y[q][r]);
#pragma GCC unroll 4
                for (int i = 0; i < lanes; ++i)
                    if (r * lanes + i > q) x[r * lanes + i][q] = kept[i];
            }
        }
#pragma GCC unroll 4
        for (int i = 0; i < columns; ++i) {
            const int at = i % lanes * (is_complex<T> ? 2 : 1);
            even[i] = lane(sums[0][i / lanes], at), odd[i] = lane(sums[1][i / lanes], at);
        }
    }

    void write(T* square, Int lda) const
    {
#pragma GCC unroll 4
        for (int q = 0; q < columns; ++q)
#pragma GCC unroll 4
            for (int i = q; i < columns; ++i) square[i + q * lda] = x[i][q];
    }

    // `registers` of rows below: what columns 0 .. j - 1 leave of them, solved with the square.
    template <int registers, int width>
    [[gnu::always_inline]] inline void solve(Int j, const T* l, const T* u, Int lda, T* c) const
    {
        Vec<T> y[registers][columns];
#pragma GCC unroll 4
        for (int q = 0; q < columns; ++q)
#pragma GCC unroll 4
            for (int r = 0; r < registers; ++r) y[r][q] = load<width>(c + r * width + q * lda);
        for (Int k = 0; k < j; ++k, l += lda, u += lda) {
#pragma GCC unroll 4
            for (int r = 0; r < registers; ++r) {
                const Rows<T> left(load<width>(l + r * width));
#pragma GCC unroll 4
                for (int q = 0; q < columns; ++q) y[r][q] = y[r][q] - product<true>(left, Number<T>(u + q));
            }
        }
#pragma GCC unroll 4
        for (int q = 0; q < columns; ++q) {
            const Vec<R> d = broadcast(diagonal[q]);
#pragma GCC unroll 4
            for (int r = 0; r < registers; ++r) {
#pragma GCC unroll 4
                for (int k = 0; k < q; ++k) y[r][q] = y[r][q] - product<true>(Rows<T>(y[r][k]), Number<T>(x[q][k]));
                if constexpr (is_complex<T>)
                    y[r][q].v = y[r][q].v / d;
                else
                    y[r][q] = y[r][q] / d;
                store<width>(c + r * width + q * lda, y[r][q]);
            }
        }
    }
};

// Rows from `first` to `last` below a square.
template <int columns, class T>
inline void solve_rows(const DiagonalSquare<T, columns>& square, Int j, Int first, Int last, T* a, Int lda)
{
    constexpr int lanes = Vec<T>::lanes;
    T* c = a + j * lda;
    Int i = first;
    for (; i + 2 * lanes <= last; i += 2 * lanes) square.template solve<2, lanes>(j, a + i, a + j, lda, c + i);
    if (i + lanes <= last) {
        square.template solve<1, lanes>(j, a + i, a + j, lda, c + i);
        i += lanes;
    }
    for (; i < last; ++i) square.template solve<1, 1>(j, a + i, a + j, lda, c + i);
}

template <int columns, class T>
Int cholesky_columns(Int n, Int j, T* a, Int lda);

// A square of which only `done` columns can be had: those are done whole, and nothing of those behind the next diagonal
// element. Returns the number of its column, from 1.
template <int columns, class T>
[[gnu::noinline, gnu::cold]] Int give_up(const DiagonalSquare<T, columns>& square, int done, Int n, Int j, T* a,
                                         Int lda)
{
    if constexpr (columns > 3)
        if (done == 3) cholesky_columns<3>(n, j, a, lda);
    if constexpr (columns > 2)
        if (done == 2) cholesky_columns<2>(n, j, a, lda);
    if constexpr (columns > 1)
        if (done == 1) cholesky_columns<1>(n, j, a, lda);
    a[(j + done) * (lda + 1)] = square.x[done][done];
    return j + done + 1;
}

// Columns j .. j + columns - 1; returns 0 or the number, from 1, of the column that can't be done.
template <int columns, class T>
[[gnu::always_inline]] inline Int columns_in_line(Int n, Int j, T* a, Int lda)
{
    DiagonalSquare<T, columns> square;
    const int done = square.factor(j, a + j, lda);
    if (done < columns) [[unlikely]]
        return give_up(square, done, n, j, a, lda);
    square.write(a + j + j * lda, lda);
    solve_rows(square, j, j + columns, n, a, lda);
    return 0;
}
template <int columns, class T>
[[gnu::noinline]] Int cholesky_columns(Int n, Int j, T* a, Int lda)
{
    return columns_in_line<columns>(n, j, a, lda);
}

// The lower triangle of a matrix of order n; info.
template <class T>
[[gnu::noinline]] Int cholesky_blocks(Int n, T* a, Int lda)
{
    Int j = 0;
    for (; j + 4 <= n; j += 4)
        if (const Int failed = cholesky_columns<4>(n, j, a, lda)) return failed;
    switch (n - j) {
    case 3:
        return cholesky_columns<3>(n, j, a, lda);
    case 2:
        return cholesky_columns<2>(n, j, a, lda);
    case 1:
        return cholesky_columns<1>(n, j, a, lda);
    }
    return 0;
}
// Order 2, without what a loop over squares needs.
template <class T>
inline Int cholesky_two(T* a, Int lda)
{
    using R = Real<T>;
    const R first = real_part(a[0]);
    a[0] = T(first > 0 ? root(first) : first);
    if (!(first > 0)) [[unlikely]]
        return 1;
    a[1] = quotient(a[1], real_part(a[0]));
    const R second = real_part(a[lda + 1]) - squared_modulus(a[1]);
    a[lda + 1] = T(second > 0 ? root(second) : second);
    return second > 0 ? 0 : 2;
}
template <int n, class T>
[[gnu::noinline]] Int cholesky_order(T* a, Int lda)
{
    return columns_in_line<n>(n, 0, a, lda);
}
template <class T>
inline Int cholesky_lower(Int n, T* a, Int lda)
{
    switch (n) {
    case 2:
        return cholesky_two(a, lda);
    case 3:
        return cholesky_order<3>(a, lda);
    case 4:
        return cholesky_order<4>(a, lda);
    default:
        return cholesky_blocks(n, a, lda);
    }
}

// The upper triangle: u(k, i) in the place of l(i, k), in scratch memory as far as that goes.
template <class T>
[[gnu::noinline]] Int cholesky_upper_in_scratch(Int n, T* a, Int lda, T* l)
{
    const auto columns = [&](auto&& copy) {
        for (Int i = 0; i < n; ++i)
            for (Int k = 0; k <= i; ++k) copy(l[i + k * n], a[k + i * lda]);
    };
    columns([](T& l, const T& u) { l = u; });
    const Int info = cholesky_lower(n, l, n);
    columns([](const T& l, T& u) { u = l; });
    return info;
}

template <class T>
[[gnu::noinline]] Int cholesky_upper(Int n, T* a, Int lda)
{
    constexpr Int most = sizeof(T) == 16 ? 45 : 64;
    if (n <= most) {
        T l[most * most];
        return cholesky_upper_in_scratch(n, a, lda, l);
    }
    for (Int j = 0; j < n; ++j) {
        const T* pivot = a + j * lda;
        Real<T> even = 0, odd = 0;
        Int k = 0;
        for (; k + 2 <= j; k += 2) even -= squared_modulus(pivot[k]), odd -= squared_modulus(pivot[k + 1]);
        Real<T> d = real_part(pivot[j]) + (even + odd);
        if (k < j) d -= squared_modulus(pivot[k]);
        a[j + j * lda] = T(d > 0 ? root(d) : d);
        if (!(d > 0)) return j + 1;
        for (Int i = j + 1; i < n; ++i) {
            T* column = a + i * lda;
            T x = column[j];
            for (k = 0; k < j; ++k) x = x - column[k] * conj(pivot[k]);
            column[j] = quotient(x, root(d));
        }
    }
    return 0;
}

} // namespace ork::lapack
