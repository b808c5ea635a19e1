/* SPDX-License-Identifier: MIT */
// Rotations, reflectors, tridiagonal systems, copies, panels of blocked reductions: see ork/abi/lapack.h for what holds
// for all.
#ifndef ORK_ABI_LAPACK_BLOCKS_H
#define ORK_ABI_LAPACK_BLOCKS_H

#include "ork/abi/lapack/types.h"

namespace ork::lapack {

template <class T>
struct BlockCalls {
};

} // namespace ork::lapack

#endif
