// SPDX-License-Identifier: MIT
// Multiplies of one shape whose matrices lie at equal distances.
#pragma once

#include "blas/gemm.h"

namespace ork::blas {

template <class T>
void gemm_batch_strided(const char* transa, const char* transb, const std::int64_t* m, const std::int64_t* n,
                        const std::int64_t* k, const T* alpha, const T* a, const std::int64_t* lda,
                        const std::int64_t* stridea, const T* b, const std::int64_t* ldb, const std::int64_t* strideb,
                        const T* beta, T* c, const std::int64_t* ldc, const std::int64_t* stridec,
                        const std::int64_t* batch_size)
{
    for (std::int64_t i = 0; i < *batch_size; ++i)
        gemm(transa, transb, m, n, k, alpha, a + i * *stridea, lda, b + i * *strideb, ldb, beta, c + i * *stridec, ldc);
}

} // namespace ork::blas
