// SPDX-License-Identifier: MIT
// The double-precision multiply: kernel table and exports.
#include "blas/gemm/driver.h"
#include "frame/export.h"

#define GEMM(suffix) ork_blas_nx2_dgemm_##suffix
#define XGEMM(suffix) ork_blas_nx2_xdgemm##suffix
using T = double;
#include "blas/gemm/exports.inc"

// The same for every precision, whatever the arguments.
ORK_EXPORT std::int64_t ork_blas_nx2_get_ikernel_api_version(const char*, const char*, const std::int64_t*,
                                                             const std::int64_t*)
{
    return ork::gemm::interface_version;
}
