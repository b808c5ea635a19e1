// SPDX-License-Identifier: MIT
// Init, commit and free of the problems on the sphere.
#include "frame/core_imports.h"
#include "frame/export.h"
#include "ork/abi/core_pde.h"
#include "pde/poisson/commit.h"
#include "pde/poisson/sphere.h"

namespace ork::pde {
namespace {

using A = SphereArray;

template <class R>
constexpr R rounding = sizeof(R) == 4 ? R(0x1p-23) : R(0x1p-52);

template <bool around, class R>
void init(R ap, R bp, R at, R bt, Int np, Int nt, R q, Int* ipar, R* fpar, Int* stat)
{
    store_status(ipar, stat, running);
    for (int i = 1; i < integers_before_transforms; ++i) ipar[i] = 0;
    for (const int transform : {A::sine, A::cosine})
        for (int i = 0; i < 20; ++i) ipar[transform + i] = 0;
    ipar[A::error_switch] = ipar[A::warning_switch] = ipar[A::message_set] = 1;
    const auto near = [](R a, double b) { return a - b <= 4 * rounding<R> && b - a <= 4 * rounding<R>; };
    ipar[A::west] = ipar[A::east] = around ? side_circle : side_values;
    ipar[A::north] = around && near(at, 0) ? side_pole : side_values;
    ipar[A::south] = around && near(bt, pi) ? side_pole : side_values;
    ipar[A::np] = np, ipar[A::nt] = nt;
    ipar[at_interval_seal] = interval_seal<2>(ipar);
    ipar[A::threads] = ork_pdepl_pl_get_max_thread();
    fpar[0] = bp - ap, fpar[1] = bt - at, fpar[2] = at, fpar[at_q] = q, fpar[at_tolerance] = R(1e-10);
    store_status(ipar, stat, ok);
}

double sine_of(double theta) { return ork_serv_libm_sin(theta < pi / 2 ? theta : pi - theta); }

template <class R>
void make_tables(const SpherePlan& plan, const Int* ipar, R* fpar)
{
    const Int nt = ipar[A::nt];
    const double hp = double{fpar[0]} / static_cast<double>(ipar[A::np]);
    for (Int k = 0; k <= plan.length; ++k) {
        const double root =
            2 / hp * ork_serv_libm_sin(pi * static_cast<double>(k) / static_cast<double>(2 * plan.length));
        fpar[plan.eigenvalues + k] = static_cast<R>(root * root);
    }
    const bool north = ipar[A::north] == side_pole, south = ipar[A::south] == side_pole;
    const double at = north ? 0 : double{fpar[2]}, bt = south ? pi : double{fpar[2]} + double{fpar[1]};
    const double ht = (bt - at) / static_cast<double>(nt), quarter = ork_serv_libm_sin(ht / 4);
    // From the nearer end, so that a sine beside a pole has all its digits.
    const auto theta = [&](double j) {
        return 2 * j < static_cast<double>(nt) ? at + j * ht : bt - (static_cast<double>(nt) - j) * ht;
    };
    R *between = fpar + plan.latitudes, *weight = between + nt + 2;
    for (Int j = 0; j <= nt; ++j) {
        between[j] = j == 0 ? R{} : static_cast<R>(sine_of(theta(static_cast<double>(j) - 0.5)));
        const bool pole = (j == 0 && north) || (j == nt && south);
        weight[j] = static_cast<R>(ht * (pole ? 2 * quarter * quarter : ht * sine_of(theta(static_cast<double>(j)))));
    }
    between[nt + 1] = R{};
}

// The first thing wrong with the description, as a diagnostic; -1 when all is well.
template <bool around, class R>
Int fault(const Int* ipar, const R* fpar)
{
    for (const int i : {0, 1})
        if (ipar[A::np + i] < 1) return Diagnostic::commit_intervals + i;
    for (int side = A::west; side <= A::south; ++side) {
        const Int code = ipar[side];
        const bool known = side < A::north ? code == (around ? side_circle : side_values)
                                           : code == side_values || (around && code == side_pole);
        if (!known) return Diagnostic::boundary_codes + side - A::west;
    }
    const double longitudes = double{fpar[0]}, latitudes = double{fpar[1]}, at = double{fpar[2]};
    const double slack = 16 * double{rounding<R>};
    if (!(longitudes > 0 && longitudes <= 2 * pi + slack && (!around || longitudes >= 2 * pi - slack)))
        return Diagnostic::lengths;
    if (!(latitudes > 0 && at >= -slack && at + latitudes <= pi + slack)) return Diagnostic::lengths + 1;
    if (ipar[at_interval_seal] != interval_seal<2>(ipar)) return Diagnostic::damaged;
    if (!is_addressable(ipar + A::np, 2)) return Diagnostic::too_large;
    return -1;
}

template <bool around, class R>
Int commit_checked(R* f, ork_dft_descriptor** sine, ork_dft_descriptor** cosine, Int* ipar, R* fpar)
{
    Int wrong = fault<around>(ipar, fpar);
    if (wrong < 0 && sine == cosine) wrong = Diagnostic::shared_handle;
    if (wrong >= 0) {
        report(wrong, ipar, fpar);
        return bad_argument;
    }
    if (fpar[at_q] < 0) report(Diagnostic::negative_q, ipar, fpar);
    if (ipar[at_handle_seal] != 0 && ipar[at_handle_seal] == handle_seal(ipar, sine, cosine))
        release_transforms(ipar, sine, cosine);
    ipar[at_plan_seal] = ipar[at_handle_seal] = 0;
    *sine = nullptr;
    if (around) *cosine = nullptr;
    for (const int direction : {0, 1}) ipar[at_second_handles + direction] = 0;

    const SpherePlan plan(around, ipar[A::np], ipar[A::nt]);
    ipar[A::eigenvalues] = plan.eigenvalues + 1, ipar[A::latitudes] = plan.latitudes + 1;
    ipar[A::sine_array] = plan.sine + 1, ipar[A::cosine_array] = around ? plan.cosine + 1 : 0;
    make_tables(plan, ipar, fpar);
    if (!set_up_transform(f, sine, plan.length, 0, ipar + A::sine, fpar + plan.sine, ipar, fpar, 0) ||
        (around &&
         !set_up_transform(f, cosine, plan.length, 1, ipar + A::cosine, fpar + plan.cosine, ipar, fpar, 10000))) {
        release_transforms(ipar, sine, cosine);
        return transform_failed;
    }
    for (const int transform : {A::sine, A::cosine}) ipar[transform + trig_unscaled] = 0;
    ipar[A::singular] = sphere_singular(ipar, fpar);
    if (ipar[A::singular] != 0) report(Diagnostic::singular_problem, ipar, fpar);
    ipar[at_plan_seal] = sphere_seal<around>(ipar);
    ipar[at_handle_seal] = handle_seal(ipar, sine, cosine);
    return ok;
}

template <bool around, class R>
void commit_sphere(R* f, ork_dft_descriptor** sine, ork_dft_descriptor** cosine, Int* ipar, R* fpar, Int* stat)
{
    if (begin_commit(ipar, fpar, stat)) store_status(ipar, stat, commit_checked<around>(f, sine, cosine, ipar, fpar));
}

} // namespace
} // namespace ork::pde

using namespace ork::pde;

#define ENTRIES(letter, R)                                                                                             \
    ORK_EXPORT void ork_pdepl_nx2_##letter##_init_sph_p(const R* ap, const R* bp, const R* at, const R* bt,            \
                                                        const Int* np, const Int* nt, const R* q, Int* ipar, R* fpar,  \
                                                        Int* stat)                                                     \
    {                                                                                                                  \
        init<true>(*ap, *bp, *at, *bt, *np, *nt, *q, ipar, fpar, stat);                                                \
    }                                                                                                                  \
    ORK_EXPORT void ork_pdepl_nx2_##letter##_init_sph_np(const R* ap, const R* bp, const R* at, const R* bt,           \
                                                         const Int* np, const Int* nt, const R* q, Int* ipar, R* fpar, \
                                                         Int* stat)                                                    \
    {                                                                                                                  \
        init<false>(*ap, *bp, *at, *bt, *np, *nt, *q, ipar, fpar, stat);                                               \
    }                                                                                                                  \
    ORK_EXPORT void ork_pdepl_nx2_##letter##_commit_sph_p(R* f, ork_dft_descriptor** sine,                             \
                                                          ork_dft_descriptor** cosine, Int* ipar, R* fpar, Int* stat)  \
    {                                                                                                                  \
        commit_sphere<true>(f, sine, cosine, ipar, fpar, stat);                                                        \
    }                                                                                                                  \
    ORK_EXPORT void ork_pdepl_nx2_##letter##_commit_sph_np(R* f, ork_dft_descriptor** sine, Int* ipar, R* fpar,        \
                                                           Int* stat)                                                  \
    {                                                                                                                  \
        commit_sphere<false>(f, sine, nullptr, ipar, fpar, stat);                                                      \
    }
ENTRIES(s, float)
ENTRIES(d, double)

ORK_EXPORT void ork_pdepl_nx2_free_sph_p(ork_dft_descriptor** sine, ork_dft_descriptor** cosine, Int* ipar, Int* stat)
{
    free_solver(sine, cosine, ipar, stat);
}
ORK_EXPORT void ork_pdepl_nx2_free_sph_np(ork_dft_descriptor** sine, Int* ipar, Int* stat)
{
    free_solver(sine, nullptr, ipar, stat);
}
