// SPDX-License-Identifier: MIT
// Recorded multiplies in four precisions.
#include "blas/gemm/recorded.h"
#include "frame/export.h"

using namespace ork;
using gemm::Recorded;
using Ptr = const std::int64_t*;
using Letter = const char*;

#define MEMBERS(p, P, T)                                                                                               \
    extern "C" gemm::Gemm<T> ork_blas_nx2_x##p##gemm;                                                                  \
    ORK_EXPORT std::int64_t ork_blas_nx2_jit_create_x##p##gemm(Recorded<T>** object, Letter layout, Letter transa,     \
                                                               Letter transb, Ptr m, Ptr n, Ptr k, const T* alpha,     \
                                                               Ptr lda, Ptr ldb, const T* beta, Ptr ldc)               \
    {                                                                                                                  \
        return gemm::record<T, ork_blas_nx2_x##p##gemm>(object, P "ORK_JIT_CREATE_?GEMM", *layout, *transa, *transb,   \
                                                        *m, *n, *k, *alpha, *lda, *ldb, *beta, *ldc);                  \
    }                                                                                                                  \
    ORK_EXPORT std::int64_t ork_blas_nx2_ork_jit_create_##p##gemm(Recorded<T>** object, Letter transa_and_layout,      \
                                                                  Letter transb, Ptr m, Ptr n, Ptr k, const T* alpha,  \
                                                                  Ptr lda, Ptr ldb, const T* beta, Ptr ldc)            \
    {                                                                                                                  \
        const gemm::Folded a = gemm::unfold(*transa_and_layout);                                                       \
        return ork_blas_nx2_jit_create_x##p##gemm(object, &a.layout, &a.trans, transb, m, n, k, alpha, lda, ldb, beta, \
                                                  ldc);                                                                \
    }                                                                                                                  \
    ORK_EXPORT decltype(Recorded<T>::routine) ork_blas_nx2_ork_jit_get_##p##gemm_ptr(const Recorded<T>* object)        \
    {                                                                                                                  \
        return object == nullptr ? nullptr : object->routine;                                                          \
    }                                                                                                                  \
    ORK_EXPORT void ork_blas_nx2_ork_##p##gemm_jit(Letter transa, Letter transb, Ptr m, Ptr n, Ptr k, const T* alpha,  \
                                                   const T* a, Ptr lda, const T* b, Ptr ldb, const T* beta, T* c,      \
                                                   Ptr ldc)                                                            \
    {                                                                                                                  \
        ork_blas_nx2_x##p##gemm(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);                         \
    }
MEMBERS(s, "S", float)
MEMBERS(d, "D", double)
MEMBERS(c, "C", Complex<float>)
MEMBERS(z, "Z", Complex<double>)

ORK_EXPORT std::int64_t ork_blas_nx2_ork_jit_destroy(void* object)
{
    if (object != nullptr) ork_serv_free(object);
    return 0;
}
