// SPDX-License-Identifier: MIT
// y <- alpha op(A) x + beta y, A a band.
#include "xblas/arguments.h"
#include "xblas/block.h"
#include "xblas/members.h"

namespace ork::xblas {
namespace {

// Element k of y takes the terms with x(k - before) .. x(k + after), as far as there are such. They are numbered alike
// in all elements, t = 0 .. before + after, so that all sums of a block begin and end together whatever the width of
// the band; each sum has an x of its own. Term t of element k has A at a[k * place + t * step].
struct Band {
    const T* a;
    Int place, step, before, after, length_x;
    bool conjugate;
    Int incx;

    // The terms of element k, begin <= t < end, fall with k.
    Int begin(Int k) const { return std::max<Int>(0, before - k); }
    Int end(Int k) const { return std::min(before + after + 1, length_x + before - k); }
    const T* element(Int k, Int t) const { return a + (k * place + t * step); }
    const T* of_x(const T* x, Int k, Int t) const { return x + (k - before + t) * incx; }

    template <class Sum>
    void operator()(Block<Sum>& block, const T* x) const
    {
        const Int first = block.first, last = first + block.count - 1;
        const Int stop = end(first), all_begin = std::min(begin(first), stop), all_end = std::max(end(last), all_begin);
        some(block, x, begin(last), all_begin);
        if (all_begin < all_end)
            block.add(element(first, all_begin), place, step, of_x(x, first, all_begin), incx, incx,
                      all_end - all_begin, conjugate);
        some(block, x, all_end, stop);
    }

private:
    // Terms that not every sum of the block has: where there is none, zero times zero changes nothing.
    template <class Sum>
    void some(Block<Sum>& block, const T* x, Int from, Int to) const
    {
        constexpr int size = block_size<Sum>;
        T as[size * size], xs[size * size];
        while (from < to) {
            const Int terms = std::min<Int>(to - from, size);
            for (Int t = 0; t < terms; ++t)
                for (int i = 0; i < block.count; ++i) {
                    const Int k = block.first + i;
                    const bool there = begin(k) <= from + t && from + t < end(k);
                    as[t * size + i] = there ? *element(k, from + t) : T{};
                    xs[t * size + i] = there ? *of_x(x, k, from + t) : T{};
                }
            block.add(as, 1, size, xs, 1, size, terms, conjugate);
            from += terms;
        }
    }
};

// tail: null in the form of one vector.
void gbmv(const char* routine, Int order, Int trans, Int m, Int n, Int kl, Int ku, T alpha, const T* a, Int lda,
          const T* head, const T* tail, Int incx, T beta, T* y, Int incy, Int prec)
{
    if (!within(order, by_rows, by_columns) || !within(trans, not_transposed, conjugate_transposed) ||
        !within(prec, first_precision, last_precision))
        return;
    const Int later = tail != nullptr; // the second vector moves what stands behind it
    if (refused(routine, {{m < 0, 3},
                          {n < 1, 4},
                          {kl < 0, 5},
                          {ku < 0, 6},
                          {incx == 0, 11 + later},
                          {incy == 0, 14 + later},
                          {lda <= kl || lda - kl <= ku, 9}})) // kl + ku + 1 might overflow
        return;
    const bool plain = trans == not_transposed;
    const bool along_rows = (order == by_rows) == plain; // the terms of an element are adjacent
    const Int length = plain ? m : n, terms = plain ? n : m;
    const Int before = plain ? kl : ku, after = plain ? ku : kl;
    const Band matrix{along_rows ? a : a + (before + after - before * lda),
                      lda,
                      along_rows ? 1 : lda - 1,
                      before,
                      after,
                      terms,
                      trans == conjugate_transposed,
                      incx};
    multiply(prec, matrix, terms, length, Vectors<T>{alpha, head, tail, incx, beta, y, incy});
}

} // namespace

ORK_XBLAS_EXPORT(gbmv_x)
(const Int* trans, const Int* m, const Int* n, const Int* kl, const Int* ku, const T* alpha, const T* a, const Int* lda,
 const T* x, const Int* incx, const T* beta, T* y, const Int* incy, const Int* prec)
{
    gbmv(ORK_XBLAS_ROUTINE(gbmv_x), by_columns, *trans, *m, *n, *kl, *ku, *alpha, a, *lda, x, nullptr, *incx, *beta, y,
         *incy, *prec);
}

ORK_XBLAS_ORDERED_EXPORT(gbmv_x)
(const Int* order, const Int* trans, const Int* m, const Int* n, const Int* kl, const Int* ku, const T* alpha,
 const T* a, const Int* lda, const T* x, const Int* incx, const T* beta, T* y, const Int* incy, const Int* prec)
{
    gbmv(ORK_XBLAS_ROUTINE(gbmv_x), *order, *trans, *m, *n, *kl, *ku, *alpha, a, *lda, x, nullptr, *incx, *beta, y,
         *incy, *prec);
}

ORK_XBLAS_EXPORT(gbmv2_x)
(const Int* trans, const Int* m, const Int* n, const Int* kl, const Int* ku, const T* alpha, const T* a, const Int* lda,
 const T* head, const T* tail, const Int* incx, const T* beta, T* y, const Int* incy, const Int* prec)
{
    gbmv(ORK_XBLAS_ROUTINE(gbmv2_x), by_columns, *trans, *m, *n, *kl, *ku, *alpha, a, *lda, head, tail, *incx, *beta, y,
         *incy, *prec);
}

ORK_XBLAS_ORDERED_EXPORT(gbmv2_x)
(const Int* order, const Int* trans, const Int* m, const Int* n, const Int* kl, const Int* ku, const T* alpha,
 const T* a, const Int* lda, const T* head, const T* tail, const Int* incx, const T* beta, T* y, const Int* incy,
 const Int* prec)
{
    gbmv(ORK_XBLAS_ROUTINE(gbmv2_x), *order, *trans, *m, *n, *kl, *ku, *alpha, a, *lda, head, tail, *incx, *beta, y,
         *incy, *prec);
}

} // namespace ork::xblas
