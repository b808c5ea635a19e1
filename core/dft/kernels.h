// SPDX-License-Identifier: MIT
// The entries of the kernel library that descriptors stand on.
#pragma once

#include "loader/kernel.h"
#include "ork/abi/dft.h"

namespace ork::dft::kernels {

#define KERNEL(signature, routine) inline constinit loader::Kernel<signature> routine{"dft", #routine};
KERNEL(ork_dft_create_1d, dfti_create_sc1d)
KERNEL(ork_dft_create_1d, dfti_create_sr1d)
KERNEL(ork_dft_create_1d, dfti_create_dc1d)
KERNEL(ork_dft_create_1d, dfti_create_dr1d)
KERNEL(ork_dft_create_md, dfti_create_scmd)
KERNEL(ork_dft_create_md, dfti_create_srmd)
KERNEL(ork_dft_create_md, dfti_create_dcmd)
KERNEL(ork_dft_create_md, dfti_create_drmd)
KERNEL(int64_t(ork_dft_node**), dfti_free_node)
KERNEL(ork_dft_commit, commit_descriptor_core_s_c2c_1d)
KERNEL(ork_dft_commit, commit_descriptor_core_s_c2c_md)
KERNEL(ork_dft_commit, commit_descriptor_core_s_r2c_1d)
KERNEL(ork_dft_commit, commit_descriptor_core_s_r2c_md)
KERNEL(ork_dft_commit, commit_descriptor_core_d_c2c_1d)
KERNEL(ork_dft_commit, commit_descriptor_core_d_c2c_md)
KERNEL(ork_dft_commit, commit_descriptor_core_d_r2c_1d)
KERNEL(ork_dft_commit, commit_descriptor_core_d_r2c_md)
KERNEL(ork_dft_commit, plan_node)
#undef KERNEL

} // namespace ork::dft::kernels
