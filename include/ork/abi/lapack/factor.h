/* SPDX-License-Identifier: MIT */
// Factorisations of small matrices: see ork/abi/lapack.h for what holds for all.
//
// LU, A = P L U: column by column. The pivot is the largest |x| (|re| + |im|) at or below the diagonal, the first one
// of several; a NaN is passed over unless nothing else but zeros is there. What is below it becomes multipliers. Square
// matrices of order 1 to 7 divide by the pivot; all others multiply by its reciprocal when |pivot| is greater than the
// safe minimum and divide otherwise. A pivot of zero (in complex both parts) leaves its column as it is and makes info
// its number unless an earlier one has; the factorisation goes on. Every element a(i, k) receives
// - l(i, j) u(j, k), product and difference rounded one after the other, for j = 1, 2, ...
//
// Cholesky, A = L L^H (lower) or U^H U (upper): entry (i, j) has the products of entries already computed subtracted,
// those of the diagonal summed as squares in two lanes, even and odd places counted from 0 of the row of L or the
// column of U, the sum of the lanes and then an odd last square added to a(j, j). A diagonal element that is not
// greater than 0 (NaN is not) is stored, its number becomes info, and nothing behind it is touched. Entries are divided
// by the diagonal. The imaginary part of a diagonal element is not read and becomes 0. The other triangle is not
// touched.
#ifndef ORK_ABI_LAPACK_FACTOR_H
#define ORK_ABI_LAPACK_FACTOR_H

#include "ork/abi/lapack/types.h"

namespace ork::lapack {

template <class T>
struct FactorCalls {
    using getrf_small = void(const Int* m, const Int* n, T* a, const Int* lda, Int* ipiv, Int* info);
    // Without interchanges.
    using getrfnp_small = void(const Int* m, const Int* n, T* a, const Int* lda, Int* info);
    // trans: N, T or C, case apart.
    using getrs_small = void(const char* trans, const Int* n, const Int* nrhs, const T* a, const Int* lda,
                             const Int* ipiv, T* b, const Int* ldb, Int* info);
    // The inverse from the factors. info = j: u(j, j) is zero, the factors are as they were. work: n elements; with
    // lwork = -1 its first element receives that number and nothing else is touched.
    using getri_small = void(const Int* n, T* a, const Int* lda, const Int* ipiv, T* work, const Int* lwork, Int* info);
    using getrinp_small = void(const Int* n, T* a, const Int* lda, T* work, const Int* lwork, Int* info);

    // uplo: U or u is upper, any other letter lower.
    using potrf_small = void(const char* uplo, const Int* n, T* a, const Int* lda, Int* info);
    using potrf_l_small = void(const Int* n, T* a, const Int* lda, Int* info);
    using potrf_u_small = potrf_l_small;

    // A = Q R, Householder reflectors as LAPACK's: H = I - tau v v^H with v(1) = 1, R with a real diagonal. work: n
    // elements; with lwork = -1 its first element receives that number and nothing else is touched.
    using geqrf_small = void(const Int* m, const Int* n, T* a, const Int* lda, T* tau, T* work, const Int* lwork,
                             Int* info);
};

} // namespace ork::lapack

#endif
