// SPDX-License-Identifier: MIT
// cos(pi x) and sin(pi x) through the core's functions.
#include "dft/node/node.h"
#include "frame/export.h"

static constexpr double pi = 3.14159265358979323846;

ORK_EXPORT float ork_dft_nx2_dft_scospi(float x) { return ork_serv_libm_cosf(static_cast<float>(pi * x)); }
ORK_EXPORT float ork_dft_nx2_dft_ssinpi(float x) { return ork_serv_libm_sinf(static_cast<float>(pi * x)); }
ORK_EXPORT double ork_dft_nx2_dft_dcospi(double x) { return ork_serv_libm_cos(pi * x); }
ORK_EXPORT double ork_dft_nx2_dft_dsinpi(double x) { return ork_serv_libm_sin(pi * x); }
