/* SPDX-License-Identifier: MIT */
// Singular values and eigenvalues of small matrices, symmetric indefinite factorisations, complete pivoting, secular
// equations: see ork/abi/lapack.h for what holds for all. R is the real type of the elements.
//
// gesvd_square_small, A = U diag(s) V^H of a square matrix, m = n (m is not read). Any order is taken; the method has
// no blocks and suits orders up to about 64. jobu: A or S puts U into u, O into a, any other letter (N) asks for none;
// jobvt the same for V^H and vt; capital or not; not both O. a is destroyed unless one is O. s descends. info > 0: so
// many superdiagonals of the bidiagonal matrix have not converged, they are in work(2 ... n) or rwork(1 ... n - 1), s
// is not sorted. A matrix that holds NaN or infinity is not tried: s and the vectors asked for become NaN, info = n.
// Method: scaling when max |a| lies outside [sqrt(safmin)/eps, eps/sqrt(safmin)] (by parts, and s back again);
// Householder bidiagonalisation (Golub and Van Loan, Matrix Computations, 5.4); QR sweeps on the bidiagonal matrix, of
// shift zero where the shift would cost small singular values their relative accuracy, from the end with the smaller
// entries (Demmel and Kahan, "Accurate singular values of bidiagonal matrices", 1990). V is turned by columns and
// transposed at the end.
//
// geev_small, eigenvalues and right (A v = lambda v) and left (u^H A = lambda u^H) eigenvectors of a general real
// matrix; a is destroyed. jobvl, jobvr: V or v asks for them. Vectors have norm 1 and, complex ones, their largest
// component real; of a conjugate pair the one with positive imaginary part comes first, and columns j, j + 1 hold real
// and imaginary part. info = i > 0: the QR iteration failed; wr and wi of i + 1 ... n and of what balancing split off
// have converged, no vectors. A matrix that holds NaN or infinity is not tried: wr, wi and the vectors asked for become
// NaN, info = n. Errors are small beside the balanced matrix, D^-1 A D with what balancing found for D.
// Method: scaling as above; balancing by permutation and by powers of two of Euclidean norms (James, Langou, Lowery,
// "On matrix balancing and eigenvector computation", 2014); Householder reduction to Hessenberg form; Francis's double
// shift (Golub and Van Loan, 7.5) with the deflation test of Ahues and Tisseur (LAPACK Working Note 122, 1997),
// exceptional shifts after 10 and 20 fruitless sweeps, 30 max(10, n) sweeps at most; back-substitution scaled against
// overflow.
//
// sytrf_l_small, sytrf_u_small, A = L D L^T or U D U^T of a symmetric matrix (in complex too, not Hermitian), of which
// only the lower or upper triangle is touched: Bunch and Kaufman's diagonal pivoting ("Some stable methods for
// calculating inertia", 1977) with alpha = (1 + sqrt(17))/8, magnitudes |re| + |im|, the first of several largest in a
// column. ipiv(k) = p > 0: k was exchanged with p, D has a 1 x 1 block; ipiv(k) = ipiv(k +- 1) = -p: a 2 x 2 block, its
// second index (k + 1 lower, k - 1 upper) was exchanged with p. info = k: d(k, k) is exactly zero (or NaN in the
// column's way), the first such; the factorisation is complete. Multipliers are formed by 1/d, and every element a(i,
// j) has x(i) w(j) subtracted, x the column before elimination, of a 2 x 2 block first that of the column with index k,
// then the other's.
//
// getc2, A = P L U Q: the pivot is the element of the largest modulus, of several the one in the last row, there in the
// last column. Pivots smaller than smin = max(eps max |a|, safmin/eps) become smin, and info the number of the last one
// so changed; eps is the distance from 1 to the next number. NaN is never chosen while there is a number. a(j, i) is
// divided by the pivot.
//
// lasd4, the i-th root sigma of 1 + rho sum z(j)^2 / (d(j)^2 - sigma^2) = 0, 0 <= d(1) < ... < d(n), rho > 0:
// d(i) < sigma < d(i + 1), of i = n above d(n). The sum of squares of z need not be 1. delta(j) = d(j) - sigma, work(j)
// = d(j) + sigma, n elements each, both to as many digits as the rounding of the sum lets sigma have, also where sigma
// rounds to a pole; n = 1 gives delta(1) = work(1) = 1. delta and work must not overlap d and z. info = 1: no
// convergence, which takes a NaN or infinity.
// Method: the unknown is sigma^2 less the nearer pole's square; each half of the sum is interpolated by a constant and
// a pole (Bunch, Nielsen, Sorensen, "Rank-one modification of the symmetric eigenproblem", 1978; Li, "Solving secular
// equations stably and efficiently", 1993), within a bracket that is halved (in its exponent while that is wide) when
// it does not shrink fast enough.
//
// lasd3, the secular step of the divide-and-conquer singular value decomposition with LAPACK's arguments: n = nl + nr +
// 1, m = n + sqre. d(1 ... k) receives the roots, z is replaced by the one for which they are exact (Gu and Eisenstat,
// "A stable and efficient algorithm for the rank-one modification of the symmetric eigenproblem", 1994), the first k
// columns of u and rows of vt the vectors, products of the blocks of u2 and vt2 that ctot and idxc describe. dsigma, u2
// and vt2 are not changed. q: k columns of scratch, ldq at least k. Products are those of the matrix multiply, which
// takes memory for large ones and does without when there is none. info = 1: a root did not converge.
// lasd3 and lasd4 of the complex precisions are those of their real type: a bidiagonal matrix is real, and complex
// vectors are had by one product at the end.
#ifndef ORK_ABI_LAPACK_SPECTRAL_H
#define ORK_ABI_LAPACK_SPECTRAL_H

#include "ork/abi/lapack/types.h"

namespace ork::lapack {

// The SVD's arguments end in work, lwork, info; those of complex matrices in work, lwork, rwork, info.
// Real: 5 n elements of work, complex: 3 n elements of work and 5 n of rwork, at least 1. lwork = -1 puts the first
// number into work(1) and does nothing else; so does a call that ends with info = 0.
template <class T, class R = Part<T>>
struct GesvdCall {
    using type = void(const char* jobu, const char* jobvt, const Int* m, const Int* n, T* a, const Int* lda, R* s, T* u,
                      const Int* ldu, T* vt, const Int* ldvt, T* work, const Int* lwork, R* rwork, Int* info);
};
template <class T>
struct GesvdCall<T, T> {
    using type = void(const char* jobu, const char* jobvt, const Int* m, const Int* n, T* a, const Int* lda, T* s, T* u,
                      const Int* ldu, T* vt, const Int* ldvt, T* work, const Int* lwork, Int* info);
};

template <class T>
struct SpectralCalls {
    using R = Part<T>;

    using gesvd_square_small = typename GesvdCall<T>::type;

    // Real precisions only. work: 4 n elements, 3 n when no vectors are asked for, at least 1; lwork = -1 puts that
    // number into work(1) and does nothing else; so does a call that ends with info = 0.
    using geev_small = void(const char* jobvl, const char* jobvr, const Int* n, T* a, const Int* lda, T* wr, T* wi,
                            T* vl, const Int* ldvl, T* vr, const Int* ldvr, T* work, const Int* lwork, Int* info);

    // work is not used; lwork = -1 puts 1 into work(1) and does nothing else. Otherwise work may be null.
    using sytrf_l_small = void(const Int* n, T* a, const Int* lda, Int* ipiv, T* work, const Int* lwork, Int* info);
    using sytrf_u_small = sytrf_l_small;

    using getc2 = void(const Int* n, T* a, const Int* lda, Int* ipiv, Int* jpiv, Int* info);

    using lasd3 = void(const Int* nl, const Int* nr, const Int* sqre, const Int* k, R* d, R* q, const Int* ldq,
                       const R* dsigma, R* u, const Int* ldu, const R* u2, const Int* ldu2, R* vt, const Int* ldvt,
                       const R* vt2, const Int* ldvt2, const Int* idxc, const Int* ctot, R* z, Int* info);
    using lasd4 = void(const Int* n, const Int* i, const R* d, const R* z, R* delta, const R* rho, R* sigma, R* work,
                       Int* info);
};

} // namespace ork::lapack

#endif
