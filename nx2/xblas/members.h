// SPDX-License-Identifier: MIT
// The exports of one precision: the build compiles each source that includes this file once for each of the four and
// says which by ORK_KERNEL_LETTER, ORK_KERNEL_ELEMENT and ORK_KERNEL_COMPLEX.
//
//     ORK_XBLAS_EXPORT(gemv_x)(const Int* trans, ...) { ... }                          matrices by columns
//     ORK_XBLAS_ORDERED_EXPORT(gemv_x)(const Int* order, const Int* trans, ...) { ... }
//
// declare the export with the signature that Calls<T> has for it, so another one does not compile.
#pragma once

#include "frame/export.h"
#include "ork/abi/xblas.h"
#include "simd/complex.h"

namespace ork::xblas {

using T = ORK_KERNEL_ELEMENT;
using Call = Calls<T>;

#define ORK_XBLAS_NAME_OF(prefix, letter, stem) prefix##letter##stem
#define ORK_XBLAS_NAME(prefix, letter, stem) ORK_XBLAS_NAME_OF(prefix, letter, stem)
#define ORK_XBLAS_EXPORT(stem)                                                                                         \
    ORK_EXPORT Call::stem ORK_XBLAS_NAME(ork_xblas_nx2_blas_, ORK_KERNEL_LETTER, stem);                                \
    ORK_EXPORT void ORK_XBLAS_NAME(ork_xblas_nx2_blas_, ORK_KERNEL_LETTER, stem)
#define ORK_XBLAS_ORDERED_EXPORT(stem)                                                                                 \
    ORK_EXPORT WithOrder<Call::stem>::type ORK_XBLAS_NAME(ork_xblas_nx2_, ORK_KERNEL_LETTER, stem);                    \
    ORK_EXPORT void ORK_XBLAS_NAME(ork_xblas_nx2_, ORK_KERNEL_LETTER, stem)

// "BLAS_dgemv_x"
#define ORK_XBLAS_TEXT_OF(name) #name
#define ORK_XBLAS_TEXT(name) ORK_XBLAS_TEXT_OF(name)
#define ORK_XBLAS_ROUTINE(stem) ORK_XBLAS_TEXT(ORK_XBLAS_NAME(BLAS_, ORK_KERNEL_LETTER, stem))

} // namespace ork::xblas
