// SPDX-License-Identifier: MIT
// Householder reflectors H = I - tau v v^H with v(1) = 1, which is not stored (Golub and Van Loan, Matrix Computations,
// 5.1). tau is 0 (H = I) or 1 <= re tau <= 2 and |tau - 1| <= 1.
#pragma once

#include "blas/divide.h"
#include "lapack/columns.h"

namespace ork::lapack {

namespace reflector {

// sqrt(|alpha|^2 + sum |x|^2), n parts of x, at most `largest`. x may be NaN.
template <class T>
inline Real<T> length(T alpha, Int parts, const Real<T>* x, Real<T> largest)
{
    using R = Real<T>;
    const R re = real_part(alpha), im = imaginary_part(alpha);
    const R most = larger(largest, larger(absolute(re), absolute(im)));
    if (squares_safely(most)) [[likely]]
        return static_cast<R>(root(squares(parts, x) + static_cast<double>(re) * re + static_cast<double>(im) * im));
    const R f = inverse_power(most);
    R sum = (f * re) * (f * re) + (f * im) * (f * im);
    for (Int i = 0; i < parts; ++i) sum += (f * x[i]) * (f * x[i]);
    return root(sum) / f;
}

} // namespace reflector

// H^H (alpha, x) = (beta, 0) with real beta: alpha becomes beta, the n - 1 elements of x the rest of v; returns tau.
// Nothing to be annihilated gives 0. LAPACK's larfg.
template <class T>
inline T generate_reflector(Int n, T& alpha, T* x)
{
    using R = Real<T>;
    const Int parts = n <= 1 ? 0 : (is_complex<T> ? 2 : 1) * (n - 1);
    R* p = reals(x);
    R most = largest_part(parts, p);
    if (n <= 0 || (most == 0 && imaginary_part(alpha) == 0 && squares(parts, p) == 0)) return T{};
    R beta = -with_sign(reflector::length(alpha, parts, p, most), real_part(alpha));
    // Where the inverse of alpha - beta might overflow or x has lost digits, all is enlarged first.
    constexpr R tiny = smallest_normal<R> / unit_roundoff<R>;
    R shrink = 1;
    if (absolute(beta) < tiny) [[unlikely]] {
        constexpr R enlarge = 1 / tiny; // the smallest number becomes greater than tiny
        for (Int j = 0; j < parts; ++j) p[j] *= enlarge;
        alpha = enlarge * alpha, most *= enlarge, shrink = tiny;
        beta = -with_sign(reflector::length(alpha, parts, p, most), real_part(alpha));
    }
    const R re = (beta - real_part(alpha)) / beta;
    if constexpr (is_complex<T>) {
        const T tau{re, -alpha.im / beta};
        multiply(n - 1, divided(T{1, 0}, alpha - T{beta, 0}), x);
        alpha = {beta * shrink, 0};
        return tau;
    } else {
        multiply(n - 1, 1 / (alpha - beta), x);
        alpha = beta * shrink;
        return re;
    }
}

namespace reflector {

// `columns` of C at once, so that v is loaded once for all of them.
template <int columns, class T>
[[gnu::always_inline]] inline void reflect_columns(Int m, const T* v, T tau, T* c, Int ldc)
{
    constexpr int lanes = Vec<T>::lanes;
    DotSum<T> sums[columns];
    Int i = 1;
    for (; i + lanes <= m; i += lanes) {
        const Vec<T> x = load<lanes>(v + i - 1);
#pragma GCC unroll 4
        for (int j = 0; j < columns; ++j) sums[j].add(x, load<lanes>(c + j * ldc + i));
    }
    T weight[columns];
#pragma GCC unroll 4
    for (int j = 0; j < columns; ++j) {
        T sum = sums[j].total();
        for (Int k = i; k < m; ++k) sum = sum + conj(v[k - 1]) * c[j * ldc + k];
        weight[j] = T{} - tau * (sum + c[j * ldc]);
        c[j * ldc] = c[j * ldc] + weight[j];
    }
    for (i = 1; i + lanes <= m; i += lanes) {
        const Vec<T> x = load<lanes>(v + i - 1);
#pragma GCC unroll 4
        for (int j = 0; j < columns; ++j)
            store<lanes>(c + j * ldc + i, added(load<lanes>(c + j * ldc + i), Factor<T>(weight[j]) * x));
    }
    for (; i < m; ++i)
#pragma GCC unroll 4
        for (int j = 0; j < columns; ++j) c[j * ldc + i] = c[j * ldc + i] + weight[j] * v[i - 1];
}

} // namespace reflector

// C (m x n) <- H C; v: the m - 1 stored elements. Hand conj(tau) for H^H C.
template <class T>
inline void reflect_from_left(Int m, Int n, const T* v, T tau, T* c, Int ldc)
{
    if (m <= 0 || tau == T{}) return;
    constexpr int columns = is_complex<T> ? 2 : 4;
    Int j = 0;
    for (; j + columns <= n; j += columns) reflector::reflect_columns<columns>(m, v, tau, c + j * ldc, ldc);
    for (; j < n; ++j) reflector::reflect_columns<1>(m, v, tau, c + j * ldc, ldc);
}

namespace reflector {

// `registers` x width rows of C.
template <int registers, int width, class T>
[[gnu::always_inline]] inline void reflect_rows(Int n, const T* v, T tau, T* c, Int ldc)
{
    Vec<T> sum[registers];
#pragma GCC unroll 4
    for (int r = 0; r < registers; ++r) sum[r] = load<width>(c + r * width);
    for (Int j = 1; j < n; ++j) {
        const Factor<T> x(v[j - 1]);
#pragma GCC unroll 4
        for (int r = 0; r < registers; ++r) sum[r] = added(sum[r], x * load<width>(c + j * ldc + r * width));
    }
    const Factor<T> weight(T{} - tau);
#pragma GCC unroll 4
    for (int r = 0; r < registers; ++r) {
        sum[r] = weight * sum[r];
        store<width>(c + r * width, added(load<width>(c + r * width), sum[r]));
    }
    for (Int j = 1; j < n; ++j) {
        const Factor<T> x(conj(v[j - 1]));
        T* column = c + j * ldc;
#pragma GCC unroll 4
        for (int r = 0; r < registers; ++r)
            store<width>(column + r * width, added(load<width>(column + r * width), x * sum[r]));
    }
}

} // namespace reflector

// C (m x n) <- C H; v: the n - 1 stored elements.
template <class T>
inline void reflect_from_right(Int m, Int n, const T* v, T tau, T* c, Int ldc)
{
    if (n <= 0 || tau == T{}) return;
    constexpr int lanes = Vec<T>::lanes;
    Int i = 0;
    for (; i + 4 * lanes <= m; i += 4 * lanes) reflector::reflect_rows<4, lanes>(n, v, tau, c + i, ldc);
    for (; i + lanes <= m; i += lanes) reflector::reflect_rows<1, lanes>(n, v, tau, c + i, ldc);
    for (; i < m; ++i) reflector::reflect_rows<1, 1>(n, v, tau, c + i, ldc);
}

} // namespace ork::lapack
