// SPDX-License-Identifier: MIT
// Straight-line real transforms of even lengths in double precision.
#include "dft/real/small_kernel.h"

namespace ork::dft {

template <>
SmallForward<double> small_even_forward<double>(std::int64_t n)
{
    return SmallTable<double>::even_forward[n / 2];
}
template <>
SmallBackward<double> small_even_backward<double>(std::int64_t n)
{
    return SmallTable<double>::even_backward[n / 2];
}

} // namespace ork::dft
