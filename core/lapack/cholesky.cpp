// SPDX-License-Identifier: MIT
// Cholesky by recursion over the order: the first half, the square beside it, the product that the second half loses,
// the second half.
#include "lapack/crossover.h"
#include "lapack/drivers.h"
#include "lapack/instantiate.h"
#include "lapack/kernels.h"
#include "lapack/level3.h"

namespace ork::lapack {

namespace {

template <class T>
Int factor(char uplo, Int n, Matrix<T> a)
{
    if (n <= small_cholesky<T>) {
        Int info = 0;
        kernels::potrf_small<T>(&uplo, &n, a.data, &a.lead, &info);
        return info;
    }
    const Int first = (n / 2 + 15) / 16 * 16, second = n - first;
    if (const Int info = factor<T>(uplo, first, a); info != 0) return info;
    const Matrix<T> rest = a.from(first, first);
    if (uplo == 'U') {
        const Matrix<T> beside = a.from(0, first);
        solve<T>('L', 'U', adjoint<T>, 'N', first, second, 1, a, beside);
        add_square<T>('U', adjoint<T>, second, first, -1, beside, rest);
    } else {
        const Matrix<T> beside = a.from(first, 0);
        solve<T>('R', 'L', adjoint<T>, 'N', second, first, 1, a, beside);
        add_square<T>('L', 'N', second, first, -1, beside, rest);
    }
    const Int info = factor<T>(uplo, second, rest);
    return info == 0 ? 0 : first + info;
}

} // namespace

template <class T>
Int potrf(char uplo, Int n, T* a, Int lda)
{
    return n == 0 ? 0 : factor<T>(uplo, n, {a, lda});
}

template <class T>
Int potrs(char uplo, Int n, Int nrhs, const T* a, Int lda, T* b, Int ldb)
{
    const bool upper = uplo == 'U';
    solve<T>('L', uplo, upper ? adjoint<T> : 'N', 'N', n, nrhs, 1, {a, lda}, {b, ldb});
    solve<T>('L', uplo, upper ? 'N' : adjoint<T>, 'N', n, nrhs, 1, {a, lda}, {b, ldb});
    return 0;
}

template <class T>
Int posv(char uplo, Int n, Int nrhs, T* a, Int lda, T* b, Int ldb)
{
    const Int info = potrf(uplo, n, a, lda);
    if (info == 0) potrs<T>(uplo, n, nrhs, a, lda, b, ldb);
    return info;
}

INSTANTIATE(potrf)
INSTANTIATE(potrs)
INSTANTIATE(posv)

} // namespace ork::lapack
