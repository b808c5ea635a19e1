// SPDX-License-Identifier: MIT
// C <- alpha op(A) op(B) + beta C on the threads of the pool. Every element has the bits that one thread would give.
#pragma once

#include <cstdint>

namespace ork::blas {

template <class T>
void gemm(const char* transa, const char* transb, const std::int64_t* m, const std::int64_t* n, const std::int64_t* k,
          const T* alpha, const T* a, const std::int64_t* lda, const T* b, const std::int64_t* ldb, const T* beta, T* c,
          const std::int64_t* ldc);

// How C is divided: row_parts x column_parts pieces of `rows` x `columns` elements, the last of each line smaller.
struct GemmGrid {
    int row_parts, column_parts;
    std::int64_t rows, columns;
};

// The division of an m x n problem of depth k for at most `threads` threads; one part where threads would not pay.
GemmGrid gemm_grid(std::int64_t m, std::int64_t n, std::int64_t k, int threads);

} // namespace ork::blas
