// SPDX-License-Identifier: MIT
// Where kernels end and blocks begin.
#pragma once

#include <type_traits>

#include "ork/abi/lapack/types.h"

namespace ork::lapack {

// Orders up to which a kernel takes the whole problem.
inline constexpr Int small_lu = 100, small_qr = 128, small_inverse = 32;
// Of Cholesky too: the kernel's upper triangles of real numbers fill its scratch memory at 64.
template <class T>
inline constexpr Int small_cholesky = std::is_same_v<T, Part<T>> ? 64 : 40;
// The same of a solution with the factors of LU, for so many right-hand sides.
inline constexpr Int small_solve = 32, small_sides = 8;

// Columns of the panels at which the recursion of LU ends, and those of QR that become one block reflector.
inline constexpr Int lu_panel = 32, qr_block = 32;

} // namespace ork::lapack
