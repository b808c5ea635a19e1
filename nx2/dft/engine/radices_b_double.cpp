// SPDX-License-Identifier: MIT
// Passes of some radices in one precision.
#include "dft/engine/radix_list.h"

namespace ork::dft {

#define DEFINE(r)                                                                                                      \
    template <>                                                                                                        \
    constinit const Kernels<double> Radix<r, double>::kernels = kernels_of_radix<r, double>();
ORK_RADICES_B(DEFINE)

} // namespace ork::dft
