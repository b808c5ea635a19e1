// SPDX-License-Identifier: MIT
// Whether a stage may begin. When it can't, that is reported and the status stored; else the problem is running.
#pragma once

#include "pde/poisson/diagnostics.h"
#include "pde/poisson/state.h"

namespace ork::pde {

// States that stages leave behind which didn't spoil the description.
constexpr bool may_commit(Int state)
{
    for (const Int accepted : {0, 9, 90, 99, 900, 909, 990, 999})
        if (state == accepted) return true;
    return false;
}

template <class R>
bool begin_commit(Int* ipar, const R* fpar, Int* stat)
{
    const bool may = may_commit(ipar[at_status]);
    if (!may) report(Diagnostic::wrong_state, ipar, fpar);
    store_status(ipar, stat, may ? running : bad_state);
    return may;
}

template <int dimensions, class R>
bool begin_solve(Int* ipar, const R* fpar, Int* stat)
{
    Int wrong = -1;
    Status status = bad_state;
    if (ipar[at_status] != 0 && ipar[at_status] != 1) wrong = Diagnostic::wrong_state;
    for (int i = 0; i < dimensions && wrong < 0; ++i)
        if (ipar[at_intervals + i] < 1) wrong = Diagnostic::solve_intervals + i, status = bad_argument;
    if (wrong < 0 && ipar[at_plan_seal] == 0)
        wrong = Diagnostic::damaged; // not committed, which the state doesn't tell
    if (wrong >= 0) report(wrong, ipar, fpar);
    store_status(ipar, stat, wrong >= 0 ? status : running);
    return wrong < 0;
}

} // namespace ork::pde
