// SPDX-License-Identifier: MIT
// One triangle of C <- alpha op(A) op(B) + beta C, and the sums of two such products. C is scaled first, then takes the
// products one after another, each with the bits of gemm. Where alpha is 0 or the depth is, no operand is read; where
// beta is 0, C is not.
#pragma once

#include "blas/gemm/multiply.h"
#include "blas/gemm/scale.h"

namespace ork::level3 {

using gemm::columns_of;
using gemm::Int;
using gemm::Op;
using gemm::Operand;
using gemm::rows_of;

inline bool is_lower(char uplo) { return gemm::is_letter(uplo, 'L'); }

// A triangle of the n x n matrix C.
template <class T>
struct TriangleOf {
    bool lower;
    Int n;
    T* c;
    Int ldc;

    // Applies beta, unless it is 0 and a product is about to overwrite C. Returns whether there is one to add.
    template <class S, class B>
    bool prepare(S alpha, Int k, B beta) const
    {
        const bool adds = !(alpha == S(0)) && k > 0;
        if (!(beta == B(1)) && !(beta == B(0) && adds))
            for (Int j = 0; j < n; ++j) gemm::scale(lower ? n - j : j + 1, 1, beta, c + (lower ? j : 0) + j * ldc, ldc);
        return adds;
    }

    template <class S>
    void add(S alpha, Int k, Operand<T> a, Operand<T> b, bool overwrite) const
    {
        gemm::multiply_triangle(lower, gemm::Product<T, S>{n, n, k, alpha, a, b, c, ldc, overwrite});
    }

    // What a Hermitian matrix has on its diagonal.
    void make_diagonal_real() const
    {
        for (Int j = 0; j < n; ++j) c[j + j * ldc].im = 0;
    }
};

// C <- alpha op(A) op(B) + beta C.
template <class T>
void gemmt(TriangleOf<T> c, char transa, char transb, Int k, T alpha, const T* a, Int lda, const T* b, Int ldb, T beta)
{
    if (c.n > 0 && c.prepare(alpha, k, beta))
        c.add(alpha, k, rows_of(Op(transa), a, lda), columns_of(Op(transb), b, ldb), beta == T(0));
}

// C <- alpha A A^T + beta C, or alpha A^T A + beta C.
template <class T>
void syrk(TriangleOf<T> c, char trans, Int k, T alpha, const T* a, Int lda, T beta)
{
    const bool plain = !Op(trans).transposed;
    gemmt(c, plain ? 'N' : 'T', plain ? 'T' : 'N', k, alpha, a, lda, a, lda, beta);
}

// C <- alpha (A B^T + B A^T) + beta C, or alpha (A^T B + B^T A) + beta C.
template <class T>
void syr2k(TriangleOf<T> c, char trans, Int k, T alpha, const T* a, Int lda, const T* b, Int ldb, T beta)
{
    if (c.n <= 0 || !c.prepare(alpha, k, beta)) return;
    const bool plain = !Op(trans).transposed;
    const Op left(plain ? 'N' : 'T'), right(plain ? 'T' : 'N');
    c.add(alpha, k, rows_of(left, a, lda), columns_of(right, b, ldb), beta == T(0));
    c.add(alpha, k, rows_of(left, b, ldb), columns_of(right, a, lda), false);
}

// C <- alpha A A^H + beta C, or alpha A^H A + beta C; alpha and beta are real. Imaginary parts of the diagonal are
// taken to be zero and made so, except where C stays as it is.
template <class R>
void herk(TriangleOf<Complex<R>> c, char trans, Int k, R alpha, const Complex<R>* a, Int lda, R beta)
{
    if (c.n <= 0 || ((alpha == 0 || k <= 0) && beta == 1)) return;
    if (beta != 0) c.make_diagonal_real();
    if (c.prepare(alpha, k, beta)) {
        const bool plain = !Op(trans).transposed;
        c.add(alpha, k, rows_of(Op(plain ? 'N' : 'C'), a, lda), columns_of(Op(plain ? 'C' : 'N'), a, lda), beta == 0);
    }
    c.make_diagonal_real();
}

// C <- alpha A B^H + conj(alpha) B A^H + beta C, or alpha A^H B + conj(alpha) B^H A + beta C; beta is real. The
// diagonal as in herk.
template <class R>
void her2k(TriangleOf<Complex<R>> c, char trans, Int k, Complex<R> alpha, const Complex<R>* a, Int lda,
           const Complex<R>* b, Int ldb, R beta)
{
    if (c.n <= 0 || ((alpha == Complex<R>{} || k <= 0) && beta == 1)) return;
    if (beta != 0) c.make_diagonal_real();
    if (c.prepare(alpha, k, beta)) {
        const bool plain = !Op(trans).transposed;
        const Op left(plain ? 'N' : 'C'), right(plain ? 'C' : 'N');
        c.add(alpha, k, rows_of(left, a, lda), columns_of(right, b, ldb), beta == 0);
        c.add(conj(alpha), k, rows_of(left, b, ldb), columns_of(right, a, lda), false);
    }
    c.make_diagonal_real();
}

} // namespace ork::level3
