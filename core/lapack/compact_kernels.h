// SPDX-License-Identifier: MIT
// The kernels that work on packs, by their stems.
#pragma once

#include "blas/kernels.h"
#include "lapack/kernels.h"

namespace ork::lapack::kernels {

#define ORK_KERNEL(stem)                                                                                               \
    template <class T>                                                                                                 \
    inline constinit loader::Kernel<typename Calls<T>::stem> stem{                                                     \
        "lapack_ps", of_precision<T>("s" #stem, "d" #stem, "c" #stem, "z" #stem)};
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

template <class T>
constexpr auto& gemm_compact()
{
    if constexpr (sizeof(Part<T>) == sizeof(T)) {
        if constexpr (sizeof(T) == sizeof(float))
            return blas::kernels::xsgemm_compact;
        else
            return blas::kernels::xdgemm_compact;
    } else if constexpr (sizeof(T) == 2 * sizeof(float))
        return blas::kernels::xcgemm_compact;
    else
        return blas::kernels::xzgemm_compact;
}

} // namespace ork::lapack::kernels
