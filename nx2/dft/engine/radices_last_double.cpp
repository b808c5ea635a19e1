// SPDX-License-Identifier: MIT
// The last pass of long radices.
#include "dft/engine/radix_list.h"

namespace ork::dft {

#define DEFINE(r)                                                                                                      \
    template <>                                                                                                        \
    constinit const Kernels<double> Radix<r, double>::kernels = last_kernels_of_radix<r, double>();
ORK_LAST_RADICES(DEFINE)

} // namespace ork::dft
