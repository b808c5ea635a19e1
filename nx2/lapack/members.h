// SPDX-License-Identifier: MIT
// The exports of one precision: the build compiles each source that includes this file once for each of the four and
// says which by ORK_KERNEL_LETTER, ORK_KERNEL_ELEMENT and ORK_KERNEL_COMPLEX.
//
//     ORK_LAPACK_EXPORT(getrf_small)(const Int* m, ...) { ... }
//
// declares the export with the signature that Calls<T> has for it, so another one does not compile.
#pragma once

#include "frame/export.h"
#include "ork/abi/lapack.h"
#include "simd/complex.h"

namespace ork::lapack {

using T = ORK_KERNEL_ELEMENT;
using R = Real<T>;
using Call = Calls<T>;

#define ORK_LAPACK_SYMBOL_OF(letter, stem) ork_lapack_ps_nx2_##letter##stem
#define ORK_LAPACK_SYMBOL(letter, stem) ORK_LAPACK_SYMBOL_OF(letter, stem)
#define ORK_LAPACK_EXPORT(stem)                                                                                        \
    ORK_EXPORT Call::stem ORK_LAPACK_SYMBOL(ORK_KERNEL_LETTER, stem);                                                  \
    ORK_EXPORT void ORK_LAPACK_SYMBOL(ORK_KERNEL_LETTER, stem)

} // namespace ork::lapack
