/* SPDX-License-Identifier: MIT */
// Many matrices of one size side by side: see ork/abi/lapack.h for what holds for all.
#ifndef ORK_ABI_LAPACK_COMPACT_H
#define ORK_ABI_LAPACK_COMPACT_H

#include "ork/abi/lapack/types.h"

namespace ork::lapack {

template <class T>
struct CompactCalls {
};

} // namespace ork::lapack

#endif
