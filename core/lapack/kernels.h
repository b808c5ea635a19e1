// SPDX-License-Identifier: MIT
// The LAPACK kernels of the kernel library by their stems: getrf_small<double> is ..._dgetrf_small.
#pragma once

#include <complex>

#include "loader/kernel.h"
#include "loader/precision.h"
#include "ork/abi/lapack.h"

namespace ork::lapack::kernels {

#define ORK_KERNEL(stem)                                                                                               \
    template <class T>                                                                                                 \
    inline constinit loader::Kernel<typename Calls<T>::stem> stem{                                                     \
        "lapack_ps", loader::of_precision<T>("s" #stem, "d" #stem, "c" #stem, "z" #stem)};
ORK_KERNEL(getrf_small)
ORK_KERNEL(getrfnp_small)
ORK_KERNEL(getrs_small)
ORK_KERNEL(getri_small)
ORK_KERNEL(getrinp_small)
ORK_KERNEL(potrf_small)
ORK_KERNEL(geqrf_small)
ORK_KERNEL(gtsv_small)
ORK_KERNEL(getrfnp_compact_ps)
ORK_KERNEL(getrinp_compact_ps)
ORK_KERNEL(potrf_compact_ps)
ORK_KERNEL(geqrf_compact_ps)
ORK_KERNEL(trsm_compact_ps)
ORK_KERNEL(pack_compact_ps)
ORK_KERNEL(unpack_compact_ps)
ORK_KERNEL(pivots_compact_ps)
ORK_KERNEL(compact_format_ps)
#undef ORK_KERNEL

} // namespace ork::lapack::kernels
