// SPDX-License-Identifier: MIT
// The single-precision multiply: kernel table and exports.
#include "blas/gemm/driver.h"
#include "frame/export.h"

#define GEMM(suffix) ork_blas_nx2_sgemm_##suffix
#define XGEMM(suffix) ork_blas_nx2_xsgemm##suffix
using T = float;
#include "blas/gemm/exports.inc"
