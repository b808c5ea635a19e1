// SPDX-License-Identifier: MIT
// The rows of routines.inc as types: rows::daxpy is the routine daxpy.
#pragma once

#include "blas/dot.h"
#include "blas/gemm.h"
#include "blas/gemm_batch.h"
#include "blas/kernels.h"
#include "blas/level2.h"
#include "blas/norm.h"
#include "blas/rank_k.h"
#include "blas/routine.h"
#include "blas/shapes.h"
#include "blas/side.h"

namespace ork::blas {

// Where a routine has names beside those that begin with ork_.
enum class Names { everywhere, fortran, nowhere };

} // namespace ork::blas

namespace ork::blas::rows {

#define ORK_ROW(where, count, routine, T, shape, ...)                                                                  \
    struct routine : Routine<T, shapes::shape, __VA_ARGS__> {                                                          \
        static constexpr char name[] = #routine;                                                                       \
        static constexpr Names names = Names::where;                                                                   \
    };
#define ROUTINE(...) ORK_ROW(everywhere, __VA_ARGS__)
#define FUNCTION ROUTINE
#define COMPLEX_FUNCTION ROUTINE
#define ORDERED_ROUTINE ROUTINE
#define FORTRAN_ROUTINE(...) ORK_ROW(fortran, __VA_ARGS__)
#define OWN_ROUTINE(...) ORK_ROW(nowhere, __VA_ARGS__)
#define EXTENSION_FUNCTION ROUTINE
#define EXTENSION_COMPLEX_FUNCTION ROUTINE
#define BATCH_ROUTINE(routine, T, of)                                                                                  \
    struct routine {                                                                                                   \
        static constexpr char name[] = #routine;                                                                       \
        using gemm = rows::of;                                                                                         \
        using Value = T;                                                                                               \
    };
#include "blas/routines.inc"
#undef ORK_ROW

} // namespace ork::blas::rows
