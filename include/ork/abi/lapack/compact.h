/* SPDX-License-Identifier: MIT */
// Many matrices of one size side by side: see ork/abi/lapack.h for what holds for all.
//
// Compact layout. The matrices stand in packs of w; within a pack, element (i, j) of all w matrices stands in w
// adjacent places. A complex element is w real parts, then w imaginary ones. Elements of a pack follow by columns
// (layout 102) or by rows (layout 101), lines lda elements apart, packs lda * n elements apart by columns and lda * m
// by rows (n by n: lda * n). A format says how many bytes the w numbers of one part take:
//
//     format   bytes   w: s, c   w: d, z
//     181      16      4         2
//     182      32      8         4
//     183      64      16        8
//
// Of nmat matrices, the nmat / w whole packs are worked on, and nothing is done for another format or layout. No
// element beside the matrices (between lines, where lda is larger) is read or written. Every format runs in registers,
// and a matrix has the same bits whatever its format, lane and neighbours; the routines never ask what a lane holds, so
// a pivot of zero gives infinities or NaN in its own matrix and nothing elsewhere. info becomes 0, always.
//
// LU without pivoting: the reciprocal of a pivot is formed once and multiplies the column below. Cholesky: entries are
// divided by the square root of the diagonal, whose imaginary part is not read and becomes 0. In both, element (i, j)
// receives - l(i, k) u(k, j), k ascending, each product and difference rounded by itself; a complex product is
// (ac - bd, ad + bc). A complex reciprocal is, with |x| >= |y|, r = y / x, q = 1 / (x + y r): (q, -r q) for (x, y) and
// (r q, -q) for (y, x).
//
// Inverse from these factors: U is inverted column by column, then X L = U^-1 is solved, last column first.
// QR: LAPACK's reflectors, H = I - tau v v^H with v(1) = 1, R with a real diagonal, tau = 0 where there is nothing to
// annihilate; norms neither overflow nor underflow.
#ifndef ORK_ABI_LAPACK_COMPACT_H
#define ORK_ABI_LAPACK_COMPACT_H

#include "ork/abi/lapack/types.h"

namespace ork::lapack {

template <class T>
struct CompactCalls {
    using getrfnp_compact_ps = void(const Int* layout, const Int* m, const Int* n, Part<T>* a, const Int* lda,
                                    Int* info, const Int* format, const Int* nmat);
    // work: 3 n elements of one pack, whose real numbers lwork counts; with lwork = -1 the first receives that count
    // and nothing else is touched.
    using getrinp_compact_ps = void(const Int* layout, const Int* n, Part<T>* a, const Int* lda, Part<T>* work,
                                    const Int* lwork, Int* info, const Int* format, const Int* nmat);
    // uplo: U or u is upper, any other letter lower. The other triangle is not touched.
    using potrf_compact_ps = void(const Int* layout, const char* uplo, const Int* n, Part<T>* a, const Int* lda,
                                  Int* info, const Int* format, const Int* nmat);
    // tau: min(m, n) elements a pack, one pack behind the other. work is used for the answer to lwork = -1 alone.
    using geqrf_compact_ps = void(const Int* layout, const Int* m, const Int* n, Part<T>* a, const Int* lda,
                                  Part<T>* tau, Part<T>* work, const Int* lwork, Int* info, const Int* format,
                                  const Int* nmat);

    // B <- alpha op(A)^-1 B (side L) or alpha B op(A)^-1 (side R), B m by n, op by transa: N, T or C; diag U: the
    // diagonal is 1 and not read. Otherwise its reciprocals are formed once and multiply. alpha = 0: A and B are not
    // read, B becomes 0.
    using trsm_compact_ps = void(const Int* layout, const char* side, const char* uplo, const char* transa,
                                 const char* diag, const Int* m, const Int* n, const T* alpha, const Part<T>* a,
                                 const Int* lda, Part<T>* b, const Int* ldb, const Int* format, const Int* nmat);

    // Matrices into packs and back: a[k] is matrix k, in the same layout with lines lda elements apart. Here nmat
    // counts every matrix; the places that the last pack has left are filled with the identity, and not unpacked.
    using pack_compact_ps = void(const Int* layout, const Int* m, const Int* n, const T* const* a, const Int* lda,
                                 Part<T>* packs, const Int* ldp, const Int* format, const Int* nmat);
    using unpack_compact_ps = void(const Int* layout, const Int* m, const Int* n, T* const* a, const Int* lda,
                                   const Part<T>* packs, const Int* ldp, const Int* format, const Int* nmat);

    // After a factorisation: first becomes the number, from 1, of the first matrix whose last pivot, element (r, r)
    // with r = min(m, n), is zero, infinite or NaN, and 0 if there is none. A pivot that was unusable earlier has made
    // it so: the reciprocal of zero, a root of a negative number and a division by zero leave no number on the diagonal
    // behind them.
    using pivots_compact_ps = void(const Int* layout, const Int* m, const Int* n, const Part<T>* a, const Int* lda,
                                   Int* first, const Int* format, const Int* nmat);

    // The format that suits the processor, by the core's answer to ork_serv_cpu_detect: 0 and 1 182, 2 and 3 183, any
    // other 181. Same for all precisions.
    using compact_format_ps = void(Int* format);
};

} // namespace ork::lapack

#endif
