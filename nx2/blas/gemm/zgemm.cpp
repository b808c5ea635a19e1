// SPDX-License-Identifier: MIT
// The double complex multiply: kernel table and exports.
#include "blas/gemm/driver.h"
#include "frame/export.h"

#define GEMM(suffix) ork_blas_nx2_zgemm_##suffix
#define XGEMM(suffix) ork_blas_nx2_xzgemm##suffix
using T = ork::Complex<double>;
#include "blas/gemm/exports.inc"

template void ork::gemm::multiply_triangle(bool, const ork::gemm::Product<T, double>&);
