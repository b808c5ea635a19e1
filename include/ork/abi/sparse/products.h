/* SPDX-License-Identifier: MIT */
// Sums and products of sparse matrices. The rules that all stems share: ../sparse.h.
#ifndef ORK_ABI_SPARSE_PRODUCTS_H
#define ORK_ABI_SPARSE_PRODUCTS_H

#include <type_traits>

#include "ork/abi/sparse/handle.h"

namespace ork::sparse {

template <class Int, class T>
struct ProductCalls {
};

} // namespace ork::sparse

#endif
