/* SPDX-License-Identifier: MIT */
// What the kernels of ork/abi/pde.h call of the core: the stages of a solve, ork_pdepl_<p>_<stage>_<pair>, and how many
// threads one may use.
#ifndef ORK_ABI_CORE_PDE_H
#define ORK_ABI_CORE_PDE_H

#include "ork/abi/pde.h"

extern "C" {

ork::pde::Int ork_pdepl_pl_get_max_thread();

#define ORK_PDE_STAGE(T, stage) ork::pde::Stage<T> stage##_dd, stage##_dn, stage##_nd, stage##_nn, stage##_pp;
#define ORK_PDE_STAGES(p, T)                                                                                           \
    ORK_PDE_STAGE(T, ork_pdepl_##p##_ft_2d)                                                                            \
    ORK_PDE_STAGE(T, ork_pdepl_##p##_lu_2d)                                                                            \
    ORK_PDE_STAGE(T, ork_pdepl_##p##_inv_ft_2d)                                                                        \
    ORK_PDE_STAGE(T, ork_pdepl_##p##_ft_3d_x)                                                                          \
    ORK_PDE_STAGE(T, ork_pdepl_##p##_ft_3d_y)                                                                          \
    ORK_PDE_STAGE(T, ork_pdepl_##p##_ft_3d_z)                                                                          \
    ORK_PDE_STAGE(T, ork_pdepl_##p##_inv_ft_3d_z)                                                                      \
    ORK_PDE_STAGE(T, ork_pdepl_##p##_inv_ft_3d_y)                                                                      \
    ORK_PDE_STAGE(T, ork_pdepl_##p##_inv_ft_3d_x)
ORK_PDE_STAGES(s, float)
ORK_PDE_STAGES(d, double)
#undef ORK_PDE_STAGES
#undef ORK_PDE_STAGE
}

#endif
