// SPDX-License-Identifier: MIT
// The old Fortran names: everything by address, a plan in an integer of eight bytes, the first dimension contiguous.
#include <algorithm>

#include "plan.h"

#ifdef ORK_FFTW_SINGLE
#define FORTRAN(name) sfftw_##name##_
#else
#define FORTRAN(name) dfftw_##name##_
#endif

using namespace ork::fftw;

extern "C" {
Plan* FFTW(plan_dft)(int, const int*, Complex*, Complex*, int, unsigned);
Plan* FFTW(plan_dft_r2c)(int, const int*, Number*, Complex*, unsigned);
Plan* FFTW(plan_dft_c2r)(int, const int*, Complex*, Number*, unsigned);
Plan* FFTW(plan_r2r)(int, const int*, Number*, Number*, const int*, unsigned);
Plan* FFTW(plan_many_r2r)(int, const int*, int, Number*, const int*, int, int, Number*, const int*, int, int,
                          const int*, unsigned);
Plan* FFTW(plan_many_dft)(int, const int*, int, Complex*, const int*, int, int, Complex*, const int*, int, int, int,
                          unsigned);
Plan* FFTW(plan_many_dft_r2c)(int, const int*, int, Number*, const int*, int, int, Complex*, const int*, int, int,
                              unsigned);
Plan* FFTW(plan_many_dft_c2r)(int, const int*, int, Complex*, const int*, int, int, Number*, const int*, int, int,
                              unsigned);
void FFTW(cleanup)();
void FFTW(cleanup_threads)();
void FFTW(print_plan)(const Plan*);
void FFTW(flops)(const Plan*, double*, double*, double*);
}

namespace {

// Lengths with the last first, as C has them; null stays null.
class Reversed {
public:
    Reversed(const int* rank, const int* n) : rank_(*rank), null_(n == nullptr)
    {
        if (!null_ && *rank >= 0 && *rank <= most) std::reverse_copy(n, n + *rank, n_);
    }
    operator const int*() const { return null_ ? nullptr : n_; }
    int rank() const { return rank_ <= most ? rank_ : -1; }

private:
    static constexpr int most = 32;
    int rank_;
    bool null_;
    int n_[most] = {};
};

const int one = 1, two = 2, three = 3;

} // namespace

ENTRY void FORTRAN(execute)(Plan* const* plan) { execute(**plan, (*plan)->problem.arrays); }
ENTRY void FORTRAN(destroy_plan)(Plan* const* plan) { free_plan(*plan); }
ENTRY void FORTRAN(cleanup)() { FFTW(cleanup)(); }
ENTRY void FORTRAN(forget_wisdom)() {}
ENTRY void FORTRAN(import_system_wisdom)(int* known) { *known = 0; }
ENTRY void FORTRAN(print_plan)(Plan* const* plan) { FFTW(print_plan)(*plan); }
ENTRY void FORTRAN(flops)(Plan* const* plan, double* add, double* multiply, double* fused)
{
    FFTW(flops)(*plan, add, multiply, fused);
}
ENTRY void FORTRAN(set_timelimit)(const double*) {}
ENTRY void FORTRAN(init_threads)(int* done) { *done = 1; }
ENTRY void FORTRAN(plan_with_nthreads)(const int* threads) { set_planner_threads(*threads); }
ENTRY void FORTRAN(cleanup_threads)() { FFTW(cleanup_threads)(); }

ENTRY void FORTRAN(plan_dft)(Plan** plan, const int* rank, const int* n, Complex* in, Complex* out, const int* sign,
                             const int*)
{
    const Reversed lengths(rank, n);
    *plan = FFTW(plan_dft)(lengths.rank(), lengths, in, out, *sign, 0);
}
ENTRY void FORTRAN(plan_dft_1d)(Plan** plan, const int* n, Complex* in, Complex* out, const int* sign, const int* flags)
{
    FORTRAN(plan_dft)(plan, &one, n, in, out, sign, flags);
}
ENTRY void FORTRAN(plan_dft_2d)(Plan** plan, const int* nx, const int* ny, Complex* in, Complex* out, const int* sign,
                                const int* flags)
{
    const int n[] = {*nx, *ny};
    FORTRAN(plan_dft)(plan, &two, n, in, out, sign, flags);
}
ENTRY void FORTRAN(plan_dft_3d)(Plan** plan, const int* nx, const int* ny, const int* nz, Complex* in, Complex* out,
                                const int* sign, const int* flags)
{
    const int n[] = {*nx, *ny, *nz};
    FORTRAN(plan_dft)(plan, &three, n, in, out, sign, flags);
}
ENTRY void FORTRAN(plan_many_dft)(Plan** plan, const int* rank, const int* n, const int* howmany, Complex* in,
                                  const int* inembed, const int* istride, const int* idist, Complex* out,
                                  const int* onembed, const int* ostride, const int* odist, const int* sign, const int*)
{
    const Reversed lengths(rank, n), in_embed(rank, inembed), out_embed(rank, onembed);
    *plan = FFTW(plan_many_dft)(lengths.rank(), lengths, *howmany, in, in_embed, *istride, *idist, out, out_embed,
                                *ostride, *odist, *sign, 0);
}
ENTRY void FORTRAN(execute_dft)(Plan* const* plan, Complex* in, Complex* out)
{
    execute(**plan, {{reinterpret_cast<Number*>(in)}, {reinterpret_cast<Number*>(out)}});
}

#define REAL(kind, In, Out)                                                                                            \
    ENTRY void FORTRAN(plan_dft_##kind)(Plan * *plan, const int* rank, const int* n, In* in, Out* out, const int*)     \
    {                                                                                                                  \
        const Reversed lengths(rank, n);                                                                               \
        *plan = FFTW(plan_dft_##kind)(lengths.rank(), lengths, in, out, 0);                                            \
    }                                                                                                                  \
    ENTRY void FORTRAN(plan_dft_##kind##_1d)(Plan * *plan, const int* n, In* in, Out* out, const int* flags)           \
    {                                                                                                                  \
        FORTRAN(plan_dft_##kind)(plan, &one, n, in, out, flags);                                                       \
    }                                                                                                                  \
    ENTRY void FORTRAN(plan_dft_##kind##_2d)(Plan * *plan, const int* nx, const int* ny, In* in, Out* out,             \
                                             const int* flags)                                                         \
    {                                                                                                                  \
        const int n[] = {*nx, *ny};                                                                                    \
        FORTRAN(plan_dft_##kind)(plan, &two, n, in, out, flags);                                                       \
    }                                                                                                                  \
    ENTRY void FORTRAN(plan_dft_##kind##_3d)(Plan * *plan, const int* nx, const int* ny, const int* nz, In* in,        \
                                             Out* out, const int* flags)                                               \
    {                                                                                                                  \
        const int n[] = {*nx, *ny, *nz};                                                                               \
        FORTRAN(plan_dft_##kind)(plan, &three, n, in, out, flags);                                                     \
    }                                                                                                                  \
    ENTRY void FORTRAN(plan_many_dft_##kind)(Plan * *plan, const int* rank, const int* n, const int* howmany, In* in,  \
                                             const int* inembed, const int* istride, const int* idist, Out* out,       \
                                             const int* onembed, const int* ostride, const int* odist, const int*)     \
    {                                                                                                                  \
        const Reversed lengths(rank, n), in_embed(rank, inembed), out_embed(rank, onembed);                            \
        *plan = FFTW(plan_many_dft_##kind)(lengths.rank(), lengths, *howmany, in, in_embed, *istride, *idist, out,     \
                                           out_embed, *ostride, *odist, 0);                                            \
    }                                                                                                                  \
    ENTRY void FORTRAN(execute_dft_##kind)(Plan* const* plan, In* in, Out* out)                                        \
    {                                                                                                                  \
        execute(**plan, {{reinterpret_cast<Number*>(in)}, {reinterpret_cast<Number*>(out)}});                          \
    }
REAL(r2c, Number, Complex)
REAL(c2r, Complex, Number)

ENTRY void FORTRAN(plan_r2r)(Plan** plan, const int* rank, const int* n, Number* in, Number* out, const int* kinds,
                             const int*)
{
    const Reversed lengths(rank, n), reversed_kinds(rank, kinds);
    *plan = FFTW(plan_r2r)(lengths.rank(), lengths, in, out, reversed_kinds, 0);
}
ENTRY void FORTRAN(plan_r2r_1d)(Plan** plan, const int* n, Number* in, Number* out, const int* kind, const int* flags)
{
    FORTRAN(plan_r2r)(plan, &one, n, in, out, kind, flags);
}
ENTRY void FORTRAN(plan_r2r_2d)(Plan** plan, const int* nx, const int* ny, Number* in, Number* out, const int* kindx,
                                const int* kindy, const int* flags)
{
    const int n[] = {*nx, *ny}, kinds[] = {*kindx, *kindy};
    FORTRAN(plan_r2r)(plan, &two, n, in, out, kinds, flags);
}
ENTRY void FORTRAN(plan_r2r_3d)(Plan** plan, const int* nx, const int* ny, const int* nz, Number* in, Number* out,
                                const int* kindx, const int* kindy, const int* kindz, const int* flags)
{
    const int n[] = {*nx, *ny, *nz}, kinds[] = {*kindx, *kindy, *kindz};
    FORTRAN(plan_r2r)(plan, &three, n, in, out, kinds, flags);
}
ENTRY void FORTRAN(plan_many_r2r)(Plan** plan, const int* rank, const int* n, const int* howmany, Number* in,
                                  const int* inembed, const int* istride, const int* idist, Number* out,
                                  const int* onembed, const int* ostride, const int* odist, const int* kinds,
                                  const int*)
{
    const Reversed lengths(rank, n), in_embed(rank, inembed), out_embed(rank, onembed), reversed_kinds(rank, kinds);
    *plan = FFTW(plan_many_r2r)(lengths.rank(), lengths, *howmany, in, in_embed, *istride, *idist, out, out_embed,
                                *ostride, *odist, reversed_kinds, 0);
}
ENTRY void FORTRAN(execute_r2r)(Plan* const* plan, Number* in, Number* out) { execute(**plan, {{in}, {out}}); }
