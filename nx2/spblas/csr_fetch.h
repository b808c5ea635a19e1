// SPDX-License-Identifier: MIT
// Fetching what a walk through the rows of a compressed-row matrix will ask for. None of it faults, wherever it points.
// Always in line: GCC takes a call for one without effect, and drops it.
#pragma once

#include "spblas/csr.h"

namespace ork::spblas {

template <class T>
inline constexpr int line = 64 / static_cast<int>(sizeof(T)); // elements of a cache line

// What lies so many bytes behind p, or before it.
template <class T>
[[gnu::always_inline]] inline void fetch_at(const T* p, std::int64_t bytes)
{
    _mm_prefetch(
        reinterpret_cast<const char*>(reinterpret_cast<std::uintptr_t>(p) + static_cast<std::uintptr_t>(bytes)),
        _MM_HINT_T0);
}

// The same of entries k .. end.
template <class Int, class T>
[[gnu::always_inline]] inline void fetch_row(const Csr<Int, T>& a, std::int64_t k, std::int64_t end,
                                             std::int64_t bytes = far_ahead)
{
    constexpr std::int64_t step = line<T> < line<Int> ? line<T> : line<Int>;
    for (; k < end; k += step) fetch_at(a.val + k, bytes), fetch_at(a.indx + k, bytes);
}

} // namespace ork::spblas
