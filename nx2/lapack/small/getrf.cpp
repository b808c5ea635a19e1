// SPDX-License-Identifier: MIT
#include "lapack/members.h"
#include "lapack/safe_minimum.h"
#include "lapack/small/lu.h"

using namespace ork;
using namespace ork::lapack;

ORK_LAPACK_EXPORT(getrf_small)(const Int* m, const Int* n, T* a, const Int* lda, Int* ipiv, Int* info)
{
    *info = 0;
    if (*m <= 0 || *n <= 0) return;
    const R safe = safe_minimum<R>();
    if (*m == *n && *n <= 7)
        factor<true, true>(*m, *n, a, *lda, ipiv, safe, *info);
    else
        factor<true, false>(*m, *n, a, *lda, ipiv, safe, *info);
}

ORK_LAPACK_EXPORT(getrfnp_small)(const Int* m, const Int* n, T* a, const Int* lda, Int* info)
{
    *info = 0;
    if (*m <= 0 || *n <= 0) return;
    const R safe = safe_minimum<R>();
    factor<false, false>(*m, *n, a, *lda, static_cast<Int*>(nullptr), safe, *info);
}
