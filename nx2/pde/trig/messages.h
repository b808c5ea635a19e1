// SPDX-License-Identifier: MIT
// Errors and warnings of trigonometric transforms as texts of the core's catalogue.
#pragma once

#include "pde/trig/state.h"

namespace ork::pde {

enum TrigMessage {
    not_initialised = 0, // a commit found a status
    small_n = 1,
    unknown_type = 3,
    not_committed = 5, // a computation found a status
    n_is_zero = 6,
    negative_tolerance = 300,
    boundary_0 = 302, // f[0] of type 0
    boundary_n = 303, // f[n] of type 0
    cosine_end = 307, // f[n] of type 2
    negative_threads = 308,
    sine_begin = 309, // f[0] of type 3
    dft_failed = 1001,
};

// What messages show beside ipar. `value` is the number complained of, `dft_status` that of the Fourier transform.
struct TrigReport {
    TrigMessage code;
    double value = 0, tolerance = 0;
    Int dft_status = 0;
};

// Prints or logs as the switches in ipar say.
void report(const TrigReport& what, const Int* ipar);

} // namespace ork::pde
