// SPDX-License-Identifier: MIT
// The small routines that come with the Fortran BLAS beside its algebra.
#include <algorithm>

#include "export.h"
#include "ork/abi/services.h"
#include "ork/blas.h"

ORK_EXPORT int64_t ork_blas_lsame(const char* a, const char* b) { return ork_serv_lsame(a, b); }
// The result has the width of LOGICAL; the upper half of a register does no harm.
ORK_EXPORT decltype(ork_blas_lsame) lsame_64_ __attribute__((alias("ork_blas_lsame")));

ORK_EXPORT int32_t ork_blas_lp64_lsame(const char* a, const char* b)
{
    return static_cast<int32_t>(ork_serv_lsame(a, b));
}
ORK_EXPORT decltype(ork_blas_lp64_lsame) lsame_ __attribute__((alias("ork_blas_lp64_lsame")));

// xerbla_ for C callers: the name with its length, which Fortran cannot take from them otherwise.
ORK_EXPORT void ork_blas_lp64_xerbla_array(const char* routine, const int32_t* length, const int32_t* position)
{
    const int64_t info = *position;
    xerbla_(routine, reinterpret_cast<const int32_t*>(&info), static_cast<size_t>(std::max(0, *length)));
}
ORK_EXPORT decltype(ork_blas_lp64_xerbla_array) xerbla_array_ __attribute__((alias("ork_blas_lp64_xerbla_array")));

ORK_EXPORT void ork_blas_xerbla_array(const char* routine, const int64_t* length, const int64_t* position)
{
    xerbla_64_(routine, position, static_cast<size_t>(std::max<int64_t>(0, *length)));
}
ORK_EXPORT decltype(ork_blas_xerbla_array) xerbla_array_64_ __attribute__((alias("ork_blas_xerbla_array")));
