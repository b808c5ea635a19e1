// SPDX-License-Identifier: MIT
// What a commit lays out: how each direction is transformed, where tables and arrays of the transforms stand, and the
// tables of eigenvalues.
#pragma once

#include "frame/core_imports.h"
#include "pde/poisson/state.h"

namespace ork::pde {

// The type of the transform, or how a periodic direction is taken apart.
constexpr Int path_of(Pair pair, Int n)
{
    switch (pair) {
    case dd:
        return 0;
    case nn:
        return 1;
    case pp:
        return n % 2 == 0 && n > 2 ? halves : whole;
    default:
        return 2;
    }
}

// Of a periodic direction's two transforms; of the one of the others.
constexpr Int transform_length(Int path, Int n) { return path == halves ? n / 2 : n; }

// Where a direction's arrays stand, positions from 1, and where the room behind them begins.
struct Positions {
    Int first, second, end;
};
constexpr Positions transform_positions(Int path, Int n, Int begin)
{
    const Int length = transform_reals(transform_length(path, n)), second = begin + length;
    return {begin, path < 0 ? second : 0, path < 0 ? second + length : second};
}

inline void plan_2d(Int* ipar)
{
    const Int nx = ipar[at_intervals], ny = ipar[at_intervals + 1], path = ipar[at_paths];
    const Positions x = transform_positions(path, nx, path < 0 ? nx + ny + 10 : nx + 7);
    const Int plan[] = {6, nx + 6, 0, 0, x.first, path < 0 ? x.second : nx + 7 + 3 * nx / 2, 0, 0};
    for (int i = 0; i < 8; ++i) ipar[at_tables + i] = plan[i];
}

inline void plan_3d(Int* ipar)
{
    const Int nx = ipar[at_intervals], ny = ipar[at_intervals + 1];
    const Positions x = transform_positions(ipar[at_paths], nx, nx + ny + 8);
    const Positions y = transform_positions(ipar[at_paths + 1], ny, x.end);
    const Int plan[] = {6, nx + 6, nx + 7, nx + ny + 7, x.first, x.second, y.first, y.second};
    for (int i = 0; i < 8; ++i) ipar[at_tables + i] = plan[i];
}

// Half the angle theta of the mode at `place`, in units of pi / 4n; of a place without a mode its neighbour's.
constexpr Int half_angle(Pair pair, Int path, Int n, Int place)
{
    switch (pair) {
    case dd:
        return 2 * (place == 0 ? 1 : place == n ? n - 1 : place);
    case nd:
        return 2 * (place == n ? n - 1 : place) + 1;
    case dn:
        return 2 * (place == 0 ? n - 1 : n - place) + 1;
    case pp: {
        const Int last = place == n ? n - 1 : place;
        if (path == halves) return 4 * (last <= n / 2 ? last : last - n / 2);
        return 4 * ((last + 1) / 2);
    }
    default:
        return 2 * place;
    }
}

// entry = shift + scale * 4 sin(theta / 2)^2, where 2 - 2 cos theta would lose the small ones.
template <class R>
void fill_table(R* table, Pair pair, Int path, Int n, double scale, double shift)
{
    constexpr double pi = 3.14159265358979323846;
    for (Int place = 0; place <= n; ++place) {
        const double angle = static_cast<double>(half_angle(pair, path, n, place)) * pi / static_cast<double>(4 * n);
        const double sine = ork_serv_libm_sin(angle);
        table[place] = static_cast<R>(shift + scale * (4 * sine * sine));
    }
}

template <int dimensions>
Pair pair_at(const Int* ipar, int direction)
{
    static_assert(dimensions == 2 || dimensions == 3);
    return pair_of(ipar[at_codes + 2 * direction], ipar[at_codes + 2 * direction + 1]);
}

template <int dimensions, class R>
void fill_tables(const Int* ipar, R* fpar)
{
    double steps[dimensions];
    for (int i = 0; i < dimensions; ++i)
        steps[i] = static_cast<double>(fpar[at_lengths + i]) / static_cast<double>(ipar[at_intervals + i]);
    const double h = steps[dimensions - 1];
    for (int i = 0; i < dimensions - 1; ++i) {
        const double ratio = h / steps[i];
        const double shift = i == dimensions - 2 ? 2 + h * h * static_cast<double>(fpar[at_q]) : 0;
        fill_table(fpar + ipar[at_tables + 2 * i] - 1, pair_at<dimensions>(ipar, i), ipar[at_paths + i],
                   ipar[at_intervals + i], ratio * ratio, shift);
    }
}

// No side holds the constants.
template <int dimensions>
bool all_sides_free(const Int* ipar)
{
    for (int i = 0; i < dimensions; ++i)
        if (const Pair pair = pair_at<dimensions>(ipar, i); pair != nn && pair != pp) return false;
    return true;
}

// Neither does q: the table's first entry is 2, but for the tolerance. Beside the 2 single precision would lose it.
template <int dimensions, class R>
bool is_singular(const Int* ipar, const R* fpar)
{
    constexpr int last = dimensions - 1;
    const R h = fpar[at_lengths + last] / static_cast<R>(ipar[at_intervals + last]), off = h * h * fpar[at_q];
    return all_sides_free<dimensions>(ipar) && off <= fpar[at_tolerance] && -off <= fpar[at_tolerance];
}

} // namespace ork::pde
