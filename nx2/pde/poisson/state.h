// SPDX-License-Identifier: MIT
// The array of integers of the solvers on rectangles and boxes: where everything stands, and the seals that tell
// whether it still does. The plan is in ork/abi/pde.h.
#pragma once

#include <bit>
#include <cstdint>

#include "ork/abi/pde.h"
#include "pde/trig/state.h"

namespace ork::pde {

enum PoissonEntry {
    at_status = 0,
    at_errors = 1,
    at_warnings = 2,
    at_codes = 6,
    at_intervals = 12,
    at_tables = 15,     // first and last of x, the same of y
    at_transforms = 19, // arrays of x and of its second transform, the same of y
    at_message_set = 23,
    at_threads = 24,
    at_paths = 25,
    at_singular = 27,
    at_plan_seal = 28,
    at_second_handles = 29, // of x and of y
    at_handle_seal = 31,
    at_interval_seal = 32,
    integers_before_transforms = 40,
};
// Integers of the transforms, by direction and whether it is the second one.
constexpr int transform_integers(int direction, bool second) { return 40 + 20 * direction + (second ? 40 : 0); }

enum PoissonReal { at_lengths = 0, at_q = 3, at_tolerance = 4, reals_before_tables = 5 };

enum BoundaryCode : Int { dirichlet = 0, neumann = 1, periodic = 2 };
enum Pair : Int { dd = 0, dn = 1, nd = 2, nn = 3, pp = 6, unsupported_pair = 7 };

// Pairs 4, 5 and above 6 don't exist; a periodic side beside another kind may look like one that does.
constexpr Pair pair_of(Int a, Int b)
{
    if (a == periodic || b == periodic) return a == b ? pp : unsupported_pair;
    const bool known = (a == dirichlet || a == neumann) && (b == dirichlet || b == neumann);
    return known ? static_cast<Pair>(2 * a + b) : unsupported_pair;
}

// A word that differs when any of the words that were added does. 0 is kept for no seal.
class Seal {
public:
    void add(Int word) { value_ = std::rotl((value_ ^ static_cast<std::uint64_t>(word)) * 0x9e3779b97f4a7c15u, 29); }
    void add(const void* pointer) { add(static_cast<Int>(reinterpret_cast<std::uintptr_t>(pointer))); }
    Int value() const { return static_cast<Int>(value_ | 1); }

private:
    std::uint64_t value_ = 0x243f6a8885a308d3u;
};

// All that a stage goes by when it reads or writes arrays.
template <int dimensions>
Int plan_seal(const Int* ipar)
{
    Seal seal;
    seal.add(dimensions);
    for (int i = 0; i < 2 * dimensions; ++i) seal.add(ipar[at_codes + i]);
    for (int i = 0; i < dimensions; ++i) seal.add(ipar[at_intervals + i]);
    for (int i = at_tables; i < at_message_set; ++i) seal.add(ipar[i]);
    for (int direction = 0; direction < dimensions - 1; ++direction) {
        seal.add(ipar[at_paths + direction]);
        for (const bool second : {false, true}) {
            if (second && ipar[at_paths + direction] >= 0) break;
            const Int* transform = ipar + transform_integers(direction, second);
            for (int entry : {trig_n, trig_type, trig_status, trig_unscaled}) seal.add(transform[entry]);
        }
    }
    return seal.value();
}

inline Int handle_seal(const Int* ipar, ork_dft_descriptor** xhandle, ork_dft_descriptor** yhandle)
{
    Seal seal;
    for (ork_dft_descriptor** handle : {xhandle, yhandle}) seal.add(handle != nullptr ? *handle : nullptr);
    for (int direction : {0, 1}) seal.add(ipar[at_second_handles + direction]);
    return seal.value();
}

// Of init: sizes say how long the caller's arrays are.
template <int dimensions>
Int interval_seal(const Int* ipar)
{
    Seal seal;
    for (int i = 0; i < dimensions; ++i) seal.add(ipar[at_intervals + i]);
    return seal.value();
}

// Points that memory can hold; beyond them positions and sizes in bytes might overflow.
inline bool is_addressable(const Int* intervals, int dimensions)
{
    double points = 1;
    for (int i = 0; i < dimensions; ++i) points *= static_cast<double>(intervals[i]) + 1;
    return points <= 0x1p47;
}

inline Int store_status(Int* ipar, Int* stat, Int status) { return ipar[at_status] = *stat = status; }

} // namespace ork::pde
