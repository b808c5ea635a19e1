// SPDX-License-Identifier: MIT
// The exports that know no precision: the build compiles each source in this folder once for each integer width, which
// ORK_KERNEL_INT and ORK_SPARSE_SUFFIX say.
//
//     ORK_SPARSE_HANDLE_EXPORT(HandleCalls, int, copy)(const Matrix* a, ...) { ... }
#pragma once

#include <cstdint>

#include "frame/export.h"
#include "ork/abi/sparse.h"

namespace ork::sparse {

using Int = ORK_KERNEL_INT;

#define ORK_SPARSE_HANDLE_SYMBOL_OF(stem, suffix) ork_sparse_##stem##suffix
#define ORK_SPARSE_HANDLE_SYMBOL(stem, suffix) ORK_SPARSE_HANDLE_SYMBOL_OF(stem, suffix)
#define ORK_SPARSE_HANDLE_EXPORT(Calls, result, stem)                                                                  \
    ORK_EXPORT Calls<Int>::stem ORK_SPARSE_HANDLE_SYMBOL(stem, ORK_SPARSE_SUFFIX);                                     \
    ORK_EXPORT result ORK_SPARSE_HANDLE_SYMBOL(stem, ORK_SPARSE_SUFFIX)

} // namespace ork::sparse
