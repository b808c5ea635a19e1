// SPDX-License-Identifier: MIT
// The multiply of a real by a complex matrix in double precision: kernel table and exports.
#include "blas/gemm/mixed.h"
#include "frame/export.h"

#define GEMM(suffix) ork_blas_nx2_dzgemm_##suffix
using TA = double;
using TB = ork::Complex<double>;
using T = ork::Complex<double>;
using R = ork::gemm::Mixed<double>;
#include "blas/gemm/table_exports.inc"

ORK_EXPORT void ork_blas_nx2_xdzgemm(const char* transa, const char* transb, Ptr m, Ptr n, Ptr k, const T* alpha,
                                     const TA* a, Ptr lda, const TB* b, Ptr ldb, const T* beta, T* c, Ptr ldc)
{
    ork::gemm::drive_mixed(*transa, *transb, *m, *n, *k, *alpha, a, *lda, b, *ldb, *beta, c, *ldc);
}
