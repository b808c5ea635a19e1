// SPDX-License-Identifier: MIT
// The kernels of transforms and Poisson solvers by their stems: lines<double> is ork_pdett_nx2_d_lines_trig_transform.
#pragma once

#include "loader/kernel.h"
#include "loader/precision.h"
#include "ork/abi/pde.h"
#include "ork/abi/pde_sphere.h"
#include "ork/abi/pde_tridiagonal.h"

namespace ork::pde::kernels {

#define ORK_KERNEL(name, domain, stem, signature)                                                                      \
    template <class R>                                                                                                 \
    inline constinit loader::Kernel<signature> name{domain, loader::of_precision<R>("s_" stem, "d_" stem)};
#define ORK_TRANSFORM(name)                                                                                            \
    ORK_KERNEL(name##_trig_transform, "pdett", #name "_trig_transform", typename TrigCalls<R>::name)
#define ORK_POISSON(name) ORK_KERNEL(name, "pdepl", #name, typename PoissonCalls<R>::name)
#define ORK_SPHERE(name, call) ORK_KERNEL(name, "pdepl", #name, typename SphereCalls<R>::call)
ORK_TRANSFORM(init)
ORK_TRANSFORM(commit)
ORK_TRANSFORM(forward)
ORK_TRANSFORM(backward)
ORK_TRANSFORM(lines)
ORK_POISSON(init_helmholtz_2d)
ORK_POISSON(commit_helmholtz_2d)
ORK_POISSON(helmholtz_2d)
ORK_POISSON(init_helmholtz_3d)
ORK_POISSON(commit_helmholtz_3d)
ORK_POISSON(helmholtz_3d)
ORK_SPHERE(init_sph_p, init)
ORK_SPHERE(commit_sph_p, commit_p)
ORK_SPHERE(sph_p, solve_p)
ORK_SPHERE(init_sph_np, init)
ORK_SPHERE(commit_sph_np, commit_np)
ORK_SPHERE(sph_np, solve_np)
ORK_KERNEL(tridiagonal, "pdepl", "tridiagonal", Tridiagonal<R>)
#undef ORK_SPHERE
#undef ORK_POISSON
#undef ORK_TRANSFORM
#undef ORK_KERNEL

// Single precision only.
#define ORK_NONUNIFORM(name, call) inline constinit loader::Kernel<NonuniformCalls::call> name{"pdepl", "s_" #name};
ORK_NONUNIFORM(init_helmholtz_nonuniform_3d, init)
ORK_NONUNIFORM(commit_helmholtz_nonuniform_3d, commit)
ORK_NONUNIFORM(helmholtz_nonuniform_3d, solve)
#undef ORK_NONUNIFORM

} // namespace ork::pde::kernels
