// SPDX-License-Identifier: MIT
// free: what a commit left in the caller's handles and in the array of integers.
#pragma once

#include "pde/poisson/diagnostics.h"
#include "pde/poisson/state.h"
#include "pde/poisson/transforms.h"

namespace ork::pde {

inline ork_dft_descriptor* second_handle(const Int* ipar, int direction)
{
    return reinterpret_cast<ork_dft_descriptor*>(static_cast<std::uintptr_t>(ipar[at_second_handles + direction]));
}

// The handles of x and y, null where there is none, and the second ones. Gives the status of the last that failed.
inline Int release_transforms(Int* ipar, ork_dft_descriptor** xhandle, ork_dft_descriptor** yhandle)
{
    Int failed = ok;
    ork_dft_descriptor** const handles[] = {xhandle, yhandle};
    for (int direction : {0, 1}) {
        for (const bool second : {false, true}) {
            ork_dft_descriptor* descriptor = second                          ? second_handle(ipar, direction)
                                             : handles[direction] != nullptr ? *handles[direction]
                                                                             : nullptr;
            if (descriptor == nullptr) continue;
            Int stat = ok;
            ork_pdett_nx2_free_trig_transform(&descriptor, ipar + transform_integers(direction, second), &stat);
            if (stat != ok) failed = stat;
        }
        if (handles[direction] != nullptr) *handles[direction] = nullptr;
        ipar[at_second_handles + direction] = 0;
    }
    ipar[at_plan_seal] = ipar[at_handle_seal] = 0;
    return failed;
}

// Without a commit the handles may be anything. Handles that are not those of the commit are left alone.
inline void free_solver(ork_dft_descriptor** xhandle, ork_dft_descriptor** yhandle, Int* ipar, Int* stat)
{
    const bool committed = ipar[at_plan_seal] != 0 || ipar[at_handle_seal] != 0;
    store_status(ipar, stat, running);
    Int status = ok;
    if (committed && ipar[at_handle_seal] != handle_seal(ipar, xhandle, yhandle)) {
        status = bad_argument;
        report<double>(Diagnostic::damaged, ipar, nullptr);
    } else if (committed) {
        const Int failed = release_transforms(ipar, xhandle, yhandle);
        if (failed != ok) {
            status = transform_failed;
            report<double>(Diagnostic::transform_free, ipar, nullptr, NumberText(failed).text);
        }
    }
    store_status(ipar, stat, status);
}

} // namespace ork::pde
