/* SPDX-License-Identifier: MIT */
/* What kernels call of the core's own BLAS: y <- alpha op(A) x + beta y, which the core may split over threads.
   Fortran's conventions, 64-bit integers, no hidden lengths. */
#ifndef ORK_ABI_CORE_BLAS_H
#define ORK_ABI_CORE_BLAS_H

#include <stdint.h>

#include "ork/types.h"

ORK_BEGIN_DECLS

void ork_blas_sgemv(const char* trans, const int64_t* m, const int64_t* n, const float* alpha, const float* a,
                    const int64_t* lda, const float* x, const int64_t* incx, const float* beta, float* y,
                    const int64_t* incy);
void ork_blas_dgemv(const char* trans, const int64_t* m, const int64_t* n, const double* alpha, const double* a,
                    const int64_t* lda, const double* x, const int64_t* incx, const double* beta, double* y,
                    const int64_t* incy);
void ork_blas_cgemv(const char* trans, const int64_t* m, const int64_t* n, const ork_complex_float* alpha,
                    const ork_complex_float* a, const int64_t* lda, const ork_complex_float* x, const int64_t* incx,
                    const ork_complex_float* beta, ork_complex_float* y, const int64_t* incy);
void ork_blas_zgemv(const char* trans, const int64_t* m, const int64_t* n, const ork_complex_double* alpha,
                    const ork_complex_double* a, const int64_t* lda, const ork_complex_double* x, const int64_t* incx,
                    const ork_complex_double* beta, ork_complex_double* y, const int64_t* incy);

ORK_END_DECLS

#endif
