// SPDX-License-Identifier: MIT
// The dense kernels of the kernel library, under their own names and with their types.
#pragma once

#include "loader/kernel.h"
#include "ork/types.h"

namespace ork::blas::kernels {

#define KERNEL(result, routine, ...) inline constinit loader::Kernel<result(__VA_ARGS__)> routine{"blas", #routine};
#include "ork/abi/gemm_kernels.inc"
#include "ork/abi/level1.inc"
#include "ork/abi/level2.inc"
#include "ork/abi/level3.inc"
#undef KERNEL

} // namespace ork::blas::kernels
