// SPDX-License-Identifier: MIT
// A^-1 = U^-1 L^-1 P^T: U is inverted column by column in place, then A^-1 L = U^-1 is solved from the last column on
// (Du Croz and Higham, "Stability of methods for matrix inversion", 1992: method B).
#include "blas/divide.h"
#include "lapack/columns.h"
#include "lapack/members.h"
#include "lapack/small/tile.h"

using namespace ork;
using namespace ork::lapack;

namespace {

// The number of the first zero on the diagonal, 0 when there is none.
Int first_zero(Int n, const T* a, Int lda)
{
    for (Int j = 0; j < n; ++j)
        if (a[j + j * lda] == T{}) return j + 1;
    return 0;
}

// Column j of U^-1 is - U^-1 u / u(j, j), where the first j columns of U^-1 stand already.
void invert_upper(Int n, T* a, Int lda)
{
    for (Int j = 0; j < n; ++j) {
        T* x = a + j * lda;
        x[j] = divided(T(1), x[j]);
        for (Int k = 0; k < j; ++k) { // x <- U^-1 x by columns; x(k) is not needed behind its own
            const T f = x[k];
            x[k] = T{};
            add_multiple(k + 1, f, a + k * lda, x);
        }
        multiply(j, T{} - x[j], x);
    }
}

// Of four columns of the inverse to the right, or of one, what their multipliers subtract from a column.
void solve_from_right(Int n, T* a, Int lda, T* work)
{
    for (Int j = n - 2; j >= 0; --j) {
        T* x = a + j * lda;
        for (Int i = j + 1; i < n; ++i) work[i] = x[i], x[i] = T{};
        subtract_products<false, 1>(n, n - j - 1, a + (j + 1) * lda, lda, work + j + 1, Int(1), n, x, lda);
    }
}

Int invert(Int n, T* a, Int lda, T* work, Int lwork)
{
    if (lwork == -1) {
        work[0] = T(static_cast<R>(n > 1 ? n : 1));
        return 0;
    }
    const Int zero = first_zero(n, a, lda);
    if (zero != 0) return zero;
    invert_upper(n, a, lda);
    solve_from_right(n, a, lda, work);
    return 0;
}

} // namespace

ORK_LAPACK_EXPORT(getrinp_small)(const Int* n, T* a, const Int* lda, T* work, const Int* lwork, Int* info)
{
    *info = invert(*n, a, *lda, work, *lwork);
}

ORK_LAPACK_EXPORT(getri_small)
(const Int* n, T* a, const Int* lda, const Int* ipiv, T* work, const Int* lwork, Int* info)
{
    *info = invert(*n, a, *lda, work, *lwork);
    if (*info != 0 || *lwork == -1) return;
    for (Int j = *n - 2; j >= 0; --j)
        if (ipiv[j] != j + 1) exchange(*n, a + j * *lda, a + (ipiv[j] - 1) * *lda);
}
