// SPDX-License-Identifier: MIT
// Copies of trapezoidal parts, column by column.
#include "blas/gemm/product.h"
#include "lapack/members.h"

namespace ork::lapack {
namespace {

Int least(Int a, Int b) { return a < b ? a : b; }
Int most(Int a, Int b) { return a > b ? a : b; }

void copy_rows(Int from, Int to, const T* a, T* b)
{
    constexpr int lanes = Vec<T>::lanes;
    Int i = from;
    for (; i + 4 * lanes <= to; i += 4 * lanes) {
        Vec<T> x[4];
#pragma GCC unroll 4
        for (int r = 0; r < 4; ++r) x[r] = load<lanes>(a + i + r * lanes);
#pragma GCC unroll 4
        for (int r = 0; r < 4; ++r) store<lanes>(b + i + r * lanes, x[r]);
    }
    for (; i < to; ++i) store<1>(b + i, load<1>(a + i));
}

// Columns less rows of at least k (U) or at most k (L); every element for another letter.
void lacpy(char uplo, Int m, Int n, Int k, const T* a, Int lda, T* b, Int ldb)
{
    const bool upper = gemm::is_letter(uplo, 'U'), lower = gemm::is_letter(uplo, 'L');
    for (Int j = 0; j < n; ++j)
        copy_rows(lower ? most(j - k, 0) : 0, upper ? least(j - k + 1, m) : m, a + j * lda, b + j * ldb);
}

} // namespace
} // namespace ork::lapack

using namespace ork::lapack;

ORK_LAPACK_EXPORT(lacpy2)
(const char* uplo, const Int* m, const Int* n, const T* a, const Int* lda, T* b, const Int* ldb)
{
    lacpy(*uplo, *m, *n, 0, a, *lda, b, *ldb);
}

ORK_LAPACK_EXPORT(lacpy3)
(const char* uplo, const Int* m, const Int* n, const Int* k, const T* a, const Int* lda, T* b, const Int* ldb)
{
    lacpy(*uplo, *m, *n, *k, a, *lda, b, *ldb);
}
