// SPDX-License-Identifier: MIT
#pragma once

#include "simd/complex.h"

namespace ork::sparse {

// A real number is its own conjugate.
template <class T>
inline T conjugated(T value)
{
    if constexpr (is_complex<T>)
        return conj(value);
    else
        return value;
}

} // namespace ork::sparse
