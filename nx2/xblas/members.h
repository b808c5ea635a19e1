// SPDX-License-Identifier: MIT
// The exports of one precision: the build compiles each source that includes this file once for each of the four and
// says which by ORK_KERNEL_LETTER, ORK_KERNEL_ELEMENT and ORK_KERNEL_COMPLEX.
#pragma once

#include "frame/export.h"
#include "ork/abi/xblas.h"
#include "simd/complex.h"

namespace ork::xblas {

using T = ORK_KERNEL_ELEMENT;
using R = Real<T>;
using Call = Calls<T>;

} // namespace ork::xblas
