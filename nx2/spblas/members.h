// SPDX-License-Identifier: MIT
// The lists of members for one integer width and one precision: the build compiles each source that includes this file
// once for each of the eight and says which by ORK_SPBLAS_INT (int64_t or int32_t), ORK_SPBLAS_PREFIX
// (ork_spblas_nx2_ or ork_spblas_lp64_nx2_), ORK_SPBLAS_LETTER, ORK_SPBLAS_ELEMENT and ORK_SPBLAS_COMPLEX. A list is
// included with MEMBER(symbol, name) defined, name a string without precision.
#pragma once

#include <cstdint>
#include <type_traits>

#include "frame/export.h"
#include "spblas/rule.h"

namespace ork::spblas {

using Int = ORK_SPBLAS_INT;
using T = ORK_SPBLAS_ELEMENT;

#define ORK_SPBLAS_SYMBOL_OF(prefix, letter, name) prefix##letter##name
#define ORK_SPBLAS_SYMBOL(prefix, letter, name) ORK_SPBLAS_SYMBOL_OF(prefix, letter, name)
#define SDCZ(name) MEMBER(ORK_SPBLAS_SYMBOL(ORK_SPBLAS_PREFIX, ORK_SPBLAS_LETTER, name), #name)
#if ORK_SPBLAS_COMPLEX
#define CZ(name) SDCZ(name)
#else
#define CZ(name)
#endif

} // namespace ork::spblas
