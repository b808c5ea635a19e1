// SPDX-License-Identifier: MIT
// The packed multiply where sums are not simply added to C: they are handed on in strips that stay in the first level
// of cache.
#pragma once

#include "blas/gemm/kernel.h"

namespace ork::gemm {

constexpr Int strip_rows = 64;

// Calls add(row, rows, column, columns, sums) for every strip of A B; element (i, j) of a strip is
// sums[i + j * strip_rows].
template <class T, class Add>
void multiply_strips(Int m, Int n, Int depth, const T* a, Int a_stride, const T* b, Int b_stride, Add&& add)
{
    constexpr Int width = Units<T>::n;
    alignas(16) T sums[strip_rows * width];
    for (Int j = 0; j < n; j += width, b += b_stride) {
        const Int columns = n - j < width ? n - j : width;
        for (Int i = 0; i < m; i += strip_rows) {
            const Int rows = m - i < strip_rows ? m - i : strip_rows;
            multiply_packed<Finish{true, false, true}, Arrangement::broadcast>(
                rows, columns, depth, a + i / Units<T>::m * a_stride, a_stride, b, b_stride, sums, strip_rows);
            add(i, rows, j, columns, static_cast<const T*>(sums));
        }
    }
}

} // namespace ork::gemm
