// SPDX-License-Identifier: MIT
// y <- alpha op(A) x + beta y, A general.
#include "xblas/arguments.h"
#include "xblas/block.h"
#include "xblas/members.h"

namespace ork::xblas {
namespace {

// Element k of y takes a[k * place + t * step] x(t), t = 0 .. terms - 1.
struct General {
    const T* a;
    Int place, step, terms;
    bool conjugate;
    Int incx;

    template <class Sum>
    void operator()(Block<Sum>& block, const T* x) const
    {
        block.add(a + block.first * place, place, step, x, incx, terms, conjugate);
    }
};

// tail: null in the form of one vector.
void gemv(const char* routine, Int order, Int trans, Int m, Int n, T alpha, const T* a, Int lda, const T* head,
          const T* tail, Int incx, T beta, T* y, Int incy, Int prec)
{
    if (!within(order, by_rows, by_columns) || !within(trans, not_transposed, conjugate_transposed) ||
        !within(prec, first_precision, last_precision))
        return;
    const Int later = tail != nullptr; // the second vector moves what stands behind it
    if (refused(routine, {{m < 0, 3},
                          {n < 1, 4},
                          {incx == 0, 9 + later},
                          {incy == 0, 12 + later},
                          {lda < (order == by_columns ? m : n), 7}}))
        return;
    const bool along_rows = (order == by_rows) == (trans == not_transposed);
    const Int length = trans == not_transposed ? m : n, terms = trans == not_transposed ? n : m;
    const General matrix{a, along_rows ? lda : 1, along_rows ? 1 : lda, terms, trans == conjugate_transposed, incx};
    multiply(prec, matrix, terms, length, Vectors<T>{alpha, head, tail, incx, beta, y, incy});
}

} // namespace

ORK_XBLAS_EXPORT(gemv_x)
(const Int* trans, const Int* m, const Int* n, const T* alpha, const T* a, const Int* lda, const T* x, const Int* incx,
 const T* beta, T* y, const Int* incy, const Int* prec)
{
    gemv(ORK_XBLAS_ROUTINE(gemv_x), by_columns, *trans, *m, *n, *alpha, a, *lda, x, nullptr, *incx, *beta, y, *incy,
         *prec);
}

ORK_XBLAS_ORDERED_EXPORT(gemv_x)
(const Int* order, const Int* trans, const Int* m, const Int* n, const T* alpha, const T* a, const Int* lda, const T* x,
 const Int* incx, const T* beta, T* y, const Int* incy, const Int* prec)
{
    gemv(ORK_XBLAS_ROUTINE(gemv_x), *order, *trans, *m, *n, *alpha, a, *lda, x, nullptr, *incx, *beta, y, *incy, *prec);
}

ORK_XBLAS_EXPORT(gemv2_x)
(const Int* trans, const Int* m, const Int* n, const T* alpha, const T* a, const Int* lda, const T* head, const T* tail,
 const Int* incx, const T* beta, T* y, const Int* incy, const Int* prec)
{
    gemv(ORK_XBLAS_ROUTINE(gemv2_x), by_columns, *trans, *m, *n, *alpha, a, *lda, head, tail, *incx, *beta, y, *incy,
         *prec);
}

ORK_XBLAS_ORDERED_EXPORT(gemv2_x)
(const Int* order, const Int* trans, const Int* m, const Int* n, const T* alpha, const T* a, const Int* lda,
 const T* head, const T* tail, const Int* incx, const T* beta, T* y, const Int* incy, const Int* prec)
{
    gemv(ORK_XBLAS_ROUTINE(gemv2_x), *order, *trans, *m, *n, *alpha, a, *lda, head, tail, *incx, *beta, y, *incy,
         *prec);
}

} // namespace ork::xblas
