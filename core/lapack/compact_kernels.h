// SPDX-License-Identifier: MIT
// The multiply of packs, which is the BLAS's, beside LAPACK's kernels.
#pragma once

#include "blas/kernels.h"
#include "lapack/kernels.h"

namespace ork::lapack::kernels {

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
