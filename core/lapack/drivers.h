// SPDX-License-Identifier: MIT
// What the public routines do, for any order and legal arguments: small kernels below the crossovers of crossover.h,
// above them blocked drivers on the level 3 of core/blas, which brings the threads. Letters are upper-case; the results
// are LAPACK's info. T: float, double, std::complex of them.
//
// How a problem is divided depends on its sizes alone and every step gives an element the bits that one thread gives
// it, so results don't depend on the number of threads.
#pragma once

#include "lapack/pivots.h"

namespace ork::lapack {

template <class T>
Int getrf(Int m, Int n, T* a, Int lda, Pivots ipiv);
template <class T>
Int getrfnp(Int m, Int n, T* a, Int lda);
template <class T>
Int getrs(char trans, Int n, Int nrhs, const T* a, Int lda, Pivots ipiv, T* b, Int ldb);
template <class T>
Int gesv(Int n, Int nrhs, T* a, Int lda, Pivots ipiv, T* b, Int ldb);
template <class T>
Int gtsv(Int n, Int nrhs, T* dl, T* d, T* du, T* b, Int ldb);
template <class T>
Int potrf(char uplo, Int n, T* a, Int lda);
template <class T>
Int potrs(char uplo, Int n, Int nrhs, const T* a, Int lda, T* b, Int ldb);
template <class T>
Int posv(char uplo, Int n, Int nrhs, T* a, Int lda, T* b, Int ldb);

// Inverses. work: n elements.
template <class T>
Int getri(Int n, T* a, Int lda, Pivots ipiv, T* work);
template <class T>
Int getrinp(Int n, T* a, Int lda, T* work);
template <class T>
Int potri(char uplo, Int n, T* a, Int lda);
template <class T>
Int trtri(char uplo, char diag, Int n, T* a, Int lda);

// work: n elements, for ormqr as many as C has rows or columns beside those that Q mixes.
template <class T>
Int geqrf(Int m, Int n, T* a, Int lda, T* tau, T* work);
template <class T>
Int orgqr(Int m, Int n, Int k, T* a, Int lda, const T* tau, T* work);
template <class T>
Int ormqr(char side, char trans, Int m, Int n, Int k, const T* a, Int lda, const T* tau, T* c, Int ldc, T* work);

} // namespace ork::lapack
