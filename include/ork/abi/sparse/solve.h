/* SPDX-License-Identifier: MIT */
// Triangular solves and smoothers. The rules that all stems share: ../sparse.h.
#ifndef ORK_ABI_SPARSE_SOLVE_H
#define ORK_ABI_SPARSE_SOLVE_H

#include <type_traits>

namespace ork::sparse {

template <class Int, class T>
struct SolveCalls {
};

} // namespace ork::sparse

#endif
