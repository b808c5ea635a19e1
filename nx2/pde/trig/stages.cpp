// SPDX-License-Identifier: MIT
// Stages of a trigonometric transform: init, commit, forward, backward, free.
#include <cstddef>
#include <cstring>

#include "frame/core_imports.h"
#include "frame/export.h"
#include "pde/trig/dft.h"
#include "pde/trig/kernel.h"
#include "pde/trig/lines.h"
#include "pde/trig/messages.h"

namespace ork::pde {
namespace {

void finish(Int status, Int* ipar, Int* stat) { *stat = ipar[trig_status] = status; }

void refuse(TrigMessage code, Int status, Int* ipar, Int* stat)
{
    report({code}, ipar);
    finish(status, ipar, stat);
}

template <class R>
constexpr R tolerance_per_point = sizeof(R) == sizeof(double) ? R(1e-12) : R(1e-5);

// What a commit leaves behind so that a computation with an array of other n or type, or of none, is refused.
template <class R>
auto mark(Int n, Int type)
{
    using Bits = std::conditional_t<sizeof(R) == 4, std::uint32_t, std::uint64_t>;
    const std::uint64_t word = static_cast<std::uint64_t>(n) ^ static_cast<std::uint64_t>(type) << 56;
    return static_cast<Bits>(((word * 0x9e3779b97f4a7c15u) >> (64 - 8 * sizeof(R))) | 1);
}
template <class R>
void set_mark(R* fpar, Int n, Int type)
{
    const auto bits = mark<R>(n, type);
    std::memcpy(fpar + trig_mark, &bits, sizeof bits);
}
template <class R>
bool has_mark(const R* fpar, Int n, Int type)
{
    const auto bits = mark<R>(n, type);
    return std::memcmp(fpar + trig_mark, &bits, sizeof bits) == 0;
}
template <class R>
bool has_any_mark(const R* fpar)
{
    const R none = 0;
    return std::memcmp(fpar + trig_mark, &none, sizeof none) != 0;
}

template <class R>
void init(Int n, Int type, Int* ipar, R* fpar, Int* stat)
{
    ipar[trig_n] = n;
    ipar[trig_errors] = ipar[trig_warnings] = 1;
    ipar[trig_type] = type;
    ipar[trig_set_up] = ipar[trig_message_set] = ipar[trig_threads] = 1;
    ipar[trig_unscaled] = 0;
    fpar[trig_tolerance] = static_cast<R>(n) * tolerance_per_point<R>;
    fpar[trig_mark] = 0;
    finish(ok, ipar, stat);
}

template <class R>
void check_boundary(const R* f, const Int* ipar, R tolerance)
{
    if (ipar[trig_unscaled] != 0) return;
    const Int n = ipar[trig_n];
    const auto zero = [&](R value, TrigMessage code) {
        if (value > tolerance || -value > tolerance) report({code, value, tolerance}, ipar);
    };
    switch (ipar[trig_type]) {
    case 0:
        zero(f[0], boundary_0);
        return zero(f[n], boundary_n);
    case 2:
        return zero(f[n], cosine_end);
    case 3:
        return zero(f[0], sine_begin);
    default:
        return;
    }
}

template <class R>
void commit(const R* f, ork_dft_descriptor** handle, Int* ipar, R* fpar, Int* stat)
{
    const Int n = ipar[trig_n], type = ipar[trig_type];
    if (ipar[trig_status] != 0) return refuse(not_initialised, bad_state, ipar, stat);
    // A caller may free after a failure, with a handle that nobody has set before.
    if (ipar[trig_set_up] != 0 && !has_any_mark(fpar)) *handle = nullptr;
    if (n <= 1) return refuse(small_n, bad_argument, ipar, stat);
    if (!is_trig_type(type)) return refuse(unknown_type, bad_argument, ipar, stat);
    if (fpar[trig_tolerance] < 0) {
        report({negative_tolerance, 0, fpar[trig_tolerance]}, ipar);
        fpar[trig_tolerance] = static_cast<R>(n) * tolerance_per_point<R>;
    }
    check_boundary(f, ipar, fpar[trig_tolerance]);
    if (ipar[trig_threads] < 0) {
        report({negative_threads}, ipar);
        ipar[trig_threads] = 1;
    }
    // Longer ones no table can be made for; the Fourier transform refuses shorter ones than that.
    Int failure = n < longest_trig ? 0 : ORK_DFT_LENGTH_ERROR;
    if (failure == 0) {
        make_tables(type, n, fpar + trig_tables);
        if (ipar[trig_set_up] != 0) failure = make_dft<R>(handle, dft_length<R>(type, n), ipar[trig_threads]);
    }
    if (failure != 0) {
        report({dft_failed, 0, 0, failure}, ipar);
        return finish(transform_failed, ipar, stat);
    }
    set_mark(fpar, n, type);
    finish(ok, ipar, stat);
}

// Of a computation, and the message that goes with it.
struct Verdict {
    Int status;
    TrigMessage code;
};
template <class R>
Verdict verdict(const Int* ipar, const R* fpar)
{
    if (ipar[trig_status] != 0) return {bad_state, not_committed};
    if (!is_trig_type(ipar[trig_type])) return {bad_argument, unknown_type};
    if (ipar[trig_n] <= 0) return {bad_state, n_is_zero};
    if (!has_mark(fpar, ipar[trig_n], ipar[trig_type])) return {bad_state, not_committed};
    return {ok, {}};
}

template <class R>
TrigPlan<R> plan_of(const Int* ipar, const R* fpar, const ork_dft_descriptor* dft)
{
    return {ipar[trig_type], ipar[trig_n], fpar + trig_tables, dft};
}
Int status_of(Int dft_status) { return dft_status == 0 ? ok : transform_failed; }

template <class R>
void run(Way way, R* f, ork_dft_descriptor** handle, Int* ipar, const R* fpar, Int* stat)
{
    const Verdict v = verdict(ipar, fpar);
    if (v.status != ok) return refuse(v.code, v.status, ipar, stat);
    const Int status = transform_line(plan_of(ipar, fpar, *handle), way, ipar[trig_unscaled] == 0, f);
    finish(status_of(status), ipar, stat);
}

template <class R>
Int run_lines(Way way, R* f, const Lines& lines, ork_dft_descriptor** handle, const Int* ipar, const R* fpar)
{
    const Verdict v = verdict(ipar, fpar);
    if (v.status != ok) return v.status;
    return status_of(transform_lines(plan_of(ipar, fpar, *handle), way, ipar[trig_unscaled] == 0, f, lines));
}

void free_transform(ork_dft_descriptor** handle, Int* ipar, Int* stat)
{
    ipar[trig_status] = running;
    const Int failure = ork_dft_dftifreedescriptor(handle);
    if (failure != 0) report({dft_failed, 0, 0, failure}, ipar);
    finish(failure == 0 ? ok : transform_failed, ipar, stat);
}

} // namespace
} // namespace ork::pde

using namespace ork::pde;

#define COMPUTED(name, R)                                                                                              \
    ORK_EXPORT void ork_pdett_nx2_##name##_commit_trig_transform(R* f, ork_dft_descriptor** handle, Int* ipar,         \
                                                                 R* fpar, Int* stat)                                   \
    {                                                                                                                  \
        commit(f, handle, ipar, fpar, stat);                                                                           \
    }                                                                                                                  \
    ORK_EXPORT void ork_pdett_nx2_##name##_forward_trig_transform(R* f, ork_dft_descriptor** handle, Int* ipar,        \
                                                                  R* fpar, Int* stat)                                  \
    {                                                                                                                  \
        run(Way::forward, f, handle, ipar, fpar, stat);                                                                \
    }                                                                                                                  \
    ORK_EXPORT void ork_pdett_nx2_##name##_backward_trig_transform(R* f, ork_dft_descriptor** handle, Int* ipar,       \
                                                                   R* fpar, Int* stat)                                 \
    {                                                                                                                  \
        run(Way::backward, f, handle, ipar, fpar, stat);                                                               \
    }                                                                                                                  \
    ORK_EXPORT void ork_pdett_nx2_##name##_init_trig_transform(const Int* n, const Int* type, Int* ipar, R* fpar,      \
                                                               Int* stat)                                              \
    {                                                                                                                  \
        init(*n, *type, ipar, fpar, stat);                                                                             \
    }
COMPUTED(d, double)
COMPUTED(s, float)
COMPUTED(_d, double)
COMPUTED(_s, float)

#define LINES(letter, R)                                                                                               \
    ORK_EXPORT Int ork_pdett_nx2_##letter##_lines_trig_transform(                                                      \
        const Int* backward, R* f, const Int* count, const Int* stride, const Int* distance,                           \
        ork_dft_descriptor** handle, const Int* ipar, const R* fpar)                                                   \
    {                                                                                                                  \
        return run_lines(*backward != 0 ? Way::backward : Way::forward, f, {*count, *stride, *distance}, handle, ipar, \
                         fpar);                                                                                        \
    }
LINES(d, double)
LINES(s, float)

ORK_EXPORT void ork_pdett_nx2_free_trig_transform(ork_dft_descriptor** handle, Int* ipar, Int* stat)
{
    free_transform(handle, ipar, stat);
}
ORK_EXPORT void ork_pdett_nx2__free_trig_transform(ork_dft_descriptor** handle, Int* ipar, Int* stat)
{
    free_transform(handle, ipar, stat);
}
