// SPDX-License-Identifier: MIT
// Whether a singular problem has a solution: f and the slopes at Neumann sides, summed by the weights of the scheme
// (half at Neumann ends), must be zero.
#pragma once

#include <limits>

#include "pde/poisson/plan.h"

namespace ork::pde {

// In double precision, whatever the numbers are.
struct Balance {
    double sum = 0, size = 0; // of the terms, and of their magnitudes

    void add(double value) { sum += value, size += value < 0 ? -value : value; }
    void add(const Balance& part, double weight) { sum += weight * part.sum, size += weight * part.size; }

    // Beyond the rounding of numbers that were made to balance. False for NaN.
    template <class R>
    bool is_off() const
    {
        const double rounding = 32 * static_cast<double>(std::numeric_limits<R>::epsilon()) * size;
        return sum > rounding || -sum > rounding;
    }
};

// Of adjacent numbers, the first and the last of which count half when `open`.
template <class R>
Balance balance_of(const R* f, Int count, bool open)
{
    constexpr int chains = 4; // of additions, each with its latency
    Balance part[chains];
    Int i = 0;
    for (; i + chains <= count; i += chains)
#pragma GCC unroll 4
        for (int c = 0; c < chains; ++c) part[c].add(static_cast<double>(f[i + c]));
    for (; i < count; ++i) part[0].add(static_cast<double>(f[i]));
    if (open) {
        Balance ends;
        ends.add(static_cast<double>(f[0])), ends.add(static_cast<double>(f[count - 1]));
        part[0].add(ends, -0.5);
    }
    for (int c = 1; c < chains; ++c) part[0].add(part[c], 1);
    return part[0];
}

// Of a problem whose sides are all Neumann or periodic. last_weight(k) is the weight of place k in the last direction,
// slope the factor of derivatives at its ends.
template <int dimensions, class R, class Weight>
Balance balance_of(const R* f, const R* const (&sides)[2 * dimensions], const Int* ipar, const R* fpar,
                   Weight&& last_weight, double slope)
{
    const auto open = [&](int d) { return d < dimensions && ipar[at_codes + 2 * d] == neumann; };
    const auto places = [&](int d) { return d < dimensions ? ipar[at_intervals + d] + open(d) : Int{1}; };
    const auto weight = [&](int d, Int i) {
        if (d >= dimensions) return 1.0;
        if (d == dimensions - 1) return last_weight(i);
        return open(d) && (i == 0 || i == ipar[at_intervals + d]) ? 0.5 : 1.0;
    };
    const auto slopes = [&](int d) {
        return d == dimensions - 1 ? slope : static_cast<double>(ipar[at_intervals + d]) / static_cast<double>(fpar[d]);
    };
    const Int ny = ipar[at_intervals + 1], row = ipar[at_intervals] + 1, plane = row * (ny + 1);
    const auto along_x = [&](const R* from) { return balance_of(from, places(0), open(0)); };
    Balance all;
    for (Int k = 0; k < places(2); ++k) {
        Balance of_plane;
        for (Int j = 0; j < places(1); ++j) {
            Balance of_row = along_x(f + k * plane + j * row);
            for (int end = 0; open(0) && end < 2; ++end)
                of_row.add(slopes(0) * static_cast<double>(sides[end][k * (ny + 1) + j]));
            of_plane.add(of_row, weight(1, j));
        }
        for (int end = 0; open(1) && end < 2; ++end) of_plane.add(along_x(sides[2 + end] + k * row), slopes(1));
        all.add(of_plane, weight(2, k));
    }
    if constexpr (dimensions == 3)
        for (int end = 0; open(2) && end < 2; ++end)
            for (Int j = 0; j < places(1); ++j) all.add(along_x(sides[4 + end] + j * row), weight(1, j) * slope);
    return all;
}

// The same with equal intervals.
template <int dimensions, class R>
Balance balance_of(const R* f, const R* const (&sides)[2 * dimensions], const Int* ipar, const R* fpar)
{
    constexpr int last = dimensions - 1;
    const Int n = ipar[at_intervals + last];
    const bool open = ipar[at_codes + 2 * last] == neumann;
    return balance_of<dimensions>(
        f, sides, ipar, fpar, [&](Int i) { return open && (i == 0 || i == n) ? 0.5 : 1.0; },
        static_cast<double>(n) / static_cast<double>(fpar[last]));
}

} // namespace ork::pde
