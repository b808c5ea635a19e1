// SPDX-License-Identifier: MIT
// Passes of some radices in one precision.
#include "dft/engine/radix_list.h"

namespace ork::dft {

#define DEFINE(r)                                                                                                      \
    template <>                                                                                                        \
    constinit const Kernels<float> Radix<r, float>::kernels = kernels_of_radix<r, float>();
ORK_RADICES_C(DEFINE)

} // namespace ork::dft
