// SPDX-License-Identifier: MIT
// commit: checks, tables, transforms.
#pragma once

#include <limits>

#include "pde/poisson/begin.h"
#include "pde/poisson/plan.h"
#include "pde/poisson/release.h"

namespace ork::pde {

// The first thing wrong with the description, as a diagnostic; -1 when all is well.
template <int dimensions, class R>
Int description_fault(const Int* ipar, const R* fpar)
{
    for (int i = 0; i < dimensions; ++i)
        if (ipar[at_intervals + i] < 1) return Diagnostic::commit_intervals + i;
    for (int i = 0; i < 2 * dimensions; ++i) {
        const Int code = ipar[at_codes + i];
        if (code != dirichlet && code != neumann && code != periodic) return Diagnostic::boundary_codes + i;
    }
    constexpr Int unpaired[] = {Diagnostic::unpaired_x, Diagnostic::unpaired_y, Diagnostic::unpaired_z};
    for (int i = 0; i < dimensions; ++i)
        if (pair_at<dimensions>(ipar, i) == unsupported_pair) return unpaired[i];
    for (int i = 0; i < dimensions; ++i)
        if (!(fpar[at_lengths + i] > 0 && fpar[at_lengths + i] <= std::numeric_limits<R>::max()))
            return Diagnostic::lengths + i;
    if (ipar[at_interval_seal] != interval_seal<dimensions>(ipar)) return Diagnostic::damaged;
    if (!is_addressable(ipar + at_intervals, dimensions)) return Diagnostic::too_large;
    return -1;
}

// One transform of a direction; `number` is what diagnostics of the direction add to those of x.
template <class R>
bool set_up_transform(R* f, ork_dft_descriptor** handle, Int n, Int type, Int* transform, R* array, const Int* ipar,
                      const R* fpar, Int number)
{
    Int stat = ok;
    init_transform(n, type, transform, array, &stat);
    if (stat != ok) {
        report(Diagnostic::transform_init + number, ipar, fpar, NumberText(stat).text);
        return false;
    }
    transform[trig_errors] = ipar[at_errors];
    transform[trig_warnings] = ipar[at_warnings];
    transform[trig_message_set] = ipar[at_message_set];
    transform[trig_threads] = ipar[at_threads];
    transform[trig_unscaled] = 1; // a stage scales in passing, and columns of the boundary must not be scaled
    commit_transform(f, handle, transform, array, &stat);
    if (stat != ok) report(Diagnostic::transform_commit + number, ipar, fpar, NumberText(stat).text);
    return stat == ok;
}

template <int dimensions, class R>
bool set_up_transforms(R* f, ork_dft_descriptor** const (&handles)[dimensions - 1], Int* ipar, R* fpar)
{
    for (int direction = 0; direction < dimensions - 1; ++direction) {
        const Int path = ipar[at_paths + direction];
        const Int n = transform_length(path, ipar[at_intervals + direction]);
        const Int* positions = ipar + at_transforms + 2 * direction;
        if (!set_up_transform(f, handles[direction], n, path >= 0 ? path : Int{1},
                              ipar + transform_integers(direction, false), fpar + positions[0] - 1, ipar, fpar,
                              10 * direction))
            return false;
        if (path >= 0) continue;
        ork_dft_descriptor* second = nullptr;
        const bool made = set_up_transform(f, &second, n, 0, ipar + transform_integers(direction, true),
                                           fpar + positions[1] - 1, ipar, fpar, 10 * direction + 10000);
        ipar[at_second_handles + direction] = static_cast<Int>(reinterpret_cast<std::uintptr_t>(second));
        if (!made) return false;
    }
    return true;
}

template <int dimensions, class R>
Int commit_checked(R* f, ork_dft_descriptor** const (&handles)[dimensions - 1], Int* ipar, R* fpar)
{
    Int fault = description_fault<dimensions>(ipar, fpar);
    if (fault < 0 && dimensions == 3 && handles[0] == handles[dimensions - 2]) fault = Diagnostic::shared_handle;
    if (fault >= 0) {
        report(fault, ipar, fpar);
        return bad_argument;
    }
    if (fpar[at_q] < 0) report(Diagnostic::negative_q, ipar, fpar);

    ork_dft_descriptor **xhandle = handles[0], **yhandle = dimensions == 3 ? handles[dimensions - 2] : nullptr;
    if (ipar[at_handle_seal] != 0 && ipar[at_handle_seal] == handle_seal(ipar, xhandle, yhandle))
        release_transforms(ipar, xhandle, yhandle);
    ipar[at_plan_seal] = ipar[at_handle_seal] = 0;
    for (int direction = 0; direction < dimensions - 1; ++direction) {
        *handles[direction] = nullptr;
        ipar[at_second_handles + direction] = 0;
        ipar[at_paths + direction] = path_of(pair_at<dimensions>(ipar, direction), ipar[at_intervals + direction]);
    }
    if constexpr (dimensions == 2)
        plan_2d(ipar);
    else
        plan_3d(ipar);
    fill_tables<dimensions>(ipar, fpar);
    if (!set_up_transforms<dimensions>(f, handles, ipar, fpar)) {
        release_transforms(ipar, xhandle, yhandle);
        return transform_failed;
    }
    ipar[at_singular] = is_singular<dimensions>(ipar, fpar);
    if (ipar[at_singular] != 0) report(Diagnostic::singular_problem, ipar, fpar);
    ipar[at_plan_seal] = plan_seal<dimensions>(ipar);
    ipar[at_handle_seal] = handle_seal(ipar, xhandle, yhandle);
    return ok;
}

template <int dimensions, class R>
void commit(R* f, ork_dft_descriptor** const (&handles)[dimensions - 1], Int* ipar, R* fpar, Int* stat)
{
    if (begin_commit(ipar, fpar, stat)) store_status(ipar, stat, commit_checked<dimensions>(f, handles, ipar, fpar));
}

} // namespace ork::pde
