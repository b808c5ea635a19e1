// SPDX-License-Identifier: MIT
// What went wrong in a solver, as texts of the core's catalogue.
#pragma once

#include "ork/abi/pde.h"

namespace ork::pde {

struct Diagnostic {
    enum : Int {
        solve_intervals = 0, // this and the two after it: x, y, z
        lengths = 3,         // the same
        boundary_codes = 6,  // to 11: ax, bx, ay, by, az, bz
        wrong_state = 12,
        transform_init = 23, // 10000 higher of the second transform, 10 higher of y
        transform_commit = 24,
        stage_ft = 25,
        stage_lu = 26,
        stage_inv_ft = 27,
        no_memory = 28,
        transform_free = 29,
        commit_intervals = 10000, // as solve_intervals
        unpaired_x = 10067,
        unpaired_y = 10089,
        unpaired_z = 10111,
        damaged = 10200,
        too_large = 10201,
        shared_handle = 10202,
        singular_problem = 10900,
        incompatible = 10903,
        negative_q = 10904,
    };
};

// Prints or appends to the log file as the switches in ipar say, from the set of messages that ipar[23] chooses. Only
// the diagnostics that show a real number read fpar.
template <class R>
void report(Int code, const Int* ipar, const R* fpar, const char* argument = "");

// An integer as the text that messages take.
struct NumberText {
    explicit NumberText(Int value);
    explicit NumberText(double value);
    char text[22];
};

} // namespace ork::pde
