// SPDX-License-Identifier: MIT
// The single complex multiply: kernel table and exports.
#include "blas/gemm/driver.h"
#include "frame/export.h"

#define GEMM(suffix) ork_blas_nx2_cgemm_##suffix
#define XGEMM(suffix) ork_blas_nx2_xcgemm##suffix
using T = ork::Complex<float>;
#include "blas/gemm/exports.inc"

template void ork::gemm::multiply_triangle(bool, const ork::gemm::Product<T, float>&);
