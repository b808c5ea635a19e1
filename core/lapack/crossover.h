// SPDX-License-Identifier: MIT
// Where kernels end and blocks begin.
#pragma once

#include "ork/abi/lapack/types.h"

namespace ork::lapack {

// Orders up to which a kernel takes the whole problem.
inline constexpr Int small_lu = 32, small_cholesky = 32, small_qr = 32, small_inverse = 32;
// Right-hand sides up to which getrs_small does.
inline constexpr Int small_sides = 8;

// Columns of the panels at which recursion ends.
inline constexpr Int lu_panel = 8;

// Columns that become one block reflector, and of the panels inside such a block.
inline constexpr Int qr_block = 32, qr_panel = 8;

} // namespace ork::lapack
