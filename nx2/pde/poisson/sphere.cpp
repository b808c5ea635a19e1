// SPDX-License-Identifier: MIT
// The Helmholtz equation on a sphere. The mean of f over opposite meridians is even in longitude, half their difference
// odd, so cosine and sine transforms of half the circle take the rows to modes, in which the equations of one mode are
// a tridiagonal system in latitude. Both kinds of a mode have the same eigenvalue.
#include "pde/poisson/sphere.h"

#include "frame/core_imports.h"
#include "frame/export.h"
#include "pde/held_by_q.h"
#include "pde/poisson/balance.h"
#include "pde/poisson/begin.h"
#include "pde/poisson/nonuniform_systems.h"

namespace ork::pde {
namespace {

using A = SphereArray;

// Rows of modes: `lead` numbers each, cosines (on the circle) and then sines, both kinds from a multiple of a register
// on; a mode's eigenvalue stands alike. One piece of memory.
template <class R>
struct Modes {
    Int kind, lead, first_sine; // numbers of one kind
    R *rows, *eigenvalues, *base, *weight, *zonal, *work;

    // Numbers in all.
    Int plan(bool around, Int length, Int nt)
    {
        constexpr Int unit = 16;
        const auto whole = [](Int n) { return (n + unit - 1) / unit * unit; };
        kind = whole(length + 1);
        first_sine = around ? kind : 0;
        lead = kind + first_sine;
        const Int column = whole(nt + 1);
        return (nt + 1) * lead + kind + 3 * column + whole(systems_work<R>(nt + 1));
    }
    void place(R* memory, Int nt)
    {
        const Int column = (nt + 16) / 16 * 16;
        rows = memory;
        eigenvalues = rows + (nt + 1) * lead;
        base = eigenvalues + kind, weight = base + column, zonal = weight + column, work = zonal + column;
    }
};

template <class R>
R* allocate(Int reals)
{
    return static_cast<R*>(ork_serv_allocate(static_cast<std::size_t>(reals) * sizeof(R), 64));
}

template <bool around, class R>
class Solve {
public:
    Solve(R* f, ork_dft_descriptor** sine, ork_dft_descriptor** cosine, const Int* ipar, const R* fpar)
        : f_(f), sine_(sine), cosine_(cosine), ipar_(ipar), fpar_(fpar), np_(ipar[A::np]), nt_(ipar[A::nt]),
          plan_(around, np_, nt_), north_(ipar[A::north] == side_pole), south_(ipar[A::south] == side_pole),
          between_(fpar + plan_.latitudes), scale_(between_ + nt_ + 2)
    {
    }

    Balance balance() const // of f, on a whole sphere
    {
        Balance all;
        for (Int j = 0; j <= nt_; ++j)
            all.add(balance_of(f_ + j * (np_ + 1), np_, false), static_cast<double>(scale_[j]));
        return all;
    }

    Int reals() { return modes_.plan(around, plan_.length, nt_); } // of memory for run
    Int run(R* memory)
    {
        modes_.place(memory, nt_);
        make_coefficients();
        Int status = transform(false, 0, nt_);
        if (status != ok) return status;
        solve();
        return transform(true, unknown_from(), unknown_to());
    }

private:
    static constexpr Int at_once = 16; // rows that are packed and transformed while the first-level cache has them

    Int unknown_from() const { return north_ ? 0 : 1; }
    Int unknown_to() const { return south_ ? nt_ : nt_ - 1; }

    void make_coefficients()
    {
        const R ht = fpar_[1] / static_cast<R>(nt_), q = fpar_[3], square = ht * ht * ht * ht;
        for (Int j = 0; j <= nt_; ++j) {
            modes_.base[j] = between_[j] + between_[j + 1] + q * scale_[j];
            modes_.weight[j] = scale_[j] > 0 ? square / scale_[j] : R{}; // ht^2 / s(j)
        }
        const R* eigenvalues = fpar_ + plan_.eigenvalues;
        for (Int k = 0; k < modes_.kind; ++k) modes_.eigenvalues[k] = eigenvalues[k <= plan_.length ? k : plan_.length];
    }

    // Rows from..to of f to modes, or back.
    Int transform(bool back, Int from, Int to)
    {
        for (Int j = from; j <= to; j += at_once) {
            const Int count = to - j + 1 < at_once ? to - j + 1 : at_once;
            R* rows = modes_.rows + j * modes_.lead;
            if (!back)
                for (Int i = 0; i < count; ++i) pack(j + i, rows + i * modes_.lead);
            Int status = transform_lines(back, rows + modes_.first_sine, count, modes_.lead, sine_, ipar_ + A::sine,
                                         fpar_ + plan_.sine);
            if (around && status == ok)
                status =
                    transform_lines(back, rows, count, modes_.lead, cosine_, ipar_ + A::cosine, fpar_ + plan_.cosine);
            if (status != ok) return status;
            for (Int i = 0; i < count; ++i)
                back ? unpack(rows + i * modes_.lead, j + i) : keep_even_modes(rows + i * modes_.lead);
        }
        return ok;
    }

    void pack(Int j, R* row) const
    {
        const R* f = f_ + j * (np_ + 1);
        const Int n = plan_.length;
        R* odd = row + modes_.first_sine;
        if constexpr (around) {
            for (Int i = 1; i < n; ++i) {
                const R a = f[i], b = f[np_ - i];
                row[i] = (a + b) / 2, odd[i] = (a - b) / 2;
            }
            row[0] = f[0], row[n] = f[n < np_ ? n : 0];
            for (Int i = n + 1; i < modes_.kind; ++i) row[i] = R{};
        } else {
            for (Int i = 1; i < n; ++i) odd[i] = f[i];
            if (j > 0 && j < nt_ && n > 1) {
                const R ht = fpar_[1] / static_cast<R>(nt_), hp = fpar_[0] / static_cast<R>(np_);
                const R step = ht * ht / (hp * scale_[j]), coefficient = step * step; // 1 / (hp s(j))^2
                odd[1] += coefficient * f[0], odd[n - 1] += coefficient * f[n];
            }
        }
        odd[0] = R{};
        for (Int i = n; i < modes_.kind; ++i) odd[i] = R{};
    }

    // Over the circle twice all modes that are not even are zero but for rounding.
    void keep_even_modes(R* row) const
    {
        if (!around || plan_.circles == 2) return;
        for (Int k = 1; k <= plan_.length; k += 2) row[k] = row[modes_.first_sine + k] = R{};
    }

    void unpack(const R* row, Int j) const
    {
        R* f = f_ + j * (np_ + 1);
        const Int n = plan_.length;
        const R* odd = row + modes_.first_sine;
        if constexpr (!around) {
            for (Int i = 1; i < n; ++i) f[i] = odd[i];
            return;
        }
        if ((j == 0 && north_) || (j == nt_ && south_)) {
            for (Int i = 0; i <= np_; ++i) f[i] = row[0];
            return;
        }
        for (Int i = 1; i < n; ++i) {
            f[i] = row[i] + odd[i];
            if (n < np_) f[np_ - i] = row[i] - odd[i];
        }
        if (n < np_) f[n] = row[n];
        f[0] = f[np_] = row[0];
    }

    Line<R> line(Int from, Int to) const
    {
        return {to - from + 1, Ends::known, between_ + from, modes_.base + from, modes_.weight + from, scale_ + from};
    }

    void solve()
    {
        const Int lead = modes_.lead;
        R* rows = modes_.rows;
        const bool pole = north_ || south_;
        // Mode 0 alone reaches a pole, where all the others are zero.
        if (pole) {
            for (Int j = 0; j <= nt_; ++j) modes_.zonal[j] = rows[j * lead];
            const Line<R> zonal = line(unknown_from(), unknown_to());
            const R zero{};
            if (ipar_[A::singular] != 0)
                solve_singular(zonal, modes_.zonal, 1);
            else if (north_ && south_)
                solve_held_by_q(
                    nt_ + 1, false, [&](Int j) { return between_[j]; }, [&](Int j) { return scale_[j]; }, fpar_[at_q],
                    modes_.zonal, 1, reinterpret_cast<double*>(modes_.work));
            else
                solve_systems(zonal, 1, &zero, modes_.zonal + unknown_from(), 1, modes_.work);
            for (Int k = 0; north_ && k < lead; ++k) rows[k] = R{};
            for (Int k = 0; south_ && k < lead; ++k) rows[nt_ * lead + k] = R{};
        }
        if (nt_ > 1)
            for (Int kind = 0; kind < lead; kind += modes_.kind)
                solve_systems(line(1, nt_ - 1), modes_.kind, modes_.eigenvalues, rows + lead + kind, lead, modes_.work);
        if (pole)
            for (Int j = unknown_from(); j <= unknown_to(); ++j) rows[j * lead] = modes_.zonal[j];
    }

    R* f_;
    ork_dft_descriptor **sine_, **cosine_;
    const Int* ipar_;
    const R* fpar_;
    Int np_, nt_;
    SpherePlan plan_;
    bool north_, south_;
    const R *between_, *scale_; // sines between the rows; weights of the rows times ht^2
    Modes<R> modes_;
};

template <bool around, class R>
Int solve_checked(R* f, ork_dft_descriptor** sine, ork_dft_descriptor** cosine, Int* ipar, R* fpar)
{
    if (ipar[at_plan_seal] != sphere_seal<around>(ipar) || ipar[at_handle_seal] != handle_seal(ipar, sine, cosine)) {
        report(Diagnostic::damaged, ipar, fpar);
        return bad_argument;
    }
    ipar[A::singular] = sphere_singular(ipar, fpar);
    Solve<around, R> problem(f, sine, cosine, ipar, fpar);
    R* memory = allocate<R>(problem.reals());
    if (memory == nullptr) {
        report(Diagnostic::no_memory, ipar, fpar);
        return bad_argument;
    }
    const bool off = ipar[A::singular] != 0 && ipar[A::warning_switch] != 0 && problem.balance().template is_off<R>();
    const Int status = problem.run(memory);
    ork_serv_deallocate(memory);
    if (status != ok) {
        report(Diagnostic::stage_ft, ipar, fpar, NumberText(status).text);
        return bad_argument;
    }
    if (off) report(Diagnostic::incompatible, ipar, fpar);
    return ok;
}

template <bool around, class R>
void solve(R* f, ork_dft_descriptor** sine, ork_dft_descriptor** cosine, Int* ipar, R* fpar, Int* stat)
{
    if (begin_solve<2>(ipar, fpar, stat)) store_status(ipar, stat, solve_checked<around>(f, sine, cosine, ipar, fpar));
}

} // namespace
} // namespace ork::pde

using namespace ork::pde;

#define ENTRIES(letter, R)                                                                                             \
    ORK_EXPORT void ork_pdepl_nx2_##letter##_sph_p(R* f, ork_dft_descriptor** sine, ork_dft_descriptor** cosine,       \
                                                   Int* ipar, R* fpar, Int* stat)                                      \
    {                                                                                                                  \
        solve<true>(f, sine, cosine, ipar, fpar, stat);                                                                \
    }                                                                                                                  \
    ORK_EXPORT void ork_pdepl_nx2_##letter##_sph_np(R* f, ork_dft_descriptor** sine, Int* ipar, R* fpar, Int* stat)    \
    {                                                                                                                  \
        solve<false>(f, sine, nullptr, ipar, fpar, stat);                                                              \
    }
ENTRIES(s, float)
ENTRIES(d, double)
