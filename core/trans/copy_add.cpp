// SPDX-License-Identifier: MIT
// Copies and sums out of place: the written matrix is divided, each block is a call of the kernel on its pieces of the
// operands. By rows the matrices are their transposes by columns, in the same memory.
#include <utility>

#include "lapack/instantiate.h"
#include "trans/division.h"
#include "trans/drivers.h"
#include "trans/kernels.h"

namespace ork::trans {

namespace {

// The operand's elements that belong to a block of the result.
template <class T>
const T* piece(const T* a, Int lda, Int stride, bool transposed, const Block& block)
{
    return transposed ? a + block.column * stride + block.row * lda : a + block.row * stride + block.column * lda;
}

} // namespace

template <class T>
void omatcopy2_par(char ordering, char trans, Int rows, Int cols, T alpha, const T* a, Int lda, Int stridea, T* b,
                   Int ldb, Int strideb)
{
    const auto kernel = kernels::omatcopy2_seq<T>.get();
    if (upper(ordering) == 'R') {
        std::swap(rows, cols);
        ordering = 'C';
    }
    const bool transposed = is_transposition(trans);
    const Division division(transposed ? cols : rows, transposed ? rows : cols, sizeof(T), b);
    if (division.parts() == 1) return kernel(ordering, trans, rows, cols, alpha, a, lda, stridea, b, ldb, strideb);
    division.run([&](const Block& block) {
        kernel(ordering, trans, transposed ? block.columns : block.rows, transposed ? block.rows : block.columns, alpha,
               piece(a, lda, stridea, transposed, block), lda, stridea, b + block.row * strideb + block.column * ldb,
               ldb, strideb);
    });
}

template <class T>
void omatadd_par(char ordering, char transa, char transb, Int rows, Int cols, T alpha, const T* a, Int lda, T beta,
                 const T* b, Int ldb, T* c, Int ldc)
{
    const auto kernel = kernels::omatadd_seq<T>.get();
    if (upper(ordering) != 'C') std::swap(rows, cols);
    const Division division(rows, cols, sizeof(T), c);
    if (division.parts() == 1) return kernel('C', transa, transb, rows, cols, alpha, a, lda, beta, b, ldb, c, ldc);
    division.run([&](const Block& block) {
        kernel('C', transa, transb, block.rows, block.columns, alpha, piece(a, lda, 1, is_transposition(transa), block),
               lda, beta, piece(b, ldb, 1, is_transposition(transb), block), ldb, c + block.row + block.column * ldc,
               ldc);
    });
}

INSTANTIATE(omatcopy2_par)
INSTANTIATE(omatadd_par)

} // namespace ork::trans
