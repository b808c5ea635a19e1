// SPDX-License-Identifier: MIT
// Straight-line real transforms of odd lengths in single precision.
#include "dft/real/small_kernel.h"

namespace ork::dft {

template <>
SmallForward<float> small_odd_forward<float>(std::int64_t n)
{
    return SmallTable<float>::odd_forward[n / 2];
}
template <>
SmallBackward<float> small_odd_backward<float>(std::int64_t n)
{
    return SmallTable<float>::odd_backward[n / 2];
}

} // namespace ork::dft
