/* SPDX-License-Identifier: MIT */
/* Element and integer types shared by every public header. */
#ifndef ORK_TYPES_H
#define ORK_TYPES_H

#include <stdint.h>

/* A complex number is the pair (real, imaginary), adjacent in memory and returned in registers: C's own _Complex. */
#ifdef __cplusplus
#include <complex>
typedef std::complex<float> ork_complex_float;
typedef std::complex<double> ork_complex_double;
#define ORK_BEGIN_DECLS extern "C" {
#define ORK_END_DECLS }
#else
typedef float _Complex ork_complex_float;
typedef double _Complex ork_complex_double;
#define ORK_BEGIN_DECLS
#define ORK_END_DECLS
#endif

#endif
