// SPDX-License-Identifier: MIT
#include <limits>

#include "export.h"
#include "ork/abi/core_lapack.h"

namespace {

template <class R>
R lamch(char what)
{
    using limits = std::numeric_limits<R>;
    constexpr R unit = limits::epsilon() / 2; // round to nearest
    switch (what & ~0x20) {
    case 'E':
        return unit;
    case 'S':
        return limits::min(); // 1 / min does not overflow in IEEE arithmetic
    case 'B':
        return limits::radix;
    case 'P':
        return limits::epsilon();
    case 'N':
        return limits::digits;
    case 'R':
        return 1;
    case 'M':
        return limits::min_exponent;
    case 'U':
        return limits::min();
    case 'L':
        return limits::max_exponent;
    case 'O':
        return limits::max();
    default:
        return 0;
    }
}

} // namespace

ORK_EXPORT float ork_lapack_slamch(const char* what) { return lamch<float>(*what); }
ORK_EXPORT double ork_lapack_dlamch(const char* what) { return lamch<double>(*what); }
