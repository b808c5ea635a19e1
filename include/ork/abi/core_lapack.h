/* SPDX-License-Identifier: MIT */
/* What kernels call of the core's LAPACK: properties of the floating-point types, by LAPACK's letters (case apart):
   E rounding unit, S safe minimum (the smallest number whose reciprocal does not overflow), B base, P = E B, N digits
   of the fraction, R 1 when sums are rounded, M least exponent, U underflow threshold, L largest exponent, O overflow
   threshold; 0 for any other letter. */
#ifndef ORK_ABI_CORE_LAPACK_H
#define ORK_ABI_CORE_LAPACK_H

#include "ork/types.h"

ORK_BEGIN_DECLS

float ork_lapack_slamch(const char* what);
double ork_lapack_dlamch(const char* what);

ORK_END_DECLS

#endif
