// SPDX-License-Identifier: MIT
// The lists of members for one integer width and one precision: the build compiles each source that includes this file
// once for each of the eight and says which by ORK_KERNEL_INT (int64_t or int32_t), ORK_SPBLAS_PREFIX
// (ork_spblas_nx2_ or ork_spblas_lp64_nx2_), ORK_KERNEL_LETTER, ORK_KERNEL_ELEMENT and ORK_KERNEL_COMPLEX. A list is
// included with MEMBER(symbol, name) defined, name a string without precision.
#pragma once

#include <cstdint>
#include <type_traits>

#include "frame/export.h"
#include "spblas/rule.h"

namespace ork::spblas {

using Int = ORK_KERNEL_INT;
using T = ORK_KERNEL_ELEMENT;

#define ORK_SPBLAS_SYMBOL_OF(prefix, letter, name) prefix##letter##name
#define ORK_SPBLAS_SYMBOL(prefix, letter, name) ORK_SPBLAS_SYMBOL_OF(prefix, letter, name)
#define SDCZ(name) MEMBER(ORK_SPBLAS_SYMBOL(ORK_SPBLAS_PREFIX, ORK_KERNEL_LETTER, name), #name)
#if ORK_KERNEL_COMPLEX
#define CZ(name) SDCZ(name)
#else
#define CZ(name)
#endif

} // namespace ork::spblas
