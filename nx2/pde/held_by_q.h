// SPDX-License-Identifier: MIT
// The constant mode between sides that hold nothing:
//
//     off(j) (x(j) - x(j - 1)) + off(j + 1) (x(j) - x(j + 1)) + q weight(j) x(j) = weight(j) f(j),    0 <= j < order
//
// periodic, or with off(0) = off(order) = 0. All that determines the mean is q, which would drown in a diagonal that is
// summed up. Pivots are made of what a row has towards the next row, the last row and q, so for q > 0 nothing is
// subtracted: Grassmann, Taksar and Heyman, "Regenerative analysis and steady state distributions for Markov chains",
// 1985.
#pragma once

#include <cstdint>

namespace ork::pde {

// f(j) stands at f[j stride] and gives way to x(j); work has 3 * order numbers.
template <class R, class Off, class Weight>
inline void solve_held_by_q(std::int64_t order, bool periodic, Off&& off, Weight&& weight, long double q, R* f,
                            std::int64_t stride, double* work)
{
    using Int = std::int64_t;
    using Wide = long double;
    const Int last = order - 1;
    double *const y = work, *const to_next = y + order, *const to_last = to_next + order;
    const auto right_of = [&](Int j) { return Wide{weight(j)} * f[j * stride]; };
    const auto held = [&](Int j) { return Wide{weight(j)} * q; };
    Wide right = right_of(0), excess = held(0), link = periodic ? Wide{off(0)} : Wide{0};
    Wide last_right = right_of(last), last_excess = held(last);
    for (Int j = 0; j < last; ++j) {
        Wide next = off(j + 1);
        if (j + 1 == last) link += next, next = 0;
        const Wide pivot = next + link + excess, factor = next / pivot, factor_last = link / pivot;
        y[j] = static_cast<double>(right / pivot);
        to_next[j] = static_cast<double>(factor), to_last[j] = static_cast<double>(factor_last);
        last_right += factor_last * right, last_excess += factor_last * excess;
        right = right_of(j + 1) + factor * right, excess = held(j + 1) + factor * excess, link *= factor;
    }
    const Wide end = last_right / last_excess;
    Wide x = end;
    f[last * stride] = static_cast<R>(end);
    for (Int j = last - 1; j >= 0; --j) f[j * stride] = static_cast<R>(x = y[j] + to_next[j] * x + to_last[j] * end);
}

} // namespace ork::pde
