/* SPDX-License-Identifier: MIT */
// Rotations, reflectors, tridiagonal systems, copies, panels of blocked reductions: see ork/abi/lapack.h for what holds
// for all.
//
// Rotation k of c and s takes the rows or elements u (lower number) and t (higher number) to
//     t <- c(k) t - s(k) u,   u <- s(k) t + c(k) u     (the old t and u on the right)
// None is skipped, also not c = 1, s = 0. A reflector is H = I - tau v v^H; tau = 0 is applied like any other in rot2
// and rot3, and leaves C alone in larfx and apply_2hv.
//
// Vectors with increments are BLAS's: with a negative increment the first element is the last in memory, with 0 all are
// one, and they are taken one after the other. Arrays of a call do not overlap.
#ifndef ORK_ABI_LAPACK_BLOCKS_H
#define ORK_ABI_LAPACK_BLOCKS_H

#include <type_traits>

#include "ork/abi/lapack/types.h"

namespace ork::lapack {

template <class T>
struct BlockCalls {
    using R = Part<T>;

    // m - 1 rotations on the rows of the m x n matrix A, from the left: rows k and k + 1 (lv), 1 and k + 1 (lt), k and
    // m (lb), for ascending k (f) or descending (b). Every column goes through all of them by itself.
    using lasr_lvf = void(const Int* m, const Int* n, const R* c, const R* s, T* a, const Int* lda);
    using lasr_lvb = lasr_lvf;
    using lasr_ltf = lasr_lvf;
    using lasr_ltb = lasr_lvf;
    using lasr_lbf = lasr_lvf;
    using lasr_lbb = lasr_lvf;

    // x(i) <- c(i) x(i) + s(i) y(i), y(i) <- c(i) y(i) - conj(s(i)) x(i) with the old x(i); incc is of c and of s.
    using lartv = void(const Int* n, T* x, const Int* incx, T* y, const Int* incy, const R* c, const T* s,
                       const Int* incc);

    // sum = (x(i) + h2 y(i)) tau, x(i) <- x(i) - sum, y(i) <- y(i) - sum conj(h2): the rows (x(i), y(i)) times
    // I - tau h h^H, h = (1, h2). With conj(h2) it is the same reflector times columns (x(i), y(i))^T.
    using rot2 = void(const Int* n, T* x, const Int* incx, T* y, const Int* incy, const T* tau, const T* h2);
    // sum = ((x(i) + h2 y(i)) + h3 z(i)) tau, then x, y and z as in rot2 with h = (1, h2, h3).
    using rot3 = void(const Int* n, T* x, const Int* incx, T* y, const Int* incy, T* z, const Int* incz, const T* tau,
                      const T* h2, const T* h3);

    // C <- H C (side L, case apart) or C H, C m x n. v has m (L) or n elements, all of them stored; it and C are not
    // read where tau is 0. work is LAPACK's and not touched.
    using larfx = void(const char* side, const Int* m, const Int* n, const T* v, const T* tau, T* c, const Int* ldc,
                       T* work);
    // Two reflectors, that of v1 first: C <- H(v2) H(v1) C (side L) or C H(v1) H(v2), reading C once and writing it
    // once. work is not touched.
    using apply_2hv = void(const char* side, const Int* m, const Int* n, const T* v1, const T* tau1, const T* v2,
                           const T* tau2, T* c, const Int* ldc, T* work);

    // LU of a tridiagonal matrix without interchanges, from both ends at once; row i holds dl(i - 1), d(i), du(i). In
    // turns from the top, i = 1, 2, .., and from the bottom, k = n, n - 1, .., until one row is left:
    //     d(i) <- 1 / d(i),  dl(i) <- dl(i) d(i),          d(i + 1) <- d(i + 1) - dl(i) du(i)
    //     d(k) <- 1 / d(k),  dl(k - 1) <- dl(k - 1) d(k),  d(k - 1) <- d(k - 1) - dl(k - 1) du(k - 1)
    // and the last row gives d <- 1 / d. A pivot of exactly zero ends it with info = its row; what was done stays.
    using dttrfb = void(const Int* n, T* dl, T* d, const T* du, Int* info);
    // B <- A^-1 B with what dttrfb left, B n x nrhs. It multiplies only. info = 0.
    using dtsvb = void(const Int* n, const Int* nrhs, const T* dl, const T* d, const T* du, T* b, const Int* ldb,
                       Int* info);

    // LAPACK's gtsv: partial pivoting, row i + 1 replaces row i when its |re| + |im| is larger. dl becomes the second
    // superdiagonal of U. info = i: u(i, i) is zero and there is no solution.
    using gtsv_small = void(const Int* n, const Int* nrhs, T* dl, T* d, T* du, T* b, const Int* ldb, Int* info);
    // B <- op(A)^-1 B with the factors of LAPACK's gttrf, ipiv included. itrans: 0 A, 1 A^T, 2 A^H.
    using gtts2 = void(const Int* itrans, const Int* n, const Int* nrhs, const T* dl, const T* d, const T* du,
                       const T* du2, const Int* ipiv, T* b, const Int* ldb);
    // B <- A^-1 B with the factors of LAPACK's pttrf. Complex routines have iuplo first: 1: A = U^H D U with e above
    // the diagonal of U; otherwise A = L D L^H with e below that of L.
    using ptts2 = std::conditional_t<
        std::is_same_v<T, R>, void(const Int* n, const Int* nrhs, const R* d, const T* e, T* b, const Int* ldb),
        void(const Int* iuplo, const Int* n, const Int* nrhs, const R* d, const T* e, T* b, const Int* ldb)>;

    // Many tridiagonal systems of order n without interchanges, for matrices that need none (diagonally dominant ones),
    // one right-hand side each. layout: I (case apart): equation i of system s stands at [(i - 1) ld + s - 1]; any
    // other letter, one system after the other: at [(s - 1) ld + i - 1]. dl, d, du and b all stand so, n equations
    // each; dl of equation 1 is not read, du of equation n may hold anything. For i = 1 .. n
    //     d'(i) = 1 / (d(i) - dl(i) du'(i - 1)),  du'(i) = du(i) d'(i),  b'(i) = (b(i) - dl(i) b'(i - 1)) d'(i)
    // then b(i) = b'(i) - du'(i) b(i + 1) for i = n .. 1. info = s: system s is the first with a pivot of exactly zero;
    // the others are solved. work: 2 n min(systems + 3, 16) elements.
    using gtsvnp_many = void(const char* layout, const Int* n, const Int* systems, const T* dl, const T* d, const T* du,
                             T* b, const Int* ld, T* work, Int* info);
    // d' and du' in place of d and du, and solutions with them.
    using gttrfnp_many = void(const char* layout, const Int* n, const Int* systems, const T* dl, T* d, T* du,
                              const Int* ld, Int* info);
    using gttrsnp_many = void(const char* layout, const Int* n, const Int* systems, const T* dl, const T* d,
                              const T* du, T* b, const Int* ld);

    // B <- A of the upper trapezoid (uplo U, case apart), the lower one (L) or the whole m x n matrix (other letters).
    using lacpy2 = void(const char* uplo, const Int* m, const Int* n, const T* a, const Int* lda, T* b, const Int* ldb);
    // The same with the edge at diagonal k: U copies the elements with column - row >= k, L those with
    // column - row <= k.
    using lacpy3 = void(const char* uplo, const Int* m, const Int* n, const Int* k, const T* a, const Int* lda, T* b,
                        const Int* ldb);

    // The Hermitian (real: symmetric) product, rank-2 and rank-2k updates of blocked reductions, with the argument
    // lists and the bits of hemv, her2 and her2k of the BLAS half; symv_nb exists for real elements only and is
    // hemv_nb.
    using hemv_nb = void(const char* uplo, const Int* n, const T* alpha, const T* a, const Int* lda, const T* x,
                         const Int* incx, const T* beta, T* y, const Int* incy);
    using symv_nb = hemv_nb;
    using her2_nb = void(const char* uplo, const Int* n, const T* alpha, const T* x, const Int* incx, const T* y,
                         const Int* incy, T* a, const Int* lda);
    using her2k_nb = void(const char* uplo, const char* trans, const Int* n, const Int* k, const T* alpha, const T* a,
                          const Int* lda, const T* b, const Int* ldb, const R* beta, T* c, const Int* ldc);
};

} // namespace ork::lapack

#endif
