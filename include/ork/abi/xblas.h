/* SPDX-License-Identifier: MIT */
// Kernels of matrix-vector products with an internal precision of the caller's choice: how they are named, what they
// take. C++: a core looks them up by name.
//
//     ork_xblas_<tag>_blas_<p><stem>     d gemv_x    matrices by columns
//     ork_xblas_<tag>_<p><stem>          the same with the order of storage in front
//
// p is the precision s d c z; hemv is complex. Every argument is an address, integers have 64 bits and all of them
// count. order: 101 by rows, 102 by columns. trans: 111 A, 112 A^T, 113 A^H. uplo: 121 upper, 122 lower. prec, the
// precision of products and sums: 211 single, 212 double, 213 that of the data, 214 extra.
//
// What is refused
//
// order, trans, uplo and prec outside these values: the call returns, y is as it was. Then, in this order, numbers that
// make no sense; the call returns as silently (a kernel library has nobody to tell). Positions count in the form with
// the order, from 1:
//
//     gemv_x   m < 0: 3, n < 1: 4, incx = 0: 9, incy = 0: 12, lda: 7
//     gemv2_x  m < 0: 3, n < 1: 4, incx = 0: 10, incy = 0: 13, lda: 7
//     gbmv_x   m < 0: 3, n < 1: 4, kl < 0: 5, ku < 0: 6, incx = 0: 11, incy = 0: 14, lda: 9
//     gbmv2_x  m < 0: 3, n < 1: 4, kl < 0: 5, ku < 0: 6, incx = 0: 12, incy = 0: 15, lda: 9
//     symv_x   n < 0: 3, incx = 0: 8, incy = 0: 11, lda: 6     (hemv_x alike)
//     symv2_x  n < 0: 3, incx = 0: 9, incy = 0: 12, lda: 6     (hemv2_x alike)
//
// lda must be m or more by columns, n or more by rows; kl + ku + 1 or more for a band, which may be wider than its
// matrix. No columns (n = 0) are refused though no rows (m = 0) are not: with m = 0, A x has no elements and nothing
// happens; A^T x is a vector of n empty sums, each zero. symv_x of order 0 does nothing.
//
// Storage
//
// By rows, A is what its transpose is by columns: a band keeps A(i, j) at a[i * lda + kl + j - i], by columns it is at
// a[ku + i - j + j * lda]. The other triangle of a symmetric or Hermitian matrix and the corners of a band are not
// read; imaginary parts on a Hermitian diagonal count as zero, whatever they are. A negative increment starts from the
// far end, at (1 - length) * inc. y overlaps nothing; no byte outside the elements is touched.
//
// What y becomes, element by element
//
// alpha = 0 reads neither A nor x: y <- beta y in the precision asked for, and with beta = 1 nothing happens. beta = 0
// does not read y. Otherwise y <- alpha s + beta y, where s is the sum of the terms a x in the order of x, from x(1)
// on, started from zero. Every product with beta but 0 is made, with 1 too. A conjugated number has its imaginary part
// negated and is then a number like others. Real trans 113 is 112.
//
// Plain sums: float data with 211 and 213 in float; float data with 212, double data with 211, 212 and 213 in double.
// A step is s <- s + a x, rounded at each operation; a complex product is (re re - im im, re im + im re), then added.
// y <- alpha s + beta y likewise, both products and then their sum. Float data summed in double are rounded once, when
// y is stored. In the forms of two vectors s is the sum of the products with head plus the sum of those with tail.
//
// Extra: s is a pair (s_hi, s_lo) of doubles, for a complex number one for each part, also with float data.
//
//     split v       v_hi is v rounded to its 26 leading bits, v_lo = v - v_hi. How ties are rounded makes no
//                   difference to p_lo, which is exact: c = 134217729 v, v_hi = c - (c - v) gives the same bits, up
//                   to |v| = 2^996 where c overflows.
//     a x           p_hi = a x, p_lo = ((a_hi x_hi - p_hi) + a_hi x_lo + a_lo x_hi) + a_lo x_lo (Dekker). Exact,
//                   unless it overflows or |a x| < 2^-968. Of two floats p_hi is exact and p_lo zero.
//     (s_hi, s_lo) + (p_hi, p_lo)
//                   t1, e1 = s_hi + p_hi and its error; t2, e2 = s_lo + p_lo and its error, the error of t = a + b
//                   being, with b' = t - a, (a - (t - b')) + (b - b'); e1 += t2; renormalised, e1 += e2, renormalised
//                   again: (t1, e1) <- (t1 + e1, e1 - ((t1 + e1) - t1)).
//     complex a x   the real part takes re re and then -(im im), the imaginary part re im (of a and x) and then im re,
//                   each an exact product added as above.
//     two vectors   the pair of head's products and that of tail's are added at the end.
//     alpha s       alpha = 1: s, which has the same bits. Else c11 = s_hi alpha with its error c21 as in a x,
//                   c2 = s_lo alpha, t1 = c11 + c2, t2 = (c2 - (t1 - c11)) + c21, head = t1 + t2,
//                   tail = t2 - (head - t1). With complex alpha four such pairs are added to two: re(s) re(alpha) plus
//                   -(im(s) im(alpha)) is the real part, re(s) im(alpha) plus im(s) re(alpha) the imaginary one.
//     + beta y      exact products added to the pair of alpha s (zero when alpha is): beta y; with complex beta
//                   re(beta) re(y) and then -(im(beta) im(y)) to the real part, im(beta) re(y) and then
//                   re(beta) im(y) to the imaginary part.
//     y             the pair's head. Float data: the head rounded to float, which is the pair rounded once but where
//                   the head lies in the middle between two floats and the tail would decide.
//
// With s of k real products: |s_hi + s_lo - s| <= 4 k 2^-106 (|a_1 x_1| + ... + |a_k x_k|), nothing having underflowed.
// The bits of y depend on nothing but the numbers: not on sizes, increments, storage or alignment.
#ifndef ORK_ABI_XBLAS_H
#define ORK_ABI_XBLAS_H

#include <cstdint>

namespace ork::xblas {

using Int = std::int64_t;

// Calls<T>::stem is the signature of a stem; the order's address goes in front of it in the ordered form.
template <class T>
struct Calls {
    // y <- alpha op(A) x + beta y, A m x n.
    using gemv_x = void(const Int* trans, const Int* m, const Int* n, const T* alpha, const T* a, const Int* lda,
                        const T* x, const Int* incx, const T* beta, T* y, const Int* incy, const Int* prec);
    // y <- alpha op(A) (head + tail) + beta y
    using gemv2_x = void(const Int* trans, const Int* m, const Int* n, const T* alpha, const T* a, const Int* lda,
                         const T* head, const T* tail, const Int* incx, const T* beta, T* y, const Int* incy,
                         const Int* prec);
    // The same for a band of kl diagonals below and ku above the main one, stored as in BLAS's gbmv.
    using gbmv_x = void(const Int* trans, const Int* m, const Int* n, const Int* kl, const Int* ku, const T* alpha,
                        const T* a, const Int* lda, const T* x, const Int* incx, const T* beta, T* y, const Int* incy,
                        const Int* prec);
    using gbmv2_x = void(const Int* trans, const Int* m, const Int* n, const Int* kl, const Int* ku, const T* alpha,
                         const T* a, const Int* lda, const T* head, const T* tail, const Int* incx, const T* beta, T* y,
                         const Int* incy, const Int* prec);
    // y <- alpha A x + beta y, A symmetric (hemv: Hermitian) of order n, of which one triangle is read.
    using symv_x = void(const Int* uplo, const Int* n, const T* alpha, const T* a, const Int* lda, const T* x,
                        const Int* incx, const T* beta, T* y, const Int* incy, const Int* prec);
    using symv2_x = void(const Int* uplo, const Int* n, const T* alpha, const T* a, const Int* lda, const T* head,
                         const T* tail, const Int* incx, const T* beta, T* y, const Int* incy, const Int* prec);
    using hemv_x = symv_x;
    using hemv2_x = symv2_x;
};

// The ordered form of a signature.
template <class Signature>
struct WithOrder;
template <class... Arguments>
struct WithOrder<void(Arguments...)> {
    using type = void(const Int* order, Arguments...);
};

} // namespace ork::xblas

#endif
