// SPDX-License-Identifier: MIT
// Eigenvectors of a real Schur form T by substitution, multiplied by the Schur vectors. What would overflow is scaled;
// a difference of eigenvalues that is nothing beside them is replaced by the smallest one that counts.
#pragma once

#include "blas/divide.h"
#include "lapack/columns.h"

namespace ork::lapack {

namespace schur {

template <class R>
struct Limits {
    R least; // numbers below this times the order have lost digits
    R most;  // an element of T

    Limits(Int n, const R* t, Int ldt) : least(smallest_normal<R> * (static_cast<R>(n) / spacing<R>)), most(1)
    {
        for (Int j = 0; j < n; ++j) most = larger(most, largest_part(smaller(j + 2, n), t + j * ldt));
        most *= static_cast<R>(n);
    }
    R too_large() const { return (1 / least) / most; } // for an element of a vector
};

template <class S>
inline S at_least(S x, Real<S> least)
{
    return magnitude(x) < least ? S(least) : x;
}

// One or two equations: rows of (m - lambda), right sides; of two a complete elimination.
template <class S>
struct Equations {
    S m[2][2], right[2];
    bool columns_exchanged = false;

    void eliminate(Real<S> least)
    {
        int row = 0, column = 0;
        for (int i = 0; i < 2; ++i)
            for (int j = 0; j < 2; ++j)
                if (magnitude(m[i][j]) > magnitude(m[row][column])) row = i, column = j;
        const auto exchanged = [](S& x, S& y) {
            const S old = x;
            x = y, y = old;
        };
        if (row == 1) {
            for (int j = 0; j < 2; ++j) exchanged(m[0][j], m[1][j]);
            exchanged(right[0], right[1]);
        }
        if (column == 1) {
            for (int i = 0; i < 2; ++i) exchanged(m[i][0], m[i][1]);
            columns_exchanged = true;
        }
        m[0][0] = at_least(m[0][0], least);
        const S factor = divided(m[1][0], m[0][0]);
        m[1][1] = at_least(m[1][1] - factor * m[0][1], least);
        right[1] = right[1] - factor * right[0];
    }
    void solve(S* x) const
    {
        const S second = divided(right[1], m[1][1]), first = divided(right[0] - m[0][1] * second, m[0][0]);
        x[columns_exchanged] = first, x[!columns_exchanged] = second;
    }
};

// A vector of T - lambda, S real or complex; re and im: n numbers each (im of complex ones only).
template <class S>
struct Vector {
    using R = Real<S>;
    const R* t;
    Int ldt, n;
    S lambda;
    Limits<R> limits;
    R *re, *im;
    Int first, last; // what may not be zero
    R bound = 1;     // no element is larger

    R at(Int i, Int j) const { return t[j * ldt + i]; }
    S get(Int i) const
    {
        if constexpr (is_complex<S>)
            return {re[i], im[i]};
        else
            return re[i];
    }
    void set(Int i, S x)
    {
        re[i] = real_part(x);
        if constexpr (is_complex<S>) im[i] = x.im;
    }
    R largest() const
    {
        const R of_re = largest_part(last - first + 1, re + first);
        return is_complex<S> ? larger(of_re, largest_part(last - first + 1, im + first)) : of_re;
    }
    void scale(R factor)
    {
        multiply(last - first + 1, factor, re + first);
        if (is_complex<S>) multiply(last - first + 1, factor, im + first);
    }
    void normalise()
    {
        scale(inverse_power(largest()));
        bound = 4;
    }

    // Elements j, and j + 1 of a block of two, from the right sides that stand there. transposed: of T^T.
    void solve(Int j, bool two, bool transposed)
    {
        const R least =
            larger(spacing<R> * (absolute(real_part(lambda)) + absolute(imaginary_part(lambda))), limits.least);
        for (int attempt = 0;; ++attempt) {
            Equations<S> e;
            R pivot, right = magnitude(get(j));
            if (two) {
                e.m[0][0] = at(j, j) - lambda, e.m[1][1] = at(j + 1, j + 1) - lambda;
                e.m[0][1] = transposed ? at(j + 1, j) : at(j, j + 1),
                e.m[1][0] = transposed ? at(j, j + 1) : at(j + 1, j);
                e.right[0] = get(j), e.right[1] = get(j + 1);
                e.eliminate(least);
                pivot = magnitude(e.m[1][1]), right = larger(right, magnitude(get(j + 1)));
            } else {
                e.m[0][0] = at_least(at(j, j) - lambda, least);
                pivot = magnitude(e.m[0][0]);
            }
            if (attempt < 2 && pivot < 1 && right > limits.too_large() * pivot) {
                if (attempt == 0) {
                    normalise();
                } else {
                    const R factor = limits.too_large() * pivot / right / 2;
                    scale(factor), bound *= factor;
                }
                continue;
            }
            S x[2];
            if (two)
                e.solve(x), set(j + 1, x[1]);
            else
                x[0] = divided(get(j), e.m[0][0]);
            set(j, x[0]);
            bound = larger(bound, larger(magnitude(x[0]), two ? magnitude(x[1]) : R(0)));
            return;
        }
    }

    // Upwards from row j; (T - lambda) x = 0 with x(j + 1 ...) given.
    void substitute_right(Int j)
    {
        for (; j >= 0; --j) {
            const bool two = j > 0 && at(j, j - 1) != 0;
            j -= two;
            solve(j, two, false);
            for (Int k = j; k <= j + two; ++k) {
                const S x = get(k);
                bound += magnitude(x) * limits.most;
                add_multiple(j, -real_part(x), t + k * ldt, re);
                if constexpr (is_complex<S>) add_multiple(j, -x.im, t + k * ldt, im);
            }
            if (bound > limits.too_large()) normalise();
        }
    }
    // Downwards from row j; (T^T - lambda) x = 0 with x(... j - 1) given.
    void substitute_left(Int j)
    {
        for (; j < n; ++j) {
            const bool two = j + 1 < n && at(j + 1, j) != 0;
            if (bound > limits.too_large()) normalise();
            for (Int k = j; k <= j + two; ++k) {
                re[k] = -dot(j - first, t + k * ldt + first, re + first);
                if (is_complex<S>) im[k] = -dot(j - first, t + k * ldt + first, im + first);
            }
            last = j + two;
            solve(j, two, true);
            j += two;
        }
    }
};

// y = V x, `registers` x width rows; of complex x real and imaginary part.
template <int registers, int width, class S, class R>
[[gnu::always_inline]] inline void combine_rows(Int count, const R* v, Int ldv, const R* re, const R* im, R* y, Int ldy)
{
    Vec<R> sum[registers] = {}, other[registers] = {};
    for (Int j = 0; j < count; ++j) {
        const Vec<R> x = broadcast(re[j]);
#pragma GCC unroll 4
        for (int r = 0; r < registers; ++r) {
            const Vec<R> a = load<width>(v + j * ldv + r * width);
            sum[r] = sum[r] + x * a;
            if constexpr (is_complex<S>) other[r] = other[r] + broadcast(im[j]) * a;
        }
    }
#pragma GCC unroll 4
    for (int r = 0; r < registers; ++r) {
        store<width>(y + r * width, sum[r]);
        if constexpr (is_complex<S>) store<width>(y + ldy + r * width, other[r]);
    }
}

// The columns of y may be among those of v: rows are written when all of them has been read.
template <class S, class R>
inline void combine(Int rows, Int count, const R* v, Int ldv, const R* re, const R* im, R* y, Int ldy)
{
    constexpr int lanes = Vec<R>::lanes;
    Int i = 0;
    for (; i + 4 * lanes <= rows; i += 4 * lanes) combine_rows<4, lanes, S>(count, v + i, ldv, re, im, y + i, ldy);
    for (; i + lanes <= rows; i += lanes) combine_rows<1, lanes, S>(count, v + i, ldv, re, im, y + i, ldy);
    for (; i < rows; ++i) combine_rows<1, 1, S>(count, v + i, ldv, re, im, y + i, ldy);
}

} // namespace schur

// v: the Schur vectors, which eigenvectors of T's matrix replace; scratch: 2 n numbers.
template <class R>
inline void right_eigenvectors(Int n, const R* t, Int ldt, R* v, Int ldv, R* scratch)
{
    const schur::Limits<R> limits(n, t, ldt);
    R *re = scratch, *im = scratch + n;
    for (Int k = n - 1; k >= 0; --k) {
        if (k == 0 || t[(k - 1) * ldt + k] == 0) {
            re[k] = 1;
            for (Int i = 0; i < k; ++i) re[i] = -t[k * ldt + i];
            schur::Vector<R> x{t, ldt, n, t[k * ldt + k], limits, re, im, 0, k, limits.most};
            x.substitute_right(k - 1);
            x.normalise();
            schur::combine<R>(n, k + 1, v, ldv, re, im, v + k * ldv, ldv);
            continue;
        }
        const R *left = t + (k - 1) * ldt, *right = t + k * ldt;
        const R b = right[k - 1], c = left[k], w = root(absolute(b)) * root(absolute(c));
        re[k] = im[k - 1] = 0;
        if (absolute(b) >= absolute(c))
            re[k - 1] = 1, im[k] = w / b;
        else
            re[k - 1] = -w / c, im[k] = 1;
        for (Int i = 0; i < k - 1; ++i) re[i] = -re[k - 1] * left[i], im[i] = -im[k] * right[i];
        schur::Vector<Complex<R>> x{t, ldt, n, {right[k], w}, limits, re, im, 0, k, limits.most};
        x.substitute_right(k - 2);
        x.normalise();
        --k;
        schur::combine<Complex<R>>(n, k + 2, v, ldv, re, im, v + k * ldv, ldv);
    }
}

template <class R>
inline void left_eigenvectors(Int n, const R* t, Int ldt, R* v, Int ldv, R* scratch)
{
    const schur::Limits<R> limits(n, t, ldt);
    R *re = scratch, *im = scratch + n;
    for (Int k = 0; k < n; ++k) {
        if (k == n - 1 || t[k * ldt + k + 1] == 0) {
            re[k] = 1;
            schur::Vector<R> x{t, ldt, n, t[k * ldt + k], limits, re, im, k, k};
            x.substitute_left(k + 1);
            x.normalise();
            schur::combine<R>(n, n - k, v + k * ldv, ldv, re + k, im + k, v + k * ldv, ldv);
            continue;
        }
        const R b = t[(k + 1) * ldt + k], c = t[k * ldt + k + 1], w = root(absolute(b)) * root(absolute(c));
        re[k + 1] = im[k] = 0;
        if (absolute(b) >= absolute(c))
            re[k] = w / b, im[k + 1] = 1;
        else
            re[k] = 1, im[k + 1] = -w / c;
        schur::Vector<Complex<R>> x{t, ldt, n, {t[k * ldt + k], -w}, limits, re, im, k, k + 1};
        x.substitute_left(k + 2);
        x.normalise();
        schur::combine<Complex<R>>(n, n - k, v + k * ldv, ldv, re + k, im + k, v + k * ldv, ldv);
        ++k;
    }
}

} // namespace ork::lapack
