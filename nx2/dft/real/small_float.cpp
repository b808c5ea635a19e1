// SPDX-License-Identifier: MIT
// Straight-line real transforms in single precision.
#include "dft/real/small_kernel.h"

namespace ork::dft {

template <>
SmallForward<float> small_forward_of<float>(std::int64_t n)
{
    return SmallTable<float>::forward[n / 2];
}
template <>
SmallBackward<float> small_backward_of<float>(std::int64_t n)
{
    return SmallTable<float>::backward[n / 2];
}

} // namespace ork::dft
