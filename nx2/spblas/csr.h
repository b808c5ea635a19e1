// SPDX-License-Identifier: MIT
// A compressed-row matrix in a caller's arrays, and a slice of its rows.
#pragma once

#include <cstdint>

#include "simd/gather.h"

namespace ork::spblas {

template <class Int, class T>
struct Csr {
    const T* val;
    const Int* indx;
    const Int *pntrb, *pntre; // positions count from pntrb[0], whatever number that is

    std::int64_t first(std::int64_t row) const { return std::int64_t{pntrb[row]} - pntrb[0]; }
    std::int64_t last(std::int64_t row) const { return std::int64_t{pntre[row]} - pntrb[0]; } // exclusive
};

// 0-based, `last` exclusive.
struct Rows {
    std::int64_t first, last;
};

// Ahead of entry k.
template <class Int, class T>
[[gnu::always_inline]] inline void fetch_entries(const Csr<Int, T>& a, std::int64_t k)
{
    fetch(a.val + k);
    fetch(a.indx + k);
}

// p such that p[column] is the element of a column counted from `base`, where p[0] was that of the first. Not by
// pointer arithmetic, which may not leave the array.
template <class T>
inline T* counted_from(std::int64_t base, T* p)
{
    return reinterpret_cast<T*>(reinterpret_cast<std::uintptr_t>(p) - static_cast<std::uintptr_t>(base) * sizeof(T));
}

template <class Int, class T>
inline bool is_far(const Csr<Int, T>& a, Rows rows)
{
    constexpr auto entry = static_cast<std::int64_t>(sizeof(T) + sizeof(Int));
    return rows.first < rows.last && (a.last(rows.last - 1) - a.first(rows.first)) * entry > far_bytes;
}

} // namespace ork::spblas
