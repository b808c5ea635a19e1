// SPDX-License-Identifier: MIT
// The parameter arrays of one trigonometric transform, which the caller keeps between stages.
#pragma once

#include <cstdint>

#include "ork/abi/pde.h"

namespace ork::pde {

// Integers.
enum TrigEntry {
    trig_n = 0,
    trig_errors = 1,      // 0: silent, > 0: errors to standard output, < 0: to the log file
    trig_warnings = 2,    // the same of warnings
    trig_type = 5,        // 0 to 5
    trig_status = 6,      // of the latest stage
    trig_set_up = 7,      // 0: a commit leaves the handle as it is, committed by an earlier one
    trig_message_set = 8, // which of two sets of messages
    trig_threads = 9,     // of the user, for the Fourier transform
    trig_unscaled = 10,   // not 0: no scaling, no look at boundary values
};

// Numbers: the tolerance of boundary values; the mark that a commit leaves; the tables.
constexpr int trig_tolerance = 0, trig_mark = 1, trig_tables = 2;

constexpr bool is_trig_type(Int type) { return type >= 0 && type <= 5; }

} // namespace ork::pde
