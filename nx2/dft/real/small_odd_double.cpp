// SPDX-License-Identifier: MIT
// Straight-line real transforms of odd lengths in double precision.
#include "dft/real/small_kernel.h"

namespace ork::dft {

template <>
SmallForward<double> small_odd_forward<double>(std::int64_t n)
{
    return SmallTable<double>::odd_forward[n / 2];
}
template <>
SmallBackward<double> small_odd_backward<double>(std::int64_t n)
{
    return SmallTable<double>::odd_backward[n / 2];
}

} // namespace ork::dft
