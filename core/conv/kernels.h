// SPDX-License-Identifier: MIT
// The kernels of convolution tasks: newtask is ork_conv_nx2_newtask.
#pragma once

#include "loader/kernel.h"
#include "ork/abi/conv.h"

namespace ork::conv::kernels {

#define ORK_KERNEL(name) inline constinit loader::Kernel<Calls::name> name{"conv", #name};
ORK_KERNEL(newtask)
ORK_KERNEL(newtaskx)
ORK_KERNEL(edittask)
ORK_KERNEL(exec)
ORK_KERNEL(execx)
ORK_KERNEL(copytask)
ORK_KERNEL(deletetask)
ORK_KERNEL(method)
#undef ORK_KERNEL

} // namespace ork::conv::kernels
