// SPDX-License-Identifier: MIT
#include "lapack/members.h"
#include "lapack/reflector.h"

using namespace ork;
using namespace ork::lapack;

ORK_LAPACK_EXPORT(geqrf_small)
(const Int* m, const Int* n, T* a, const Int* lda, T* tau, T* work, const Int* lwork, Int* info)
{
    *info = 0;
    if (*lwork == -1) {
        work[0] = T(static_cast<R>(*n > 1 ? *n : 1));
        return;
    }
    for (Int k = 0; k < *m && k < *n; ++k) {
        T* x = a + k + k * *lda;
        tau[k] = generate_reflector(*m - k, x[0], x + 1);
        reflect_from_left(*m - k, *n - k - 1, x + 1, conj(tau[k]), x + *lda, *lda);
    }
}
