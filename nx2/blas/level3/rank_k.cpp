// SPDX-License-Identifier: MIT
// gemmt, syrk, herk, syr2k, her2k: a triangle of C updated by products.
#include "blas/level3/rank_k.h"
#include "frame/export.h"

using namespace ork;
using namespace ork::level3;
using Ptr = const std::int64_t*;
using Letter = const char*;

// C and Z for the exports whose boundary types are not the kernels' own: both are adjacent pairs.
#define MEMBERS(p, T)                                                                                                  \
    ORK_EXPORT void ork_blas_nx2_x##p##gemmt(Letter uplo, Letter transa, Letter transb, Ptr n, Ptr k, const T* alpha,  \
                                             const T* a, Ptr lda, const T* b, Ptr ldb, const T* beta, T* c, Ptr ldc)   \
    {                                                                                                                  \
        gemmt(TriangleOf<T>{is_lower(*uplo), *n, c, *ldc}, *transa, *transb, *k, *alpha, a, *lda, b, *ldb, *beta);     \
    }                                                                                                                  \
    ORK_EXPORT void ork_blas_nx2_x##p##syrk(Letter uplo, Letter trans, Ptr n, Ptr k, const T* alpha, const T* a,       \
                                            Ptr lda, const T* beta, T* c, Ptr ldc)                                     \
    {                                                                                                                  \
        syrk(TriangleOf<T>{is_lower(*uplo), *n, c, *ldc}, *trans, *k, *alpha, a, *lda, *beta);                         \
    }                                                                                                                  \
    ORK_EXPORT void ork_blas_nx2_x##p##syr2k(Letter uplo, Letter trans, Ptr n, Ptr k, const T* alpha, const T* a,      \
                                             Ptr lda, const T* b, Ptr ldb, const T* beta, T* c, Ptr ldc)               \
    {                                                                                                                  \
        syr2k(TriangleOf<T>{is_lower(*uplo), *n, c, *ldc}, *trans, *k, *alpha, a, *lda, b, *ldb, *beta);               \
    }
#define HERMITIAN_MEMBERS(p, R)                                                                                        \
    ORK_EXPORT void ork_blas_nx2_x##p##herk(Letter uplo, Letter trans, Ptr n, Ptr k, const R* alpha,                   \
                                            const Complex<R>* a, Ptr lda, const R* beta, Complex<R>* c, Ptr ldc)       \
    {                                                                                                                  \
        herk(TriangleOf<Complex<R>>{is_lower(*uplo), *n, c, *ldc}, *trans, *k, *alpha, a, *lda, *beta);                \
    }                                                                                                                  \
    ORK_EXPORT void ork_blas_nx2_x##p##her2k(Letter uplo, Letter trans, Ptr n, Ptr k, const Complex<R>* alpha,         \
                                             const Complex<R>* a, Ptr lda, const Complex<R>* b, Ptr ldb,               \
                                             const R* beta, Complex<R>* c, Ptr ldc)                                    \
    {                                                                                                                  \
        her2k(TriangleOf<Complex<R>>{is_lower(*uplo), *n, c, *ldc}, *trans, *k, *alpha, a, *lda, b, *ldb, *beta);      \
    }
MEMBERS(s, float)
MEMBERS(d, double)
MEMBERS(c, Complex<float>)
MEMBERS(z, Complex<double>)
HERMITIAN_MEMBERS(c, float)
HERMITIAN_MEMBERS(z, double)
