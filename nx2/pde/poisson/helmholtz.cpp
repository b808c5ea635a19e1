// SPDX-License-Identifier: MIT
// Helmholtz solvers on rectangles and boxes: exports.
#include "frame/export.h"
#include "pde/poisson/commit.h"
#include "pde/poisson/init.h"
#include "pde/poisson/solve.h"

using ork::pde::Int;

#define SOLVERS(p, R)                                                                                                  \
    ORK_EXPORT void ork_pdepl_nx2_##p##_init_helmholtz_2d(const R* ax, const R* bx, const R* ay, const R* by,          \
                                                          const Int* nx, const Int* ny, const char* BCtype,            \
                                                          const R* q, Int* ipar, R* fpar, Int* stat)                   \
    {                                                                                                                  \
        ork::pde::init<2, R>({ax, bx, ay, by}, {nx, ny}, BCtype, *q, ipar, fpar, stat);                                \
    }                                                                                                                  \
    ORK_EXPORT void ork_pdepl_nx2_##p##_init_helmholtz_3d(                                                             \
        const R* ax, const R* bx, const R* ay, const R* by, const R* az, const R* bz, const Int* nx, const Int* ny,    \
        const Int* nz, const char* BCtype, const R* q, Int* ipar, R* fpar, Int* stat)                                  \
    {                                                                                                                  \
        ork::pde::init<3, R>({ax, bx, ay, by, az, bz}, {nx, ny, nz}, BCtype, *q, ipar, fpar, stat);                    \
    }                                                                                                                  \
    ORK_EXPORT void ork_pdepl_nx2_##p##_commit_helmholtz_2d(                                                           \
        R* f, const R*, const R*, const R*, const R*, ork_dft_descriptor** xhandle, Int* ipar, R* fpar, Int* stat)     \
    {                                                                                                                  \
        ork::pde::commit<2, R>(f, {xhandle}, ipar, fpar, stat);                                                        \
    }                                                                                                                  \
    ORK_EXPORT void ork_pdepl_nx2_##p##_commit_helmholtz_3d(                                                           \
        R* f, const R*, const R*, const R*, const R*, const R*, const R*, ork_dft_descriptor** xhandle,                \
        ork_dft_descriptor** yhandle, Int* ipar, R* fpar, Int* stat)                                                   \
    {                                                                                                                  \
        ork::pde::commit<3, R>(f, {xhandle, yhandle}, ipar, fpar, stat);                                               \
    }                                                                                                                  \
    ORK_EXPORT void ork_pdepl_nx2_##p##_helmholtz_2d(R* f, const R* bd_ax, const R* bd_bx, const R* bd_ay,             \
                                                     const R* bd_by, ork_dft_descriptor** xhandle, Int* ipar, R* fpar, \
                                                     Int* stat)                                                        \
    {                                                                                                                  \
        ork::pde::solve<2, R>(f, {bd_ax, bd_bx, bd_ay, bd_by}, {xhandle}, ipar, fpar, stat);                           \
    }                                                                                                                  \
    ORK_EXPORT void ork_pdepl_nx2_##p##_helmholtz_3d(                                                                  \
        R* f, const R* bd_ax, const R* bd_bx, const R* bd_ay, const R* bd_by, const R* bd_az, const R* bd_bz,          \
        ork_dft_descriptor** xhandle, ork_dft_descriptor** yhandle, Int* ipar, R* fpar, Int* stat)                     \
    {                                                                                                                  \
        ork::pde::solve<3, R>(f, {bd_ax, bd_bx, bd_ay, bd_by, bd_az, bd_bz}, {xhandle, yhandle}, ipar, fpar, stat);    \
    }
SOLVERS(s, float)
SOLVERS(d, double)
#undef SOLVERS

ORK_EXPORT void ork_pdepl_nx2_free_helmholtz_2d(ork_dft_descriptor** xhandle, Int* ipar, Int* stat)
{
    ork::pde::free_solver(xhandle, nullptr, ipar, stat);
}

ORK_EXPORT void ork_pdepl_nx2_free_helmholtz_3d(ork_dft_descriptor** xhandle, ork_dft_descriptor** yhandle, Int* ipar,
                                                Int* stat)
{
    ork::pde::free_solver(xhandle, yhandle, ipar, stat);
}
