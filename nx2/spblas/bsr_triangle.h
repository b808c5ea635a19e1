// SPDX-License-Identifier: MIT
// Diagonal blocks of which a triangle or the diagonal counts, against one vector.
#pragma once

#include <utility>

#include "blas/divide.h"
#include "spblas/bsr.h"
#include "spblas/bsr_rule.h"

namespace ork::spblas::bsr {

// The smallest real blocks in straight code, with their elements in registers; 0: loops for any order.
template <int lb, class T>
inline constexpr int unrolled = lb <= 4 && !is_complex<T> ? lb : 0;

// f(0) .. f(lb - 1).
template <int order, class F>
[[gnu::always_inline]] inline void each_row(int lb, F&& f)
{
    if constexpr (order != 0) [&]<int... i>(std::integer_sequence<int, i...>) __attribute__((always_inline))
        {
            (f(i), ...);
        }
    (std::make_integer_sequence<int, order>());
    else for (int i = 0; i < lb; ++i) f(i);
}

// The pairs p > q of a diagonal block that count are its values at p * down + q * right.
struct Pairs {
    std::int64_t down, right;
    Pairs(bool lower, bool by_rows, std::int64_t lb) : down(lower == by_rows ? lb : 1), right(lower == by_rows ? 1 : lb)
    {
    }
};

// What counts of a diagonal block, times x, into sum: all but the factor alpha. `mirror` is the sign of mirrored
// values.
template <int order, class T>
[[gnu::always_inline]] inline void add_triangle(BlockRule rule, Pairs pairs, int lb, const T* block, T mirror,
                                                const T* x, T* sum)
{
    const bool down = rule.lower ? rule.direct : rule.mirrored, up = rule.lower ? rule.mirrored : rule.direct;
    const bool conjugate_down = rule.lower ? rule.conjugate_direct : rule.conjugate_mirrored;
    const bool conjugate_up = rule.lower ? rule.conjugate_mirrored : rule.conjugate_direct;
    const T down_sign = rule.lower ? T(1) : mirror, up_sign = rule.lower ? mirror : T(1);
    each_row<order>(
        lb, [&](int p) __attribute__((always_inline)) {
            if (rule.read_diagonal) sum[p] = sum[p] + entry(block[p * (lb + 1)], rule.conjugate_diagonal) * x[p];
            for (int q = 0; q < p; ++q) {
                const T value = block[p * pairs.down + q * pairs.right];
                if (down) sum[p] = sum[p] + down_sign * entry(value, conjugate_down) * x[q];
                if (up) sum[q] = sum[q] + up_sign * entry(value, conjugate_up) * x[p];
            }
        });
}

template <int order, bool ascending, class T>
[[gnu::always_inline]] inline void solve_in_order(BlockRule rule, Pairs pairs, int lb, const T* block, T* y)
{
    const bool off_diagonal = rule.direct || rule.mirrored, conjugate = rule.conjugate_diagonal;
    // 1 / d does not wait for what is to be divided. One decision for the whole diagonal.
    T inverse[order == 0 ? 1 : order]{};
    bool invertible = order != 0 && !rule.unit;
    if constexpr (order != 0) {
        if (invertible)
            each_row<order>(
                lb, [&](int r) __attribute__((always_inline)) {
                    const T d = block[r * (lb + 1)];
                    invertible &= has_inverse(d < 0 ? -d : d);
                });
        if (invertible)
            each_row<order>(
                lb, [&](int r) __attribute__((always_inline)) { inverse[r] = T(1) / block[r * (lb + 1)]; });
    }
    each_row<order>(
        lb, [&](int s) __attribute__((always_inline)) {
            const int r = ascending ? s : lb - 1 - s;
            if (!rule.unit) {
                const T pivot = entry(block[r * (lb + 1)], conjugate);
                if constexpr (order != 0)
                    y[r] = invertible ? y[r] * inverse[r] : y[r] / pivot;
                else
                    y[r] = divided(y[r], pivot);
            }
            if (!off_diagonal) return;
            for (int q = ascending ? r + 1 : 0; q < (ascending ? lb : r); ++q) {
                const T value = block[ascending ? q * pairs.down + r * pairs.right : r * pairs.down + q * pairs.right];
                y[q] = y[q] - entry(value, conjugate) * y[r];
            }
        });
}

// y = (the block's triangle, or its diagonal)^-1 y
template <int order, class T>
[[gnu::always_inline]] inline void solve_triangle(BlockRule rule, Pairs pairs, int lb, const T* block, T* y)
{
    if (order != 0) lb = order;
    if (is_forward(rule))
        solve_in_order<order, true>(rule, pairs, lb, block, y);
    else
        solve_in_order<order, false>(rule, pairs, lb, block, y);
}

template <class T>
[[gnu::noinline]] void add_any_triangle(BlockRule rule, Pairs pairs, int lb, const T* block, T mirror, const T* x,
                                        T* sum)
{
    add_triangle<0>(rule, pairs, lb, block, mirror, x, sum);
}
template <class T>
[[gnu::noinline]] void solve_any_triangle(BlockRule rule, Pairs pairs, int lb, const T* block, T* y)
{
    solve_triangle<0>(rule, pairs, lb, block, y);
}

} // namespace ork::spblas::bsr
