// SPDX-License-Identifier: MIT
// The routines, for every format, precision and width: checks, then kernels, on threads where that pays.
#pragma once

#include "spblas/call.h"

namespace ork::spblas {

std::int64_t mv(const Call& call);    // y = alpha op(A) x + beta y
std::int64_t mm(const Call& call);    // C = alpha op(A) B + beta C
std::int64_t solve(const Call& call); // y = alpha op(A)^-1 x, C = alpha op(A)^-1 B

} // namespace ork::spblas
