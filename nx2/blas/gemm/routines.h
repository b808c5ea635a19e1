// SPDX-License-Identifier: MIT
// The typed view of the routines behind a row of the kernel table. Sizes, strides and scalars are passed by address.
#pragma once

#include "ork/abi/gemm.h"

namespace ork::gemm {

using Desc = ork_gemm_desc;

// Packs op(A), m x k, times alpha; op(B), k x n. panel_stride: elements from one packed panel to the next. Return 0.
template <class T>
using CopyA = std::int64_t(const std::int64_t* m, const std::int64_t* k, const T* a, const std::int64_t* lda, T* buffer,
                           const std::int64_t* panel_stride, const T* alpha);
template <class T>
using CopyB = std::int64_t(const std::int64_t* k, const std::int64_t* n, const T* b, const std::int64_t* ldb, T* buffer,
                           const std::int64_t* panel_stride);

// C (m x n) = scalar * C + packed A * packed B for scalar 0 (C is not read) or 1. `depth` is the padded depth, mode 2
// asks for the lines of C ahead of the sums, and bit 0 of flags says that columns of C may differ in alignment.
template <class T>
using PackedKernel = std::int64_t(const std::int64_t* mode, const std::int64_t* m, const std::int64_t* n,
                                  const std::int64_t* depth, const T* a, const std::int64_t* a_stride, const T* b,
                                  const std::int64_t* b_stride, const T* scalar, T* c, const std::int64_t* ldc,
                                  const std::int64_t* flags);

using Untyped = void (*)();

} // namespace ork::gemm
