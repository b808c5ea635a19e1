// SPDX-License-Identifier: MIT
// Sparse times sparse into a dense matrix.
#include "spblas/csr_multd.h"
#include "spblas/members.h"

namespace ork::spblas {

using Call = Calls<Format::csr, Int, T>;

#define MEMBER(name) ORK_SPBLAS_SYMBOL(ORK_SPBLAS_PREFIX, ORK_KERNEL_LETTER, name)

ORK_EXPORT void MEMBER(csrmultd_ker)(const Int* row_first, const Int* row_last, const Int* k, const T* a, const Int* ja,
                                     const Int* ia, const T* b, const Int* jb, const Int* ib, T* c, const Int* ldc)
{
    multiply_dense<Int, T>(std::int64_t{*row_first} - 1, *row_last, *k, {a, ja, ia}, {b, jb, ib}, c, *ldc);
}
static_assert(std::is_same_v<decltype(MEMBER(csrmultd_ker)), Call::Multd>);

ORK_EXPORT void MEMBER(csrmultd_ker_t)(const Int* row_first, const Int* row_last, const Int* m, const Int* k,
                                       const T* a, const Int* ja, const Int* ia, const T* b, const Int* jb,
                                       const Int* ib, T* c, const Int* ldc)
{
    multiply_dense_transposed<Int, T>(std::int64_t{*row_first} - 1, *row_last, *m, *k, {a, ja, ia}, {b, jb, ib}, c,
                                      *ldc);
}
static_assert(std::is_same_v<decltype(MEMBER(csrmultd_ker_t)), Call::MultdTransposed>);

} // namespace ork::spblas
