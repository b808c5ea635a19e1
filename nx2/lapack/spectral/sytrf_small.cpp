// SPDX-License-Identifier: MIT
// A = L D L^T or U D U^T of a symmetric matrix by diagonal pivoting: Bunch and Kaufman, "Some stable methods for
// calculating inertia and solving symmetric linear systems", Math. Comp. 31, 1977.
#include "blas/divide.h"
#include "lapack/columns.h"
#include "lapack/members.h"
#include "lapack/safe_minimum.h"

namespace ork::lapack {
namespace {

// (1 + sqrt(17)) / 8 balances the growth of two steps with 1 x 1 blocks against that of one 2 x 2 block.
constexpr R alpha = R(0.640388203202207936);

struct Largest {
    Int at;
    R size;
};

// The first of the largest magnitudes among n > 0 adjacent elements. A NaN is not larger than anything.
Largest find_largest(Int n, const T* x)
{
    Largest best{0, magnitude(x[0])};
    for (Int i = 1; i < n; ++i)
        if (const R size = magnitude(x[i]); size > best.size) best = {i, size};
    return best;
}

// The stored triangle, eliminated from index 0 up (lower) or from n - 1 down. Column k's elements that a step from k on
// still sees are adjacent: those behind k (lower) or before it.
template <bool lower>
struct Symmetric {
    Int n;
    T* a;
    Int lda;

    T& at(Int i, Int j) const { return a[j * lda + i]; }
    static constexpr Int step = lower ? 1 : -1;
    Int left_behind(Int k) const { return lower ? n - 1 - k : k; } // how many follow k
    Int first_behind(Int k) const { return lower ? k + 1 : 0; }

    // The largest magnitude in row and column p among what follows k and isn't the diagonal.
    R largest_beside(Int p, Int k) const
    {
        R size = 0;
        for (Int j = k; j != p; j += step) size = larger(size, magnitude(at(p, j)));
        return left_behind(p) > 0 ? larger(size, find_largest(left_behind(p), &at(first_behind(p), p)).size) : size;
    }

    // Exchanges rows and columns k and p, k before p, of what follows k.
    void interchange(Int k, Int p) const
    {
        exchange(left_behind(p), &at(first_behind(p), k), &at(first_behind(p), p));
        for (Int j = k + step; j != p; j += step) exchange(1, &at(j, k), &at(p, j));
        exchange(1, &at(k, k), &at(p, p));
    }

    // Behind k: A <- A - x x^T / d, x <- x / d, where x is column k.
    void eliminate_one(Int k) const
    {
        const Int first = first_behind(k), count = left_behind(k);
        if (count == 0) return;
        const T inverse = divided(T(1), at(k, k));
        T* x = &at(0, k);
        for (Int j = first; j < first + count; ++j) {
            const Int top = lower ? j : first, rows = lower ? first + count - j : j - first + 1;
            add_multiple(rows, T{} - inverse * x[j], x + top, &at(top, j));
        }
        multiply(count, inverse, x + first);
    }

    // The same with the 2 x 2 block of k and its successor. Its inverse is scaled by the off-diagonal element, which
    // the choice of the pivot has made the largest.
    void eliminate_two(Int k) const
    {
        const Int next = k + step;
        const T off = at(next, k);
        const T own = divided(at(next, next), off), other = divided(at(k, k), off);
        const T factor = divided(divided(T(1), own * other - T(1)), off);
        const Int count = left_behind(next);
        T *x = &at(0, k), *y = &at(0, next);
        // Nearest first, so that the elements of x and y that are still needed are not yet multipliers.
        for (Int c = 0, j = next + step; c < count; ++c, j += step) {
            const T wx = factor * (own * x[j] - y[j]), wy = factor * (other * y[j] - x[j]);
            const Int top = lower ? j : 0, rows = lower ? n - j : j + 1;
            const Factor<T> minus_x(T{} - wx), minus_y(T{} - wy);
            T* column = &at(top, j);
            each<T>(rows, [&]<int w>(Int i) {
                const Vec<T> first = added(load<w>(column + i), minus_x * load<w>(x + top + i));
                store<w>(column + i, added(first, minus_y * load<w>(y + top + i)));
            });
            x[j] = wx, y[j] = wy;
        }
    }

    struct Pivot {
        Int index, size;
    };
    // Which diagonal element, or which successor of k in a block of two.
    Pivot choose(Int k, R own, Largest beside) const
    {
        if (own >= alpha * beside.size) return {k, 1};
        const Int p = first_behind(k) + beside.at;
        const R row = largest_beside(p, k);
        if (own >= alpha * beside.size * (beside.size / row)) return {k, 1};
        return {p, magnitude(at(p, p)) >= alpha * row ? 1 : 2};
    }

    Int factor(Int* ipiv) const
    {
        Int info = 0;
        for (Int k = lower ? 0 : n - 1; lower ? k < n : k >= 0;) {
            const R own = magnitude(at(k, k));
            const Int behind = left_behind(k);
            const Largest beside = behind > 0 ? find_largest(behind, &at(first_behind(k), k)) : Largest{0, 0};
            if (larger(own, beside.size) == 0 || own != own) {
                if (info == 0) info = k + 1;
                ipiv[k] = k + 1;
                k += step;
                continue;
            }
            const auto [p, size] = choose(k, own, beside);
            const Int moved = k + (size - 1) * step;
            if (p != moved) {
                interchange(moved, p);
                if (size == 2) exchange(1, &at(moved, k), &at(p, k));
            }
            if (size == 1) {
                eliminate_one(k);
                ipiv[k] = p + 1;
            } else {
                eliminate_two(k);
                ipiv[k] = ipiv[moved] = -(p + 1);
            }
            k += size * step;
        }
        return info;
    }
};

template <bool lower>
void factor(Int n, T* a, Int lda, Int* ipiv, T* work, Int lwork, Int* info)
{
    *info = 0;
    if (lwork == -1)
        work[0] = T(1);
    else
        *info = Symmetric<lower>{n, a, lda}.factor(ipiv);
}

} // namespace

ORK_LAPACK_EXPORT(sytrf_l_small)
(const Int* n, T* a, const Int* lda, Int* ipiv, T* work, const Int* lwork, Int* info)
{
    factor<true>(*n, a, *lda, ipiv, work, *lwork, info);
}

ORK_LAPACK_EXPORT(sytrf_u_small)
(const Int* n, T* a, const Int* lda, Int* ipiv, T* work, const Int* lwork, Int* info)
{
    factor<false>(*n, a, *lda, ipiv, work, *lwork, info);
}

} // namespace ork::lapack
