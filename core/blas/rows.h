// SPDX-License-Identifier: MIT
// The rows of routines.inc as types: rows::daxpy is the routine daxpy.
#pragma once

#include "blas/dot.h"
#include "blas/gemm.h"
#include "blas/gemm_batch.h"
#include "blas/kernels.h"
#include "blas/norm.h"
#include "blas/rank_k.h"
#include "blas/routine.h"
#include "blas/shapes.h"
#include "blas/side.h"

namespace ork::blas::rows {

#define ROUTINE(count, routine, T, shape, ...)                                                                         \
    struct routine : Routine<T, shapes::shape, __VA_ARGS__> {                                                          \
        static constexpr char name[] = #routine;                                                                       \
    };
#define FUNCTION ROUTINE
#define COMPLEX_FUNCTION ROUTINE
#define ORDERED_ROUTINE ROUTINE
#define FORTRAN_ROUTINE ROUTINE
#define OWN_ROUTINE ROUTINE
#define EXTENSION_FUNCTION ROUTINE
#define EXTENSION_COMPLEX_FUNCTION ROUTINE
#include "blas/routines.inc"

} // namespace ork::blas::rows
