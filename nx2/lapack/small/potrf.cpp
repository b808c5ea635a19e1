// SPDX-License-Identifier: MIT
#include "lapack/members.h"
#include "lapack/small/cholesky.h"

using namespace ork;
using namespace ork::lapack;

ORK_LAPACK_EXPORT(potrf_l_small)(const Int* n, T* a, const Int* lda, Int* info) { *info = cholesky_lower(*n, a, *lda); }

ORK_LAPACK_EXPORT(potrf_u_small)(const Int* n, T* a, const Int* lda, Int* info) { *info = cholesky_upper(*n, a, *lda); }

ORK_LAPACK_EXPORT(potrf_small)(const char* uplo, const Int* n, T* a, const Int* lda, Int* info)
{
    *info = (*uplo & ~0x20) == 'U' ? cholesky_upper(*n, a, *lda) : cholesky_lower(*n, a, *lda);
}
