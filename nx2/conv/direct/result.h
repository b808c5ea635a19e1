// SPDX-License-Identifier: MIT
// Sums to the caller's array.
#pragma once

#include <type_traits>

#include "conv/problem.h"
#include "simd/complex.h"

namespace ork::conv {

// The first `count` elements of the registers, to z with a stride.
template <int parts, class W, int registers, class T>
inline void store_results(const Vec<W> (&result)[registers], T* z, Int stride, Int count)
{
    constexpr int lanes = Vec<W>::lanes;
    if constexpr (std::is_same_v<T, W>)
        if (stride == 1 && parts * count == registers * lanes) {
#pragma GCC unroll 16
            for (int r = 0; r < registers; ++r) store(z + r * lanes, result[r]);
            return;
        }
    alignas(16) W all[registers * lanes];
#pragma GCC unroll 16
    for (int r = 0; r < registers; ++r) store_aligned(all + r * lanes, result[r]);
    for (Int i = 0; i < count; ++i)
        for (int part = 0; part < parts; ++part) z[parts * i * stride + part] = static_cast<T>(all[parts * i + part]);
}

} // namespace ork::conv
