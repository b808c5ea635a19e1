// SPDX-License-Identifier: MIT
// The Helmholtz equation in a box whose nodes along z are given: transforms in x and y by the core's stages,
// tridiagonal systems in z here. Arrays are planned as for helmholtz_3d; behind that plan stand the reciprocal steps in
// z and the weights of the nodes. Tables hold the plain eigenvalues of x and y.
#include <limits>
#include <utility>

#include "frame/core_imports.h"
#include "frame/export.h"
#include "ork/abi/core_pde.h"
#include "ork/abi/pde_sphere.h"
#include "pde/held_by_q.h"
#include "pde/poisson/commit.h"
#include "pde/poisson/init.h"
#include "pde/poisson/nonuniform_systems.h"
#include "pde/poisson/solve.h"

namespace ork::pde {
namespace {

using R = float;

// Of the seal of helmholtz_3d, whose plan this one isn't.
Int nonuniform_seal(const Int* ipar) { return plan_seal<3>(ipar) ^ 2; }

struct Nodes {
    Pair pair;
    Int nz, first, count; // planes that are unknown
    const R *between,
        *weight; // 1 / (z(k) - z(k-1)), 0 where there is no neighbour; half the distance of the neighbours

    Nodes(const Int* ipar, const R* fpar)
        : pair(pair_at<3>(ipar, 2)), nz(ipar[at_intervals + 2]), first(pair == dd || pair == dn ? 1 : 0),
          count((pair == dn || pair == nn ? nz + 1 : nz) - first),
          between(fpar + reals_3d(ipar[at_intervals], ipar[at_intervals + 1])), weight(between + nz + 2)
    {
    }
};

bool are_nodes(const R* z, Int nz)
{
    for (Int k = 0; k < nz; ++k)
        if (!(z[k] < z[k + 1]) || !(z[k + 1] - z[k] <= std::numeric_limits<R>::max())) return false;
    return z[nz] - z[0] <= std::numeric_limits<R>::max();
}

void make_tables(const R* z, const Int* ipar, R* fpar)
{
    for (const int i : {0, 1}) {
        const double step = static_cast<double>(fpar[at_lengths + i]) / static_cast<double>(ipar[at_intervals + i]);
        fill_table(fpar + ipar[at_tables + 2 * i] - 1, pair_at<3>(ipar, i), ipar[at_paths + i], ipar[at_intervals + i],
                   1 / (step * step), 0);
    }
    const Nodes nodes(ipar, fpar);
    R *between = fpar + (nodes.between - fpar), *weight = between + nodes.nz + 2;
    const Int nz = nodes.nz;
    const auto step = [&](Int k) { return double{z[k + 1]} - double{z[k]}; };
    for (Int k = 0; k < nz; ++k) between[k + 1] = static_cast<R>(1 / step(k));
    between[0] = nodes.pair == pp ? between[nz] : R{};
    between[nz + 1] = R{};
    const double around = nodes.pair == pp ? 1 : 0;
    for (Int k = 0; k <= nz; ++k) {
        const double below = k > 0 ? step(k - 1) : around * step(nz - 1), above = k < nz ? step(k) : around * step(0);
        weight[k] = static_cast<R>((below + above) / 2);
    }
}

Int commit_nodes(R* f, const R* z, ork_dft_descriptor** xhandle, ork_dft_descriptor** yhandle, Int* ipar, R* fpar)
{
    fpar[at_lengths + 2] = 1; // of the nodes, below
    Int fault = description_fault<3>(ipar, fpar);
    if (fault < 0 && !are_nodes(z, ipar[at_intervals + 2])) fault = Diagnostic::lengths + 2;
    if (fault < 0 && xhandle == yhandle) fault = Diagnostic::shared_handle;
    if (fault >= 0) {
        report(fault, ipar, fpar);
        return bad_argument;
    }
    fpar[at_lengths + 2] = z[ipar[at_intervals + 2]] - z[0];
    if (fpar[at_q] < 0) report(Diagnostic::negative_q, ipar, fpar);
    if (ipar[at_handle_seal] != 0 && ipar[at_handle_seal] == handle_seal(ipar, xhandle, yhandle))
        release_transforms(ipar, xhandle, yhandle);
    ipar[at_plan_seal] = ipar[at_handle_seal] = 0;
    *xhandle = *yhandle = nullptr;
    for (const int i : {0, 1}) {
        ipar[at_second_handles + i] = 0;
        ipar[at_paths + i] = path_of(pair_at<3>(ipar, i), ipar[at_intervals + i]);
    }
    plan_3d(ipar);
    make_tables(z, ipar, fpar);
    if (!set_up_transforms<3, R>(f, {xhandle, yhandle}, ipar, fpar)) {
        release_transforms(ipar, xhandle, yhandle);
        return transform_failed;
    }
    ipar[at_singular] = is_singular<3>(ipar, fpar);
    if (ipar[at_singular] != 0) report(Diagnostic::singular_problem, ipar, fpar);
    ipar[at_plan_seal] = nonuniform_seal(ipar);
    ipar[at_handle_seal] = handle_seal(ipar, xhandle, yhandle);
    return ok;
}

// Everything that one solve needs beside the caller's arrays, in one piece.
struct Solving {
    Work<R> work;
    Int ipar[128]; // the stages are shown unknown planes that have nothing beside them
    R *eigenvalues, *off, *base, *scale, *column, *lines;
};

Solving* allocate_solving(Int nx, Int nz)
{
    const auto whole = [](Int n) { return (n + 15) / 16 * 16; };
    const Int row = whole(nx + 1), planes = whole(nz + 2), reals = row + 4 * planes + systems_work<R>(nz + 1);
    constexpr std::size_t head = (sizeof(Solving) + 63) / 64 * 64;
    auto* s = static_cast<Solving*>(ork_serv_allocate(head + static_cast<std::size_t>(reals) * sizeof(R), 64));
    if (s == nullptr) return nullptr;
    R* next = reinterpret_cast<R*>(reinterpret_cast<char*>(s) + head);
    const auto take = [&](Int n) { return std::exchange(next, next + n); };
    s->eigenvalues = take(row), s->off = take(planes), s->base = take(planes), s->scale = take(planes);
    s->column = take(planes), s->lines = take(0);
    return s;
}

struct Range {
    Int first, end;
};
Range unknowns(const Int* ipar, int direction)
{
    const Pair pair = pair_at<3>(ipar, direction);
    const Int n = ipar[at_intervals + direction];
    return {pair == dd || pair == dn ? 1 : 0, pair == dn || pair == nn ? n + 1 : n};
}

// What the sides of z add to f at unknown points: the terms of known neighbours, and slopes.
void add_sides(R* f, const R* bd_az, const R* bd_bz, const Int* ipar, const Nodes& nodes)
{
    const Int row = ipar[at_intervals] + 1, plane = row * (ipar[at_intervals + 1] + 1);
    const Range columns = unknowns(ipar, 0), rows = unknowns(ipar, 1);
    const auto add = [&](Int k, R factor, const R* values) {
        for (Int j = rows.first; j < rows.end; ++j)
            for (Int i = columns.first; i < columns.end; ++i)
                f[k * plane + j * row + i] += factor * values[j * row + i];
    };
    for (const int end : {0, 1}) {
        const Int k = end == 0 ? nodes.first : nodes.first + nodes.count - 1, beside = end == 0 ? k - 1 : k + 1;
        const Int code = ipar[at_codes + 4 + end];
        if (code == dirichlet) add(k, nodes.between[end == 0 ? k : k + 1] / nodes.weight[k], f + beside * plane);
        if (code == neumann) add(k, 1 / nodes.weight[k], end == 0 ? bd_az : bd_bz);
    }
}

void solve_lines(Solving& s, R* f, const Nodes& nodes, const Int* ipar, const R* fpar)
{
    const Int nx = ipar[at_intervals], ny = ipar[at_intervals + 1], row = nx + 1, plane = row * (ny + 1);
    const R h = fpar[at_lengths + 2] / static_cast<R>(nodes.count), factor = 1 / (h * h); // the stages have put h^2 in
    const Int first = nodes.first, count = nodes.count;
    const bool cyclic = nodes.pair == pp && count > 1;
    for (Int j = 0; j < count; ++j) {
        const Int k = first + j;
        const R below = nodes.between[k], above = nodes.between[k + 1];
        s.off[j] = j > 0 || cyclic ? below : R{};
        // One cell that is its own neighbour.
        s.base[j] = (nodes.pair == pp && !cyclic ? R{} : below + above) + fpar[at_q] * nodes.weight[k];
        s.scale[j] = nodes.weight[k] * factor;
    }
    s.off[count] = cyclic ? s.off[0] : R{};
    const Line<R> line{count, cyclic ? Ends::periodic : Ends::known, s.off, s.base, nodes.weight + first, s.scale};

    const Range columns = unknowns(ipar, 0), rows = unknowns(ipar, 1);
    const R *of_x = fpar + ipar[at_tables] - 1, *of_y = fpar + ipar[at_tables + 2] - 1;
    R* const unknown = f + first * plane;
    const bool constants = all_sides_free<3>(ipar);
    if (constants) {
        for (Int j = 0; j < count; ++j) s.column[j] = unknown[j * plane];
        if (ipar[at_singular] != 0)
            solve_singular(line, s.column, 1);
        else
            solve_held_by_q(
                count, cyclic, [&](Int k) { return s.off[k]; }, [&](Int k) { return s.scale[k]; }, fpar[at_q] * (h * h),
                s.column, 1, reinterpret_cast<double*>(s.lines));
    }
    for (Int j = rows.first; j < rows.end; ++j) {
        for (Int i = columns.first; i < columns.end; ++i) s.eigenvalues[i] = of_x[i] + of_y[j];
        if (constants && j == 0) s.eigenvalues[0] = 1; // solved already
        solve_systems(line, columns.end - columns.first, s.eigenvalues + columns.first,
                      unknown + j * row + columns.first, plane, s.lines);
    }
    for (Int j = 0; constants && j < count; ++j) unknown[j * plane] = s.column[j];
}

Int solve_nodes(R* f, const R* const (&sides)[6], ork_dft_descriptor** xhandle, ork_dft_descriptor** yhandle, Int* ipar,
                R* fpar)
{
    if (ipar[at_plan_seal] != nonuniform_seal(ipar) || ipar[at_handle_seal] != handle_seal(ipar, xhandle, yhandle)) {
        report(Diagnostic::damaged, ipar, fpar);
        return bad_argument;
    }
    const Nodes nodes(ipar, fpar);
    const Int nx = ipar[at_intervals], ny = ipar[at_intervals + 1], plane = (nx + 1) * (ny + 1);
    Solving* s = allocate_solving(nx, nodes.nz);
    if (s == nullptr) {
        report(Diagnostic::no_memory, ipar, fpar);
        return bad_argument;
    }
    ipar[at_singular] = is_singular<3>(ipar, fpar);
    const auto weight = [&](Int k) { return static_cast<double>(nodes.weight[k]); };
    const bool off =
        ipar[at_singular] != 0 && ipar[at_warnings] != 0 && balance_of<3>(f, sides, ipar, fpar, weight, 1).is_off<R>();
    copy_dirichlet<3>(f, sides, ipar);
    if (nodes.count > 0) add_sides(f, sides[4], sides[5], ipar, nodes);
    std::memcpy(s->ipar, ipar, sizeof s->ipar);
    ork_dft_descriptor *xsecond = second_handle(ipar, 0), *ysecond = second_handle(ipar, 1);
    Work<R>& work = s->work;
    work = {};
    work.bd_ax = sides[0], work.bd_bx = sides[1], work.bd_ay = sides[2], work.bd_by = sides[3];
    work.ipar = s->ipar, work.fpar = fpar;
    work.nx = nx, work.ny = ny, work.nz = nodes.count;
    work.xhandle = xhandle, work.yhandle = yhandle;
    work.xsecond = xsecond != nullptr ? &xsecond : nullptr;
    work.ysecond = ysecond != nullptr ? &ysecond : nullptr;
    // On the way there the stages see the unknown planes as those of a periodic direction, to which z adds nothing.
    // Boundary values on x and y are indexed by plane.
    const Pair x = pair_at<3>(ipar, 0), y = pair_at<3>(ipar, 1);
    const auto shift = [&](const R*& bd, Int length) {
        if (bd != nullptr) bd += nodes.first * length;
    };
    shift(work.bd_ax, ny + 1), shift(work.bd_bx, ny + 1), shift(work.bd_ay, nx + 1), shift(work.bd_by, nx + 1);
    Int failed = -1;
    if (nodes.count > 0) {
        work.f = f + nodes.first * plane;
        s->ipar[at_codes + 4] = s->ipar[at_codes + 5] = periodic;
        failed = run_stage<R>(failed, Diagnostic::stage_ft, ft_3d_x, x, &work);
        failed = run_stage<R>(failed, Diagnostic::stage_ft, ft_3d_y, y, &work);
        if (work.status == 0) solve_lines(*s, f, nodes, ipar, fpar);
        failed = run_stage<R>(failed, Diagnostic::stage_inv_ft, inv_ft_3d_y, y, &work);
    }
    work.f = f, work.nz = nodes.nz, work.ipar = ipar;
    failed = run_stage<R>(failed, Diagnostic::stage_inv_ft, inv_ft_3d_x, x, &work);
    const NumberText status(work.status);
    ork_serv_deallocate(s);
    if (failed >= 0) {
        report(failed, ipar, fpar, status.text);
        return bad_argument;
    }
    if (off) report(Diagnostic::incompatible, ipar, fpar);
    return ok;
}

} // namespace
} // namespace ork::pde

using namespace ork::pde;

ORK_EXPORT void ork_pdepl_nx2_s_init_helmholtz_nonuniform_3d(const float* ax, const float* bx, const float* ay,
                                                             const float* by, const Int* nx, const Int* ny,
                                                             const Int* nz, const char* BCtype, const float* q,
                                                             Int* ipar, float* fpar, Int* stat)
{
    const float zero = 0, one = 1;
    init<3, float>({ax, bx, ay, by, &zero, &one}, {nx, ny, nz}, BCtype, *q, ipar, fpar, stat);
}

ORK_EXPORT void ork_pdepl_nx2_s_commit_helmholtz_nonuniform_3d(float* f, const float* z, ork_dft_descriptor** xhandle,
                                                               ork_dft_descriptor** yhandle, Int* ipar, float* fpar,
                                                               Int* stat)
{
    if (begin_commit(ipar, fpar, stat)) store_status(ipar, stat, commit_nodes(f, z, xhandle, yhandle, ipar, fpar));
}

ORK_EXPORT void ork_pdepl_nx2_s_helmholtz_nonuniform_3d(float* f, const float* bd_ax, const float* bd_bx,
                                                        const float* bd_ay, const float* bd_by, const float* bd_az,
                                                        const float* bd_bz, ork_dft_descriptor** xhandle,
                                                        ork_dft_descriptor** yhandle, Int* ipar, float* fpar, Int* stat)
{
    if (!begin_solve<3>(ipar, fpar, stat)) return;
    store_status(ipar, stat, solve_nodes(f, {bd_ax, bd_bx, bd_ay, bd_by, bd_az, bd_bz}, xhandle, yhandle, ipar, fpar));
}
