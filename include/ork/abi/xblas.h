/* SPDX-License-Identifier: MIT */
// Kernels of matrix-vector products with an internal precision of the caller's choice: how they are named, what they
// take. C++: a core looks them up by name.
//
//     ork_xblas_<tag>_blas_<p><stem>     d gemv_x    matrices by columns
//     ork_xblas_<tag>_<p><stem>          the same with the order of storage in front
//
// p is the precision s d c z; hemv is complex. Every argument is an address, integers have 64 bits. order: 101 by rows,
// 102 by columns. trans: 111 A, 112 A^T, 113 A^H. uplo: 121 upper, 122 lower. prec, the precision of products and sums:
// 211 single, 212 double, 213 that of the data, 214 extra.
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

} // namespace ork::xblas

#endif
