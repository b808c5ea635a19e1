// SPDX-License-Identifier: MIT
// Chooses the body for few rows: one register of `width` elements after the other from the top, the last one so early
// that it ends with the last row.
#pragma once

#include "blas/level2/loads.h"

namespace ork::level2 {

// Calls body.operator()<width, registers>() for 1 <= m <= 8 registers.
template <class T, class Body>
[[gnu::always_inline]] inline void with_tile(Int m, Body&& body)
{
    constexpr int lanes = Vec<T>::lanes;
    if constexpr (lanes > 1)
        if (m < lanes) {
            if (m == 1) return body.template operator()<1, 1>();
            if (m == 2) return body.template operator()<lanes / 2, 1>();
            return body.template operator()<lanes / 2, 2>();
        }
    switch ((m + lanes - 1) / lanes) {
    case 1:
        return body.template operator()<lanes, 1>();
    case 2:
        return body.template operator()<lanes, 2>();
    case 3:
        return body.template operator()<lanes, 3>();
    case 4:
        return body.template operator()<lanes, 4>();
    case 5:
        return body.template operator()<lanes, 5>();
    case 6:
        return body.template operator()<lanes, 6>();
    case 7:
        return body.template operator()<lanes, 7>();
    default:
        return body.template operator()<lanes, 8>();
    }
}

} // namespace ork::level2
