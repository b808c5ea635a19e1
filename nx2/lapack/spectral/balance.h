// SPDX-License-Identifier: MIT
// Balancing: rows and columns are permuted so that eigenvalues that can be read off come first and last, what is
// between is scaled by powers of two so that rows and columns are of similar norm. Norms are Euclidean and take the
// diagonal in, which leaves matrices alone that scaling would harm (James, Langou, Lowery, "On matrix balancing and
// eigenvector computation", 2014).
#pragma once

#include "lapack/columns.h"

namespace ork::lapack {

// The square matrix between indices lo and hi, both included, is what is left to do.
template <class R>
struct Balance {
    Int n, lo, hi;
    R* scale; // inside: factor of the column; outside: with which index it was exchanged

    // Rows of the eigenvectors of the balanced matrix become those of the matrix itself; left ones: inverse factors.
    void undo(R* v, Int ldv, bool left) const
    {
        for (Int i = lo; i <= hi; ++i)
            if (scale[i] != 1) {
                const R factor = left ? 1 / scale[i] : scale[i];
                for (Int j = 0; j < n; ++j) v[j * ldv + i] *= factor;
            }
        const auto back = [&](Int i) {
            const Int other = static_cast<Int>(scale[i]);
            if (other != i) exchange(n, v + i, ldv, v + other, ldv);
        };
        for (Int i = lo - 1; i >= 0; --i) back(i);
        for (Int i = hi + 1; i < n; ++i) back(i);
    }
};

namespace balancing {

template <class R>
inline R row_norm(Int n, const R* x, Int step)
{
    R largest = 0;
    for (Int i = 0; i < n; ++i) largest = larger(absolute(x[i * step]), largest);
    const double f = inverse_power(static_cast<double>(largest));
    double sum = 0;
    for (Int i = 0; i < n; ++i) sum += (f * x[i * step]) * (f * x[i * step]);
    return static_cast<R>(root(sum) / f);
}

// Exchanges index j with the first or last one of what is left. Only rows up to hi and columns from lo are not zero.
template <class R>
inline void move(Balance<R>& b, R* a, Int lda, Int j, Int end)
{
    b.scale[end] = static_cast<R>(j);
    if (j == end) return;
    exchange(b.hi + 1, a + j * lda, a + end * lda);
    exchange(b.n - b.lo, a + b.lo * lda + j, lda, a + b.lo * lda + end, lda);
}

template <class R>
inline bool isolate_one(Balance<R>& b, R* a, Int lda)
{
    const auto zero_beside = [&](Int j, Int down, Int across) {
        for (Int i = b.lo; i <= b.hi; ++i)
            if (i != j && a[j * (down ? lda : 1) + i * across] != 0) return false;
        return true;
    };
    for (Int j = b.hi; j >= b.lo; --j)
        if (zero_beside(j, 0, lda)) {
            move(b, a, lda, j, b.hi);
            --b.hi;
            return true;
        }
    for (Int j = b.lo; j <= b.hi; ++j)
        if (zero_beside(j, 1, 1)) {
            move(b, a, lda, j, b.lo);
            ++b.lo;
            return true;
        }
    return false;
}

// The power of two by which to multiply a column of norm c, and divide its row of norm r, or 1.
template <class R>
inline R factor_for(R c, R r, R scale)
{
    if (c == 0 || r == 0) return 1;
    constexpr R low = sizeof(R) == 8 ? R(0x1p-960) : R(0x1p-100), high = 1 / low;
    const R before = c + r;
    R f = 1;
    while (c < r / 2 && f * scale < high && c < high && r > low) c *= 2, r /= 2, f *= 2;
    while (c / 2 >= r && f * scale > low && r < high && c > low) c /= 2, r *= 2, f /= 2;
    return c + r < R(0.95) * before ? f : R(1);
}

} // namespace balancing

template <class R>
inline Balance<R> balance(Int n, R* a, Int lda, R* scale)
{
    Balance<R> b{n, 0, n - 1, scale};
    while (b.lo < b.hi && balancing::isolate_one(b, a, lda))
        ;
    for (Int i = b.lo; i <= b.hi; ++i) scale[i] = 1;
    if (b.lo >= b.hi) return b;
    const Int order = b.hi - b.lo + 1;
    for (bool changed = true; changed;) {
        changed = false;
        for (Int i = b.lo; i <= b.hi; ++i) {
            const R f = balancing::factor_for(norm(order, a + i * lda + b.lo),
                                              balancing::row_norm(order, a + b.lo * lda + i, lda), scale[i]);
            if (f == 1) continue;
            scale[i] *= f, changed = true;
            for (Int j = b.lo; j < n; ++j) a[j * lda + i] /= f;
            multiply(b.hi + 1, f, a + i * lda);
        }
    }
    return b;
}

} // namespace ork::lapack
