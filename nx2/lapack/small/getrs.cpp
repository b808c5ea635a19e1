// SPDX-License-Identifier: MIT
#include "lapack/members.h"
#include "lapack/small/lu.h"
#include "lapack/small/solve.h"

using namespace ork;
using namespace ork::lapack;

namespace {

template <int columns>
void solve(Int n, const T* a, Int lda, T* x, Int ldx)
{
    solve_by_columns<true, columns>(n, a, lda, x, ldx);
    solve_by_columns<false, columns>(n, a, lda, x, ldx);
}

template <bool conjugated>
void solve_transposed(Int n, Int nrhs, const T* a, Int lda, const Int* ipiv, T* b, Int ldb)
{
    for (Int k = 0; k < nrhs; ++k) {
        T* x = b + k * ldb;
        solve_by_sums<false, conjugated>(n, a, lda, x);
        solve_by_sums<true, conjugated>(n, a, lda, x);
        for (Int j = n - 1; j >= 0; --j) {
            const T kept = x[j];
            x[j] = x[ipiv[j] - 1], x[ipiv[j] - 1] = kept;
        }
    }
}

} // namespace

ORK_LAPACK_EXPORT(getrs_small)
(const char* trans, const Int* n, const Int* nrhs, const T* a, const Int* lda, const Int* ipiv, T* b, const Int* ldb,
 Int* info)
{
    *info = 0;
    if (*n <= 0 || *nrhs <= 0) return;
    switch (*trans & ~0x20) {
    case 'N': {
        exchange_rows(Int(0), *n, ipiv, b, *ldb, Int(0), *nrhs);
        Int k = 0;
        for (; k + 4 <= *nrhs; k += 4) solve<4>(*n, a, *lda, b + k * *ldb, *ldb);
        for (; k < *nrhs; ++k) solve<1>(*n, a, *lda, b + k * *ldb, *ldb);
        return;
    }
    case 'T':
        return solve_transposed<false>(*n, *nrhs, a, *lda, ipiv, b, *ldb);
    default:
        return solve_transposed<true>(*n, *nrhs, a, *lda, ipiv, b, *ldb);
    }
}
