// SPDX-License-Identifier: MIT
// Straight-line real transforms of even lengths in single precision.
#include "dft/real/small_kernel.h"

namespace ork::dft {

template <>
SmallForward<float> small_even_forward<float>(std::int64_t n)
{
    return SmallTable<float>::even_forward[n / 2];
}
template <>
SmallBackward<float> small_even_backward<float>(std::int64_t n)
{
    return SmallTable<float>::even_backward[n / 2];
}

} // namespace ork::dft
