// SPDX-License-Identifier: MIT
// A compressed-row matrix in a caller's arrays, and a slice of its rows.
#pragma once

#include <cstdint>

#include "spblas/group.h"

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

template <class Int, class T>
inline bool is_far(const Csr<Int, T>& a, Rows rows)
{
    constexpr auto entry = static_cast<std::int64_t>(sizeof(T) + sizeof(Int));
    return rows.first < rows.last && (a.last(rows.last - 1) - a.first(rows.first)) * entry > far_bytes;
}

} // namespace ork::spblas
