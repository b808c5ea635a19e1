// SPDX-License-Identifier: MIT
// A matrix taken apart: its diagonal inverted, and what is below and above the diagonal as matrices of their own.
#pragma once

#include <limits>

#include "blas/divide.h"
#include "spblas/csr.h"

namespace ork::spblas {

template <class R>
inline R inverse(R x)
{
    return R(1) / x;
}
// Parts above a quarter of the largest number would overflow when Smith's method adds them.
template <class R>
inline Complex<R> inverse(Complex<R> z)
{
    constexpr R large = std::numeric_limits<R>::max() / 4;
    const auto is_large = [](R x) { return x > large || x < -large; };
    if (!is_large(z.re) && !is_large(z.im)) return divided(Complex<R>(1), z);
    return R(0.25) * divided(Complex<R>(1), R(0.25) * z);
}

// d_i = 1 / a_ii, or 1 where there is nothing to invert. Returns the first such row, counted from 1; 0 without one.
template <class Int, class T>
[[gnu::noinline]] std::int64_t invert_diagonal(Rows rows, Csr<Int, T> a, int base, T* d)
{
    std::int64_t missing = 0;
    for (std::int64_t i = rows.first; i < rows.last; ++i) {
        T diagonal{};
        for (std::int64_t k = a.first(i); k < a.last(i); ++k)
            if (a.indx[k] - base == i) diagonal = diagonal + a.val[k];
        const bool zero = diagonal == T{};
        d[i] = zero ? T(1) : inverse(diagonal);
        if (zero && missing == 0) missing = i + 1;
    }
    return missing;
}

// Where a part goes: row i from position pntr[i] - pntr[0].
template <class Int, class T>
struct SplitPart {
    T* val;
    Int *indx, *pntr;
};

// The numbers of entries of row i go to position i + 1.
template <class Int, class T>
[[gnu::noinline]] void count_parts(Rows rows, Csr<Int, T> a, int base, Int* lower, Int* upper)
{
    for (std::int64_t i = rows.first; i < rows.last; ++i) {
        Int below = 0, above = 0;
        for (std::int64_t k = a.first(i); k < a.last(i); ++k) {
            below += a.indx[k] - base < i;
            above += a.indx[k] - base > i;
        }
        lower[i + 1] = below, upper[i + 1] = above;
    }
}

template <class Int, class T>
[[gnu::noinline]] void split(Rows rows, Csr<Int, T> a, int base, SplitPart<Int, T> lower, SplitPart<Int, T> upper, T* d)
{
    for (std::int64_t i = rows.first; i < rows.last; ++i) {
        std::int64_t below = std::int64_t{lower.pntr[i]} - lower.pntr[0];
        std::int64_t above = std::int64_t{upper.pntr[i]} - upper.pntr[0];
        T diagonal{};
        for (std::int64_t k = a.first(i); k < a.last(i); ++k) {
            const std::int64_t j = std::int64_t{a.indx[k]} - base;
            if (j < i)
                lower.val[below] = a.val[k], lower.indx[below++] = a.indx[k];
            else if (j > i)
                upper.val[above] = a.val[k], upper.indx[above++] = a.indx[k];
            else
                diagonal = diagonal + a.val[k];
        }
        d[i] = diagonal;
    }
}

} // namespace ork::spblas
