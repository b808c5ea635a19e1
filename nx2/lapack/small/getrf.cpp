// SPDX-License-Identifier: MIT
#include "lapack/members.h"
#include "lapack/safe_minimum.h"
#include "lapack/small/lu.h"
#include "lapack/small/lu_rows.h"
#include "lapack/small/lu_scratch.h"

using namespace ork;
using namespace ork::lapack;

namespace {

template <bool pivoting>
[[gnu::noinline]] Int factor_in_scratch(Int m, Int n, T* a, Int lda, Int* ipiv, R safe)
{
    ScratchLu<T> lu(m, n, a, lda);
    const Int info = lu.factor<pivoting>(ipiv, safe);
    lu.write(a, lda);
    return info;
}

template <bool pivoting>
Int factor_any(Int m, Int n, T* a, Int lda, Int* ipiv, R safe)
{
    if (ScratchLu<T>::fits(m, n)) return factor_in_scratch<pivoting>(m, n, a, lda, ipiv, safe);
    Int info = 0;
    factor<pivoting>(m, n, a, lda, ipiv, safe, info);
    return info;
}

// Orders that have code of their own, which divides up to 7.
bool factor_square(Int n, T* a, Int lda, Int* ipiv, R safe, Int& info)
{
    switch (n) {
#define ORDER(n)                                                                                                       \
    case n:                                                                                                            \
        return factor_order<n, (n <= 7)>(a, lda, ipiv, safe, info);
        ORDER(3)
        ORDER(4)
        ORDER(5)
        ORDER(6)
        ORDER(7)
        ORDER(8)
#if !ORK_KERNEL_COMPLEX // beyond, loops are as fast
        ORDER(9)
        ORDER(10)
#endif
#undef ORDER
    }
    return false;
}

} // namespace

ORK_LAPACK_EXPORT(getrf_small)(const Int* m, const Int* n, T* a, const Int* lda, Int* ipiv, Int* info)
{
    *info = 0;
    if (*m <= 0 || *n <= 0) return;
    if (*m == 1 && *n == 1) {
        ipiv[0] = 1;
        *info = a[0] == T{};
        return;
    }
    const R safe = safe_minimum<R>();
    if (*m == 2 && *n == 2) {
        *info = factor_two(a, *lda, ipiv);
        return;
    }
    if (*m == *n && factor_square(*n, a, *lda, ipiv, safe, *info)) return;
    *info = factor_any<true>(*m, *n, a, *lda, ipiv, safe);
}

ORK_LAPACK_EXPORT(getrfnp_small)(const Int* m, const Int* n, T* a, const Int* lda, Int* info)
{
    *info = 0;
    if (*m <= 0 || *n <= 0) return;
    const R safe = safe_minimum<R>();
    *info = factor_any<false>(*m, *n, a, *lda, static_cast<Int*>(nullptr), safe);
}
