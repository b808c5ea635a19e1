// SPDX-License-Identifier: MIT
// Fetching rows of a compressed-row matrix.
#pragma once

#include "spblas/csr.h"

namespace ork::spblas {

// What lies so many bytes behind the values and columns of entries k .. end (exclusive), or before them.
template <class Int, class T>
[[gnu::always_inline]] inline void fetch_row(const Csr<Int, T>& a, std::int64_t k, std::int64_t end,
                                             std::int64_t bytes = far_ahead)
{
    constexpr std::int64_t step = line<T> < line<Int> ? line<T> : line<Int>;
    for (; k < end; k += step) fetch_at(a.val + k, bytes), fetch_at(a.indx + k, bytes);
}

} // namespace ork::spblas
