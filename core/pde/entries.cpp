// SPDX-License-Identifier: MIT
// The public routines: null pointers are refused here, all else is checked and reported by the kernels.
#include "ork/pde.h"

#include "export.h"
#include "pde/grid.h"
#include "pde/kernels.h"

namespace ork::pde {
namespace {

template <class... T>
bool any_null(const T*... pointers)
{
    return (... || (pointers == nullptr));
}

// Calls a kernel, whose last argument is the status.
template <class Signature, class... Arguments>
Int status_of(loader::Kernel<Signature>& kernel, Arguments... arguments)
{
    Int stat = running;
    kernel(arguments..., &stat);
    return stat;
}

// The boundary that a solve reads is there: of sides that aren't periodic.
template <std::size_t sides, class R>
bool boundary_missing(const Int* ipar, const R* const (&bd)[sides])
{
    for (std::size_t i = 0; i < sides; ++i)
        if (bd[i] == nullptr && ipar[at_sides + i] != periodic) return true;
    return false;
}

constinit loader::Kernel<TrigCalls<double>::free> free_trig{"pdett", "free_trig_transform"};
constinit loader::Kernel<PoissonCalls<double>::free_helmholtz_2d> free_2d{"pdepl", "free_helmholtz_2d"};
constinit loader::Kernel<PoissonCalls<double>::free_helmholtz_3d> free_3d{"pdepl", "free_helmholtz_3d"};
constinit loader::Kernel<FreeSphereP> free_circle{"pdepl", "free_sph_p"};
constinit loader::Kernel<FreeSphereNp> free_part{"pdepl", "free_sph_np"};

} // namespace
} // namespace ork::pde

using namespace ork::pde;

#define TRANSFORM(p, R, name)                                                                                          \
    ORK_EXPORT int64_t ork_##p##_##name(R* f, ork_dft_descriptor** handle, int64_t* ipar, R* rpar)                     \
    {                                                                                                                  \
        if (any_null(f, handle, ipar, rpar)) return bad_argument;                                                      \
        return status_of(kernels::name<R>, f, handle, ipar, rpar);                                                     \
    }
#define ROUTINES(p, R)                                                                                                 \
    ORK_EXPORT int64_t ork_##p##_init_trig_transform(int64_t n, int64_t type, int64_t* ipar, R* rpar)                  \
    {                                                                                                                  \
        if (any_null(ipar, rpar)) return bad_argument;                                                                 \
        return status_of(kernels::init_trig_transform<R>, &n, &type, ipar, rpar);                                      \
    }                                                                                                                  \
    TRANSFORM(p, R, commit_trig_transform)                                                                             \
    TRANSFORM(p, R, forward_trig_transform)                                                                            \
    TRANSFORM(p, R, backward_trig_transform)                                                                           \
    ORK_EXPORT int64_t ork_##p##_init_helmholtz_2d(R ax, R bx, R ay, R by, int64_t nx, int64_t ny, const char* sides,  \
                                                   R q, int64_t* ipar, R* rpar)                                        \
    {                                                                                                                  \
        if (any_null(sides, ipar, rpar)) return bad_argument;                                                          \
        return status_of(kernels::init_helmholtz_2d<R>, &ax, &bx, &ay, &by, &nx, &ny, sides, &q, ipar, rpar);          \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_##p##_commit_helmholtz_2d(ork_dft_descriptor** xhandle, int64_t* ipar, R* rpar)             \
    {                                                                                                                  \
        if (any_null(xhandle, ipar, rpar)) return bad_argument;                                                        \
        return status_of(kernels::commit_helmholtz_2d<R>, static_cast<R*>(nullptr), nullptr, nullptr, nullptr,         \
                         nullptr, xhandle, ipar, rpar);                                                                \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_##p##_helmholtz_2d(R* f, const R* bd_ax, const R* bd_bx, const R* bd_ay, const R* bd_by,    \
                                              ork_dft_descriptor** xhandle, int64_t* ipar, R* rpar)                    \
    {                                                                                                                  \
        if (any_null(f, xhandle, ipar, rpar) || boundary_missing(ipar, {bd_ax, bd_bx, bd_ay, bd_by}))                  \
            return bad_argument;                                                                                       \
        return status_of(kernels::helmholtz_2d<R>, f, bd_ax, bd_bx, bd_ay, bd_by, xhandle, ipar, rpar);                \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_##p##_init_helmholtz_3d(R ax, R bx, R ay, R by, R az, R bz, int64_t nx, int64_t ny,         \
                                                   int64_t nz, const char* sides, R q, int64_t* ipar, R* rpar)         \
    {                                                                                                                  \
        if (any_null(sides, ipar, rpar)) return bad_argument;                                                          \
        return status_of(kernels::init_helmholtz_3d<R>, &ax, &bx, &ay, &by, &az, &bz, &nx, &ny, &nz, sides, &q, ipar,  \
                         rpar);                                                                                        \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_##p##_commit_helmholtz_3d(ork_dft_descriptor** xhandle, ork_dft_descriptor** yhandle,       \
                                                     int64_t* ipar, R* rpar)                                           \
    {                                                                                                                  \
        if (any_null(xhandle, yhandle, ipar, rpar)) return bad_argument;                                               \
        return status_of(kernels::commit_helmholtz_3d<R>, static_cast<R*>(nullptr), nullptr, nullptr, nullptr,         \
                         nullptr, nullptr, nullptr, xhandle, yhandle, ipar, rpar);                                     \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_##p##_helmholtz_3d(R* f, const R* bd_ax, const R* bd_bx, const R* bd_ay, const R* bd_by,    \
                                              const R* bd_az, const R* bd_bz, ork_dft_descriptor** xhandle,            \
                                              ork_dft_descriptor** yhandle, int64_t* ipar, R* rpar)                    \
    {                                                                                                                  \
        if (any_null(f, xhandle, yhandle, ipar, rpar) ||                                                               \
            boundary_missing(ipar, {bd_ax, bd_bx, bd_ay, bd_by, bd_az, bd_bz}))                                        \
            return bad_argument;                                                                                       \
        return status_of(kernels::helmholtz_3d<R>, f, bd_ax, bd_bx, bd_ay, bd_by, bd_az, bd_bz, xhandle, yhandle,      \
                         ipar, rpar);                                                                                  \
    }
#define SPHERE(p, R)                                                                                                   \
    ORK_EXPORT int64_t ork_##p##_init_sph_p(R ap, R bp, R at, R bt, int64_t np, int64_t nt, R q, int64_t* ipar,        \
                                            R* rpar)                                                                   \
    {                                                                                                                  \
        if (any_null(ipar, rpar)) return bad_argument;                                                                 \
        return status_of(kernels::init_sph_p<R>, &ap, &bp, &at, &bt, &np, &nt, &q, ipar, rpar);                        \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_##p##_commit_sph_p(ork_dft_descriptor** sine, ork_dft_descriptor** cosine, int64_t* ipar,   \
                                              R* rpar)                                                                 \
    {                                                                                                                  \
        if (any_null(sine, cosine, ipar, rpar)) return bad_argument;                                                   \
        return status_of(kernels::commit_sph_p<R>, static_cast<R*>(nullptr), sine, cosine, ipar, rpar);                \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_##p##_sph_p(R* f, ork_dft_descriptor** sine, ork_dft_descriptor** cosine, int64_t* ipar,    \
                                       R* rpar)                                                                        \
    {                                                                                                                  \
        if (any_null(f, sine, cosine, ipar, rpar)) return bad_argument;                                                \
        return status_of(kernels::sph_p<R>, f, sine, cosine, ipar, rpar);                                              \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_##p##_init_sph_np(R ap, R bp, R at, R bt, int64_t np, int64_t nt, R q, int64_t* ipar,       \
                                             R* rpar)                                                                  \
    {                                                                                                                  \
        if (any_null(ipar, rpar)) return bad_argument;                                                                 \
        return status_of(kernels::init_sph_np<R>, &ap, &bp, &at, &bt, &np, &nt, &q, ipar, rpar);                       \
    }                                                                                                                  \
    ORK_EXPORT int64_t ork_##p##_commit_sph_np(ork_dft_descriptor** sine, int64_t* ipar, R* rpar)                      \
    {                                                                                                                  \
        if (any_null(sine, ipar, rpar)) return bad_argument;                                                           \
        return status_of(kernels::commit_sph_np<R>, static_cast<R*>(nullptr), sine, ipar, rpar);                       \
    }                                                                                                                  \
    TRANSFORM(p, R, sph_np)
ROUTINES(s, float)
ROUTINES(d, double)
SPHERE(s, float)
SPHERE(d, double)
#undef SPHERE
#undef ROUTINES
#undef TRANSFORM

ORK_EXPORT int64_t ork_s_init_helmholtz_nonuniform_3d(float ax, float bx, float ay, float by, int64_t nx, int64_t ny,
                                                      int64_t nz, const char* sides, float q, int64_t* ipar,
                                                      float* rpar)
{
    if (any_null(sides, ipar, rpar)) return bad_argument;
    return status_of(kernels::init_helmholtz_nonuniform_3d, &ax, &bx, &ay, &by, &nx, &ny, &nz, sides, &q, ipar, rpar);
}

ORK_EXPORT int64_t ork_s_commit_helmholtz_nonuniform_3d(const float* z, ork_dft_descriptor** xhandle,
                                                        ork_dft_descriptor** yhandle, int64_t* ipar, float* rpar)
{
    if (any_null(z, xhandle, yhandle, ipar, rpar)) return bad_argument;
    return status_of(kernels::commit_helmholtz_nonuniform_3d, static_cast<float*>(nullptr), z, xhandle, yhandle, ipar,
                     rpar);
}

ORK_EXPORT int64_t ork_s_helmholtz_nonuniform_3d(float* f, const float* bd_ax, const float* bd_bx, const float* bd_ay,
                                                 const float* bd_by, const float* bd_az, const float* bd_bz,
                                                 ork_dft_descriptor** xhandle, ork_dft_descriptor** yhandle,
                                                 int64_t* ipar, float* rpar)
{
    if (any_null(f, xhandle, yhandle, ipar, rpar) || boundary_missing(ipar, {bd_ax, bd_bx, bd_ay, bd_by, bd_az, bd_bz}))
        return bad_argument;
    return status_of(kernels::helmholtz_nonuniform_3d, f, bd_ax, bd_bx, bd_ay, bd_by, bd_az, bd_bz, xhandle, yhandle,
                     ipar, rpar);
}

ORK_EXPORT int64_t ork_free_trig_transform(ork_dft_descriptor** handle, int64_t* ipar)
{
    return any_null(handle, ipar) ? Int{bad_argument} : status_of(free_trig, handle, ipar);
}

ORK_EXPORT int64_t ork_free_helmholtz_2d(ork_dft_descriptor** xhandle, int64_t* ipar)
{
    return any_null(xhandle, ipar) ? Int{bad_argument} : status_of(free_2d, xhandle, ipar);
}

ORK_EXPORT int64_t ork_free_helmholtz_3d(ork_dft_descriptor** xhandle, ork_dft_descriptor** yhandle, int64_t* ipar)
{
    return any_null(xhandle, yhandle, ipar) ? Int{bad_argument} : status_of(free_3d, xhandle, yhandle, ipar);
}

ORK_EXPORT int64_t ork_free_sph_p(ork_dft_descriptor** sine, ork_dft_descriptor** cosine, int64_t* ipar)
{
    return any_null(sine, cosine, ipar) ? Int{bad_argument} : status_of(free_circle, sine, cosine, ipar);
}

ORK_EXPORT int64_t ork_free_sph_np(ork_dft_descriptor** sine, int64_t* ipar)
{
    return any_null(sine, ipar) ? Int{bad_argument} : status_of(free_part, sine, ipar);
}
