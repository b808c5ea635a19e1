// SPDX-License-Identifier: MIT
// init: the arrays from the caller's description, which is not looked into.
#pragma once

#include "ork/abi/core_pde.h"
#include "pde/poisson/state.h"

namespace ork::pde {

constexpr Int code_of(char letter)
{
    switch (letter) {
    case 'd':
    case 'D':
        return dirichlet;
    case 'n':
    case 'N':
        return neumann;
    case 'p':
    case 'P':
        return periodic;
    default:
        return -1;
    }
}

// `ends` are the two ends of every direction. Letters behind the end of a text that is too short are unknown ones.
template <int dimensions, class R>
void init(const R* const (&ends)[2 * dimensions], const Int* const (&intervals)[dimensions], const char* letters, R q,
          Int* ipar, R* fpar, Int* stat)
{
    store_status(ipar, stat, running);
    for (int i = 1; i < integers_before_transforms; ++i) ipar[i] = 0;
    for (int i = 0; i < reals_before_tables; ++i) fpar[i] = 0;
    for (int i = 0; i < 2 * dimensions; ++i) {
        ipar[at_codes + i] = code_of(*letters);
        letters += *letters != 0;
    }
    for (int i = 0; i < dimensions; ++i) {
        ipar[at_intervals + i] = *intervals[i];
        fpar[at_lengths + i] = *ends[2 * i + 1] - *ends[2 * i];
    }
    fpar[at_q] = q;
    fpar[at_tolerance] = static_cast<R>(1e-10);
    ipar[at_errors] = ipar[at_warnings] = ipar[at_message_set] = 1;
    ipar[at_interval_seal] = interval_seal<dimensions>(ipar);
    ipar[at_threads] = ork_pdepl_pl_get_max_thread();
    store_status(ipar, stat, ok);
}

} // namespace ork::pde
