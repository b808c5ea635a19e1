// SPDX-License-Identifier: MIT
// y <- alpha A x + beta y, A Hermitian: complex numbers only.
#include "xblas/members.h"
#include "xblas/triangle.h"

#if ORK_KERNEL_COMPLEX
namespace ork::xblas {

ORK_XBLAS_EXPORT(hemv_x)
(const Int* uplo, const Int* n, const T* alpha, const T* a, const Int* lda, const T* x, const Int* incx, const T* beta,
 T* y, const Int* incy, const Int* prec)
{
    triangle_product<true>(ORK_XBLAS_ROUTINE(hemv_x), by_columns, *uplo, *n, *alpha, a, *lda, x, nullptr, *incx, *beta,
                           y, *incy, *prec);
}

ORK_XBLAS_ORDERED_EXPORT(hemv_x)
(const Int* order, const Int* uplo, const Int* n, const T* alpha, const T* a, const Int* lda, const T* x,
 const Int* incx, const T* beta, T* y, const Int* incy, const Int* prec)
{
    triangle_product<true>(ORK_XBLAS_ROUTINE(hemv_x), *order, *uplo, *n, *alpha, a, *lda, x, nullptr, *incx, *beta, y,
                           *incy, *prec);
}

ORK_XBLAS_EXPORT(hemv2_x)
(const Int* uplo, const Int* n, const T* alpha, const T* a, const Int* lda, const T* head, const T* tail,
 const Int* incx, const T* beta, T* y, const Int* incy, const Int* prec)
{
    triangle_product<true>(ORK_XBLAS_ROUTINE(hemv2_x), by_columns, *uplo, *n, *alpha, a, *lda, head, tail, *incx, *beta,
                           y, *incy, *prec);
}

ORK_XBLAS_ORDERED_EXPORT(hemv2_x)
(const Int* order, const Int* uplo, const Int* n, const T* alpha, const T* a, const Int* lda, const T* head,
 const T* tail, const Int* incx, const T* beta, T* y, const Int* incy, const Int* prec)
{
    triangle_product<true>(ORK_XBLAS_ROUTINE(hemv2_x), *order, *uplo, *n, *alpha, a, *lda, head, tail, *incx, *beta, y,
                           *incy, *prec);
}

} // namespace ork::xblas
#endif
