// SPDX-License-Identifier: MIT
// solve: values of Dirichlet sides into f, then the core's stages one after another.
#pragma once

#include <cstddef>
#include <cstring>

#include "pde/poisson/balance.h"
#include "pde/poisson/begin.h"
#include "pde/poisson/plan.h"
#include "pde/poisson/release.h"
#include "pde/poisson/stage_calls.h"

namespace ork::pde {

// x, y, z one after the other: an edge has the values of the later side.
template <int dimensions, class R>
void copy_dirichlet(R* f, const R* const (&sides)[2 * dimensions], const Int* ipar)
{
    const Int* n = ipar + at_intervals;
    const Int row = n[0] + 1, plane = row * (n[1] + 1), planes = dimensions == 3 ? n[2] + 1 : 1;
    const auto given = [&](int side) { return ipar[at_codes + side] == dirichlet; };
    for (int end : {0, 1})
        if (given(end))
            for (Int j = 0; j < (n[1] + 1) * planes; ++j) f[end * n[0] + j * row] = sides[end][j];
    for (int end : {0, 1})
        if (given(2 + end))
            for (Int k = 0; k < planes; ++k)
                std::memcpy(f + k * plane + end * n[1] * row, sides[2 + end] + k * row,
                            static_cast<std::size_t>(row) * sizeof(R));
    if constexpr (dimensions == 3)
        for (int end : {0, 1})
            if (given(4 + end))
                std::memcpy(f + end * n[2] * plane, sides[4 + end], static_cast<std::size_t>(plane) * sizeof(R));
}

// Runs a stage unless an earlier one has failed; gives the diagnostic of its failure, or what it was given.
template <class R>
Int run_stage(Int failed, Int diagnostic, void (&stage)(Pair, Work<R>*), Pair pair, Work<R>* work)
{
    if (work->status != 0) return failed;
    stage(pair, work);
    return work->status != 0 ? diagnostic : failed;
}

// Gives the diagnostic of a stage that failed, -1 when all went well.
template <int dimensions, class R>
Int run_stages(Work<R>* work, const Pair (&pairs)[dimensions])
{
    Int failed = -1;
    if constexpr (dimensions == 2) {
        failed = run_stage<R>(failed, Diagnostic::stage_ft, ft_2d, pairs[0], work);
        failed = run_stage<R>(failed, Diagnostic::stage_lu, lu_2d, pairs[1], work);
        failed = run_stage<R>(failed, Diagnostic::stage_inv_ft, inv_ft_2d, pairs[0], work);
    } else {
        failed = run_stage<R>(failed, Diagnostic::stage_ft, ft_3d_x, pairs[0], work);
        failed = run_stage<R>(failed, Diagnostic::stage_ft, ft_3d_y, pairs[1], work);
        failed = run_stage<R>(failed, Diagnostic::stage_lu, ft_3d_z, pairs[2], work);
        failed = run_stage<R>(failed, Diagnostic::stage_inv_ft, inv_ft_3d_z, pairs[2], work);
        failed = run_stage<R>(failed, Diagnostic::stage_inv_ft, inv_ft_3d_y, pairs[1], work);
        failed = run_stage<R>(failed, Diagnostic::stage_inv_ft, inv_ft_3d_x, pairs[0], work);
    }
    return failed;
}

template <int dimensions, class R>
Int solve_checked(R* f, const R* const (&sides)[2 * dimensions], ork_dft_descriptor** const (&handles)[dimensions - 1],
                  Int* ipar, R* fpar)
{
    // A pair that doesn't exist is the status of the stage that would have met it.
    Pair pairs[dimensions];
    Int no_stage = -1;
    for (int i = dimensions - 1; i >= 0; --i) {
        pairs[i] = pair_at<dimensions>(ipar, i);
        if (pairs[i] == unsupported_pair) no_stage = i == dimensions - 1 ? Diagnostic::stage_lu : Diagnostic::stage_ft;
    }
    if (no_stage >= 0) {
        report(no_stage, ipar, fpar, NumberText(Int{unsupported_pair}).text);
        return bad_argument;
    }
    ork_dft_descriptor **xhandle = handles[0], **yhandle = dimensions == 3 ? handles[dimensions - 2] : nullptr;
    if (ipar[at_plan_seal] != plan_seal<dimensions>(ipar) ||
        ipar[at_handle_seal] != handle_seal(ipar, xhandle, yhandle)) {
        report(Diagnostic::damaged, ipar, fpar);
        return bad_argument;
    }

    auto* work = static_cast<Work<R>*>(ork_serv_allocate(sizeof(Work<R>), 64));
    if (work == nullptr) {
        report(Diagnostic::no_memory, ipar, fpar);
        return bad_argument;
    }
    const bool singular = is_singular<dimensions>(ipar, fpar);
    const bool off =
        singular && ipar[at_warnings] != 0 && balance_of<dimensions>(f, sides, ipar, fpar).template is_off<R>();
    copy_dirichlet<dimensions>(f, sides, ipar);
    ork_dft_descriptor *xsecond = second_handle(ipar, 0), *ysecond = second_handle(ipar, 1);
    *work = {};
    work->f = f;
    work->bd_ax = sides[0], work->bd_bx = sides[1], work->bd_ay = sides[2], work->bd_by = sides[3];
    if constexpr (dimensions == 3) work->bd_az = sides[4], work->bd_bz = sides[5];
    work->ipar = ipar, work->fpar = fpar;
    work->nx = ipar[at_intervals], work->ny = ipar[at_intervals + 1];
    work->nz = dimensions == 3 ? ipar[at_intervals + 2] : 0;
    work->xhandle = xhandle, work->yhandle = yhandle;
    work->xsecond = xsecond != nullptr ? &xsecond : nullptr;
    work->ysecond = ysecond != nullptr ? &ysecond : nullptr;
    work->singular = ipar[at_singular] = singular;
    const Int failed = run_stages<dimensions>(work, pairs);
    const NumberText status(work->status);
    ork_serv_deallocate(work);
    if (failed >= 0) {
        report(failed, ipar, fpar, status.text);
        return bad_argument;
    }
    if (off) report(Diagnostic::incompatible, ipar, fpar);
    return ok;
}

template <int dimensions, class R>
void solve(R* f, const R* const (&sides)[2 * dimensions], ork_dft_descriptor** const (&handles)[dimensions - 1],
           Int* ipar, R* fpar, Int* stat)
{
    if (begin_solve<dimensions>(ipar, fpar, stat))
        store_status(ipar, stat, solve_checked<dimensions>(f, sides, handles, ipar, fpar));
}

} // namespace ork::pde
