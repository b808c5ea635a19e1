// SPDX-License-Identifier: MIT
// Straight-line real transforms in double precision.
#include "dft/real/small_kernel.h"

namespace ork::dft {

template <>
SmallForward<double> small_forward_of<double>(std::int64_t n)
{
    return SmallTable<double>::forward[n / 2];
}
template <>
SmallBackward<double> small_backward_of<double>(std::int64_t n)
{
    return SmallTable<double>::backward[n / 2];
}

} // namespace ork::dft
