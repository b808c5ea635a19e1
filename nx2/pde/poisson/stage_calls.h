// SPDX-License-Identifier: MIT
// The core's stages by pair. Calls, not a table: an import's address would be resolved when this library is loaded.
#pragma once

#include "ork/abi/core_pde.h"
#include "pde/poisson/state.h"

namespace ork::pde {

#define STAGE_OF(name, R, p)                                                                                           \
    inline void name(Pair pair, Work<R>* work)                                                                         \
    {                                                                                                                  \
        switch (pair) {                                                                                                \
        case dd:                                                                                                       \
            return ork_pdepl_##p##_##name##_dd(work);                                                                  \
        case dn:                                                                                                       \
            return ork_pdepl_##p##_##name##_dn(work);                                                                  \
        case nd:                                                                                                       \
            return ork_pdepl_##p##_##name##_nd(work);                                                                  \
        case nn:                                                                                                       \
            return ork_pdepl_##p##_##name##_nn(work);                                                                  \
        case pp:                                                                                                       \
            return ork_pdepl_##p##_##name##_pp(work);                                                                  \
        default:                                                                                                       \
            work->status = unsupported_pair;                                                                           \
        }                                                                                                              \
    }
#define STAGE(name) STAGE_OF(name, float, s) STAGE_OF(name, double, d)
STAGE(ft_2d)
STAGE(lu_2d)
STAGE(inv_ft_2d)
STAGE(ft_3d_x)
STAGE(ft_3d_y)
STAGE(ft_3d_z)
STAGE(inv_ft_3d_z)
STAGE(inv_ft_3d_y)
STAGE(inv_ft_3d_x)
#undef STAGE
#undef STAGE_OF

} // namespace ork::pde
