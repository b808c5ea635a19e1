// SPDX-License-Identifier: MIT
#pragma once

#include "frame/core_imports.h"

namespace ork::lapack {

// The smallest number whose reciprocal does not overflow, as the core has it.
template <class R>
inline R safe_minimum()
{
    if constexpr (sizeof(R) == sizeof(double))
        return ork_lapack_dlamch("S");
    else
        return ork_lapack_slamch("S");
}

} // namespace ork::lapack
