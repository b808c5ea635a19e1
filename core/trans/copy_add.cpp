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

// Measured on two processors (Zen 5), operands in the caches of the caller, who would have them there for himself. Two
// threads copy in 1.1 to 1.6 times the time of one at 1.5 to 4 MiB, as fast at 6 MiB, in half of it from 8 MiB on; of
// sums they take 0.8 to 1.1 times as long at 8 to 16 MiB and 0.65 at 32 MiB.
//
// Transpositions are written past the caches by the kernels from 2 MiB on, so that is their least block: smaller ones
// of a matrix of that size take up to three times as long as the whole if columns begin on one place of the pages of
// memory. Two threads take 0.85 of the time of one at 6 MiB, 0.65 at 8 MiB and more, divided by rows, which are columns
// of a transposed operand; by columns they took a tenth longer. Copies by rows took up to three times as long.
constexpr double mebi = 1 << 20;
constexpr Policy copies = {6 * mebi, 0.25 * mebi, true}, sums = {20 * mebi, 0.25 * mebi, true};
constexpr Policy transpositions = {4.2 * mebi, 2.1 * mebi, false}, sums_of_transposed = {7 * mebi, 2.1 * mebi, false};

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
    const Division division(transposed ? cols : rows, transposed ? rows : cols, sizeof(T), b,
                            transposed ? transpositions : copies);
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
    const bool alike = !is_transposition(transa) && !is_transposition(transb);
    const Division division(rows, cols, sizeof(T), c, alike ? sums : sums_of_transposed);
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
