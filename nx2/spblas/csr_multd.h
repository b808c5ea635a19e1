// SPDX-License-Identifier: MIT
// The product of two sparse matrices as a dense one. Matrices are compressed rows of three arrays, 1-based: row i spans
// positions ia[i] - ia[0] .. ia[i + 1] - ia[0] (exclusive). C is column-major. Entries are taken in the order in which
// they are stored, those of A first.
#pragma once

#include <cstdint>

#include "simd/complex.h"
#include "simd/scale.h"

namespace ork::spblas {

template <class Int, class T>
struct ThreeArrays {
    const T* val;
    const Int *indx, *ia;

    std::int64_t begin(std::int64_t row) const { return std::int64_t{ia[row]} - ia[0]; }
    std::int64_t end(std::int64_t row) const { return begin(row + 1); } // exclusive
    std::int64_t column(std::int64_t k) const { return std::int64_t{indx[k]} - 1; }
};

// Row r of C gains a times row i of B.
template <class Int, class T>
inline void add_row(T a, const ThreeArrays<Int, T>& b, std::int64_t i, T* c, std::int64_t ldc)
{
    for (std::int64_t l = b.begin(i); l < b.end(i); ++l) {
        T& element = c[b.column(l) * ldc];
        element = element + a * b.val[l];
    }
}

// Rows first .. last (exclusive) of C = A B, which has k columns.
template <class Int, class T>
void multiply_dense(std::int64_t first, std::int64_t last, std::int64_t k, const ThreeArrays<Int, T>& a,
                    const ThreeArrays<Int, T>& b, T* c, std::int64_t ldc)
{
    for (std::int64_t l = 0; l < k; ++l) scale(last - first, T{}, c + l * ldc + first);
    for (std::int64_t i = first; i < last; ++i)
        for (std::int64_t l = a.begin(i); l < a.end(i); ++l) add_row(a.val[l], b, a.column(l), c + i, ldc);
}

// What rows first .. last (exclusive) of A and B contribute to C = A^T B, of m rows and k columns. The rest of C is 0.
template <class Int, class T>
void multiply_dense_transposed(std::int64_t first, std::int64_t last, std::int64_t m, std::int64_t k,
                               const ThreeArrays<Int, T>& a, const ThreeArrays<Int, T>& b, T* c, std::int64_t ldc)
{
    for (std::int64_t l = 0; l < k; ++l) scale(m, T{}, c + l * ldc);
    for (std::int64_t i = first; i < last; ++i)
        for (std::int64_t l = a.begin(i); l < a.end(i); ++l) add_row(a.val[l], b, i, c + a.column(l), ldc);
}

} // namespace ork::spblas
