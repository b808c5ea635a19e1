// SPDX-License-Identifier: MIT
// y <- alpha A x + beta y, A symmetric or Hermitian, of which one triangle is read.
#pragma once

#include <type_traits>

#include "xblas/arguments.h"
#include "xblas/block.h"

namespace ork::xblas {

// The stored matrix by columns; a matrix by rows is its transpose. A block of elements of y takes its terms in the
// order of x from three parts of A: the columns left of the diagonal block, that block, the columns right of it. One of
// the outer parts is stored as it stands, the other one mirrored.
template <class T, bool hermitian>
struct Triangle {
    const T* a;
    Int lda, n;
    bool lower;     // of the stored matrix
    bool transpose; // A is the stored matrix's transpose
    Int incx;

    template <class Sum>
    void operator()(Block<Sum>& block, const T* x) const
    {
        const Int first = block.first, behind = first + block.count;
        outer(block, lower, x, 0, first);
        diagonal(block, x + first * incx);
        outer(block, !lower, x + behind * incx, behind, n - behind);
    }

private:
    // The terms of a part that begins with column j.
    template <class Sum>
    void outer(Block<Sum>& block, bool stored, const T* x, Int j, Int terms) const
    {
        const bool conjugate = hermitian && stored == transpose;
        if (stored)
            block.add(a + (block.first + j * lda), 1, lda, x, incx, terms, conjugate);
        else
            block.add(a + (j + block.first * lda), lda, 1, x, incx, terms, conjugate);
    }

    template <class Sum>
    void diagonal(Block<Sum>& block, const T* x) const
    {
        constexpr int size = block_size<Sum>;
        T whole[size * size];
        const T* corner = a + block.first * (lda + 1);
        for (int j = 0; j < block.count; ++j)
            for (int i = 0; i < block.count; ++i) {
                const bool stored = i == j || (i > j) == lower;
                T element = stored ? corner[i + j * lda] : corner[j + i * lda];
                if constexpr (hermitian) {
                    if (i == j)
                        element.im = 0;
                    else if (stored == transpose)
                        element = conj(element);
                }
                whole[i + j * size] = element;
            }
        block.add(whole, 1, size, x, incx, block.count, false);
    }
};

// tail: null in the form of one vector.
template <bool hermitian, class T>
void triangle_product(const char* routine, Int order, Int uplo, Int n, T alpha, const T* a, Int lda, const T* head,
                      std::type_identity_t<const T*> tail, Int incx, T beta, T* y, Int incy, Int prec)
{
    if (!within(order, by_rows, by_columns) || !within(uplo, upper, lower) ||
        !within(prec, first_precision, last_precision))
        return;
    const Int later = tail != nullptr; // the second vector moves what stands behind it
    if (refused(routine, {{n < 0, 3}, {incx == 0, 8 + later}, {incy == 0, 11 + later}, {lda < n, 6}})) return;
    const Triangle<T, hermitian> matrix{a, lda, n, (uplo == lower) == (order == by_columns), order == by_rows, incx};
    multiply(prec, matrix, n, n, Vectors<T>{alpha, head, tail, incx, beta, y, incy});
}

} // namespace ork::xblas
