// SPDX-License-Identifier: MIT
// The exports of one integer width and one precision: the build compiles each source that includes this file once for
// each of the eight and says which by ORK_KERNEL_INT (int32_t or int64_t), ORK_SPARSE_SUFFIX (_i4_nx2 or _i8_nx2),
// ORK_KERNEL_LETTER, ORK_KERNEL_ELEMENT and ORK_KERNEL_COMPLEX.
//
//     ORK_SPARSE_EXPORT(void, csr_ng_n_mv_ker)(Int row_first, ...) { ... }
//
// declares the export with the signature that Calls<Int, T> has for it, so another one does not compile.
#pragma once

#include <cstdint>

#include "frame/export.h"
#include "ork/abi/sparse.h"
#include "simd/complex.h"

namespace ork::sparse {

using Int = ORK_KERNEL_INT;
using U = std::make_unsigned_t<Int>;
using T = ORK_KERNEL_ELEMENT;
using Call = Calls<Int, T>;

#define ORK_SPARSE_SYMBOL_OF(letter, stem, suffix) ork_sparse_##letter##_##stem##suffix
#define ORK_SPARSE_SYMBOL(letter, stem, suffix) ORK_SPARSE_SYMBOL_OF(letter, stem, suffix)
#define ORK_SPARSE_EXPORT(result, stem)                                                                                \
    ORK_EXPORT Call::stem ORK_SPARSE_SYMBOL(ORK_KERNEL_LETTER, stem, ORK_SPARSE_SUFFIX);                               \
    ORK_EXPORT result ORK_SPARSE_SYMBOL(ORK_KERNEL_LETTER, stem, ORK_SPARSE_SUFFIX)

} // namespace ork::sparse
